// Where untyped content meets the entry points: reading an object from an
// untyped element, and the context's additional root attributes.
#include "kdbind/binding.h"

namespace KdBind {

// The element goes through text, so the object reads it as it would read a
// document: under the default context, as the narrow FromXml does.
void CXmlObjectBase::FromXmlElement(CElement const* element, CXmlSerializationContext const& context)
{
    if (!element)
        throw CKdInvalidParamException("FromXmlElement needs an element");
    std::string const xml = element->ToXml(false, false, EOLType_LF, CXmlSerializationContext::m_defaultContext);
    CXmlObjectBase::FromXml(xml.c_str(), context);
}

CSmartPtr<CAttributeCol> CXmlSerializationContext::GetAdditionalRootAttributes() const
{
    return m_additionalRootAttributes.GetOrCreate();
}

CXmlSerializationContext::CRootAttributesHolder::CRootAttributesHolder(CRootAttributesHolder const& other)
{
    CAttributeCol* const shared = other.m_attributes.load(std::memory_order_acquire);
    if (shared)
        shared->AddRef();
    m_attributes.store(shared, std::memory_order_relaxed);
}

CXmlSerializationContext::CRootAttributesHolder::~CRootAttributesHolder()
{
    if (CAttributeCol* const shared = m_attributes.load(std::memory_order_acquire))
        shared->Release();
}

// Made without a lock: two threads that ask first both build one, and the
// one that loses the exchange frees its own.
CAttributeCol* CXmlSerializationContext::CRootAttributesHolder::GetOrCreate() const
{
    CAttributeCol* existing = m_attributes.load(std::memory_order_acquire);
    if (existing)
        return existing;
    CAttributeCol* const made = new CAttributeCol("", "##any", "");
    made->AddRef();
    if (m_attributes.compare_exchange_strong(existing, made, std::memory_order_acq_rel, std::memory_order_acquire))
        return made;
    made->Release();
    return existing;
}

} // namespace KdBind
