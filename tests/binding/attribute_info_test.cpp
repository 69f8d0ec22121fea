// The attribute entries: defaults on output, namespaces and conversions on
// input, the check of required attributes, and the wildcard's refusals.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

// An invoice with its required attributes set.
CSmartPtr<CInvoice> NewInvoice()
{
    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->id.SetUI4(7);
    invoice->priority.SetI4(Priority_normal);
    return invoice;
}

std::string const kOpen = "<AA:invoice xmlns:AA=\"urn:kdbind:example:po\" id=\"7\" ";
std::string const kAttributesFailed = "Failed to convert the element [invoice] to XML\nFailed to convert attributes "
                                      "to XML\n";

// The root of this document carries the attributes under test.
struct AttributeInfoInputTest : ::testing::Test {
    CXmlAttribute* Attribute(char const* name, char const* uri) const
    {
        for (CXmlAttribute* attribute : cursor.document.GetDocumentElement()->GetAttributes())
            if (attribute->GetLocalName() == name && attribute->GetNamespaceURI() == uri)
                return attribute;
        return nullptr;
    }
    bool Take(char const* entry, char const* name, char const* uri,
              Context const& context = Context::m_defaultContext)
    {
        return AttributeOf(*invoice, entry)->AttributeFromXml(context, invoice, Attribute(name, uri));
    }

    CCursor cursor{"<invoice xmlns='urn:kdbind:example:po' xmlns:x='urn:ext' xmlns:p='urn:kdbind:example:po' "
                   "id=' 42 ' rate='abc' lang='fr' x:lang='en' x:priority='urgent' status='low' x:status='bad' "
                   "x:any='1' p:code='2'/>"};
    CSmartPtr<CInvoice> invoice = new CInvoice();
};

} // namespace

TEST(AttributeInfoTest, OptionalAttributesAtTheirDefaultTextAreLeftOutOnRequest)
{
    CSmartPtr<CInvoice> invoice = NewInvoice();
    invoice->status.SetI4(Priority_normal);
    Context const quiet = With(&Context::SetNoOptionalAttributeDefaultOutput);
    EXPECT_EQ(Written(*invoice), kOpen + "status=\"normal\" priority=\"normal\"/>");
    // A required attribute stays although it equals its default.
    EXPECT_EQ(Written(*invoice, quiet), kOpen + "priority=\"normal\"/>");
    // Texts are compared, not values: 1, written "1", is not the default "1.0".
    invoice->rate.SetR8(1.0);
    invoice->lang.SetString("en");
    EXPECT_EQ(Written(*invoice, quiet),
              kOpen + "rate=\"1\" xmlns:AB=\"urn:ext\" AB:lang=\"en\" priority=\"normal\"/>");
}

TEST(AttributeInfoTest, UnsetOrUnnamedRequiredValuesFailOnOutput)
{
    CSmartPtr<CInvoice> invoice = NewInvoice();
    invoice->id.Clear();
    EXPECT_EQ(Failure([&] { Written(*invoice); }), kAttributesFailed + "Invalid Type 0 to convert to string");

    // A generated function that has no name for a value.
    CAttributeInfoEnum unnamed("priority", "", CInvoice::Property_Priority, false,
                               [](int) -> char const* { return nullptr; }, &PriorityFromString, nullptr);
    EXPECT_EQ(Failure([&] { WrittenBy([&](CXmlWriter* writer) {
                  unnamed.AttributeToXml(Context::m_defaultContext, invoice, writer);
              }); }),
              "Invalid Value for priority [1]");
}

TEST_F(AttributeInfoInputTest, PrimitivesConvertInTheirOwnNamespaceOnly)
{
    EXPECT_TRUE(Take("id", "id", ""));
    EXPECT_EQ(invoice->id.GetItemType(), ItemType_ui4);
    EXPECT_EQ(invoice->id.GetUI4(), 42u);
    EXPECT_FALSE(Take("id", "lang", ""));
    EXPECT_FALSE(Take("lang", "lang", ""));
    EXPECT_TRUE(Take("lang", "lang", "urn:ext"));
    EXPECT_EQ(invoice->lang.GetString(), "en");

    // Ignoring namespaces does not reach primitive attributes.
    invoice->lang.Clear();
    EXPECT_FALSE(Take("lang", "lang", "", With(&Context::SetIgnoreNamespaces)));
    EXPECT_FALSE(invoice->lang.IsValid());
    // A conversion failure passes through and leaves the property alone.
    EXPECT_THROW(Take("rate", "rate", ""), CKdException);
    EXPECT_FALSE(invoice->rate.IsValid());
}

