// The children of an xs:all: matched in any order without failure, then
// Validate decides what may be missing.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

std::string ContactXml(std::string const& children)
{
    return "<contact xmlns='urn:kdbind:example:po'>" + children + "</contact>";
}

std::string const kMandatory = "Failed to process the element [contact]\nFailed to find the mandatory element ";

} // namespace

TEST(ElementInfoAllTest, MatchesInAnyOrderEachEntryOnceAndStopsAtAnUnknownElement)
{
    CSmartPtr<CContact> contact = new CContact();
    // The model group is offered each element until it takes some.
    contact->FromXml(ContactXml("<priority>low</priority>" + AddressXml("address") +
                                "<age>4</age><name>Ann</name><subtotal>3</subtotal><itemCount>1</itemCount>")
                         .c_str());
    EXPECT_EQ(contact->name.GetString(), "Ann");
    EXPECT_EQ(contact->age.GetI4(), 4);
    EXPECT_EQ(contact->priority.GetI4(), Priority_low);
    EXPECT_EQ(static_cast<CUSAddress*>(contact->address.GetXmlObject().get())->GetName(), "A");
    ASSERT_TRUE(contact->totals.IsValid());
    EXPECT_EQ(static_cast<COrderTotals*>(contact->totals.GetXmlObject().get())->GetSubtotal(), 3);

    EXPECT_EQ(LoadFailure(*contact, ContactXml("<name>a</name><priority>low</priority>" + AddressXml("address") +
                                               "<name>b</name>")),
              "Failed to process the element [contact]\nFailed read all the elements held within the element "
              "[contact]. The unexpected element [name] remains un processed");
    // Nothing is skipped: what stands behind an unknown element stays unread.
    EXPECT_EQ(LoadFailure(*contact, ContactXml("<name>a</name><unknown/><priority>low</priority>" +
                                               AddressXml("address")),
                          With(&Context::SetIgnoreUnknownElements)),
              kMandatory + "[priority]");
    // An optional model group that consumed nothing stays unset.
    EXPECT_FALSE(contact->totals.IsValid());
}

TEST(ElementInfoAllTest, MissingMandatoryFailsWhateverTheOptionsInATaggedOwnerOnly)
{
    CSmartPtr<CContact> contact = new CContact();
    for (Context const& context : {Context(), With(&Context::SetIgnoreMissingMandatoryElements)}) {
        EXPECT_EQ(LoadFailure(*contact, ContactXml("<name>a</name>" + AddressXml("address")), context),
                  kMandatory + "[priority]");
        EXPECT_EQ(LoadFailure(*contact, ContactXml("<name>a</name><priority>low</priority>"), context),
                  kMandatory + "[address]");
    }
    // Without a tag nothing fails: the walk goes back to where it began.
    CXmlDocument document;
    document.LoadXml(ContactXml("<name>a</name><age>1</age>").c_str());
    CXmlElement* const first = document.GetDocumentElement()->GetFirstElement();
    EXPECT_EQ(contact->ProcessElementAllFromXml(Context::m_defaultContext, document.GetDocumentElement(), first,
                                                XmlElementType_PseudoChild),
              first);
}

TEST(ElementInfoAllTest, ValidateOfAMandatoryClassWeighsItsElementTypeAndRequiredContent)
{
    auto validate = [](CElementInfo const& entry, bool found, bool ownerIsElement) {
        std::string result;
        std::string const failure = Failure([&] {
            result = entry.Validate(Context::m_defaultContext, nullptr, found, ownerIsElement) ? "true" : "false";
        });
        return result.empty() ? failure : result;
    };
    auto address = [](XmlElementType type, bool contentRequired) {
        return CElementInfoAllClsMnd("address", NAMESPACE, CContact::Property_Address, type, &CreateObject,
                                     ClassId_USAddress, contentRequired);
    };
    std::string const missing = "Failed to find the mandatory element [address]";
    EXPECT_EQ(validate(address(XmlElementType_Element, false), false, true), "true");
    EXPECT_EQ(validate(address(XmlElementType_Element, true), false, true), missing);
    EXPECT_EQ(validate(address(XmlElementType_PseudoChild, false), false, true), missing);
    EXPECT_EQ(validate(address(XmlElementType_PseudoGroup, false), false, true), "true");
    EXPECT_EQ(validate(address(XmlElementType_PseudoGroup, true), false, true), missing);
    EXPECT_EQ(validate(address(XmlElementType_Element, true), false, false), "false");
    EXPECT_EQ(validate(address(XmlElementType_PseudoChild, true), true, true), "true");

    CContact contact;
    EXPECT_EQ(validate(*EntryOf(contact, "priority"), false, false), "false");
    EXPECT_EQ(validate(*EntryOf(contact, "age"), false, true), "true");
    EXPECT_EQ(validate(*EntryOf(contact, "OrderTotals"), false, true), "true");
}

TEST(ElementInfoAllTest, AbstractChildrenCannotBeRead)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><details/></r>");
    CElementInfoAllAbsClsMnd mandatory("details", NAMESPACE, CDelivery::Property_Details, XmlElementType_Element,
                                       &CProductDetailsFactory::CreateObject, 0);
    CElementInfoAllAbsClsOpt optional("details", NAMESPACE, CDelivery::Property_Details, XmlElementType_Element,
                                      &CProductDetailsFactory::CreateObject);
    for (CElementInfo* entry : std::initializer_list<CElementInfo*>{&mandatory, &optional})
        EXPECT_EQ(Failure([&] { cursor.Offer(entry, *delivery, XmlElementType_Element); }),
                  "AllAbsClsMndElm.ProcessXml, has not been implemented fully, contact support@kdbind.org");
}
