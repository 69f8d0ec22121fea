// The setter guards and the choice book-keeping that generated classes build
// on, shown through a choice class written as the schema compiler writes one:
//   <xs:choice><xs:element name="card" type="LineItem"/>
//              <xs:element name="item" type="LineItem" maxOccurs="3"/></xs:choice>
#include <gtest/gtest.h>

#include "binding/collection_test_types.h"

using namespace CollectionTest;

namespace {

class CPayment : public CLineItem {
public:
    CPayment() : m_vouchers(new CLineItemCol) { m_vouchers->AddEventListener(this); }
    ~CPayment() override { m_vouchers->RemoveEventListener(this); }

    void SetCard(CLineItem* value)
    {
        Throw_IfElementNameDiffers(value, "card");
        Choice_SelectElement("Card", value, m_selected);
        m_card = value;
    }
    CLineItemCol& GetVouchers() { return *m_vouchers; }
    std::string const& Selected() const { return m_selected; }

    // Refusing at the add event stops the add; the change event clears the
    // selection when the collection empties.
    void OnEvent(CXmlObjectBase* source, MsgType type, void*) override
    {
        if (source != m_vouchers.get())
            return;
        if (type == MsgType_ItemAdding)
            Choice_CollectionChanged("Vouchers", m_vouchers->GetCount() + 1, m_selected);
        else if (type == MsgType_CollectionChanged)
            Choice_CollectionChanged("Vouchers", m_vouchers->GetCount(), m_selected);
    }

    // The helpers themselves, for the cases the setters above do not reach.
    using CXmlObjectBase::Choice_CollectionChanged;
    using CXmlObjectBase::Choice_Read_Collection;
    using CXmlObjectBase::Choice_SetElementValid;
    using CXmlObjectBase::Throw_IfPropertyIsNull;

private:
    CSmartPtr<CLineItem> m_card;
    CSmartPtr<CLineItemCol> m_vouchers;
    std::string m_selected;
};

} // namespace

TEST(ChoiceHelpersTest, OneAlternativeAtATimeThroughSettersAndCollectionEvents)
{
    CPayment payment;
    CSmartPtr<CLineItem> card = new CLineItem("c");
    card->SetElementName("card");
    payment.SetCard(card);
    EXPECT_EQ(payment.Selected(), "Card");
    CSmartPtr<CLineItem> voucher = new CLineItem("v");  // a refused item stays with its holder
    EXPECT_EQ(MessageOf([&] { payment.GetVouchers().Add(voucher); }),
              "The Property [Card] is already set. Only one element within this class bay be set at a time");
    EXPECT_EQ(payment.GetVouchers().GetCount(), 0);

    payment.SetCard(nullptr);
    EXPECT_EQ(payment.Selected(), "");
    payment.GetVouchers().Add(voucher);
    EXPECT_EQ(payment.Selected(), "Vouchers");
    EXPECT_EQ(MessageOf([&] { payment.SetCard(card); }),
              "The Property [Vouchers] is already set. Only one element within this class bay be set at a time");
    EXPECT_EQ(payment.Selected(), "Vouchers");
    payment.SetCard(nullptr);  // clearing another alternative is ignored
    EXPECT_EQ(payment.Selected(), "Vouchers");

    payment.GetVouchers().Clear();
    EXPECT_EQ(payment.Selected(), "");
    payment.SetCard(nullptr);  // clearing with nothing selected selects
    EXPECT_EQ(payment.Selected(), "Card");
}

TEST(ChoiceHelpersTest, GuardsAndTheirMessages)
{
    CPayment payment;
    CLineItem named;  // element name "item"
    EXPECT_EQ(MessageOf([&] { payment.Throw_IfPropertyIsNull(nullptr, "ShipTo"); }),
              "The Property [ShipTo] is mandatory, it may node be NULL");
    EXPECT_EQ(MessageOf([&] { payment.SetCard(&named); }),
              "This property requrires an element with the name card the element being set has the element name "
              "item");

    // Marking valid confirms a selection and never makes one: an empty
    // selector fails too, in the wording without brackets.
    std::string selected;
    EXPECT_EQ(MessageOf([&] { payment.Choice_SetElementValid(true, "Card", selected); }),
              "The Property  is already set. Only one element within this class bay be set at a time");
    payment.Choice_SetElementValid(false, "Card", (selected = "Other"));
    EXPECT_EQ(selected, "");

    selected = "Other";
    payment.Choice_CollectionChanged("Vouchers", 0, selected);
    EXPECT_THROW(payment.Choice_CollectionChanged("Vouchers", 1, selected), CKdInvalidStateException);
    EXPECT_EQ(selected, "Other");
}

TEST(ChoiceHelpersTest, ReadingACollectionAlternative)
{
    CXmlDocument document;
    document.LoadXml("<pay xmlns='urn:po'><item>1</item><item>2</item><other/><item/><item/><item/><item/></pay>");
    CXmlElement* const pay = document.GetDocumentElement();
    CXmlElement* const first = pay->GetFirstElement();
    CXmlElement* const other = first->GetNextSiblingElement()->GetNextSiblingElement();
    CXmlSerializationContext context;
    CPayment payment;
    CLineItemCol items, tooMany;

    long count = 1;  // an earlier alternative already took elements
    CXmlElement* cursor = first;
    payment.Choice_Read_Collection(&items, pay, cursor, count, context);
    EXPECT_EQ(cursor, first);
    count = 0;
    payment.Choice_Read_Collection(&items, pay, cursor, count, context);
    EXPECT_EQ(cursor, other);
    EXPECT_EQ(items.GetCount(), 2);
    EXPECT_EQ(count, 1);
    count = 0;
    payment.Choice_Read_Collection(&items, pay, cursor, count, context);  // nothing to take
    EXPECT_EQ(cursor, other);
    EXPECT_EQ(count, 0);

    // Too many: the cursor has moved on when the count check fails.
    cursor = other->GetNextSiblingElement();
    EXPECT_THROW(payment.Choice_Read_Collection(&tooMany, pay, cursor, count, context), CKdValidationException);
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(count, 0);
}
