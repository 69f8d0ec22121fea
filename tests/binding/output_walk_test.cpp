// The output walk of CXmlGeneratedClass, through hand-written classes whose
// tables use small test entries: a string child and an object child.
#include <gtest/gtest.h>

#include <string>

#include "binding/hand_written_nodes.h"

using namespace KdBind;
using namespace KdBindData;

namespace {

using namespace TestNodes;

std::string FullFailure(CXmlObjectBase const& object, CXmlSerializationContext const& context =
                                                          CXmlSerializationContext::m_defaultContext)
{
    try {
        object.ToXml(false, false, EOLType_LF, context);
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

} // namespace

TEST(OutputWalkTest, EmptyRootCarriesTheContextsRootItems)
{
    CSmartPtr<CTestNode> root = new CTestNode("order", Info(XmlElementGroupType_Sequence, "order", "urn:po"));
    CXmlSerializationContext context;
    context.GetProcessingInstructions().push_back("<?first?>");
    context.GetProcessingInstructions().push_back("<?second?>");
    context.GetNamespaceAliases().Add("z", "urn:z");
    context.GetNamespaceAliases().Add("a", "urn:a");
    context.SetDefaultNamespaceURI("urn:po");
    EXPECT_EQ(root->ToXml(true, true, EOLType_CRLF, context),
              "<?xml version=\"1.0\"?>\r\n<?first?>\r\n\r\n<?second?>\r\n\r\n"
              "<order xmlns=\"urn:po\" xmlns:a=\"urn:a\" xmlns:z=\"urn:z\"/>\r\n");
}

TEST(OutputWalkTest, ChildrenInTableOrderTextLastRootItemsOnlyOnTheRoot)
{
    CTestNode* child = new CTestNode("address", Info(XmlElementGroupType_Sequence, "address", "urn:po"),
                                     {new CStringChildEntry("city", "urn:po", 1)});
    child->m_strings[1] = "Oslo";
    CSmartPtr<CTestNode> root = new CTestNode(
        "order", Info(XmlElementGroupType_Sequence, "order", "urn:po", 9),
        {new CStringChildEntry("id", "urn:po", 1), new CObjectChildEntry("address", "urn:po", 2),
         new CStringChildEntry("missing", "urn:po", 3)},
        {new CStringAttributeEntry("version", "", 4, true, nullptr)});
    root->m_strings[1] = "17";
    root->m_children[2] = child;
    root->m_strings[4] = "2";
    root->m_strings[9] = "note & text";

    CXmlSerializationContext context;
    context.GetNamespaceAliases().Add("po", "urn:po");
    context.SetInLineSchema("<s/>");
    EXPECT_EQ(root->ToXml(false, true, EOLType_LF, context),
              "<po:order xmlns:po=\"urn:po\" version=\"2\" \n<s/>\n>\n"
              "\t<po:id>17</po:id>\n"
              "\t<po:address>\n"
              "\t\t<po:city>Oslo</po:city>\n"
              "\t</po:address>\n"
              "note &amp; text</po:order>\n");
}

TEST(OutputWalkTest, GroupingChildWritesOnlyContentAndForwardsAttributes)
{
    CTestNode* group = new CTestNode(
        "", Info(XmlElementGroupType_Sequence, "Group", "", -1, XmlElementType_PseudoChild),
        {new CStringChildEntry("inner", "", 1)}, {new CStringAttributeEntry("flag", "", 2, true, nullptr)});
    group->m_strings[1] = "x";
    group->m_strings[2] = "on";
    CSmartPtr<CTestNode> root = new CTestNode("root", Info(XmlElementGroupType_Sequence, "root"),
                                              {new CObjectChildEntry("Group", "", 1)});
    root->m_children[1] = group;
    EXPECT_EQ(root->ToXml(false, false), "<root flag=\"on\"><inner>x</inner></root>");
}

TEST(OutputWalkTest, TypeAttributeOnlyUnderAnotherName)
{
    CSmartPtr<CTestNode> node =
        new CTestNode("Base", Info(XmlElementGroupType_Sequence, "Base", "urn:t", -1, XmlElementType_Element, true));
    EXPECT_EQ(node->ToXml(false, false), "<AA:Base xmlns:AA=\"urn:t\"/>");
    node->SetElementName("item");
    EXPECT_EQ(node->ToXml(false, false),
              "<AA:item xmlns:AA=\"urn:t\" xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" "
              "AB:type=\"AA:Base\"/>");
}

TEST(OutputWalkTest, ChoiceWritesTheFirstSetAlternativeOnly)
{
    CSmartPtr<CTestNode> choice =
        new CTestNode("pay", Info(XmlElementGroupType_Choice, "pay"),
                      {new CStringChildEntry("card", "", 1), new CStringChildEntry("cash", "", 2)});
    choice->m_strings[2] = "10";
    EXPECT_EQ(choice->ToXml(false, false), "<pay><cash>10</cash></pay>");
    choice->m_strings[1] = "visa";
    EXPECT_EQ(choice->ToXml(false, false), "<pay><card>visa</card></pay>");
}

TEST(OutputWalkTest, EmptyChoiceFailsUnlessIgnored)
{
    CSmartPtr<CTestNode> choice =
        new CTestNode("pay", Info(XmlElementGroupType_Choice, "pay"), {new CStringChildEntry("card", "", 1)});
    EXPECT_EQ(FullFailure(*choice),
              "Failed to convert the element [pay] to XML\n"
              "This element is a choice, and as such must have at one (and only one) valid item, currently there "
              "are none set");
    CXmlSerializationContext lenient;
    lenient.SetIgnoreMissingChoice(true);
    EXPECT_EQ(choice->ToXml(false, false, EOLType_LF, lenient), "<pay/>");
}

TEST(OutputWalkTest, FailuresReadAsThePathFromTheRoot)
{
    CTestNode* leaf =
        new CTestNode("line", Info(XmlElementGroupType_Sequence, "line"), {new CStringChildEntry("qty", "", 1)});
    leaf->m_strings[1] = "throw";
    CTestNode* middle =
        new CTestNode("lines", Info(XmlElementGroupType_Sequence, "lines"), {new CObjectChildEntry("line", "", 1)});
    middle->m_children[1] = leaf;
    CSmartPtr<CTestNode> root =
        new CTestNode("order", Info(XmlElementGroupType_Sequence, "order"), {new CObjectChildEntry("lines", "", 1)});
    root->m_children[1] = middle;
    try {
        root->ToXml();
        FAIL() << "no exception";
    } catch (CKdValidationException const& e) {
        EXPECT_EQ(e.GetFullMessage(),
                  "Failed to convert the element [order] to XML\n"
                  "Failed to convert the element [lines] to XML\n"
                  "Failed to convert the element [line] to XML\n"
                  "bad value");
        CKdException const* first = &e;
        while (first->GetInnerException())
            first = first->GetInnerException();
        EXPECT_NE(dynamic_cast<CKdInvalidValueException const*>(first), nullptr);
    }
}

TEST(OutputWalkTest, AttributeFailureIsWrappedTwice)
{
    class CFailingAttribute : public CStringAttributeEntry {
    public:
        using CStringAttributeEntry::CStringAttributeEntry;
        void AttributeToXml(CXmlSerializationContext const&, CXmlGeneratedClass const*, CXmlWriter*) const override
        {
            throw CKdException("no value");
        }
    };
    CSmartPtr<CTestNode> node = new CTestNode("e", Info(XmlElementGroupType_Sequence, "e"), {},
                                              {new CFailingAttribute("a", "", 1, false, nullptr)});
    EXPECT_EQ(FullFailure(*node),
              "Failed to convert the element [e] to XML\nFailed to convert attributes to XML\nno value");
}

TEST(OutputWalkTest, UnknownGroupType)
{
    CSmartPtr<CTestNode> node = new CTestNode("e", Info(static_cast<XmlElementGroupType>(5), "e"));
    EXPECT_EQ(FullFailure(*node), "Failed to convert the element [e] to XML\nUnknown XML Group Type");
}

TEST(OutputWalkTest, CleanMetaDataFreesAndNullsTheTables)
{
    CParentElementInfo* info = Info(XmlElementGroupType_Sequence, "e");
    CElementInfo** elements = new CElementInfo*[2]{new CStringChildEntry("a", "", 1), nullptr};
    CAttributeInfo** attributes = nullptr;
    CXmlGeneratedClass::CleanMetaData(info, elements, attributes);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(elements, nullptr);
    EXPECT_EQ(attributes, nullptr);
}
