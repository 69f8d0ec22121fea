// The object list: placement and events of every insertion, failures and
// their messages, references on items, and listeners that throw.
#include <gtest/gtest.h>

#include "binding/collection_test_types.h"

using namespace CollectionTest;
using Log = std::vector<std::string>;

namespace {

// The texts from head to tail, checked against the walk from the tail.
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
    list.AddItemAt(list.GetCount(), new CLineItem("f"));  // the end appends
    list.AddBeforeItem(nullptr, new CLineItem("g"));      // no anchor: append
    list.AddAfterItem(nullptr, new CLineItem("h"));       // no anchor: prepend
    EXPECT_EQ(Contents(list), "hbecdafg");
    EXPECT_EQ(log.size(), 8u * 3);

    // The list does not know a removed node's index: -1 travels as null.
    list.Remove(0);
    EXPECT_EQ(Log(log.end() - 3, log.end()), (Log{"removing null", "removed null", "changed"}));
    list.FireOnCollectionRemove(7);
    EXPECT_EQ(log.back(), "removing 7");
}

TEST(CollectionListTest, BadIndexesAndUnknownAnchorsFailWithTheirMessages)
{
    Log log;
    CEventLog listener(log);
    CLineItemCol list;
    list.AddEventListener(&listener);
    EXPECT_EQ(MessageOf([&] { list.Remove(5); }), "Index 5 is out of range, use 0 - 0");
    for (char const* text : {"a", "b", "c"})
        list.AppendItem(new CLineItem(text));
    log.clear();

    // The range ends at the count, not at the last index; nothing is told.
    EXPECT_EQ(MessageOf([&] { list.Remove(3); }), "Index 3 is out of range, use 0 - 3");
    EXPECT_EQ(MessageOf([&] { list.GetNodeAtIndex(-1); }), "Index -1 is out of range, use 0 - 3");
    EXPECT_EQ(MessageOf([&] { list.AddItemAt(4, nullptr); }), "Index out of range");
    EXPECT_TRUE(log.empty());

    // An unknown anchor is looked for only after the add was told.
    CSmartPtr<CLineItem> stranger = new CLineItem("s"), item = new CLineItem("x");
    EXPECT_EQ(MessageOf([&] { list.AddAfterItem(stranger, item); }), "The object was not found in the collection");
    EXPECT_EQ(log, Log{"adding x"});
    EXPECT_EQ(Contents(list), "abc");
}

TEST(CollectionListTest, ListenersAreToldInTheOrderTheyWereAddedAndNodesHoldOneReference)
{
    Log log;
    CEventLog one(log, "1"), two(log, "2");
    int destroyed = 0;
    CSmartPtr<CLineItemCol> first = new CLineItemCol, second = new CLineItemCol;
    first->AddEventListener(&one);
    first->AddEventListener(&two);
    first->AddEventListener(&one);
    first->Clear();
    EXPECT_TRUE(log.empty());
    CLineItem* shared = new CLineItem("s", &destroyed);
    first->AppendItem(shared);
    EXPECT_EQ(log, (Log{"1:adding s", "2:adding s", "1:adding s", "1:added s", "2:added s", "1:added s", "1:changed",
                        "2:changed", "1:changed"}));

    first->RemoveEventListener(&one);  // every occurrence
    second->AppendItem(shared);
    log.clear();
    first->Clear();
    EXPECT_EQ(log, (Log{"2:removing null", "2:removed null", "2:changed"}));
    EXPECT_EQ(destroyed, 0);  // still in the second list
    second = nullptr;
    EXPECT_EQ(destroyed, 1);
}

// Before the first event nothing has changed; after it the change stands and
// only the later events are lost, to the failing listener's followers too.
TEST(CollectionListTest, AListenerThatThrowsLeavesTheChangeWhereItStopped)
{
    struct Case {
        IEventSink::MsgType throwAt;
        std::string afterAppend, afterRemove;  // "!" marks a failed change
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
        refusing.ThrowAt(IEventSink::MsgType_ItemRemoved);
        EXPECT_THROW(list.Clear(), CKdInvalidStateException);
        EXPECT_EQ(Contents(list), "bc");
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
        list.AppendItem(nullptr);
    EXPECT_EQ(MessageOf([&] { list.ValidateCount(context); }),
              "The Maximum number of [item] elements allowed in this collection is 3");
    context.SetIgnoreInvalidCollectionCounts(true);
    EXPECT_NO_THROW(list.ValidateCount(context));
    EXPECT_EQ(MessageOf([&] { list.GetTargetNamespace(); }),
              "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic "
              "error)");
}
