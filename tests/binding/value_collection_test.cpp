// Collections of primitive values: events around each change, index and
// facet failures, output with its count check, and a round trip through a
// generated class.
#include <gtest/gtest.h>

#include <vector>

#include "binding/binding_test_types.h"

using namespace BindingTest;
using Log = std::vector<std::string>;

namespace {

// Logs each event; an added short by its value, an index by its number.
class CShortLog : public IEventSink {
public:
    void OnEvent(CXmlObjectBase*, MsgType type, void* data) override
    {
        static char const* const kinds[] = {"changed", "adding", "added", "removing", "removed"};
        std::string entry = kinds[type];
        if (type == MsgType_ItemAdding || type == MsgType_ItemAdded)
            entry += " " + std::to_string(*static_cast<short*>(data));
        else if (type != MsgType_CollectionChanged)
            entry += " " + (data ? std::to_string(*static_cast<int*>(data)) : std::string("null"));
        log.push_back(entry);
    }
    Log log;
};

// Shorts from 0 to 100 in the element "n", one or two of them.
CSmartPtr<Ci2Col> Shorts(int minOccurs = 1)
{
    return new Ci2Col("n", "urn:n", minOccurs, 2, nullptr, -1, -1, "0", "100", nullptr, nullptr, -1, kCollapse,
                      nullptr);
}

std::string Contents(Ci2Col const& shorts)
{
    std::string text;
    for (int i = 0; i < shorts.GetCount(); ++i)
        text += (i ? "," : "") + std::to_string(shorts.Item(i));
    return text;
}

std::string Output(CXmlCollectionBase const* collection, Context const& context = Context::m_defaultContext)
{
    return WrittenBy([&](CXmlWriter* writer) {
        CXmlObjectBase::ToXml_Int(collection, writer, false, "", context, false);
    });
}

} // namespace

TEST(ValueCollectionTest, AddsTellTheListenersBeforeTheyAreTested)
{
    CSmartPtr<Ci2Col> shorts = Shorts();
    CShortLog listener;
    shorts->AddEventListener(&listener);
    shorts->Add(5);
    shorts->AddAt(0, 4);
    shorts->AddAt(shorts->GetCount(), 6);
    EXPECT_EQ(Contents(*shorts), "4,5,6");
    EXPECT_EQ(listener.log, (Log{"adding 5", "added 5", "changed", "adding 4", "added 4", "changed", "adding 6",
                                 "added 6", "changed"}));
    listener.log.clear();
    // The index and the facets fail after the add event, and change nothing.
    EXPECT_EQ(Failure([&] { shorts->AddAt(shorts->GetCount() + 1, 7); }), "Index out of range");
    EXPECT_EQ(Failure([&] { shorts->AddAt(-1, 7); }), "Index out of range");
    EXPECT_EQ(Failure([&] { shorts->Add(101); }), "Invalid Value for n [101]");
    EXPECT_EQ(listener.log, (Log{"adding 7", "adding 7", "adding 101"}));
    // Text that does not convert fails before any event.
    listener.log.clear();
    EXPECT_THROW(shorts->AddFromString("40000"), CKdInvalidValueException);
    shorts->AddFromString(" 9 ");
    EXPECT_EQ(listener.log, (Log{"adding 9", "added 9", "changed"}));
    EXPECT_EQ(Contents(*shorts), "4,5,6,9");
}

TEST(ValueCollectionTest, RemovalsAndIndexFailures)
{
    CSmartPtr<Ci2Col> shorts = Shorts();
    EXPECT_EQ(Failure([&] { shorts->Item(0); }), "Index 0 is out of range, use 0 - 0");
    for (short value : {1, 2, 3, 4, 5})
        shorts->Add(value);
    CShortLog listener;
    shorts->AddEventListener(&listener);
    // The completed removal reports 0, whatever the index.
    shorts->Remove(3);
    EXPECT_EQ(listener.log, (Log{"removing 3", "removed 0", "changed"}));
    EXPECT_EQ(Contents(*shorts), "1,2,3,5");
    listener.log.clear();
    EXPECT_EQ(Failure([&] { shorts->Remove(5); }), "Index 5 is out of range, use 0 - 4");
    EXPECT_EQ(listener.log, Log{"removing 5"});
    shorts->Remove(3);
    shorts->Remove(2);
    // The upper end shown is the count.
    EXPECT_EQ(Failure([&] { shorts->Item(2); }), "Index 2 is out of range, use 0 - 2");
    EXPECT_EQ(Failure([&] { shorts->Item(-1); }), "Index -1 is out of range, use 0 - 2");
    listener.log.clear();
    shorts->Clear();
    EXPECT_EQ(shorts->GetCount(), 0);
    EXPECT_EQ(listener.log, (Log{"removing 0", "removed 0", "changed", "removing 0", "removed 0", "changed"}));
}

