// A collection of a generated class, as the schema compiler writes it, going
// out to text and back through the same slots as any child object.
#include <gtest/gtest.h>

#include "binding/collection_test_types.h"

using namespace CollectionTest;

namespace {

// What the metadata of the enclosing class does: open its tag, hand the
// collection to the writer through the two slots, close the tag.
std::string WriteInsideOrder(CXmlCollection const& items)
{
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartElement("order", "urn:po");
    CXmlObjectBase::AttributesToXml_Int(&items, &writer, CXmlSerializationContext::m_defaultContext);
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

// Items hand their attributes to the enclosing tag, as a collection of
// pseudo children does.
TEST(CollectionGeneratedTest, ItemsHandTheirAttributesToTheEnclosingTag)
{
    struct CFlagged : CLineItem {
        using CLineItem::CLineItem;
        void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const&) const override
        {
            writer->WriteAttributeString(GetText(), "", "on", ItemType_string);
        }
    };
    CLineItemCol flags;
    flags.Add(new CFlagged("bold"));
    flags.Add(new CFlagged("wide"));
    EXPECT_EQ(WriteInsideOrder(flags), "<AA:order xmlns:AA=\"urn:po\" bold=\"on\" wide=\"on\">"
                                       "<AA:item bold=\"on\">bold</AA:item><AA:item wide=\"on\">wide</AA:item></AA:order>");
}
