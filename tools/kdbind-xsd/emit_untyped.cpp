#include "emit_untyped.h"

#include "names.h"

namespace KdXsd {

bool UsesUntypedCollection(NamespaceModel const& ns)
{
    for (auto const& type : ns.types)
        for (Particle const& particle : type->particles)
            if (particle.untyped && particle.maxOccurs != 1)
                return true;
    return false;
}

char const* UntypedCollectionCode()
{
    return R"(// The elements of a repeating wildcard, or of a repeating element of any
// content. It tests what the library's CElementCol leaves open: the
// namespace of every element against the wildcard, and the count against the
// occurrence bounds. Reading stops at max occurs, so that the particles after
// it see the rest.
class CAnyCol : public KdBind::CElementCol {
public:
    // ns: the namespace of elements added by name alone; it must fit.
    CAnyCol(char const* elementName, char const* ns, char const* restriction, char const* targetNamespace,
            int minOccurs, int maxOccurs)
        : CElementCol(ns, ns, targetNamespace, 0, -1), m_restriction(restriction), m_target(targetNamespace),
          m_minOccurs(minOccurs), m_maxOccurs(maxOccurs)
    {
        KdBind::CXmlObjectHelper::TestNamespace(ns, m_restriction, m_target);
        SetElementName(elementName);
    }

    int GetMinOccurs() const { return m_minOccurs; }
    int GetMaxOccurs() const { return m_maxOccurs; }

    // Each form refuses an element of a namespace the wildcard does not allow.
    CSmartPtr<KdBind::CElement> Add(char const* name) { return Add(name, GetNewElementNamespace().c_str()); }
    CSmartPtr<KdBind::CElement> Add(char const* name, char const* ns)
    {
        return Add(new KdBind::CElement(name, ns, m_restriction.c_str(), m_target.c_str()));
    }
    CSmartPtr<KdBind::CElement> Add(KdBind::CElement* element)
    {
        CSmartPtr<KdBind::CElement> held = element;  // freed if refused
        if (element)
            KdBind::CXmlObjectHelper::TestNamespace(element->GetNamespace(), m_restriction, m_target);
        return CElementCol::Add(element);
    }

    void ValidateCount(KdBind::CXmlSerializationContext const& context) const override
    {
        if (context.GetIgnoreInvalidCollectionCounts())
            return;
        int const count = GetCount();
        if (m_maxOccurs != -1 && count > m_maxOccurs)
            throw KdBind::CKdValidationException(
                KdBind::FormatString("The Maximum number of [%s] elements allowed in this collection is %d",
                                     GetElementName().c_str(), m_maxOccurs));
        if (count < m_minOccurs)
            throw KdBind::CKdValidationException(
                KdBind::FormatString("The Minimum number of [%s] elements allowed in this collection is %d",
                                     GetElementName().c_str(), m_minOccurs));
    }

    KdBind::CXmlElement* FromXmlLockElementName_Int(std::string name, std::string, KdBind::CXmlElement* parent,
                                                    KdBind::CXmlElement* cursor,
                                                    KdBind::CXmlSerializationContext const& context) override
    {
        return ReadRun(parent, cursor, context, &name);
    }

protected:
    KdBind::CXmlElement* FromXml_Int(KdBind::CXmlElement* parent, KdBind::CXmlElement* cursor,
                                     KdBind::CXmlSerializationContext const& context, bool) override
    {
        return ReadRun(parent, cursor, context, nullptr);
    }

private:
    // Elements from the cursor on while they fit (and bear the name, if one
    // is given), up to max occurs.
    KdBind::CXmlElement* ReadRun(KdBind::CXmlElement* parent, KdBind::CXmlElement* cursor,
                                 KdBind::CXmlSerializationContext const& context, std::string const* name)
    {
        while (cursor && (m_maxOccurs == -1 || GetCount() < m_maxOccurs)) {
            std::string const& ns = cursor->GetNamespaceURI();
            if ((name && cursor->GetLocalName() != *name) ||
                !KdBind::CXmlObjectHelper::IsNamespaceValid(ns, m_restriction, m_target))
                break;
            CSmartPtr<KdBind::CElement> element = new KdBind::CElement(
                cursor->GetLocalName().c_str(), ns.c_str(), m_restriction.c_str(), m_target.c_str());
            KdBind::CXmlElement* const reached = CXmlObjectBase::FromXml_Int(element, parent, cursor, context, false);
            if (reached == cursor)
                break;
            CElementCol::Add(element);
            cursor = reached;
        }
        return cursor;
    }

    std::string m_restriction;
    std::string m_target;
    int m_minOccurs;
    int m_maxOccurs;
};
)";
}

std::string WildcardTarget(NamespaceModel const& ns, Wildcard const& wildcard)
{
    return wildcard.target == ns.uri ? "NAMESPACE" : Quote(wildcard.target);
}

std::string WildcardNamespace(Wildcard const& wildcard)
{
    if (wildcard.spec == "##any" || wildcard.spec == "##targetNamespace")
        return wildcard.target;
    return "";  // ##local, and ##other, which lets the empty namespace through
}

std::string WildcardDescription(Wildcard const& wildcard)
{
    return wildcard.spec == "##targetNamespace" ? wildcard.target : wildcard.spec;
}

} // namespace KdXsd
