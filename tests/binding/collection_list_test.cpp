// The object list: placement of every insertion, the order of its events,
// failures and their messages, references held on items, and what a
// listener that throws leaves behind.
#include <gtest/gtest.h>

#include <functional>

#include "binding/collection_test_types.h"

using namespace CollectionTest;
using Log = std::vector<std::string>;

namespace {

// The texts from head to tail, then checked against the walk from the tail.
std::string Contents(CXmlCollection const& list)
{
    std::string forward, backward;
    for (CXmlCollection::CNode* node = list.GetHeadNode(); node; node = node->next)
        forward += static_cast<CLineItem*>(node->item)->GetText();
    for (CXmlCollection::CNode* node = list.GetTailNode(); node; node = node->prev)
        backward.insert(0, static_cast<CLineItem*>(node->item)->GetText());
    EXPECT_EQ(forward, backward);
    EXPECT_EQ(static_cast<int>(forward.size()), list.GetCount());
    return forward;
}

std::string MessageOf(std::function<void()> const& action)
{
    try {
        action();
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "<no exception>";
}

} // namespace

TEST(CollectionListTest, EveryInsertionPlacesItsItemAndTellsAddAddedChanged)
{
    Log log;
    CEventLog listener(log);
    CLineItemCol list;
    CSmartPtr<CLineItem> a = new CLineItem("a"), c = new CLineItem("c");
    list.AddEventListener(&listener);

    list.AppendItem(a);
    EXPECT_EQ(log, (Log{"adding a", "added a", "changed"}));
    EXPECT_EQ(listener.lastSource, &list);
    list.PrependItem(new CLineItem("b"));
    list.AddBeforeItem(a, c);
    list.AddAfterItem(c, new CLineItem("d"));
    list.AddItemAt(1, new CLineItem("e"));
    EXPECT_EQ(Contents(list), "becda");
    list.AddItemAt(list.GetCount(), new CLineItem("f"));  // the end appends
    list.AddBeforeItem(nullptr, new CLineItem("g"));      // no anchor: append
    list.AddAfterItem(nullptr, new CLineItem("h"));       // no anchor: prepend
    EXPECT_EQ(Contents(list), "hbecdafg");
    EXPECT_EQ(log.size(), 8u * 3);
    EXPECT_EQ(list.GetAt(2)->GetText(), "e");

    CXmlCollectionBase& base = list;  // reached through the base, as the metadata does
    base.Remove(0);
    EXPECT_EQ(Contents(list), "becdafg");
    EXPECT_EQ(Log(log.end() - 3, log.end()), (Log{"removing null", "removed null", "changed"}));

    CLineItemCol empty;
    empty.AddItemAt(0, new CLineItem("x"));
    EXPECT_EQ(Contents(empty), "x");
    empty.RemoveNode(empty.GetHeadNode());
    EXPECT_EQ(empty.GetHeadNode(), nullptr);
    EXPECT_EQ(empty.GetTailNode(), nullptr);
}

TEST(CollectionListTest, BadIndexesAndUnknownAnchorsFailWithTheirMessages)
{
    Log log;
    CEventLog listener(log);
    CLineItemCol list;
    list.AddEventListener(&listener);
    EXPECT_EQ(MessageOf([&] { list.GetNodeAtIndex(0); }), "Index 0 is out of range, use 0 - 0");
    EXPECT_EQ(MessageOf([&] { list.Remove(5); }), "Index 5 is out of range, use 0 - 0");
    for (char const* text : {"a", "b", "c"})
        list.AppendItem(new CLineItem(text));
    log.clear();

    // The range ends at the count, not at the last index.
    EXPECT_EQ(MessageOf([&] { list.Remove(3); }), "Index 3 is out of range, use 0 - 3");
    EXPECT_EQ(MessageOf([&] { list.GetNodeAtIndex(-1); }), "Index -1 is out of range, use 0 - 3");
    EXPECT_EQ(MessageOf([&] { list.AddItemAt(4, nullptr); }), "Index out of range");
    EXPECT_EQ(MessageOf([&] { list.AddItemAt(-1, nullptr); }), "Index out of range");
    EXPECT_TRUE(log.empty());

    // An unknown anchor is looked for only after the add was announced.
    CSmartPtr<CLineItem> stranger = new CLineItem("s"), item = new CLineItem("x");
    EXPECT_EQ(MessageOf([&] { list.AddBeforeItem(stranger, item); }), "The object was not found in the collection");
    EXPECT_EQ(MessageOf([&] { list.AddAfterItem(stranger, item); }), "The object was not found in the collection");
    EXPECT_EQ(log, (Log{"adding x", "adding x"}));
    EXPECT_EQ(Contents(list), "abc");
    EXPECT_EQ(item->AddRef(), 2);  // the smart pointer's reference only
    item->Release();
}

TEST(CollectionListTest, ItemsAreFoundByTheObjectTheyStandFor)
{
    // A view whose GetBase is another object is the same item as that object.
    struct CView : CLineItem {
        explicit CView(CXmlObjectBase* target) : m_target(target) {}
        CXmlObjectBase* GetBase() override { return m_target; }
        CXmlObjectBase* m_target;
    };
    CLineItemCol list;
    CSmartPtr<CLineItem> a = new CLineItem("a"), b = new CLineItem("b");
    list.AppendItem(a);
    list.AppendItem(b);
    CView view(b);
    list.AddBeforeItem(&view, new CLineItem("v"));
    EXPECT_EQ(Contents(list), "avb");
}

TEST(CollectionListTest, NodesHoldOneReferenceEach)
{
    int destroyed = 0;
    CSmartPtr<CLineItemCol> first = new CLineItemCol, second = new CLineItemCol;
    CLineItem* shared = new CLineItem("s", &destroyed);
    first->AppendItem(shared);
    second->AppendItem(shared);
    second->AppendItem(new CLineItem("t", &destroyed));
    first->Clear();
    EXPECT_EQ(destroyed, 0);  // still in the second list
    second = nullptr;
    EXPECT_EQ(destroyed, 2);
}

TEST(CollectionListTest, ListenersHearEveryChangeInTheOrderTheyWereAdded)
{
    Log log;
    CEventLog one(log, "1"), two(log, "2");
    CLineItemCol list;
    list.AddEventListener(&one);
    list.AddEventListener(&two);
    list.AddEventListener(&one);
    list.Clear();
    EXPECT_TRUE(log.empty());  // clearing nothing tells nothing
    list.AppendItem(new CLineItem("a"));
    EXPECT_EQ(log, (Log{"1:adding a", "2:adding a", "1:adding a", "1:added a", "2:added a", "1:added a", "1:changed",
                        "2:changed", "1:changed"}));

    list.RemoveEventListener(&one);  // every occurrence
    list.AppendItem(new CLineItem("b"));
    log.clear();
    list.Clear();  // each item through the full removal
    EXPECT_EQ(log, (Log{"2:removing null", "2:removed null", "2:changed", "2:removing null", "2:removed null",
                        "2:changed"}));

    // An index other than -1 reaches the listener as a pointer to it.
    list.FireOnCollectionRemove(7);
    EXPECT_EQ(log.back(), "2:removing 7");
}

// Before the first event nothing has changed; after it the change stands and
// only the later events are lost, to the failing listener's followers too.
TEST(CollectionListTest, AListenerThatThrowsLeavesTheChangeWhereItStopped)
{
    struct Case {
        IEventSink::MsgType throwAt;
        std::string afterAppend, afterRemove;  // "!" marks a failed operation
    };
    for (Case const& test : {Case{IEventSink::MsgType_ItemAdding, "!a", ""},
                             Case{IEventSink::MsgType_ItemAdded, "!ab", "b"},
                             Case{IEventSink::MsgType_ItemRemoving, "ab", "!ab"},
                             Case{IEventSink::MsgType_ItemRemoved, "ab", "!b"},
                             Case{IEventSink::MsgType_CollectionChanged, "!ab", "!b"}}) {
        SCOPED_TRACE(test.throwAt);
        Log log;
        CEventLog refusing(log, "r"), follower(log, "f");
        int destroyed = 0;
        CLineItemCol list;
        list.AppendItem(new CLineItem("a"));
        list.AddEventListener(&refusing);
        list.AddEventListener(&follower);
        refusing.ThrowAt(test.throwAt);
        auto outcome = [&](std::function<void()> const& change) {
            bool const failed = MessageOf(change) != "<no exception>";
            if (failed) {
                EXPECT_EQ(log.back().substr(0, 2), "r:");
            }
            return (failed ? "!" : "") + Contents(list);
        };

        CSmartPtr<CLineItem> b = new CLineItem("b", &destroyed);
        EXPECT_EQ(outcome([&] { list.AppendItem(b); }), test.afterAppend);
        EXPECT_EQ(outcome([&] { list.Remove(0); }), test.afterRemove);
        b = nullptr;
        EXPECT_EQ(destroyed, test.afterRemove.find('b') == std::string::npos ? 1 : 0);
    }
}

TEST(CollectionListTest, ClearStopsAtAFailingListenerAndTheDestructorReleasesTheRest)
{
    Log log;
    CEventLog refusing(log);
    int destroyed = 0;
    {
        CLineItemCol list;
        for (char const* text : {"a", "b", "c"})
            list.AppendItem(new CLineItem(text, &destroyed));
        list.AddEventListener(&refusing);
        refusing.ThrowAt(IEventSink::MsgType_ItemRemoving);
        EXPECT_THROW(list.Clear(), CKdInvalidStateException);
        EXPECT_EQ(Contents(list), "abc");
    }
    EXPECT_EQ(destroyed, 3);
}

TEST(CollectionListTest, CountsAreCheckedAgainstOccurs)
{
    CXmlSerializationContext context;
    CLineItemCol list;  // 1 to 3
    EXPECT_EQ(MessageOf([&] { list.ValidateCount(context); }),
              "The Minimum number of [item] elements allowed in this collection is 1");
    for (int i = 0; i < 4; ++i)
        list.AppendItem(new CLineItem);
    EXPECT_EQ(MessageOf([&] { list.ValidateCount(context); }),
              "The Maximum number of [item] elements allowed in this collection is 3");
    EXPECT_THROW(list.ValidateCount(context), CKdValidationException);
    context.SetIgnoreInvalidCollectionCounts(true);
    EXPECT_NO_THROW(list.ValidateCount(context));

    CXmlSerializationContext strict;
    struct CAnyCount : CXmlCollection {
        CAnyCount() : CXmlCollection("x", "urn:x", 0, -1) {}
        void ToXml_Int(CXmlWriter*, bool, char const*, CXmlSerializationContext const&, bool) const override {}
        CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* c, CXmlSerializationContext const&, bool) override
        {
            return c;
        }
    } unbounded;
    for (int i = 0; i < 1000; ++i)
        unbounded.AppendItem(nullptr);
    EXPECT_NO_THROW(unbounded.ValidateCount(strict));
    EXPECT_EQ(unbounded.GetNamespace(), "urn:x");
    EXPECT_EQ(MessageOf([&] { unbounded.GetTargetNamespace(); }),
              "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic "
              "error)");
}

// Appending keeps a tail and walking follows links, so a long list costs the
// same per item as a short one.
TEST(CollectionListTest, LongListsAppendAndWalkInLinearTime)
{
    CLineItemCol list;
    int const count = 200000;
    for (int i = 0; i < count; ++i)
        list.AppendItem(nullptr);
    int walked = 0;
    for (CXmlCollection::CNode* node = list.GetHeadNode(); node; node = node->next)
        ++walked;
    EXPECT_EQ(walked, count);
    list.Clear();
    EXPECT_EQ(list.GetCount(), 0);
}
