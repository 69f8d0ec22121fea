// The parsed tree: one text per element, attributes, the flat prefix map,
// the streaming callback, the life of its nodes; and the output alias map.
#include <vector>

#include <kdbind/binding.h>

#include "runtime/test_support.h"

using namespace KdBind;
using KdBindTest::FailureOf;

namespace {

std::vector<std::string> ChildNames(CXmlElement const* parent)
{
    std::vector<std::string> names;
    for (CXmlElement* child = parent->GetFirstElement(); child; child = child->GetNextSiblingElement())
        names.push_back(child->GetNamespaceURI() + "|" + child->GetLocalName());
    return names;
}

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

// Character data before, between and after children is joined; no carriage
// return reaches the text, not even one from a character reference.
TEST(ElementTreeTest, AllCharacterDataOfAnElementIsOneTextWithoutCarriageReturns)
{
    CXmlDocument document;
    document.LoadXml("<r>\n\t<a>one<b/>two&#13;three\r\nfour</a>\n</r>");
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(root->GetText(), "\n\t\n");
    EXPECT_EQ(root->GetFirstElement()->GetText(), "onetwothree\nfour");
    EXPECT_EQ(ChildNames(root->GetFirstElement()), std::vector<std::string>{"|b"});

    CXmlElement* built = document.AddDocElement("", "built");
    CXmlDocument::AppendTextExcludingCR(built, "\r\ra\r\nb\r");
    CXmlDocument::AppendTextExcludingCR(built, "cd\0ef", 5);  // stops at a zero byte
    CXmlDocument::AppendTextExcludingCR(built, "ghij", 2);    // or at the length
    EXPECT_EQ(built->GetText(), "a\nbcdgh");

    for (auto text : {"", static_cast<char const*>(nullptr)})
        EXPECT_EQ(FailureOf([&] { document.LoadXml(text); }), "XML String is empty!");
    EXPECT_EQ(FailureOf([&] { document.LoadXml(L""); }), "XML String is empty!");
}

// Prefixes are not kept on nodes; the declarations of the whole document
// sit in one flat map, the last one seen for a prefix winning.
TEST(ElementTreeTest, NamespacesAttributesAndTheFlatPrefixMap)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:d' xmlns:p='urn:p' z='1' p:a='2' a='3' b=''>"
                     "<c/><p:d xmlns:p='urn:two' xmlns:q='urn:q'/><e xmlns=''/></r>");
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(root->GetNamespaceURI(), "urn:d");
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"urn:d|c", "urn:two|d", "|e"}));
    // Declarations are no attributes; unprefixed attributes have no namespace.
    std::vector<std::string> names;
    for (CXmlAttribute const* attribute : root->GetAttributes())
        names.push_back(attribute->GetNamespaceURI() + "|" + attribute->GetLocalName() + "=" + attribute->GetValue());
    EXPECT_EQ(names, (std::vector<std::string>{"|z=1", "urn:p|a=2", "|a=3", "|b="}));
    EXPECT_EQ(root->GetAttribute("a", ""), "3");
    EXPECT_EQ(root->GetAttribute("a", "urn:p"), "2");
    EXPECT_EQ(&root->GetAttribute("z", "urn:p"), &root->GetAttribute("missing", ""));  // one static empty text
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "urn:two");
    EXPECT_EQ(document.LookupNamespaceFromAlias("q"), "urn:q");
    EXPECT_EQ(document.LookupNamespaceFromAlias(""), "");  // the undeclaration on e
    EXPECT_EQ(document.LookupNamespaceFromAlias("unknown"), "");

    // A second load leaves neither the first tree nor its prefixes.
    document.LoadXml("<s xmlns:z='urn:z'/>");
    EXPECT_EQ(ChildNames(document.GetDocumentElement()), std::vector<std::string>{});
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "");
    EXPECT_EQ(document.LookupNamespaceFromAlias("z"), "urn:z");

    // Both namespaces count for all four names; xsi:nil is data.
    for (char const* uri : {"http://www.w3.org/2001/XMLSchema-instance", "http://www.w3.org/2000/xmlns/"}) {
        for (char const* name : {"type", "schemaLocation", "noNamespaceSchemaLocation", "xmlns"}) {
            EXPECT_TRUE(CXmlAttribute(name, "v", uri).IsNamespaceAttribute()) << uri << " " << name;
            EXPECT_FALSE(CXmlAttribute(name, "v", "").IsNamespaceAttribute()) << name;
        }
        EXPECT_FALSE(CXmlAttribute("nil", "true", uri).IsNamespaceAttribute());
    }
}