TEST(ValueCollectionTest, OutputChecksTheCountAndWritesEachItem)
{
    CSmartPtr<Ci2Col> optional = Shorts(0);
    EXPECT_EQ(Output(optional), "<e/>");
    CSmartPtr<Ci2Col> shorts = Shorts(1);
    EXPECT_EQ(Failure([&] { Output(shorts); }),
              "The Minimum number of [n] elements allowed in this collection is 1");
    EXPECT_EQ(Output(shorts, With(&Context::SetIgnoreInvalidCollectionCounts)), "<e/>");
    shorts->Add(7);
    shorts->Add(0);
    EXPECT_EQ(Output(shorts), "<e><AA:n xmlns:AA=\"urn:n\">7</AA:n><AA:n xmlns:AA=\"urn:n\">0</AA:n></e>");

    // Reals hand on the collection's format; strings check their pattern.
    CSmartPtr<Cr8Col> reals = new Cr8Col("r", "", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                                         kCollapse, "%.2f");
    reals->Add(1.5);
    EXPECT_EQ(Output(reals), "<e><r>1.50</r></e>");
    CSmartPtr<CstringCol> parts = new CstringCol("part", "", 0, -1, "\\d{3}-[A-Z]{2}", -1, -1, nullptr, nullptr,
                                                 nullptr, nullptr, -1, kCollapse, nullptr);
    parts->Add("872-AA");
    EXPECT_EQ(Failure([&] { parts->Add("872-aa"); }), "Invalid Value for part [872-aa]");
    CSmartPtr<CbooleanCol> flags = new CbooleanCol("f", "", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr,
                                                   nullptr, -1, kCollapse, nullptr);
    flags->AddFromString(" 1 ");
    flags->Add(false);
    EXPECT_TRUE(flags->Item(0));
    EXPECT_EQ(Output(flags), "<e><f>true</f><f>false</f></e>");
    CSmartPtr<ChexBinaryCol> blobs = new ChexBinaryCol("h", "", 0, -1, nullptr, -1, 2, nullptr, nullptr, nullptr,
                                                       nullptr, -1, kCollapse, nullptr);
    blobs->AddFromString("0aff");
    EXPECT_EQ(Failure([&] { blobs->AddFromString("010203"); }), "Invalid Value for h [010203]");
    EXPECT_EQ(Output(blobs), "<e><h>0AFF</h></e>");
}

namespace {

// A generated class with two value lists: <lists><code/>*<n/>{1,3}</lists>.
class CLists : public CXmlGeneratedClass {
public:
    CLists()
        : m_codes(new CstringCol("code", "urn:l", 0, -1, "[A-Z]{2}", -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                                 kCollapse, nullptr)),
          m_numbers(new Ci4Col("n", "urn:l", 1, 3, nullptr, -1, -1, "1", nullptr, nullptr, "10", -1, kCollapse,
                               nullptr))
    {
        SetElementName("lists");
    }
    CstringCol& Codes() { return *m_codes; }
    Ci4Col& Numbers() { return *m_numbers; }

    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return "urn:l"; }
    std::string GetNamespace() const override { return "urn:l"; }
    void AccessProperty(int propertyId, bool, KdVariant& value) override
    {
        value.SetXmlCollection(propertyId == 0 ? static_cast<CXmlCollectionBase*>(m_codes.get()) : m_numbers.get());
    }
    CParentElementInfo* GetClassInfo() const override { return Tables().classInfo; }
    CElementInfo** GetClassElementInfo() const override { return Tables().elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return Tables().attributes; }
    void Init() override
    {
        m_codes->Clear();
        m_numbers->Clear();
    }

private:
    struct CTables {
        CParentElementInfo* classInfo =
            new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "lists", "urn:l", -1,
                                   false, false);
        CElementInfo** elements = new CElementInfo*[3]{new CElementInfoSeqPrimCol("code", "urn:l", 0),
                                                       new CElementInfoSeqPrimCol("n", "urn:l", 1), nullptr};
        CAttributeInfo** attributes = new CAttributeInfo*[1]{nullptr};
        ~CTables() { CleanMetaData(classInfo, elements, attributes); }
    };
    // Built once, on first use, by whichever thread comes first.
    static CTables const& Tables()
    {
        static CTables const tables;
        return tables;
    }

    CSmartPtr<CstringCol> m_codes;
    CSmartPtr<Ci4Col> m_numbers;
};

} // namespace

