// The attribute entries, through a class written the way the schema compiler
// writes one: tables built once per class, properties reached by number.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <kdbind/kdbind.h>

using namespace KdBind;
using namespace KdBindData;

namespace {

char const* PriorityToString(int value)
{
    switch (value) {
    case 0: return "low";
    case 1: return "normal";
    case 2: return "high";
    default: return nullptr;
    }
}

int PriorityFromString(char const* text)
{
    for (int value = 0; value < 3; ++value) {
        if (std::strcmp(PriorityToString(value), text) == 0)
            return value;
    }
    throw CKdInvalidValueException(FormatString("Invalid Priority [%s]", text));
}

enum OrderProperty { Id = 1, Currency, Rate, Lang, Status, Priority, Extra };

// <order xmlns="urn:po"> with attributes of every kind; the wildcard stands last.
class COrder : public CXmlGeneratedClass {
public:
    COrder() { SetElementName("order"); }

    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return "urn:po"; }
    std::string GetNamespace() const override { return "urn:po"; }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        KdVariant* property = nullptr;
        switch (propertyId) {
        case Id: property = &m_id; break;
        case Currency: property = &m_currency; break;
        case Rate: property = &m_rate; break;
        case Lang: property = &m_lang; break;
        case Status: property = &m_status; break;
        case Priority: property = &m_priority; break;
        case Extra: property = &m_extra; break;
        default: return;
        }
        if (readAccess)
            value = *property;
        else
            *property = value;
    }

    CParentElementInfo* GetClassInfo() const override { return Tables().info; }
    CElementInfo** GetClassElementInfo() const override { return Tables().elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return Tables().attributes; }
    void Init() override
    {
        for (KdVariant* property : {&m_id, &m_currency, &m_rate, &m_lang, &m_status, &m_priority, &m_extra})
            property->Clear();
    }

    static CAttributeInfo* Entry(int propertyId) { return Tables().attributes[propertyId - 1]; }

    KdVariant m_id, m_currency, m_rate, m_lang, m_status, m_priority, m_extra;

private:
    struct CTables {
        CParentElementInfo* info;
        CElementInfo** elements;
        CAttributeInfo** attributes;

        CTables()
        {
            info = new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "order", "urn:po",
                                          -1, true, false);
            elements = new CElementInfo*[1]{nullptr};
            CPrimitiveRestrictions const none;
            attributes = new CAttributeInfo*[8]{
                new CAttributeInfoPrimitive("id", "", Id, false, ItemType_ui4, nullptr,
                                            CWhitespaceUtils::WhitespaceRule_Collapse, none, nullptr),
                new CAttributeInfoPrimitive("currency", "", Currency, true, ItemType_string, nullptr,
                                            CWhitespaceUtils::WhitespaceRule_Preserve, none, "EUR"),
                new CAttributeInfoPrimitive("rate", "", Rate, true, ItemType_r8, nullptr,
                                            CWhitespaceUtils::WhitespaceRule_Collapse, none, "1.0"),
                new CAttributeInfoPrimitive("lang", "urn:ext", Lang, true, ItemType_string, nullptr,
                                            CWhitespaceUtils::WhitespaceRule_Preserve, none, nullptr),
                new CAttributeInfoEnum("status", "", Status, true, PriorityToString, PriorityFromString, "normal"),
                // Required, with a default that only an optional attribute may drop.
                new CAttributeInfoEnum("priority", "", Priority, false, PriorityToString, PriorityFromString,
                                       "normal"),
                new CAttributeInfoAny("", "", Extra, false, "##other", "urn:po", nullptr),
                nullptr};
        }
        ~CTables() { CleanMetaData(info, elements, attributes); }
    };

    static CTables& Tables()
    {
        static CTables tables;
        return tables;
    }
};

// An order with its required attributes set.
CSmartPtr<COrder> NewOrder()
{
    CSmartPtr<COrder> order = new COrder;
    order->m_id.SetUI4(7);
    order->m_priority.SetI4(1);
    return order;
}

std::string Write(COrder const& order, bool leaveOutDefaults = false)
{
    CXmlSerializationContext context;
    context.SetNoOptionalAttributeDefaultOutput(leaveOutDefaults);
    return order.ToXml(false, false, EOLType_LF, context);
}

