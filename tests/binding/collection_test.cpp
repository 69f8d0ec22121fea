// Collections: placement and events of every change, failures and their
// messages, listeners that throw, the count check, the read of a value
// collection, and the references that keep objects alive.
#include <gtest/gtest.h>

#include <vector>

#include "binding/binding_test_types.h"

using namespace BindingTest;
using Log = std::vector<std::string>;

namespace {

// Logs each event as "<kind> <data>": an item by its text, an index by its
// number or "null". Can be told to throw at one kind of event.
class CEventLog : public IEventSink {
public:
    explicit CEventLog(Log& log, std::string prefix = "") : m_log(log), m_prefix(std::move(prefix)) {}

    void ThrowAt(MsgType type) { m_throwAt = type; }
    void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override
    {
        lastSource = source;
        static char const* const kinds[] = {"changed", "adding", "added", "removing", "removed"};
        std::string entry = m_prefix + kinds[type];
        if (type == MsgType_ItemAdding || type == MsgType_ItemAdded)
            entry += " " + (data ? static_cast<CNote*>(data)->text : std::string("null"));
        else if (type != MsgType_CollectionChanged)
            entry += " " + (data ? std::to_string(*static_cast<int*>(data)) : std::string("null"));
        m_log.push_back(entry);
        if (type == m_throwAt)
            throw CKdInvalidStateException("refused " + entry);
    }

    CXmlObjectBase* lastSource = nullptr;

private:
    Log& m_log;
    std::string m_prefix;
    int m_throwAt = -1;
};

// The texts from head to tail, checked against the walk from the tail.
std::string Contents(CXmlCollection const& list)
{
    std::string forward, backward;
    for (CXmlCollection::CNode* node = list.GetHeadNode(); node; node = node->next)
        forward += static_cast<CNote*>(node->item)->text;
    for (CXmlCollection::CNode* node = list.GetTailNode(); node; node = node->prev)
        backward.insert(0, static_cast<CNote*>(node->item)->text);
    EXPECT_EQ(forward, backward);
    EXPECT_EQ(static_cast<int>(forward.size()), list.GetCount());
    return forward;
}

} // namespace

TEST(CollectionTest, EveryInsertionPlacesItsItemAndTellsAddAddedChanged)
{
    Log log;
    CEventLog listener(log);
    CNoteCol list;
    CSmartPtr<CNote> a = new CNote("a"), c = new CNote("c");
    list.AddEventListener(&listener);
    list.AppendItem(a);
    EXPECT_EQ(log, (Log{"adding a", "added a", "changed"}));
    EXPECT_EQ(listener.lastSource, &list);
    list.PrependItem(new CNote("b"));
    list.AddBeforeItem(a, c);
    list.AddAfterItem(c, new CNote("d"));
    list.AddItemAt(1, new CNote("e"));
    list.AddItemAt(list.GetCount(), new CNote("f"));  // the end appends
    list.AddBeforeItem(nullptr, new CNote("g"));      // no anchor: append
    list.AddAfterItem(nullptr, new CNote("h"));       // no anchor: prepend
    EXPECT_EQ(Contents(list), "hbecdafg");
    EXPECT_EQ(log.size(), 8u * 3);

    // The list does not know a removed node's index: -1 travels as null.
    list.Remove(0);
    EXPECT_EQ(Log(log.end() - 3, log.end()), (Log{"removing null", "removed null", "changed"}));
    list.FireOnCollectionRemove(7);
    EXPECT_EQ(log.back(), "removing 7");
}

TEST(CollectionTest, BadIndexesAndUnknownAnchorsFailWithTheirMessages)
{
    Log log;
    CEventLog listener(log);
    CNoteCol list;
    list.AddEventListener(&listener);
    EXPECT_EQ(Failure([&] { list.Remove(5); }), "Index 5 is out of range, use 0 - 0");
    for (char const* text : {"a", "b", "c"})
        list.AppendItem(new CNote(text));
    log.clear();
    // The range ends at the count, not at the last index; nothing is told.
    EXPECT_EQ(Failure([&] { list.Remove(3); }), "Index 3 is out of range, use 0 - 3");
    EXPECT_EQ(Failure([&] { list.GetNodeAtIndex(-1); }), "Index -1 is out of range, use 0 - 3");
    EXPECT_EQ(Failure([&] { list.AddItemAt(4, nullptr); }), "Index out of range");
    EXPECT_TRUE(log.empty());
    // An unknown anchor is looked for only after the add was told.
    CSmartPtr<CNote> stranger = new CNote("s"), item = new CNote("x");
    EXPECT_EQ(Failure([&] { list.AddAfterItem(stranger, item); }), "The object was not found in the collection");
    EXPECT_EQ(log, Log{"adding x"});
    EXPECT_EQ(Contents(list), "abc");
}