TEST(ElementTreeTest, CallbackConsumesElementsOrFailsTheLoad)
{
    g_finished.clear();
    CXmlDocument consuming(ConsumeAll);
    consuming.LoadXml("<r><a>1<x/></a><b>2</b></r>");
    EXPECT_EQ(g_finished, (std::vector<std::string>{"x:", "a:1", "b:2", "r:"}));
    // The document element has no parent to be taken from, so it stays.
    ASSERT_NE(consuming.GetDocumentElement(), nullptr);
    EXPECT_EQ(consuming.GetDocumentElement()->GetFirstElement(), nullptr);

    CXmlDocument failing(FailOnB);
    EXPECT_EQ(FailureOf<CKdValidationException>([&] { failing.LoadXml("<r><a/><b/><c/></r>"); }), "b is not wanted");
    failing.LoadXml("<r><a/></r>");
    EXPECT_EQ(ChildNames(failing.GetDocumentElement()), std::vector<std::string>{"|a"});
}

TEST(ElementTreeTest, NodesAreUnlinkedOutliveTheirDocumentAndGoWithoutRecursion)
{
    CXmlDocument document;
    CXmlElement* root = document.AddDocElement("", "r");
    EXPECT_EQ(root->RemoveLastChildElement(), nullptr);
    for (char const* name : {"a", "b", "c"})
        root->CreateNewChildElement()->SetElementName(name);
    delete root->RemoveLastChildElement();
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"|a", "|b"}));
    delete root->RemoveLastChildElement();
    delete root->RemoveLastChildElement();  // the only child
    root->CreateNewChildElement()->SetElementName("d");
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"|d"});

    // A node taken out of the tree keeps the document's memory pool alive.
    CXmlElement* kept = nullptr;
    {
        CXmlDocument loaded;
        loaded.LoadXml("<r xmlns='urn:kdbind:a-uri-too-long-for-the-string'><a x='1'>t</a><b y='2'>u<c/></b></r>");
        kept = loaded.GetDocumentElement()->RemoveLastChildElement();
        loaded.LoadXml("<s/>");
    }
    EXPECT_EQ(kept->GetAttribute("y", ""), "2");
    EXPECT_EQ(kept->GetText(), "u");
    EXPECT_EQ(kept->GetNamespaceURI(), "urn:kdbind:a-uri-too-long-for-the-string");
    EXPECT_EQ(kept->GetFirstElement()->GetNamespaceURI(), kept->GetNamespaceURI());
    kept->CreateNewChildElement()->AddAttribute("z", "3", "urn:kdbind:a-uri-too-long-for-the-string");
    EXPECT_EQ(kept->GetFirstElement()->GetNextSiblingElement()->GetAttribute("z", kept->GetNamespaceURI()), "3");
    kept->SetNamespace(kept->GetNamespaceURI() + ":changed");  // from a reference to the old URI
    EXPECT_EQ(kept->GetNamespaceURI(), "urn:kdbind:a-uri-too-long-for-the-string:changed");
    EXPECT_EQ(kept->GetFirstElement()->GetNamespaceURI(), "urn:kdbind:a-uri-too-long-for-the-string");
    delete kept;
    CXmlElement* loose = new CXmlElement(nullptr);  // outside any document: on the heap
    loose->CreateNewChildElement()->AddAttribute("a", "1", "urn:kdbind:a-uri-too-long-for-the-string");
    EXPECT_EQ(loose->GetFirstElement()->GetAttribute("a", "urn:kdbind:a-uri-too-long-for-the-string"), "1");
    for (char const* uri : {"urn:kdbind:a-uri-too-long-for-the-string", "urn:kdbind:another-uri-of-some-length", ""}) {
        loose->SetNamespace(uri);
        EXPECT_EQ(loose->GetNamespaceURI(), uri);
    }
    loose->SetNamespace(std::string("urn:kdbind:a-uri-too-long-for-the-string"));
    delete loose;

    // Far deeper than the stack could bear if destruction recursed.
    CXmlElement* element = document.AddDocElement("", "deep");
    for (int i = 0; i < 1000000; ++i) {
        element = element->CreateNewChildElement();
        element->CreateNewChildElement();
    }
}