template <class Call>
std::string Failure(Call call)
{
    try {
        call();
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

// A parsed document whose root carries the attributes under test.
class AttributeInfoInputTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_document.LoadXml("<order xmlns='urn:po' xmlns:x='urn:ext' xmlns:p='urn:po' id=' 42 ' rate='abc' lang='fr' x:lang='en' "
                           "x:priority='high' status='low' x:status='urgent' x:any='1' p:code='2'/>");
    }

    CXmlAttribute* Attribute(char const* name, char const* uri) const
    {
        for (CXmlAttribute* attribute : m_document.GetDocumentElement()->GetAttributes()) {
            if (attribute->GetLocalName() == name && attribute->GetNamespaceURI() == uri)
                return attribute;
        }
        ADD_FAILURE() << "no attribute " << name;
        return nullptr;
    }

    bool Take(int propertyId, char const* name, char const* uri,
              CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext)
    {
        return COrder::Entry(propertyId)->AttributeFromXml(context, m_order, Attribute(name, uri));
    }

    CXmlDocument m_document;
    CSmartPtr<COrder> m_order = new COrder;
};

} // namespace

TEST(AttributeInfoTest, OptionalDefaultsAreLeftOutOnRequestQualifiedOnesGetAPrefix)
{
    CSmartPtr<COrder> order = NewOrder();
    order->m_currency.SetString("EUR");
    order->m_status.SetI4(1);
    EXPECT_EQ(Write(*order), "<AA:order xmlns:AA=\"urn:po\" id=\"7\" currency=\"EUR\" status=\"normal\" "
                             "priority=\"normal\"/>");
    // The required priority stays although it equals its default.
    EXPECT_EQ(Write(*order, true), "<AA:order xmlns:AA=\"urn:po\" id=\"7\" priority=\"normal\"/>");

    // Texts are compared, not values: 1, written "1", is not the default "1.0".
    order->m_rate.SetR8(1.0);
    order->m_lang.SetString("en");
    EXPECT_EQ(Write(*order, true), "<AA:order xmlns:AA=\"urn:po\" id=\"7\" rate=\"1\" xmlns:AB=\"urn:ext\" "
                                   "AB:lang=\"en\" priority=\"normal\"/>");
}

TEST(AttributeInfoTest, UnsetRequiredAttributesFailOnOutput)
{
    char const* const path = "Failed to convert the element [order] to XML\nFailed to convert attributes to XML\n";
    CSmartPtr<COrder> order = NewOrder();
    order->m_id.Clear();
    EXPECT_EQ(Failure([&] { Write(*order); }), path + std::string("Invalid Type 0 to convert to string"));

    // An enumeration value that the generated function cannot name.
    order = NewOrder();
    order->m_priority.SetI4(9);
    EXPECT_EQ(Failure([&] { Write(*order); }), path + std::string("Invalid Value for priority [9]"));
}

TEST_F(AttributeInfoInputTest, PrimitiveConvertsWithItsWhitespaceRuleAndRequiresItsOwnNamespace)
{
    EXPECT_TRUE(Take(Id, "id", ""));
    EXPECT_EQ(m_order->m_id.GetItemType(), ItemType_ui4);
    EXPECT_EQ(m_order->m_id.GetUI4(), 42u);

    EXPECT_FALSE(Take(Id, "lang", ""));
    EXPECT_FALSE(Take(Lang, "lang", ""));
    EXPECT_TRUE(Take(Lang, "lang", "urn:ext"));
    EXPECT_EQ(m_order->m_lang.GetString(), "en");

    // Ignoring namespaces does not reach primitive attributes.
    CXmlSerializationContext ignoring;
    ignoring.SetIgnoreNamespaces(true);
    m_order->m_lang.Clear();
    EXPECT_FALSE(Take(Lang, "lang", "", ignoring));
    EXPECT_FALSE(m_order->m_lang.IsValid());

    // A conversion failure passes through and leaves the property alone.
    EXPECT_THROW(Take(Rate, "rate", ""), CKdException);
    EXPECT_FALSE(m_order->m_rate.IsValid());
}