TEST_F(AttributeInfoInputTest, EnumerationsMapTheTextAndMayIgnoreNamespaces)
{
    EXPECT_TRUE(Take("status", "status", ""));
    EXPECT_EQ(invoice->status.GetItemType(), ItemType_i4);
    EXPECT_EQ(invoice->status.GetI4(), Priority_low);

    Context schemaType2;
    schemaType2.SetSchemaType(SchemaType_IgnoreNamespaces);
    EXPECT_FALSE(Take("priority", "priority", "urn:ext"));
    EXPECT_TRUE(Take("priority", "priority", "urn:ext", With(&Context::SetIgnoreNamespaces)));
    EXPECT_EQ(invoice->priority.GetI4(), Priority_urgent);
    EXPECT_TRUE(Take("priority", "priority", "urn:ext", schemaType2));
    EXPECT_FALSE(AttributeOf(*invoice, "priority")->AttributeFromXml(schemaType2, invoice, nullptr));

    // Text outside the enumeration fails in the generated function.
    invoice->status.Clear();
    EXPECT_EQ(Failure([&] { Take("status", "status", "urn:ext", schemaType2); }),
              "Invalid value [bad] for the enumeration [Priority]");
    EXPECT_FALSE(invoice->status.IsValid());
}

TEST(AttributeInfoTest, OnlyAMissingRequiredAttributeFailsAndNoDefaultIsFilledIn)
{
    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->FromXml("<invoice xmlns='urn:kdbind:example:po' id='1' priority='low'/>");
    EXPECT_FALSE(invoice->rate.IsValid());
    EXPECT_FALSE(invoice->status.IsValid());

    // No option of the context relaxes the check.
    Context const lenient = With(&Context::SetIgnoreUnknownAttributes, &Context::SetIgnoreMissingMandatoryElements);
    EXPECT_EQ(Failure([&] { AttributeOf(*invoice, "priority")->Validate(lenient, false); }),
              "Failed to find the required Attribute [priority]");
    EXPECT_EQ(LoadFailure(*invoice, "<invoice xmlns='urn:kdbind:example:po' priority='low'/>", lenient),
              "Failed to process the element [invoice]\nFailed to find the required Attribute [id]");
    EXPECT_NO_THROW(AttributeOf(*invoice, "status")->Validate(lenient, false));
    // The wildcard is declared required here, yet it can never be missing.
    EXPECT_NO_THROW(AttributeOf(*invoice, "")->Validate(lenient, false));
}

TEST_F(AttributeInfoInputTest, WildcardRefusesByFailing)
{
    std::string const dataError = "Serialization Data Error : The collection should be a CAttributeCol, it was not!";
    EXPECT_EQ(Failure([&] { Take("", "any", "urn:ext"); }), dataError);
    invoice->extra.SetString("not a collection");
    EXPECT_EQ(Failure([&] { Take("", "any", "urn:ext"); }), dataError);
    // The namespace is tested before the property.
    EXPECT_EQ(Failure([&] { Take("", "code", NAMESPACE); }),
              "Invalid namespace [urn:kdbind:example:po]. The namespace must be one of [##other] where the target "
              "namespace is [urn:kdbind:example:po]");
    EXPECT_THROW(Take("", "code", NAMESPACE), CKdInvalidNamespaceException);

    // On output an unset wildcard writes nothing; another kind is the same data error.
    CSmartPtr<CInvoice> written = NewInvoice();
    EXPECT_EQ(Written(*written), kOpen + "priority=\"normal\"/>");
    written->extra.SetI4(3);
    EXPECT_EQ(Failure([&] { Written(*written); }), kAttributesFailed + dataError);
}
