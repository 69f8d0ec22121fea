// Reading the children of an xs:all: matching in any order without failure,
// then Validate deciding what may be missing.
#include <gtest/gtest.h>

#include "binding/element_info_test_types.h"

using namespace ElementInfoTest;

namespace {

// <xs:complexType name="Person"><xs:all>name, age?, colour, home</xs:all>
class CPerson : public CGenerated<CPerson> {
public:
    enum { Property_Name, Property_Age, Property_Colour, Property_Home };

    CPerson() : home(new CAddress()) { SetElementName("person"); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Name:
            if (!readAccess)
                name = value.GetString();
            break;
        case Property_Age:
            if (!readAccess)
                age = value.GetI4();
            break;
        case Property_Colour:
            if (!readAccess)
                colour = value.GetI4();
            break;
        case Property_Home:
            if (readAccess)
                value.SetXmlObject(home);
            break;
        }
    }
    void Init() override { name.clear(), age = colour = -1; }

    static CTables MakeTables()
    {
        auto const preserve = CWhitespaceUtils::WhitespaceRule_Preserve;
        return {new CParentElementInfo(XmlElementGroupType_All, XmlElementType_Element, "person", NAMESPACE, -1, true,
                                       false),
                new CElementInfo*[5]{
                    new CElementInfoAllPrimMnd("name", NAMESPACE, Property_Name, ItemType_string, nullptr, preserve,
                                               NoFacets()),
                    new CElementInfoAllPrimOpt("age", NAMESPACE, Property_Age, ItemType_i4, nullptr, preserve,
                                               NoFacets()),
                    new CElementInfoAllEnumMnd("colour", NAMESPACE, Property_Colour, &ColourToString,
                                               &ColourFromString),
                    new CElementInfoAllClsMnd("home", NAMESPACE, Property_Home, XmlElementType_Element, &CreateObject,
                                              Class_Address, true),
                    nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    std::string name;
    long age = -1;
    long colour = -1;
    CSmartPtr<CAddress> home;
};

std::string LoadFailure(CXmlObjectBase& object, std::string const& xml,
                        CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext)
{
    try {
        std::wstring const wide(xml.begin(), xml.end());
        object.FromXml(wide.c_str(), context);
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

std::string ValidateFailure(CElementInfo const& entry, bool found, bool ownerIsElement)
{
    try {
        return entry.Validate(CXmlSerializationContext::m_defaultContext, nullptr, found, ownerIsElement) ? "true"
                                                                                                         : "false";
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
}

} // namespace

TEST(ElementInfoAllTest, MatchesInAnyOrderEachEntryOnce)
{
    CSmartPtr<CPerson> person = new CPerson();
    person->FromXml("<person xmlns='urn:po'><colour>red</colour><home><street>s</street></home><age>4</age>"
                    "<name>Ann</name></person>");
    EXPECT_EQ(person->name, "Ann");
    EXPECT_EQ(person->age, 4);
    EXPECT_EQ(person->colour, Colour_Red);
    EXPECT_EQ(person->home->street, "s");

    EXPECT_EQ(LoadFailure(*person, "<person xmlns='urn:po'><name>a</name><colour>red</colour><home><street>s</street>"
                                   "</home><name>b</name></person>"),
              "Failed to process the element [person]\nFailed read all the elements held within the element "
              "[person]. The unexpected element [name] remains un processed");
}

TEST(ElementInfoAllTest, MissingMandatoryFailsWhateverTheOptions)
{
    CSmartPtr<CPerson> person = new CPerson();
    CXmlSerializationContext ignoreMissing;
    ignoreMissing.SetIgnoreMissingMandatoryElements(true);
    for (CXmlSerializationContext const* context : {&CXmlSerializationContext::m_defaultContext, &ignoreMissing})
        EXPECT_EQ(LoadFailure(*person, "<person xmlns='urn:po'><name>a</name><home><street>s</street></home></person>",
                              *context),
                  "Failed to process the element [person]\nFailed to find the mandatory element [colour]");
}

TEST(ElementInfoAllTest, ValidateOfAMandatoryClassWeighsTheElementTypeAndRequiredContent)
{
    auto entry = [](XmlElementType type, bool contentRequired) {
        return CElementInfoAllClsMnd("home", NAMESPACE, CPerson::Property_Home, type, &CreateObject, Class_Address,
                                     contentRequired);
    };
    char const kMissing[] = "Failed to find the mandatory element [home]";
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_Element, false), false, true), "true");
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_Element, true), false, true), kMissing);
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_PseudoChild, false), false, true), kMissing);
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_PseudoGroup, false), false, true), "true");
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_PseudoGroup, true), false, true), kMissing);
    // In a pseudo owner nothing fails: the walk gives up instead.
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_Element, true), false, false), "false");
    EXPECT_EQ(ValidateFailure(entry(XmlElementType_PseudoChild, true), true, true), "true");

    CElementInfoAllEnumMnd colour("colour", NAMESPACE, 0, &ColourToString, &ColourFromString);
    EXPECT_EQ(ValidateFailure(colour, false, false), "false");
    EXPECT_EQ(ValidateFailure(colour, false, true), "Failed to find the mandatory element [colour]");
    CElementInfoAllPrimOpt age("age", NAMESPACE, 0, ItemType_i4, nullptr, CWhitespaceUtils::WhitespaceRule_None,
                               NoFacets());
    EXPECT_EQ(ValidateFailure(age, false, true), "true");
}

