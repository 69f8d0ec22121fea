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

std::string MessageOf(void (*load)(CXmlDocument&), CXmlDocument& document)
{
    try {
        load(document);
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
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetText(), "\n\t\n");
    CXmlElement* a = root->GetFirstElement();
    EXPECT_EQ(a->GetText(), "onetwothree\nfour");
    EXPECT_EQ(ChildNames(a), std::vector<std::string>{"b"});
    EXPECT_EQ(a->GetFirstElement()->GetText(), "");
    EXPECT_EQ(a->GetNextSiblingElement(), nullptr);
}

TEST(ElementTreeTest, AttributesKeepDocumentOrderAndMatchExactly)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns:p='urn:p' z='1' p:a='2' a='3' b=''/>");
    CXmlElement* root = document.GetDocumentElement();
    std::vector<std::string> order;
    for (CXmlAttribute const* attribute : root->GetAttributes())
        order.push_back(attribute->GetNamespaceURI() + "|" + attribute->GetLocalName() + "=" +
                        attribute->GetValue());
    EXPECT_EQ(order, (std::vector<std::string>{"|z=1", "urn:p|a=2", "|a=3", "|b="}));
    EXPECT_EQ(root->GetAttribute("a", ""), "3");
    EXPECT_EQ(root->GetAttribute("a", "urn:p"), "2");
    EXPECT_EQ(root->GetAttribute("z", "urn:p"), "");
    // The absent and the empty attribute read alike.
    EXPECT_EQ(&root->GetAttribute("missing", ""), &root->GetAttribute("z", "urn:other"));
    EXPECT_EQ(root->GetAttribute("b", ""), "");
}

TEST(ElementTreeTest, NamespaceAttributesAreRecognisedByNamespaceAndName)
{
    char const* xsi = "http://www.w3.org/2001/XMLSchema-instance";
    char const* xmlns = "http://www.w3.org/2000/xmlns/";
    EXPECT_TRUE(CXmlAttribute("type", "t", xsi).IsNamespaceAttribute());
    EXPECT_TRUE(CXmlAttribute("schemaLocation", "u", xsi).IsNamespaceAttribute());
    EXPECT_TRUE(CXmlAttribute("noNamespaceSchemaLocation", "u", xsi).IsNamespaceAttribute());
    EXPECT_TRUE(CXmlAttribute("xmlns", "u", xmlns).IsNamespaceAttribute());
    EXPECT_TRUE(CXmlAttribute("type", "u", xmlns).IsNamespaceAttribute());
    EXPECT_FALSE(CXmlAttribute("nil", "true", xsi).IsNamespaceAttribute());
    EXPECT_FALSE(CXmlAttribute("type", "t", "").IsNamespaceAttribute());
    EXPECT_FALSE(CXmlAttribute("xmlns", "u", "").IsNamespaceAttribute());
}

TEST(ElementTreeTest, ChildListLinksAndUnlinksAtTheEnd)
{
    CXmlDocument document;
    CXmlElement* root = document.AddDocElement("", "r");
    EXPECT_EQ(root->RemoveLastChildElement(), nullptr);
    CXmlElement* a = root->CreateNewChildElement();
    a->SetElementName("a");
    root->CreateNewChildElement()->SetElementName("b");
    CXmlElement* c = root->CreateNewChildElement();
    c->SetElementName("c");
    EXPECT_EQ(a->GetOwnerDocument(), &document);
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"a", "b", "c"}));

    CXmlElement* removed = root->RemoveLastChildElement();
    EXPECT_EQ(removed, c);
    EXPECT_EQ(removed->GetNextSiblingElement(), nullptr);
    delete removed;
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"a", "b"}));
    delete root->RemoveLastChildElement();
    delete root->RemoveLastChildElement();
    EXPECT_EQ(root->GetFirstElement(), nullptr);
    // The list is usable again after being emptied.
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

    // Nodes made outside any document are plain heap objects.
    CXmlElement* loose = new CXmlElement(nullptr);
    loose->CreateNewChildElement()->AddAttribute("a", "1", "");
    delete loose;
}

TEST(ElementTreeTest, TextAppendsSkipCarriageReturnsAndStopAtZero)
{
    CXmlDocument document;
    CXmlElement* root = document.AddDocElement("", "r");
    CXmlDocument::AppendTextExcludingCR(root, "\r\ra\r\nb\r");
    CXmlDocument::AppendTextExcludingCR(root, "cd\0ef", 5);
    CXmlDocument::AppendTextExcludingCR(root, "ghij", 2);
    EXPECT_EQ(root->GetText(), "a\nbcdgh");
}

TEST(ElementTreeTest, EmptyTextIsRefused)
{
    CXmlDocument document;
    EXPECT_EQ(MessageOf([](CXmlDocument& d) { d.LoadXml(""); }, document), "XML String is empty!");
    EXPECT_EQ(MessageOf([](CXmlDocument& d) { d.LoadXml(L""); }, document), "XML String is empty!");
    EXPECT_EQ(MessageOf([](CXmlDocument& d) { d.LoadXml(static_cast<char const*>(nullptr)); }, document),
              "XML String is empty!");
    EXPECT_EQ(document.GetDocumentElement(), nullptr);
}

TEST(ElementTreeTest, PrefixesAreOneFlatMapForTheWholeDocument)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:default'><a xmlns:p='urn:one'/><b xmlns:p='urn:two' xmlns:q='urn:q'/></r>");
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "urn:two");
    EXPECT_EQ(document.LookupNamespaceFromAlias("q"), "urn:q");
    EXPECT_EQ(document.LookupNamespaceFromAlias(""), "urn:default");
    EXPECT_EQ(document.LookupNamespaceFromAlias("unknown"), "");

    // A second load leaves nothing of the first.
    document.LoadXml("<s xmlns:z='urn:z'/>");
    EXPECT_EQ(document.GetDocumentElement()->GetLocalName(), "s");
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

bool KeepAll(CXmlElement* element)
{
    g_finished.push_back(element->GetLocalName());
    return false;
}

bool FailOnB(CXmlElement* element)
{
    if (element->GetLocalName() == "b")
        throw CKdValidationException("b is not wanted");
    return true;
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

TEST(ElementTreeTest, CallbackThatKeepsElementsLeavesTheTreeWhole)
{
    g_finished.clear();
    CXmlDocument document(KeepAll);
    document.LoadXml("<r><a><x/></a><b/></r>");
    EXPECT_EQ(g_finished, (std::vector<std::string>{"x", "a", "b", "r"}));
    EXPECT_EQ(ChildNames(document.GetDocumentElement()), (std::vector<std::string>{"a", "b"}));
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
    // The document can be used again.
    document.LoadXml("<r><a/></r>");
    EXPECT_EQ(document.GetDocumentElement()->GetFirstElement(), nullptr);
}

TEST(ElementTreeTest, DeepDocumentLoadsAndIsDestroyed)
{
    int const depth = 10000;
    std::string xml;
    for (int i = 0; i < depth; ++i)
        xml += "<e>";
    xml += "leaf";
    for (int i = 0; i < depth; ++i)
        xml += "</e>";
    CXmlDocument document;
    document.LoadXml(xml.c_str());
    int levels = 0;
    CXmlElement* element = document.GetDocumentElement();
    for (; element->GetFirstElement(); element = element->GetFirstElement())
        ++levels;
    EXPECT_EQ(levels, depth - 1);
    EXPECT_EQ(element->GetText(), "leaf");
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
