#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <kdbind/binding.h>

using namespace KdBind;

namespace {

std::vector<std::string> ChildNames(CXmlElement const* parent)
{
    std::vector<std::string> names;
    for (CXmlElement* child = parent->GetFirstElement(); child; child = child->GetNextSiblingElement())
        names.push_back(child->GetLocalName());
    return names;
}

template <class Text>
std::string LoadFailure(Text text)
{
    CXmlDocument document;
    try {
        document.LoadXml(text);
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "(no failure)";
}

} // namespace

TEST(ElementTreeTest, AllCharacterDataOfAnElementIsOneText)
{
    CXmlDocument document;
    document.LoadXml("<r>\n\t<a>one<b/>two&#13;three\r\nfour</a>\n</r>");
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(root->GetText(), "\n\t\n");
    CXmlElement* a = root->GetFirstElement();
    EXPECT_EQ(a->GetText(), "onetwothree\nfour");
    EXPECT_EQ(ChildNames(a), std::vector<std::string>{"b"});

    CXmlElement* built = document.AddDocElement("", "built");
    CXmlDocument::AppendTextExcludingCR(built, "\r\ra\r\nb\r");
    CXmlDocument::AppendTextExcludingCR(built, "cd\0ef", 5);
    CXmlDocument::AppendTextExcludingCR(built, "ghij", 2);
    EXPECT_EQ(built->GetText(), "a\nbcdgh");
}

TEST(ElementTreeTest, AttributesKeepDocumentOrderAndMatchExactly)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns:p='urn:p' z='1' p:a='2' a='3' b=''/>");
    CXmlElement* root = document.GetDocumentElement();
    std::vector<std::string> order;
    for (CXmlAttribute const* attribute : root->GetAttributes())
        order.push_back(attribute->GetNamespaceURI() + "|" + attribute->GetLocalName() + "=" + attribute->GetValue());
    EXPECT_EQ(order, (std::vector<std::string>{"|z=1", "urn:p|a=2", "|a=3", "|b="}));
    EXPECT_EQ(root->GetAttribute("a", ""), "3");
    EXPECT_EQ(root->GetAttribute("a", "urn:p"), "2");
    EXPECT_EQ(root->GetAttribute("z", "urn:p"), "");
    EXPECT_EQ(&root->GetAttribute("missing", ""), &root->GetAttribute("z", "urn:other"));
}

TEST(ElementTreeTest, NamespaceAttributesAreRecognisedByNamespaceAndName)
{
    char const* xsi = "http://www.w3.org/2001/XMLSchema-instance";
    char const* xmlns = "http://www.w3.org/2000/xmlns/";
    for (char const* name : {"type", "schemaLocation", "noNamespaceSchemaLocation", "xmlns"}) {
        EXPECT_TRUE(CXmlAttribute(name, "v", xsi).IsNamespaceAttribute()) << name;
        EXPECT_TRUE(CXmlAttribute(name, "v", xmlns).IsNamespaceAttribute()) << name;
        EXPECT_FALSE(CXmlAttribute(name, "v", "").IsNamespaceAttribute()) << name;
    }
    EXPECT_FALSE(CXmlAttribute("nil", "true", xsi).IsNamespaceAttribute());
}

TEST(ElementTreeTest, LastChildIsUnlinkedAndHandedOver)
{
    CXmlDocument document;
    CXmlElement* root = document.AddDocElement("", "r");
    EXPECT_EQ(root->RemoveLastChildElement(), nullptr);
    for (char const* name : {"a", "b", "c"})
        root->CreateNewChildElement()->SetElementName(name);
    delete root->RemoveLastChildElement();
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(root->GetFirstElement()->GetNextSiblingElement()->GetNextSiblingElement(), nullptr);
    delete root->RemoveLastChildElement();
    delete root->RemoveLastChildElement();
    EXPECT_EQ(root->GetFirstElement(), nullptr);
    root->CreateNewChildElement()->SetElementName("d");
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"d"});
}

