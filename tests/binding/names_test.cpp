// Names and namespaces: wildcard restrictions, element identity under the
// options of a context, the namespace a wildcard element starts in, and the
// xsi:type that factories read.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

TEST(NamesTest, NamespaceRestrictionsJudgeTheFirstTokenOnly)
{
    struct Row {
        char const* ns;
        char const* restriction;
        char const* target;
        bool valid;
    };
    for (Row const& row : {Row{"", "##any", "urn:t", true}, Row{"urn:x", "##other", "urn:t", true},
                           Row{"urn:t", "##other", "urn:t", false}, Row{"", "##other", "", true},
                           Row{"", "##local", "urn:t", true}, Row{"urn:t", "##local", "urn:t", false},
                           Row{"urn:x", "##targetNamespace", "urn:t", false}, Row{"", "##targetNamespace", "", true},
                           // A literal lets the empty namespace through, and compares case and all.
                           Row{"urn:u", "urn:u", "urn:t", true}, Row{"", "urn:u", "urn:t", true},
                           Row{"URN:U", "urn:u", "urn:t", false}, Row{"urn:t", "", "urn:t", false},
                           // Behind the first blank only the empty namespace and the whole list pass.
                           Row{"", "##local ##targetNamespace", "urn:t", true},
                           Row{"urn:t", "##local ##targetNamespace", "urn:t", false},
                           Row{"urn:t", "##targetNamespace ##local", "urn:t", true},
                           Row{"urn:a", "urn:a urn:b", "urn:t", false},
                           Row{"##local urn:b", "##local urn:b", "urn:t", true}}) {
        EXPECT_EQ(CXmlObjectHelper::IsNamespaceValid(row.ns, row.restriction, row.target), row.valid)
            << row.ns << " in " << row.restriction;
    }
    EXPECT_EQ(Failure([] { CXmlObjectHelper::TestNamespace("urn:t", "##other", "urn:t"); }),
              "Invalid namespace [urn:t]. The namespace must be one of [##other] where the target namespace is "
              "[urn:t]");
}

TEST(NamesTest, ElementsMatchByExactNameAndByNamespaceUnlessTheContextIgnoresIt)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns:o='urn:other'><id xmlns='urn:po'/><Id xmlns='urn:po'/><o:id/><id/></r>");
    CXmlElement* const same = document.GetDocumentElement()->GetFirstElement();
    CXmlElement* const otherCase = same->GetNextSiblingElement();
    CXmlElement* const otherNamespace = otherCase->GetNextSiblingElement();
    CXmlElement* const noNamespace = otherNamespace->GetNextSiblingElement();
    CElementInfoSeqPrimOpt entry("id", "urn:po", 0, ItemType_i4, nullptr, kCollapse, kNoFacets);
    CElementInfoSeqPrimOpt local("id", "", 0, ItemType_i4, nullptr, kCollapse, kNoFacets);

    Context const strict;
    Context const ignoring = With(&Context::SetIgnoreNamespaces);
    Context schemaType2;
    schemaType2.SetSchemaType(SchemaType_IgnoreNamespaces);
    Context const& schemaType2Only = schemaType2;
    struct Row {
        CXmlElement* element;
        bool strict, loose;
    };
    for (Row const& row : {Row{same, true, true}, Row{otherCase, false, false}, Row{otherNamespace, false, true},
                           Row{noNamespace, false, true}, Row{nullptr, false, false}}) {
        EXPECT_EQ(entry.IsThisElement(strict, row.element), row.strict);
        EXPECT_EQ(CXmlObjectHelper::DoesElementNameMatch(strict, row.element, "id", "urn:po"), row.strict);
        for (Context const* loose : {&ignoring, &schemaType2Only}) {
            EXPECT_EQ(entry.IsThisElement(*loose, row.element), row.loose);
            EXPECT_EQ(CXmlObjectHelper::DoesElementNameMatch(*loose, row.element, "id", "urn:po"), row.loose);
        }
    }
    // An entry without a namespace takes an element without one only.
    EXPECT_TRUE(local.IsThisElement(strict, noNamespace));
    EXPECT_FALSE(local.IsThisElement(strict, same));
}

TEST(NamesTest, WildcardElementsStartInTheNamespaceOfTheLeadingKeyword)
{
    struct Row {
        char const* spec;
        char const* owner;
        char const* expected;
    };
    for (Row const& row : {Row{"##any", "urn:owner", "urn:owner"}, Row{"##other", "urn:owner", ""},
                           // Stands for some namespace other than none.
                           Row{"##other", "", "DefaultNamespace"}, Row{"##local", "urn:owner", ""},
                           Row{"##targetNamespace", "urn:owner", "urn:target"},
                           Row{"##targetNamespace ##local", "urn:owner", "urn:target"},
                           Row{"##local ##any", "urn:owner", ""}, Row{"urn:a urn:b", "urn:owner", ""},
                           Row{"urn:a", "urn:owner", ""}, Row{"#any ##any", "urn:owner", ""},
                           Row{"##unknown ##any", "urn:owner", ""}, Row{"", "urn:owner", ""}}) {
        EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace(row.spec, row.owner, "urn:target"), row.expected) << row.spec;
    }
}

TEST(NamesTest, TypeNameIsTheLocalPartAndItsNamespaceComesFromTheDocumentsPrefixes)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:doc' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:v='urn:v'>"
                     "<e xsi:type='v:Car'/><e xsi:type='Bike'/><e type='v:Boat'/><e xsi:type='q:Boat'/>"
                     "<e xsi:type='v:a:b'/><e xsi:type='w:Kite'/><sibling xmlns:w='urn:w'/></r>");
    struct Row {
        char const* type;
        char const* uri;
    };
    CXmlElement* element = document.GetDocumentElement()->GetFirstElement();
    for (Row const& row : {Row{"Car", "urn:v"}, Row{"Bike", "urn:doc"}, Row{"", "urn:doc"},
                           // An undeclared prefix falls back on the element's namespace.
                           Row{"Boat", "urn:doc"}, Row{"a:b", "urn:v"},
                           // One flat map of prefixes: a declaration on another branch counts.
                           Row{"Kite", "urn:w"}}) {
        EXPECT_EQ(CClassfactoryBase::GetElementType(element), row.type);
        EXPECT_EQ(CClassfactoryBase::GetElementTypeNamespaceUri(element), row.uri) << row.type;
        element = element->GetNextSiblingElement();
    }
}