TEST(ValueCollectionTest, ListsTravelThroughTheMetadata)
{
    CLists lists;
    lists.Codes().Add("AB");
    lists.Codes().Add("CD");
    lists.Numbers().Add(3);
    std::string const xml = Written(lists);
    EXPECT_EQ(xml, "<AA:lists xmlns:AA=\"urn:l\"><AA:code>AB</AA:code><AA:code>CD</AA:code><AA:n>3</AA:n></AA:lists>");

    CLists read;
    read.FromXml(xml.c_str());
    EXPECT_EQ(read.Codes().GetCount(), 2);
    EXPECT_EQ(read.Codes().Item(1), "CD");
    EXPECT_EQ(read.Numbers().Item(0), 3);

    // Facets are checked on input at each item, and occurs on output.
    EXPECT_NE(LoadFailure(read, "<lists xmlns='urn:l'><code>ab</code><n>3</n></lists>")
                  .find("Invalid Value for code [ab]"),
              std::string::npos);
    EXPECT_NE(LoadFailure(read, "<lists xmlns='urn:l'><n>10</n></lists>").find("Invalid Value for n [10]"),
              std::string::npos);
    read.Numbers().Clear();
    EXPECT_NE(Failure([&] { Written(read); }).find("The Minimum number of [n] elements"), std::string::npos);
}

TEST(ValueCollectionTest, DateListsTestTypeAndFacetsBeforeAnyEvent)
{
    CSmartPtr<CdateCol> dates = new CdateCol("d", "", 0, -1, nullptr, -1, -1, "2000-01-01", nullptr, nullptr,
                                             nullptr, -1, kCollapse, nullptr);
    Log log;
    struct CCounter : IEventSink {
        explicit CCounter(Log& log) : log(log) {}
        void OnEvent(CXmlObjectBase*, MsgType type, void*) override { log.push_back(std::to_string(type)); }
        Log& log;
    } listener(log);
    dates->AddEventListener(&listener);
    dates->AddFromString(" 2004-05-06 ");
    EXPECT_EQ(log, (Log{"1", "2", "0"}));
    log.clear();
    CDateTime const moment = CConversions::datetimeFromString("2004-05-06T10:00:00", kCollapse);
    EXPECT_EQ(Failure([&] { dates->Add(moment); }), "Dates added to this collection must be of type dt_date");
    EXPECT_EQ(Failure([&] { dates->AddFromString("1999-12-31"); }),
              "Invalid Value for d [" + CConversions::dateFromString("1999-12-31", kCollapse).ToString() + "]");
    EXPECT_TRUE(log.empty());
    // A bad index is found after the add event.
    EXPECT_EQ(Failure([&] { dates->AddAt(2, CConversions::dateFromString("2001-01-01", kCollapse)); }),
              "Index out of range");
    EXPECT_EQ(log, Log{"1"});
    EXPECT_EQ(Failure([&] { dates->Item(1); }), "Index 1 is out of range, use 0 - 1");
    EXPECT_EQ(Output(dates), "<e><d>2004-05-06</d></e>");

    CSmartPtr<CtimeCol> times = new CtimeCol("t", "", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                                             kCollapse, nullptr);
    times->AddFromString("10:30:00");
    EXPECT_EQ(times->Item(0).GetType(), CDateTime::dt_time);
    EXPECT_EQ(Failure([&] { times->Add(moment); }), "Dates added to this collection must be of type dt_time");
}

TEST(ValueCollectionTest, ExactNumbersAndDurationsAreListsLikeTheOthers)
{
    CSmartPtr<CdecimalCol> prices = new CdecimalCol("p", "", 0, -1, nullptr, -1, -1, "0", nullptr, nullptr, nullptr,
                                                    -1, kCollapse, nullptr);
    prices->AddFromString("19.99");
    EXPECT_THROW(prices->AddFromString("-0.01"), CKdException);
    CSmartPtr<CintegerCol> counts = new CintegerCol("c", "", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr,
                                                    nullptr, -1, kCollapse, nullptr);
    counts->AddFromString("123456789012345678901234567890");
    CSmartPtr<CdurationCol> spans = new CdurationCol("s", "", 0, -1, nullptr, -1, -1, nullptr, "P7D", nullptr,
                                                     nullptr, -1, kCollapse, nullptr);
    spans->AddFromString("P1D");
    EXPECT_THROW(spans->AddFromString("P8D"), CKdException);
    EXPECT_EQ(Output(prices) + Output(counts) + Output(spans),
              "<e><p>19.99</p></e><e><c>123456789012345678901234567890</c></e><e><s>P1D</s></e>");
}
