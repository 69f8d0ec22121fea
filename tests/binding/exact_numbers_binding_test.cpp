// Integers of any size and exact decimals bound as elements and attributes,
// both ways, without loss.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

//   <xs:element name="measure">
//     <xs:complexType>
//       <xs:sequence>
//         <xs:element name="count" type="xs:nonNegativeInteger"/>
//         <xs:element name="amount" type="xs:decimal" minOccurs="0"/>
//       </xs:sequence>
//       <xs:attribute name="serial" type="xs:integer" use="required"/>
//       <xs:attribute name="rate" type="xs:decimal"/>
//     </xs:complexType>
//   </xs:element>
class CMeasure : public CGenerated<CMeasure> {
public:
    enum Property { Property_Count, Property_Amount, Property_Serial, Property_Rate };

    CMeasure() { SetElementName("measure"), Init(); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Count: Exchange(count, readAccess, value); break;
        case Property_Amount: Exchange(amount, readAccess, value); break;
        case Property_Serial: Exchange(serial, readAccess, value); break;
        case Property_Rate: Exchange(rate, readAccess, value); break;
        }
    }
    void Init() override
    {
        for (KdVariant* property : {&count, &amount, &serial, &rate})
            property->Clear();
    }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "measure", NAMESPACE,
                                       -1, true, false),
                new CElementInfo*[3]{
                    new CElementInfoSeqPrimMnd("count", NAMESPACE, Property_Count, ItemType_integer, nullptr,
                                               kCollapse, kNoFacets),
                    new CElementInfoSeqPrimOpt("amount", NAMESPACE, Property_Amount, ItemType_decimal, nullptr,
                                               kCollapse, kNoFacets),
                    nullptr},
                new CAttributeInfo*[3]{
                    new CAttributeInfoPrimitive("serial", "", Property_Serial, false, ItemType_integer, nullptr,
                                                kCollapse, kNoFacets, nullptr),
                    new CAttributeInfoPrimitive("rate", "", Property_Rate, true, ItemType_decimal, nullptr,
                                                kCollapse, kNoFacets, nullptr),
                    nullptr}};
    }

    KdVariant count, amount, serial, rate;
};

std::string MeasureXml(std::string const& attributes, std::string const& children)
{
    return "<measure xmlns='urn:kdbind:example:po' " + attributes + ">" + children + "</measure>";
}

} // namespace

TEST(ExactNumbersBindingTest, ValuesBeyondMachineTypesRoundTripAsElementsAndAttributes)
{
    CSmartPtr<CMeasure> measure = new CMeasure();
    measure->FromXml(MeasureXml("serial=' -123456789012345678901234567890 ' rate='0.000000000000000000000000000001'",
                                "<count>\n 98765432109876543210987654321\n</count>"
                                "<amount>12345678901234567890.000000000000000001</amount>")
                         .c_str());
    EXPECT_EQ(measure->serial.GetType(), "integer");
    EXPECT_EQ(measure->count.GetInteger().ToString(), "98765432109876543210987654321");
    EXPECT_TRUE(measure->amount.GetDecimal() == CDecimal("12345678901234567890.000000000000000001"));
    EXPECT_EQ(Written(*measure),
              "<AA:measure xmlns:AA=\"urn:kdbind:example:po\" serial=\"-123456789012345678901234567890\" "
              "rate=\"0.000000000000000000000000000001\"><AA:count>98765432109876543210987654321</AA:count>"
              "<AA:amount>12345678901234567890.000000000000000001</AA:amount></AA:measure>");
}

TEST(ExactNumbersBindingTest, BadNumbersFailWithTheParsersMessage)
{
    CSmartPtr<CMeasure> measure = new CMeasure();
    std::string const failure =
        LoadFailure(*measure, MeasureXml("serial='1'", "<count>1</count><amount>1.2.3</amount>"));
    EXPECT_NE(failure.find("The string representing a Decimal, contained an invalid char at position 3 [1.2.3]"),
              std::string::npos)
        << failure;
    EXPECT_NE(LoadFailure(*measure, MeasureXml("serial='12x'", "<count>1</count>")).find("position 2 [12x]"),
              std::string::npos);
}
