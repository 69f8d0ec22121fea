// CXmlCollectionBase: name, namespace and occurs of a collection's items,
// the count check, and the listeners that hear of every change.
#include <algorithm>

#include "kdbind/binding.h"

namespace KdBind {

CXmlCollectionBase::CXmlCollectionBase() = default;

CXmlCollectionBase::CXmlCollectionBase(char const* elementName, char const* ns, int minOccurs, int maxOccurs)
    : m_namespace(ns ? ns : ""), m_minOccurs(minOccurs), m_maxOccurs(maxOccurs)
{
    SetElementName(elementName);
}

std::string CXmlCollectionBase::GetTargetNamespace() const
{
    throw CKdException(
        "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)");
}

// The maximum is tested first; a count cannot break both.
void CXmlCollectionBase::ValidateCount(CXmlSerializationContext const& context) const
{
    if (context.GetIgnoreInvalidCollectionCounts())
        return;
    int const count = GetCount();
    if (m_maxOccurs != -1 && count > m_maxOccurs)
        throw CKdValidationException(
            FormatString("The Maximum number of [%s] elements allowed in this collection is %d",
                         GetElementName().c_str(), m_maxOccurs));
    if (count < m_minOccurs)
        throw CKdValidationException(
            FormatString("The Minimum number of [%s] elements allowed in this collection is %d",
                         GetElementName().c_str(), m_minOccurs));
}

void CXmlCollectionBase::AddEventListener(IEventSink* listener) { m_listeners.push_back(listener); }

void CXmlCollectionBase::RemoveEventListener(IEventSink* listener)
{
    m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), listener), m_listeners.end());
}

// Walked by index, so that a listener that adds or removes listeners while it
// is being told cannot leave the loop on a dangling iterator.
template <class Fire, class... Data>
void CXmlCollectionBase::FireToListeners(Fire fire, Data... data)
{
    for (std::size_t i = 0; i < m_listeners.size(); ++i)
        fire(m_listeners[i], this, data...);
}

void CXmlCollectionBase::FireOnCollectionChange() { FireToListeners(&FireOnCollectionChangeEvent); }

void CXmlCollectionBase::FireOnCollectionAdd(void* item) { FireToListeners(&FireOnCollectionAddEvent, item); }

void CXmlCollectionBase::FireOnCollectionAddComplete(void* item)
{
    FireToListeners(&FireOnCollectionAddCompleteEvent, item);
}

void CXmlCollectionBase::FireOnCollectionRemove(int index) { FireToListeners(&FireOnCollectionRemoveEvent, index); }

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int index)
{
    FireToListeners(&FireOnCollectionRemoveCompleteEvent, index);
}

} // namespace KdBind
