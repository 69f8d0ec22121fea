// Hand-written classes for the walk tests: a node whose tables are given per
// instance, with small entries for a string child, an object child and a
// string attribute. Properties are kept by number.
#ifndef KDBIND_TESTS_HAND_WRITTEN_NODES_H
#define KDBIND_TESTS_HAND_WRITTEN_NODES_H

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <kdbind/kdbind.h>

namespace TestNodes {

using namespace KdBind;
using namespace KdBindData;

// How a test entry answers when its element is not at the cursor.
enum class Absent {
    Optional,   // done: true
    Mandatory,  // a real element fails (after skipping unknown elements if allowed), a grouping one declines
    Declines    // false, as in all-groups and choices; Validate still knows whether it was mandatory
};

// A child element holding a string property; the text "throw" makes it fail
// on output. On input it takes its element at the cursor.
class CStringChildEntry : public CElementInfo {
public:
    CStringChildEntry(char const* name, char const* ns, int propertyId, Absent absent = Absent::Optional,
                      bool mandatory = false)
        : CElementInfo(name, ns, propertyId), m_absent(absent),
          m_mandatory(mandatory || absent == Absent::Mandatory)
    {
    }
    bool ElementToXml(CXmlSerializationContext const&, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override
    {
        KdVariant value;
        object->ReadProperty(GetPropertyId(), value);
        if (!value.IsValid())
            return false;
        if (value.GetString() == "throw")
            throw CKdInvalidValueException("bad value");
        writer->WriteStartElement(GetElementName(), GetNamespace());
        writer->WriteString(value.GetString(), ItemType_string);
        writer->WriteEndElement();
        return true;
    }
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement*,
                        CXmlElement** cursor, char const*, XmlElementType ownerType) override
    {
        bool const searches = m_absent == Absent::Mandatory && ownerType == XmlElementType_Element;
        if (searches && context.GetIgnoreUnknownElements()) {
            while (*cursor && (*cursor)->GetLocalName() != GetElementName())
                *cursor = (*cursor)->GetNextSiblingElement();
        }
        CXmlElement* element = *cursor;
        if (element && element->GetLocalName() == GetElementName()) {
            KdVariant value;
            value.SetString(element->GetText());
            object->AccessProperty(GetPropertyId(), false, value);
            *cursor = element->GetNextSiblingElement();
            return true;
        }
        if (searches)
            throw CKdValidationException("Failed to find a required element [" + GetElementName() + "]");
        return m_absent == Absent::Optional;
    }
    bool Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool found, bool) const override
    {
        if (m_mandatory && !found)
            throw CKdValidationException("missing [" + GetElementName() + "]");
        return true;
    }

    Absent m_absent;
    bool m_mandatory;
};

// A child object, written under the entry's namespace; pseudo children
// forward their attributes.
class CObjectChildEntry : public CStringChildEntry {
public:
    using CStringChildEntry::CStringChildEntry;
    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override
    {
        KdVariant value;
        object->ReadProperty(GetPropertyId(), value);
        CSmartPtr<CXmlObjectBase> child = value.GetXmlObject();
        if (!value.IsValid() || !child)
            return false;
        CXmlObjectBase::ToXml_Int(child, writer, false, GetNamespace().c_str(), context, false);
        return true;
    }
    // Reads into the object the owner holds already: a tagged child from the
    // element at the cursor, a grouping child from the cursor on.
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const*, XmlElementType) override
    {
        KdVariant value;
        object->ReadProperty(GetPropertyId(), value);
        CSmartPtr<CXmlObjectBase> child = value.GetXmlObject();
        if (!m_pseudo) {
            CXmlElement* element = *cursor;
            if (!element || element->GetLocalName() != GetElementName())
                return false;
            CXmlObjectBase::FromXml_Int(child, element, element->GetFirstElement(), context);
            *cursor = element->GetNextSiblingElement();
            return true;
        }
        CXmlElement* const before = *cursor;
        *cursor = CXmlObjectBase::FromXml_Int(child, parent, before, context);
        return *cursor != before;
    }
    bool m_pseudo = false;

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override
    {
        KdVariant value;
        object->ReadProperty(GetPropertyId(), value);
        if (CSmartPtr<CXmlObjectBase> child = value.GetXmlObject())
            CXmlObjectBase::AttributesToXml_Int(child, writer, context);
    }
};

// An attribute holding a string property.
class CStringAttributeEntry : public CAttributeInfo {
public:
    using CAttributeInfo::CAttributeInfo;
    void AttributeToXml(CXmlSerializationContext const&, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override
    {
        KdVariant value;
        object->ReadProperty(GetPropertyId(), value);
        if (value.IsValid())
            writer->WriteAttributeString(GetName(), GetNamespace(), value.GetString(), ItemType_string);
    }
    bool AttributeFromXml(CXmlSerializationContext const&, CXmlGeneratedClass* object,
                          CXmlAttribute* attribute) override
    {
        if (attribute->GetLocalName() != GetName())
            return false;
        KdVariant value;
        value.SetString(attribute->GetValue());
        object->AccessProperty(GetPropertyId(), false, value);
        return true;
    }
    void Validate(CXmlSerializationContext const&, bool found) const override
    {
        if (!found && !IsOptional())
            throw CKdValidationException("required attribute [" + GetName() + "]");
    }
};

// A class whose tables are given per instance, properties by number.
class CTestNode : public CXmlGeneratedClass {
public:
    CTestNode(char const* name, CParentElementInfo* info, std::vector<CElementInfo*> elements = {},
              std::vector<CAttributeInfo*> attributes = {})
        : m_info(info)
    {
        SetElementName(name);
        m_elements = new CElementInfo*[elements.size() + 1];
        std::copy(elements.begin(), elements.end(), m_elements);
        m_elements[elements.size()] = nullptr;
        m_attributes = new CAttributeInfo*[attributes.size() + 1];
        std::copy(attributes.begin(), attributes.end(), m_attributes);
        m_attributes[attributes.size()] = nullptr;
    }
    ~CTestNode() override { CleanMetaData(m_info, m_elements, m_attributes); }

    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return m_info->GetNamespace(); }
    std::string GetNamespace() const override { return m_info->GetNamespace(); }
    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        if (!readAccess) {
            m_strings[propertyId] = value.GetString();
        } else {
            auto text = m_strings.find(propertyId);
            auto child = m_children.find(propertyId);
            if (text != m_strings.end())
                value.SetString(text->second);
            else if (child != m_children.end())
                value.SetXmlObject(child->second);
        }
    }
    CParentElementInfo* GetClassInfo() const override { return m_info; }
    CElementInfo** GetClassElementInfo() const override { return m_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return m_attributes; }
    void Init() override
    {
        m_strings.clear();
        ++m_initCount;
    }

    int m_initCount = 0;

    std::map<int, std::string> m_strings;
    std::map<int, CSmartPtr<CXmlObjectBase>> m_children;

private:
    CParentElementInfo* m_info;
    CElementInfo** m_elements;
    CAttributeInfo** m_attributes;
};

inline CParentElementInfo* Info(XmlElementGroupType group, char const* name, char const* ns = "", int textId = -1,
                         XmlElementType type = XmlElementType_Element, bool writeType = false)
{
    return new CParentElementInfo(group, type, name, ns, textId, true, writeType);
}

} // namespace TestNodes

#endif