TEST(ElementTreeTest, NodesTakenOutOfTheTreeOutliveTheirDocument)
{
    CXmlElement* kept = nullptr;
    {
        CXmlDocument document;
        document.LoadXml("<r><a x='1'>t</a><b y='2'>u<c/></b></r>");
        kept = document.GetDocumentElement()->RemoveLastChildElement();
        document.LoadXml("<s/>");
    }
    EXPECT_EQ(kept->GetAttribute("y", ""), "2");
    EXPECT_EQ(kept->GetText(), "u");
    kept->CreateNewChildElement()->AddAttribute("z", "3", "");
    delete kept;

    CXmlElement* loose = new CXmlElement(nullptr);
    loose->CreateNewChildElement()->AddAttribute("a", "1", "");
    delete loose;
}

TEST(ElementTreeTest, EmptyTextIsRefused)
{
    EXPECT_EQ(LoadFailure(""), "XML String is empty!");
    EXPECT_EQ(LoadFailure(L""), "XML String is empty!");
    EXPECT_EQ(LoadFailure(static_cast<char const*>(nullptr)), "XML String is empty!");
}

TEST(ElementTreeTest, PrefixesAreOneFlatMapForTheWholeDocument)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:default'><a xmlns:p='urn:one'/><b xmlns:p='urn:two' xmlns:q='urn:q'/></r>");
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "urn:two");
    EXPECT_EQ(document.LookupNamespaceFromAlias("q"), "urn:q");
    EXPECT_EQ(document.LookupNamespaceFromAlias(""), "urn:default");
    EXPECT_EQ(document.LookupNamespaceFromAlias("unknown"), "");

    document.LoadXml("<s xmlns:z='urn:z'/>");
    EXPECT_EQ(ChildNames(document.GetDocumentElement()), std::vector<std::string>{});
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "");
    EXPECT_EQ(document.LookupNamespaceFromAlias("z"), "urn:z");
}

namespace {
std::vector<std::string> g_finished;

bool ConsumeAll(CXmlElement* element)
{
    g_finished.push_back(element->GetLocalName() + ":" + element->GetText());
    return true;
}

bool FailOnB(CXmlElement* element)
{
    if (element->GetLocalName() == "b")
        throw CKdValidationException("b is not wanted");
    return false;
}
} // namespace

TEST(ElementTreeTest, CallbackThatConsumesElementsKeepsTheTreeFlat)
{
    g_finished.clear();
    CXmlDocument document(ConsumeAll);
    document.LoadXml("<r><a>1<x/></a><b>2</b></r>");
    EXPECT_EQ(g_finished, (std::vector<std::string>{"x:", "a:1", "b:2", "r:"}));
    // The document element has no parent to be taken from, so it stays.
    ASSERT_NE(document.GetDocumentElement(), nullptr);
    EXPECT_EQ(document.GetDocumentElement()->GetFirstElement(), nullptr);
}

TEST(ElementTreeTest, CallbackFailureReachesTheCallerUnchanged)
{
    CXmlDocument document(FailOnB);
    try {
        document.LoadXml("<r><a/><b/><c/></r>");
        FAIL() << "no failure";
    } catch (CKdValidationException const& e) {
        EXPECT_EQ(e.GetMessage(), "b is not wanted");
    }
    document.LoadXml("<r><a/></r>");
    EXPECT_EQ(ChildNames(document.GetDocumentElement()), std::vector<std::string>{"a"});
}

TEST(ElementTreeTest, DestroyingAVeryDeepTreeDoesNotRecurse)
{
    // Far deeper than the stack could bear if destruction recursed.
    CXmlDocument document;
    CXmlElement* element = document.AddDocElement("", "e");
    for (int i = 0; i < 1000000; ++i) {
        element = element->CreateNewChildElement();
        element->CreateNewChildElement();
    }
    document.Cleanup();
    EXPECT_EQ(document.GetDocumentElement(), nullptr);
}
