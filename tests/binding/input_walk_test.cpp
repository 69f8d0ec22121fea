// The input walk of CXmlGeneratedClass over parsed documents, through
// hand-written classes with small test entries.
#include <gtest/gtest.h>

#include <string>

#include "binding/hand_written_nodes.h"

using namespace KdBind;
using namespace KdBindData;
using namespace TestNodes;

namespace {

std::string LoadFailure(CXmlObjectBase& object, char const* xml)
{
    try {
        object.FromXml(xml);
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

std::string WideLoadFailure(CXmlObjectBase& object, wchar_t const* xml, CXmlSerializationContext const& context)
{
    try {
        object.FromXml(xml, context);
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

// <order> with a mandatory <id>, an optional <note> and a mandatory <total>.
CSmartPtr<CTestNode> NewOrder(XmlElementGroupType group = XmlElementGroupType_Sequence)
{
    // In an all-group entries decline what they do not take; Validate decides.
    bool const all = group == XmlElementGroupType_All;
    Absent const required = all ? Absent::Declines : Absent::Mandatory;
    Absent const optional = all ? Absent::Declines : Absent::Optional;
    return new CTestNode("order", Info(group, "order"),
                         {new CStringChildEntry("id", "", 1, required, true),
                          new CStringChildEntry("note", "", 2, optional),
                          new CStringChildEntry("total", "", 3, required, true)},
                         {new CStringAttributeEntry("version", "", 4, true, nullptr)});
}

char const kLeftOver[] = "Failed read all the elements held within the element [%s]. The unexpected element [%s] "
                         "remains un processed";

} // namespace

TEST(InputWalkTest, SequenceFillsPropertiesAndTakesTheRootsName)
{
    CSmartPtr<CTestNode> order = NewOrder();
    order->m_strings[9] = "stale";
    order->FromXml("<purchase version='3'><id>7</id>text between is ignored<total>9.5</total></purchase>");
    EXPECT_EQ(order->GetElementName(), "purchase");
    EXPECT_EQ(order->m_initCount, 1);
    EXPECT_EQ(order->m_strings.count(9), 0u);
    EXPECT_EQ(order->m_strings[1], "7");
    EXPECT_EQ(order->m_strings.count(2), 0u);
    EXPECT_EQ(order->m_strings[3], "9.5");
    EXPECT_EQ(order->m_strings[4], "3");
}

TEST(InputWalkTest, MissingAndLeftOverChildrenReadAsAPath)
{
    CSmartPtr<CTestNode> order = NewOrder();
    EXPECT_EQ(LoadFailure(*order, "<order/>"),
              "Failed to process the element [order]\nFailed to find a required element [id]");
    EXPECT_EQ(LoadFailure(*order, "<order><id>1</id><total>2</total><extra/></order>"),
              "Failed to process the element [order]\n" + FormatString(kLeftOver, "order", "extra"));
}

TEST(InputWalkTest, FailureInAChildIsWrappedOnEveryLevel)
{
    CTestNode* line = new CTestNode("line", Info(XmlElementGroupType_Sequence, "line"),
                                    {new CStringChildEntry("qty", "", 1, Absent::Mandatory)});
    CSmartPtr<CTestNode> root =
        new CTestNode("order", Info(XmlElementGroupType_Sequence, "order"), {new CObjectChildEntry("line", "", 1)});
    root->m_children[1] = line;
    EXPECT_EQ(LoadFailure(*root, "<order><line><price/></line></order>"),
              "Failed to process the element [order]\nFailed to process the element [line]\n"
              "Failed to find a required element [qty]");
}

TEST(InputWalkTest, NarrowFromXmlWalksUnderTheDefaultContextWideUnderTheCallers)
{
    CXmlSerializationContext lenient;
    lenient.SetIgnoreUnknownElements(true);
    CSmartPtr<CTestNode> order = NewOrder();
    try {
        order->FromXml("<order><id>1</id><surprise/><total>2</total></order>", lenient);
        FAIL() << "no exception";
    } catch (CKdValidationException const&) {
    }
    EXPECT_EQ(WideLoadFailure(*order, L"<order><id>1</id><surprise/><total>2</total></order>", lenient),
              "<no exception>");
    EXPECT_EQ(order->m_strings[3], "2");
}

TEST(InputWalkTest, AttributesUnknownNamespaceAndSchemaInstance)
{
    CSmartPtr<CTestNode> order = NewOrder();
    EXPECT_EQ(LoadFailure(*order, "<order colour='red'><id>1</id><total>2</total></order>"),
              "Failed to process the element [order]\nUnexpected Attribute [colour] found.");
    EXPECT_EQ(LoadFailure(*order, "<order xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:p='urn:p' "
                                  "xsi:type='p:T' xsi:schemaLocation='a b' xsi:noNamespaceSchemaLocation='c'>"
                                  "<id>1</id><total>2</total></order>"),
              "<no exception>");
    EXPECT_EQ(LoadFailure(*order, "<order xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:nil='true'>"
                                  "<id>1</id><total>2</total></order>"),
              "Failed to process the element [order]\nUnexpected Attribute [nil] found.");

    CXmlSerializationContext lenient;
    lenient.SetIgnoreUnknownAttributes(true);
    EXPECT_EQ(WideLoadFailure(*order, L"<order colour='red'><id>1</id><total>2</total></order>", lenient),
              "<no exception>");
}

TEST(InputWalkTest, RequiredAttributeIsValidatedAfterTheWalkOverAttributes)
{
    CSmartPtr<CTestNode> node = new CTestNode("e", Info(XmlElementGroupType_Sequence, "e"), {},
                                              {new CStringAttributeEntry("must", "", 1, false, nullptr)});
    EXPECT_EQ(LoadFailure(*node, "<e/>"), "Failed to process the element [e]\nrequired attribute [must]");
}

TEST(InputWalkTest, ChoiceTakesOneItemOnly)
{
    CSmartPtr<CTestNode> pay = new CTestNode(
        "pay", Info(XmlElementGroupType_Choice, "pay"),
        {new CStringChildEntry("card", "", 1, Absent::Declines), new CStringChildEntry("cash", "", 2, Absent::Declines)});
    pay->FromXml("<pay><cash>10</cash></pay>");
    EXPECT_EQ(pay->m_strings[2], "10");
    EXPECT_EQ(LoadFailure(*pay, "<pay><cash>1</cash><card>2</card></pay>"),
              "Failed to process the element [pay]\n" + FormatString(kLeftOver, "pay", "card"));
}

TEST(InputWalkTest, EmptyChoiceFailsUnlessIgnored)
{
    CXmlSerializationContext lenient;
    lenient.SetIgnoreMissingChoice(true);
    // An entry that declines instead of failing, so that only the walk decides.
    CSmartPtr<CTestNode> declining =
        new CTestNode("pay", Info(XmlElementGroupType_Choice, "pay"), {new CObjectChildEntry("card", "", 1)});
    EXPECT_EQ(LoadFailure(*declining, "<pay/>"),
              "Failed to process the element [pay]\nNo child elements within the element [pay] were populated. The "
              "element represents a choice, so one and only one element should be populated. The element contained "
              "no sutable child elements");
    EXPECT_EQ(WideLoadFailure(*declining, L"<pay/>", lenient), "<no exception>");
}

TEST(InputWalkTest, AllGroupTakesAnyOrderAndStopsAtAnUnknownElement)
{
    CSmartPtr<CTestNode> order = NewOrder(XmlElementGroupType_All);
    order->FromXml("<order><total>2</total><note>n</note><id>1</id></order>");
    EXPECT_EQ(order->m_strings[1], "1");
    EXPECT_EQ(order->m_strings[2], "n");
    EXPECT_EQ(order->m_strings[3], "2");

    CXmlSerializationContext lenient;
    lenient.SetIgnoreUnknownElements(true);
    EXPECT_EQ(WideLoadFailure(*order, L"<order><id>1</id><unknown/><total>2</total></order>", lenient),
              "Failed to process the element [order]\nmissing [total]");
}

TEST(InputWalkTest, TextGoesToTheTextPropertyOrIsDropped)
{
    CSmartPtr<CTestNode> note = new CTestNode("note", Info(XmlElementGroupType_Sequence, "note", "", 5));
    note->FromXml("<note>line one\r\nline two</note>");
    EXPECT_EQ(note->m_strings[5], "line one\nline two");
    CSmartPtr<CTestNode> plain = new CTestNode("note", Info(XmlElementGroupType_Sequence, "note"));
    EXPECT_EQ(LoadFailure(*plain, "<note>ignored</note>"), "<no exception>");
    EXPECT_TRUE(plain->m_strings.empty());
}

TEST(InputWalkTest, GroupingChildThatFailsHalfWayConsumesNothing)
{
    // <row> holds a grouping child (a then b) followed by an optional c.
    CTestNode* group = new CTestNode(
        "", Info(XmlElementGroupType_Sequence, "pair", "", -1, XmlElementType_PseudoChild),
        {new CStringChildEntry("a", "", 1, Absent::Mandatory), new CStringChildEntry("b", "", 2, Absent::Mandatory)});
    CObjectChildEntry* groupEntry = new CObjectChildEntry("pair", "", 1);
    groupEntry->m_pseudo = true;
    CSmartPtr<CTestNode> row = new CTestNode("row", Info(XmlElementGroupType_Sequence, "row"),
                                             {groupEntry, new CStringChildEntry("c", "", 2)});
    row->m_children[1] = group;
    // The refusal ends the row's walk at its start; the document element's
    // cursor goes nowhere, so the load ends quietly with what was filled.
    EXPECT_EQ(LoadFailure(*row, "<row><a>1</a><c>3</c></row>"), "<no exception>");
    EXPECT_EQ(group->m_strings[1], "1");
    EXPECT_EQ(row->m_strings.count(2), 0u);
}

TEST(InputWalkTest, UnknownGroupTypeAndMissingElement)
{
    CSmartPtr<CTestNode> node = new CTestNode("e", Info(static_cast<XmlElementGroupType>(9), "e"));
    EXPECT_EQ(LoadFailure(*node, "<e/>"), "Failed to process the element [e]\nUnknow Group Type");
    EXPECT_THROW(node->FromXmlElement(static_cast<CXmlElement const*>(nullptr)), CKdInvalidParamException);
}
