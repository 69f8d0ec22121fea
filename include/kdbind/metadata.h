// KdBind metadata classes: what generated classes declare about their own
// element, their children and their attributes. Generated code calls these
// constructors directly; their argument lists are the interface.
#ifndef KDBIND_METADATA_H
#define KDBIND_METADATA_H

#include <string>

#include "kdbind/binding.h"

namespace KdBindData {

using KdBind::CXmlElement;
using KdBind::CXmlGeneratedClass;
using KdBind::CXmlObjectBase;
using KdBind::CXmlSerializationContext;
using KdBind::CXmlWriter;

// Describes a generated class's own element. One per class.
class CParentElementInfo {
public:
    CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType, char const* elementName,
                       char const* ns, int textPropertyId, bool rejectUnknownAttributes, bool writeTypeAttribute);
    virtual ~CParentElementInfo() = default;

    XmlElementGroupType GetGroupType() const { return m_groupType; }
    XmlElementType GetElementType() const { return m_elementType; }
    std::string const& GetElementName() const { return m_elementName; }
    std::string const& GetNamespace() const { return m_namespace; }
    int GetTextPropertyId() const { return m_textPropertyId; }
    bool GetRejectUnknownAttributes() const { return m_rejectUnknownAttributes; }
    bool GetWriteTypeAttribute() const { return m_writeTypeAttribute; }

private:
    XmlElementGroupType m_groupType;
    XmlElementType m_elementType;
    std::string m_elementName;
    std::string m_namespace;
    int m_textPropertyId;
    bool m_rejectUnknownAttributes;
    bool m_writeTypeAttribute;
};

// Root of the element metadata family: one entry per child of a class's
// content model.
class CElementInfo {
public:
    CElementInfo(char const* name, char const* ns, int propertyId);
    CElementInfo(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType, char const* format,
                 KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                 KdBind::CPrimitiveRestrictions const& restrictions);
    CElementInfo(CElementInfo const&) = delete;
    CElementInfo& operator=(CElementInfo const&) = delete;
    virtual ~CElementInfo() = default;

    // Writes the child; true when something was written.
    virtual bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                              CXmlWriter* writer) const = 0;
    virtual bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                                XmlElementType ownerType) = 0;
    virtual bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                          bool ownerIsElement) const = 0;
    // Forwards a pseudo child's attributes to the open tag; nothing by default.
    virtual void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                           CXmlWriter* writer) const;

    std::string const& GetElementName() const { return m_elementName; }
    std::string const& GetNamespace() const { return m_namespace; }
    int GetPropertyId() const { return m_propertyId; }

protected:
    std::string m_elementName;
    std::string m_namespace;
    int m_propertyId;
    KdBind::CPrimitiveRestrictions m_restrictions;
    KdBind::ItemType m_itemType = KdBind::ItemType_invalid;
    char const* m_format = nullptr;
    KdBind::CWhitespaceUtils::WhitespaceRule m_whitespaceRule = KdBind::CWhitespaceUtils::WhitespaceRule_None;
    bool m_hasPrimitiveInformation = false;
};

// Root of the attribute metadata family: one entry per attribute.
class CAttributeInfo {
public:
    CAttributeInfo(char const* name, char const* ns, int propertyId, bool optional, char const* defaultValue);
    CAttributeInfo(CAttributeInfo const&) = delete;
    CAttributeInfo& operator=(CAttributeInfo const&) = delete;
    virtual ~CAttributeInfo() = default;

    virtual void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                CXmlWriter* writer) const = 0;
    virtual bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                  KdBind::CXmlAttribute* attribute) = 0;
    virtual void Validate(CXmlSerializationContext const& context, bool found) const = 0;

    std::string const& GetName() const { return m_name; }
    std::string const& GetNamespace() const { return m_namespace; }
    int GetPropertyId() const { return m_propertyId; }
    bool IsOptional() const { return m_optional; }
    std::string const& GetDefaultValue() const { return m_defaultValue; }

    // Local name, then namespace unless the context ignores namespaces.
    bool IsThisAttribute(CXmlSerializationContext const& context, KdBind::CXmlAttribute const* attribute) const;

protected:
    void AccessProperty(CXmlGeneratedClass* object, bool readAccess, KdBind::KdVariant& value) const;
    void ReadProperty(CXmlGeneratedClass const* object, KdBind::KdVariant& value) const;
    static void TestNamespace(std::string const& ns, std::string const& spec, std::string const& target);
    static std::string GetTargetNamespace(CXmlObjectBase const* object);
    static void ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool root, char const* ns,
                          CXmlSerializationContext const& context);

    // The steps that the typed leaves share.
    // True when an optional attribute at its default is to be left out.
    bool IsOmittedDefault(CXmlSerializationContext const& context, std::string const& text) const;
    // Fails when a required attribute was not in the document.
    void ValidatePresence(bool found) const;

    std::string m_name;
    std::string m_namespace;
    int m_propertyId;
    bool m_optional;
    std::string m_defaultValue;
};

// An attribute of a primitive type, converted through its lexical form.
class CAttributeInfoPrimitive : public CAttributeInfo {
public:
    CAttributeInfoPrimitive(char const* name, char const* ns, int propertyId, bool optional,
                            KdBind::ItemType itemType, char const* format,
                            KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                            KdBind::CPrimitiveRestrictions const& restrictions, char const* defaultValue);

    void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override;
    bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                          KdBind::CXmlAttribute* attribute) override;
    void Validate(CXmlSerializationContext const& context, bool found) const override;

    void CheckRestriction(KdBind::KdVariant value) const;

    KdBind::ItemType GetItemType() const { return m_itemType; }
    KdBind::CPrimitiveRestrictions const& GetRestrictions() const { return m_restrictions; }

private:
    KdBind::CPrimitiveRestrictions m_restrictions;
    KdBind::ItemType m_itemType;
    char const* m_format;  // not owned; generated code passes a literal
    KdBind::CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
};

// An attribute of an enumeration, mapped by the generated class's functions.
class CAttributeInfoEnum : public CAttributeInfo {
public:
    using FromStringFunction = int (*)(char const*);
    using ToStringFunction = char const* (*)(int);

    CAttributeInfoEnum(char const* name, char const* ns, int propertyId, bool optional, ToStringFunction toString,
                       FromStringFunction fromString, char const* defaultValue);

    void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override;
    bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                          KdBind::CXmlAttribute* attribute) override;
    void Validate(CXmlSerializationContext const& context, bool found) const override;

private:
    FromStringFunction m_fromString;
    ToStringFunction m_toString;
};

// The xs:anyAttribute wildcard: takes every attribute whose namespace the
// specification allows, into a CAttributeCol property. Must stand last in
// its table, since it refuses by failing, not by passing on.
class CAttributeInfoAny : public CAttributeInfo {
public:
    CAttributeInfoAny(char const* name, char const* ns, int propertyId, bool optional, char const* namespaceSpec,
                      char const* targetNamespace, char const* defaultValue);

    void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override;
    bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                          KdBind::CXmlAttribute* attribute) override;
    // A wildcard is never missing.
    void Validate(CXmlSerializationContext const& context, bool found) const override;

private:
    std::string m_namespaceSpec;
    std::string m_targetNamespace;
};

} // namespace KdBindData

#endif