TEST(CollectionTest, ListenersAreToldInTheOrderTheyCameAndHoldersCountReferences)
{
    Log log;
    CEventLog one(log, "1:"), two(log, "2:");
    CSmartPtr<CNoteCol> first = new CNoteCol, second = new CNoteCol;
    first->AddEventListener(&one);
    first->AddEventListener(&one);
    first->AddEventListener(&two);
    first->Clear();
    EXPECT_TRUE(log.empty());
    CSmartPtr<CNote> shared = new CNote("s");
    first->AppendItem(shared);
    EXPECT_EQ(log, (Log{"1:adding s", "1:adding s", "2:adding s", "1:added s", "1:added s", "2:added s", "1:changed",
                        "1:changed", "2:changed"}));
    first->RemoveEventListener(&one);  // every occurrence
    second->AppendItem(shared);
    EXPECT_EQ(Holders(shared), 3);
    log.clear();
    first->Clear();
    EXPECT_EQ(log, (Log{"2:removing null", "2:removed null", "2:changed"}));
    second = nullptr;
    EXPECT_EQ(Holders(shared), 1);

    // A variant holds a reference too; an object never counted is never deleted.
    KdVariant value;
    value.SetXmlObject(shared);
    EXPECT_EQ(Holders(shared), 2);
    value.SetI4(3);
    EXPECT_EQ(Holders(shared), 1);
    CNote uncounted;
    EXPECT_EQ(uncounted.Release(), -1);
}

// Before the first event nothing has changed; after it the change stands and
// only the later events are lost, to the failing listener's followers too.
TEST(CollectionTest, AListenerThatThrowsLeavesTheChangeWhereItStopped)
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
        CEventLog refusing(log, "r:"), follower(log, "f:");
        CNoteCol list;
        list.AppendItem(new CNote("a"));
        list.AddEventListener(&refusing);
        list.AddEventListener(&follower);
        refusing.ThrowAt(test.throwAt);
        auto outcome = [&](std::function<void()> const& change) {
            bool const failed = Failure(change) != "<no exception>";
            if (failed) {
                EXPECT_EQ(log.back().substr(0, 2), "r:");
            }
            return (failed ? "!" : "") + Contents(list);
        };
        CSmartPtr<CNote> b = new CNote("b");
        EXPECT_EQ(outcome([&] { list.AppendItem(b); }), test.afterAppend);
        EXPECT_EQ(outcome([&] { list.Remove(0); }), test.afterRemove);
        EXPECT_EQ(Holders(b), test.afterRemove.find('b') == std::string::npos ? 1 : 2);
    }
}

TEST(CollectionTest, ClearStopsAtAFailingListenerAndTheDestructorReleasesTheRest)
{
    Log log;
    CEventLog refusing(log);
    CSmartPtr<CNote> a = new CNote("a"), b = new CNote("b");
    {
        CNoteCol list;
        for (CNote* note : {a.get(), b.get()})
            list.AppendItem(note);
        list.AddEventListener(&refusing);
        refusing.ThrowAt(IEventSink::MsgType_ItemRemoved);
        EXPECT_THROW(list.Clear(), CKdInvalidStateException);
        EXPECT_EQ(Contents(list), "b");
        EXPECT_EQ(Holders(a), 1);
        EXPECT_EQ(Holders(b), 2);
    }
    EXPECT_EQ(Holders(b), 1);
}

TEST(CollectionTest, CountsAreCheckedAgainstOccursUnlessIgnored)
{
    CNoteCol list;  // 1 to 3
    EXPECT_EQ(Failure([&] { list.ValidateCount(Context::m_defaultContext); }),
              "The Minimum number of [note] elements allowed in this collection is 1");
    for (int i = 0; i < 4; ++i)
        list.AppendItem(nullptr);
    EXPECT_EQ(Failure([&] { list.ValidateCount(Context::m_defaultContext); }),
              "The Maximum number of [note] elements allowed in this collection is 3");
    EXPECT_NO_THROW(list.ValidateCount(With(&Context::SetIgnoreInvalidCollectionCounts)));
    CLineItemCol unbounded;
    for (int i = 0; i < 100; ++i)
        unbounded.AppendItem(nullptr);
    EXPECT_NO_THROW(unbounded.ValidateCount(Context::m_defaultContext));
    EXPECT_EQ(Failure([&] { list.GetTargetNamespace(); }),
              "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic "
              "error)");
}

TEST(CollectionTest, ValueCollectionTakesEveryConsecutiveMatchAndLeavesTheCountToTheCheck)
{
    struct CTexts : CXmlTypeCollection {
        CTexts()
            : CXmlTypeCollection(ItemType_string, "tag", "urn:t", 0, 2, "", -1, -1, "", "", "", "", -1, kCollapse,
                                 nullptr)
        {
        }
        int GetCount() const override { return static_cast<int>(texts.size()); }
        void Clear() override { texts.clear(); }
        void Remove(int index) override { texts.erase(texts.begin() + index); }
        void AddFromString(std::string text) override { texts.push_back(std::move(text)); }
        void ToXml_Int(CXmlWriter*, bool, char const*, Context const&, bool) const override {}
        std::vector<std::string> texts;
    };
    CCursor cursor("<r xmlns='urn:t'><tag>a</tag><tag> b </tag><tag>c</tag><other/><tag>d</tag></r>");
    CXmlElement* const root = cursor.document.GetDocumentElement();
    CSmartPtr<CTexts> texts = new CTexts(), tail = new CTexts();
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(texts, root, cursor.at, Context::m_defaultContext), cursor.Child(3));
    EXPECT_EQ(texts->texts, (std::vector<std::string>{"a", " b ", "c"}));
    EXPECT_THROW(texts->ValidateCount(Context::m_defaultContext), CKdValidationException);
    // Running out of children ends the read; a null cursor reads nothing.
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(tail, root, cursor.Child(4), Context::m_defaultContext), nullptr);
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(tail, root, nullptr, Context::m_defaultContext), nullptr);
    EXPECT_EQ(tail->texts, std::vector<std::string>{"d"});
}
