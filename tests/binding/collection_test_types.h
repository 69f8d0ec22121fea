// Classes shared by the collection and choice tests: an item class and its
// collection written the way the schema compiler writes them, and a listener
// that keeps a log of what it hears.
#ifndef KDBIND_TESTS_COLLECTION_TEST_TYPES_H
#define KDBIND_TESTS_COLLECTION_TEST_TYPES_H

#include <functional>
#include <string>
#include <vector>

#include "kdbind/metadata.h"

namespace CollectionTest {

using namespace KdBind;
using namespace KdBindData;

// <xs:complexType name="LineItem"><xs:simpleContent><xs:extension base="xs:string"/>...
class CLineItem : public CXmlGeneratedClass {
public:
    explicit CLineItem(std::string text = "", int* destroyed = nullptr) : m_text(std::move(text)), m_destroyed(destroyed)
    {
        SetElementName("item");
    }
    ~CLineItem() override { if (m_destroyed) ++*m_destroyed; }

    std::string const& GetText() const { return m_text; }

    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return "urn:po"; }
    std::string GetNamespace() const override { return "urn:po"; }
    void AccessProperty(int, bool readAccess, KdVariant& value) override
    {
        if (readAccess)
            value.SetString(m_text);
        else
            m_text = value.GetString();
    }
    CParentElementInfo* GetClassInfo() const override
    {
        static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "item", "urn:po", 0,
                                       true, false);
        return &info;
    }
    CElementInfo** GetClassElementInfo() const override { return &m_noElements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return &m_noAttributes; }
    void Init() override { m_text.clear(); }

private:
    std::string m_text;
    int* m_destroyed;
    static inline CElementInfo* m_noElements = nullptr;
    static inline CAttributeInfo* m_noAttributes = nullptr;
};

// <xs:element name="item" type="LineItem" minOccurs="1" maxOccurs="3"/>
class CLineItemCol : public CXmlCollection {
public:
    CLineItemCol() : CXmlCollection("item", "urn:po", 1, 3) {}

    CLineItem* GetAt(int index) const { return static_cast<CLineItem*>(GetNodeAtIndex(index)->item); }
    void Add(CLineItem* item) { AppendItem(item); }

protected:
    void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& context,
                   bool) const override
    {
        for (CNode* node = GetHeadNode(); node; node = node->next)
            CXmlObjectBase::ToXml_Int(node->item, writer, false, ns, context, false);
    }
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool) override
    {
        while (cursor && DoesElementNameMatch(context, cursor, GetElementName().c_str(), GetNamespace().c_str())) {
            CSmartPtr<CLineItem> item = new CLineItem();
            CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), context);
            AppendItem(item);
            cursor = cursor->GetNextSiblingElement();
        }
        return cursor;
    }
};

// Logs each event as "<kind> <data>"; an item shows as its text, an index
// as its number or "null". Can be told to throw at one kind of event.
class CEventLog : public IEventSink {
public:
    explicit CEventLog(std::vector<std::string>& log, std::string name = "")
        : m_log(log), m_prefix(name.empty() ? "" : name + ":")
    {
    }

    void ThrowAt(MsgType type) { m_throwAt = type; }

    void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override
    {
        lastSource = source;
        static char const* const kinds[] = {"changed", "adding", "added", "removing", "removed"};
        std::string entry = m_prefix + kinds[type];
        if (type == MsgType_ItemAdding || type == MsgType_ItemAdded)
            entry += " " + (data ? static_cast<CLineItem*>(data)->GetText() : std::string("null"));
        else if (type != MsgType_CollectionChanged)
            entry += " " + (data ? std::to_string(*static_cast<int*>(data)) : std::string("null"));
        m_log.push_back(entry);
        if (type == m_throwAt)
            throw CKdInvalidStateException("listener refused " + entry);
    }

    CXmlObjectBase* lastSource = nullptr;

private:
    std::vector<std::string>& m_log;
    std::string m_prefix;
    int m_throwAt = -1;
};

// The message of the failure an action throws.
inline std::string MessageOf(std::function<void()> const& action)
{
    try {
        action();
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "<no exception>";
}

} // namespace CollectionTest

#endif
