// CXmlCollection: the doubly linked list of counted objects behind the
// collections of generated classes.
#include "kdbind/binding.h"

namespace KdBind {

namespace {
CXmlObjectBase const* BaseOf(CXmlObjectBase const* item) { return item ? item->GetBase() : nullptr; }
} // namespace

CXmlCollection::CXmlCollection() = default;

CXmlCollection::CXmlCollection(char const* elementName, char const* ns, int minOccurs, int maxOccurs)
    : CXmlCollectionBase(elementName, ns, minOccurs, maxOccurs)
{
}

// A destructor cannot pass a listener's failure on: what the failed removal
// left behind is released without events.
CXmlCollection::~CXmlCollection()
{
    try {
        Clear();
    } catch (...) {
    }
    ReleaseAllNodes();
}

void CXmlCollection::ReleaseAllNodes() noexcept
{
    while (CNode* node = m_head) {
        m_head = node->next;
        if (node->item)
            node->item->Release();
        delete node;
    }
    m_tail = nullptr;
    m_count = 0;
}

// Each item goes through the virtual Remove, so every removal is told.
void CXmlCollection::Clear()
{
    while (GetCount() > 0)
        Remove(0);
}

void CXmlCollection::Remove(int index) { RemoveNode(GetNodeAtIndex(index)); }

// The range in the message ends at the count, not at the last index.
CXmlCollection::CNode* CXmlCollection::GetNodeAtIndex(int index) const
{
    CNode* node = index < 0 || index > GetCount() - 1 ? nullptr : m_head;
    for (int step = 0; node && step < index; ++step)
        node = node->next;
    if (!node)
        throw CKdInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, GetCount()));
    return node;
}

CXmlCollection::CNode* CXmlCollection::GetNodeForItem(CXmlObjectBase const* item) const
{
    CXmlObjectBase const* const wanted = BaseOf(item);
    for (CNode* node = m_head; node; node = node->next)
        if (BaseOf(node->item) == wanted)
            return node;
    throw CKdInvalidParamException("The object was not found in the collection");
}

// The list does not know the node's index, so -1 is reported, also when the
// removal came through Remove(int).
void CXmlCollection::RemoveNode(CNode* node)
{
    if (!node)
        return;
    FireOnCollectionRemove(-1);
    (node->prev ? node->prev->next : m_head) = node->next;
    (node->next ? node->next->prev : m_tail) = node->prev;
    CXmlObjectBase* const item = node->item;
    delete node;
    --m_count;
    // The list is whole again before the item's destructor can run.
    if (item)
        item->Release();
    FireOnCollectionRemoveComplete(-1);
    FireOnCollectionChange();
}

void CXmlCollection::LinkAndAnnounce(CXmlObjectBase* item, CNode* before)
{
    CNode* const node = new CNode{item, before, before ? before->prev : m_tail};
    if (item)
        item->AddRef();
    (node->prev ? node->prev->next : m_head) = node;
    (before ? before->prev : m_tail) = node;
    ++m_count;
    FireOnCollectionAddComplete(item);
    FireOnCollectionChange();
}

void CXmlCollection::AppendItem(CXmlObjectBase* item)
{
    FireOnCollectionAdd(item);
    LinkAndAnnounce(item, nullptr);
}

void CXmlCollection::PrependItem(CXmlObjectBase* item)
{
    FireOnCollectionAdd(item);
    LinkAndAnnounce(item, m_head);
}

// The add event comes before the search, so an unknown existing item fails
// after the listeners were told of the add.
void CXmlCollection::AddBeforeItem(CXmlObjectBase const* existing, CXmlObjectBase* item)
{
    if (!existing) {
        AppendItem(item);
        return;
    }
    FireOnCollectionAdd(item);
    LinkAndAnnounce(item, GetNodeForItem(existing));
}

void CXmlCollection::AddAfterItem(CXmlObjectBase const* existing, CXmlObjectBase* item)
{
    if (!existing) {
        PrependItem(item);
        return;
    }
    FireOnCollectionAdd(item);
    LinkAndAnnounce(item, GetNodeForItem(existing)->next);
}

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item)
{
    if (index < 0 || index > m_count)
        throw CKdInvalidParamException("Index out of range");
    if (index == m_count) {
        AppendItem(item);
        return;
    }
    FireOnCollectionAdd(item);
    LinkAndAnnounce(item, GetNodeAtIndex(index));
}

void CXmlCollection::AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& context) const
{
    for (CNode* node = m_head; node; node = node->next)
        if (node->item)
            CXmlObjectBase::AttributesToXml_Int(node->item->GetBase(), writer, context);
}

} // namespace KdBind