TEST(NamespaceAliasMapTest, OneAliasPerUriInUriOrder)
{
    CNamespaceAliasMap map;
    map.Add("z", "urn:b");
    map.Add("y", "urn:a");
    map.Add("x", "urn:b");
    map.Add("x", "urn:c");  // an alias may stand under several URIs
    map.RemoveNamespace("urn:unknown");
    ASSERT_EQ(map.GetNamespaceCount(), 3);
    EXPECT_EQ(map.GetNamespaceAt(-3), "urn:a");
    EXPECT_EQ(map.GetNamespaceAt(1), "urn:b");
    EXPECT_FALSE(map.DoesAliasExist("z"));
    EXPECT_EQ(map.GetNamespaceFromAlias("x"), "urn:b");  // the lower URI
    EXPECT_EQ(FailureOf([&] { map.GetNamespaceFromAlias("nope"); }), "Namespace alias [nope] not found");
    map.RemoveNamespace("urn:b");
    EXPECT_EQ(map.GetNamespaceFromAlias("x"), "urn:c");

    // Asking for an unknown URI inserts it with an empty alias.
    EXPECT_EQ(map.GetAliasFromNamespace("urn:c"), "x");
    EXPECT_EQ(map.GetAliasFromNamespace("urn:0"), "");
    EXPECT_EQ(map.GetNamespaceCount(), 3);
    EXPECT_TRUE(map.DoesNamespaceExist("urn:0"));
    EXPECT_EQ(map.GetNamespaceAt(0), "urn:0");
}

TEST(BadCallsTest, NullNamesTextsAndIndexesPastTheEndAreRefused)
{
    using Refused = CKdInvalidParamException;
    CXmlDocument document;
    EXPECT_NE(FailureOf<Refused>([&] { document.AddDocElement(nullptr, "e"); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { document.AddDocElement("", nullptr); }), "<no failure>");
    CXmlElement* root = document.AddDocElement("", "root");
    EXPECT_NE(FailureOf<Refused>([&] { document.AddChildElement(nullptr, "c"); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { CXmlDocument::AppendTextExcludingCR(root, nullptr, 3); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { CXmlDocument::AppendTextExcludingCR(nullptr, "t"); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { CXmlDocument::AddElementAttribute(nullptr, "a", "v", ""); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { root->AppendText(nullptr); }), "<no failure>");
    CXmlDocument::AppendTextExcludingCR(root, nullptr, 0);  // nothing to append is no fault
    EXPECT_EQ(root->GetText(), "");
    EXPECT_NE(FailureOf<Refused>([&] { document.Load(nullptr); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { document.LoadXmlStream(nullptr, 5); }), "<no failure>");

    CNamespaceAliasMap map;
    EXPECT_EQ(FailureOf<Refused>([&] { map.GetNamespaceAt(0); }), "Namespace index [0] out of range [0--1]");
    EXPECT_NE(FailureOf<Refused>([&] { map.GetNamespaceAt(-1); }), "<no failure>");
    map.Add("a", "urn:a");
    EXPECT_EQ(FailureOf<Refused>([&] { map.GetNamespaceAt(1); }), "Namespace index [1] out of range [0-0]");
    EXPECT_NE(FailureOf<Refused>([&] { map.Add(nullptr, "urn:b"); }), "<no failure>");
    EXPECT_NE(FailureOf<Refused>([&] { map.GetAliasFromNamespace(nullptr); }), "<no failure>");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
}