TEST(ElementInfoAllTest, LeavesDeclineWhatIsNotTheirs)
{
    CEntryCall call("<order xmlns='urn:po'><note/><count>3</count></order>");
    CElementInfoAllPrimMnd id("id", NAMESPACE, COrder::Property_Id, ItemType_i4, nullptr,
                              CWhitespaceUtils::WhitespaceRule_Collapse, NoFacets());
    CElementInfoAllClsOpt totals("OrderTotals", NAMESPACE, COrder::Property_Extra, XmlElementType_PseudoChild,
                                 &CreateObject, Class_OrderTotals);
    EXPECT_FALSE(call.Offer(&id, XmlElementType_Element));
    // An optional pseudo child that consumes nothing stays unset.
    EXPECT_FALSE(call.Offer(&totals, XmlElementType_Element));
    EXPECT_FALSE(call.order->extra);
    EXPECT_EQ(call.cursor, call.Child(0));

    call.cursor = call.Child(1);
    EXPECT_TRUE(call.Offer(&totals, XmlElementType_Element));
    ASSERT_TRUE(call.order->extra);
    EXPECT_EQ(call.cursor, nullptr);
    EXPECT_FALSE(call.Offer(&totals, XmlElementType_Element));
}

TEST(ElementInfoAllTest, AbstractChildrenCannotBeRead)
{
    CEntryCall call("<order xmlns='urn:po'><shape kind='circle'/></order>");
    CElementInfoAllAbsClsMnd mandatory("shape", NAMESPACE, COrder::Property_Shape, XmlElementType_Element,
                                       &CreateShape, 0);
    CElementInfoAllAbsClsOpt optional("shape", NAMESPACE, COrder::Property_Shape, XmlElementType_Element,
                                      &CreateShape);
    char const kMessage[] = "AllAbsClsMndElm.ProcessXml, has not been implemented fully, contact support@kdbind.org";
    EXPECT_EQ(call.Failure(&mandatory, XmlElementType_Element), kMessage);
    EXPECT_EQ(call.Failure(&optional, XmlElementType_Element), kMessage);
}

TEST(ElementInfoAllTest, CollectionTakesWhatItCanAndNeverReportsDone)
{
    // No Validate: the class cannot be instantiated, so borrow its reading
    // through a leaf that completes it.
    class CItems : public CElementInfoAllClsCol {
    public:
        CItems() : CElementInfoAllClsCol("item", NAMESPACE, COrder::Property_Items, XmlElementType_Element) {}
        bool Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const override
        {
            return true;
        }
    } items;
    CEntryCall call("<order xmlns='urn:po'><item/><item/><item/><item/><note/></order>");
    EXPECT_FALSE(call.Offer(&items, XmlElementType_Element));
    EXPECT_EQ(call.order->items->GetCount(), 4);
    EXPECT_EQ(call.cursor, call.Child(4));
}
