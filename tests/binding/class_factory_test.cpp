// The xsi:type of an element, as generated factories read it to choose the
// class of a substitutable child.
#include <gtest/gtest.h>

#include "kdbind/binding.h"

using namespace KdBind;

namespace {

// Finds a child of the document element by its local name.
CXmlElement* Child(CXmlDocument const& document, std::string const& name)
{
    for (CXmlElement* e = document.GetDocumentElement()->GetFirstElement(); e; e = e->GetNextSiblingElement())
        if (e->GetLocalName() == name)
            return e;
    return nullptr;
}

} // namespace

TEST(ClassFactoryTest, TypeNameIsTheLocalPartAndItsNamespaceComesFromThePrefix)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:doc' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:v='urn:v'>"
                     "<prefixed xsi:type='v:Car'/>"
                     "<plain xsi:type='Bike'/>"
                     "<absent type='v:Boat'/>"
                     "<undeclared xsi:type='q:Boat'/>"
                     "<twoColons xsi:type='v:a:b'/>"
                     "<declaredElsewhere xsi:type='w:Kite'/>"
                     "<sibling xmlns:w='urn:w'/>"
                     "</r>");
    struct Expected {
        char const* element;
        char const* type;
        char const* uri;
    };
    for (Expected const& row : {Expected{"prefixed", "Car", "urn:v"}, Expected{"plain", "Bike", "urn:doc"},
                                Expected{"absent", "", "urn:doc"}, Expected{"undeclared", "Boat", "urn:doc"},
                                Expected{"twoColons", "a:b", "urn:v"},
                                // The tree keeps one flat map of the document's prefixes, so a prefix
                                // declared on another branch resolves as well.
                                Expected{"declaredElsewhere", "Kite", "urn:w"}}) {
        SCOPED_TRACE(row.element);
        CXmlElement* element = Child(document, row.element);
        ASSERT_NE(element, nullptr);
        EXPECT_EQ(CClassfactoryBase::GetElementType(element), row.type);
        EXPECT_EQ(CClassfactoryBase::GetElementTypeNamespaceUri(element), row.uri);
    }
}
