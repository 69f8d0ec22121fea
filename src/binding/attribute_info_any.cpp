// The attribute wildcard: its property is a collection of the attributes it
// took, which writes them itself.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

namespace {

[[noreturn]] void ThrowNotAnAttributeCollection()
{
    throw CKdException("Serialization Data Error : The collection should be a CAttributeCol, it was not!");
}

// The wildcard's collection, null when the property is unset. The tag is
// tested first: the variant's getters would read any other kind's payload
// as a collection pointer.
CSmartPtr<CXmlCollectionBase> WildcardCollection(KdVariant const& value)
{
    if (!value.IsValid())
        return nullptr;
    if (value.GetItemType() != ItemType_xmlCollection)
        ThrowNotAnAttributeCollection();
    return value.GetXmlCollection();
}

} // namespace

CAttributeInfoAny::CAttributeInfoAny(char const* name, char const* ns, int propertyId, bool optional,
                                     char const* namespaceSpec, char const* targetNamespace,
                                     char const* defaultValue)
    : CAttributeInfo(name, ns, propertyId, optional, defaultValue),
      m_namespaceSpec(namespaceSpec ? namespaceSpec : ""), m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

void CAttributeInfoAny::AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                       CXmlWriter* writer) const
{
    KdVariant value;
    ReadProperty(object, value);
    std::string const ns = GetTargetNamespace(object);
    // An unset wildcard has nothing to write.
    if (CSmartPtr<CXmlCollectionBase> collection = WildcardCollection(value))
        ToXml_Int(collection, writer, false, ns.c_str(), context);
}

bool CAttributeInfoAny::AttributeFromXml(CXmlSerializationContext const&, CXmlGeneratedClass* object,
                                         CXmlAttribute* attribute)
{
    if (!attribute)
        return false;
    // The name plays no part; a namespace outside the wildcard's list fails
    // here rather than passing the attribute on.
    TestNamespace(attribute->GetNamespaceURI(), m_namespaceSpec, m_targetNamespace);
    KdVariant value;
    AccessProperty(object, true, value);
    CAttributeCol* attributes = dynamic_cast<CAttributeCol*>(WildcardCollection(value).get());
    if (!attributes)
        ThrowNotAnAttributeCollection();
    attributes->Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
                    attribute->GetNamespaceURI().c_str());
    return true;
}

void CAttributeInfoAny::Validate(CXmlSerializationContext const&, bool) const {}

} // namespace KdBindData
