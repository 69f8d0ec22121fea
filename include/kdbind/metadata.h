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

protected:
    std::string m_name;
    std::string m_namespace;
    int m_propertyId;
    bool m_optional;
    std::string m_defaultValue;
};

} // namespace KdBindData

#endif