TEST_F(AttributeInfoInputTest, EnumerationMapsTheTextAndMayIgnoreNamespaces)
{
    EXPECT_TRUE(Take(Status, "status", ""));
    EXPECT_EQ(m_order->m_status.GetItemType(), ItemType_i4);
    EXPECT_EQ(m_order->m_status.GetI4(), 0);

    EXPECT_FALSE(Take(Priority, "priority", "urn:ext"));
    CXmlSerializationContext ignoring;
    ignoring.SetIgnoreNamespaces(true);
    EXPECT_TRUE(Take(Priority, "priority", "urn:ext", ignoring));
    EXPECT_EQ(m_order->m_priority.GetI4(), 2);
    CXmlSerializationContext schemaType2;
    schemaType2.SetSchemaType(SchemaType_IgnoreNamespaces);
    EXPECT_TRUE(Take(Priority, "priority", "urn:ext", schemaType2));

    EXPECT_FALSE(COrder::Entry(Priority)->AttributeFromXml(ignoring, m_order, nullptr));

    // Text outside the enumeration fails in the generated function.
    m_order->m_status.Clear();
    EXPECT_EQ(Failure([&] { Take(Status, "status", "urn:ext", ignoring); }), "Invalid Priority [urgent]");
    EXPECT_FALSE(m_order->m_status.IsValid());
}

TEST(AttributeInfoTest, ValidateFailsOnlyForMissingRequiredAttributes)
{
    // No option of the context relaxes the check.
    CXmlSerializationContext lenient;
    lenient.SetIgnoreUnknownAttributes(true);
    lenient.SetIgnoreMissingMandatoryElements(true);
    EXPECT_EQ(Failure([&] { COrder::Entry(Priority)->Validate(lenient, false); }),
              "Failed to find the required Attribute [priority]");
    EXPECT_THROW(COrder::Entry(Id)->Validate(lenient, false), CKdValidationException);
    EXPECT_NO_THROW(COrder::Entry(Id)->Validate(lenient, true));
    EXPECT_NO_THROW(COrder::Entry(Currency)->Validate(lenient, false));
    EXPECT_NO_THROW(COrder::Entry(Status)->Validate(lenient, false));
    // The wildcard is declared required here, yet it can never be missing.
    EXPECT_NO_THROW(COrder::Entry(Extra)->Validate(lenient, false));
}

TEST(AttributeInfoTest, DocumentRoundTripAndMissingRequiredAttribute)
{
    CSmartPtr<COrder> order = NewOrder();
    order->m_lang.SetString("en");
    order->m_status.SetI4(2);
    CSmartPtr<COrder> copy = new COrder;
    copy->FromXml(Write(*order).c_str());
    EXPECT_EQ(copy->m_id.GetUI4(), 7u);
    EXPECT_EQ(copy->m_lang.GetString(), "en");
    EXPECT_EQ(copy->m_status.GetI4(), 2);
    EXPECT_EQ(copy->m_priority.GetI4(), 1);
    // The engine never fills in a default.
    EXPECT_FALSE(copy->m_currency.IsValid());

    EXPECT_EQ(Failure([&] { copy->FromXml("<order id='1'/>"); }),
              "Failed to process the element [order]\nFailed to find the required Attribute [priority]");
}

TEST_F(AttributeInfoInputTest, WildcardRefusesAPropertyThatIsNoAttributeCollection)
{
    char const* const dataError = "Serialization Data Error : The collection should be a CAttributeCol, it was not!";
    CAttributeInfo* any = COrder::Entry(Extra);
    CXmlAttribute* attribute = Attribute("any", "urn:ext");
    EXPECT_EQ(Failure([&] { any->AttributeFromXml(CXmlSerializationContext::m_defaultContext, m_order, attribute); }),
              dataError);
    m_order->m_extra.SetString("not a collection");
    EXPECT_EQ(Failure([&] { any->AttributeFromXml(CXmlSerializationContext::m_defaultContext, m_order, attribute); }),
              dataError);
    // The namespace is tested before the property: a wildcard refuses by failing.
    CXmlAttribute* inTarget = Attribute("code", "urn:po");
    EXPECT_EQ(Failure([&] { any->AttributeFromXml(CXmlSerializationContext::m_defaultContext, m_order, inTarget); }),
              "Invalid namespace [urn:po]. The namespace must be one of [##other] where the target namespace is "
              "[urn:po]");
    EXPECT_THROW(any->AttributeFromXml(CXmlSerializationContext::m_defaultContext, m_order, inTarget),
                 CKdInvalidNamespaceException);

    // On output an unset wildcard writes nothing; another kind is the same data error.
    CSmartPtr<COrder> order = NewOrder();
    EXPECT_EQ(Write(*order), "<AA:order xmlns:AA=\"urn:po\" id=\"7\" priority=\"normal\"/>");
    order->m_extra.SetI4(3);
    EXPECT_EQ(Failure([&] { Write(*order); }),
              "Failed to convert the element [order] to XML\nFailed to convert attributes to XML\n" +
                  std::string(dataError));
}
