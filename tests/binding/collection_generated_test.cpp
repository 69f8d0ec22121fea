// A collection of a generated class, as the schema compiler writes it, going
// out to text and back through the same slots as any child object.
#include <gtest/gtest.h>

#include "binding/collection_test_types.h"

using namespace CollectionTest;

namespace {

// What the metadata of the enclosing class does: open its tag, hand the
// collection to the writer through the slot, close the tag.
std::string WriteInsideOrder(CXmlCollection const& items)
{
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartElement("order", "urn:po");
    CXmlObjectBase::ToXml_Int(&items, &writer, false, "urn:po", CXmlSerializationContext::m_defaultContext, false);
    writer.WriteEndElement();
    writer.Close();
    return stream.GetText();
}

} // namespace

TEST(CollectionGeneratedTest, ItemsGoOutAndComeBack)
{
    CLineItemCol written;
    written.Add(new CLineItem("pen"));
    written.Add(new CLineItem("ink & paper"));
    std::string const text = WriteInsideOrder(written);
    EXPECT_EQ(text, "<AA:order xmlns:AA=\"urn:po\"><AA:item>pen</AA:item>"
                    "<AA:item>ink &amp; paper</AA:item></AA:order>");

    CXmlDocument document;
    document.LoadXml(text.c_str());
    CXmlElement* order = document.GetDocumentElement();
    CLineItemCol read;
    CXmlSerializationContext context;
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(&read, order, order->GetFirstElement(), context), nullptr);
    ASSERT_EQ(read.GetCount(), 2);
    EXPECT_EQ(read.GetAt(0)->GetText(), "pen");
    EXPECT_EQ(read.GetAt(1)->GetText(), "ink & paper");
    read.ValidateCount(context);
}

TEST(CollectionGeneratedTest, ReadingStopsAtTheFirstElementOfAnotherNameOrNamespace)
{
    CXmlDocument document;
    document.LoadXml("<order xmlns='urn:po' xmlns:x='urn:x'><item>1</item><item>2</item><x:item>3</x:item>"
                     "<item>4</item><Item>5</Item></order>");
    CXmlElement* order = document.GetDocumentElement();

    CXmlSerializationContext context;
    CLineItemCol strict;
    CXmlElement* cursor = CXmlObjectBase::FromXml_Int(&strict, order, order->GetFirstElement(), context);
    EXPECT_EQ(strict.GetCount(), 2);
    EXPECT_EQ(cursor->GetText(), "3");

    // Without namespaces four match, one more than the schema allows: the
    // read takes them all and leaves the judgement to the count check.
    context.SetIgnoreNamespaces(true);
    CLineItemCol loose;
    cursor = CXmlObjectBase::FromXml_Int(&loose, order, order->GetFirstElement(), context);
    EXPECT_EQ(loose.GetCount(), 4);
    EXPECT_EQ(cursor->GetLocalName(), "Item");
    EXPECT_THROW(loose.ValidateCount(context), CKdValidationException);
}

// A collection of pseudo children has no tag: its items' attributes go on the
// enclosing element.
TEST(CollectionGeneratedTest, ItemsHandTheirAttributesToTheEnclosingTag)
{
    struct CFlag : CLineItem {
        using CLineItem::CLineItem;
        void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const&) const override
        {
            writer->WriteAttributeString(GetText(), "", "on", ItemType_string);
        }
    };
    CLineItemCol flags;
    flags.Add(new CFlag("bold"));
    flags.Add(new CFlag("wide"));
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartElement("row", "");
    CXmlObjectBase::AttributesToXml_Int(&flags, &writer, CXmlSerializationContext::m_defaultContext);
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ(std::string(stream.GetText()), "<row bold=\"on\" wide=\"on\"/>");
}
