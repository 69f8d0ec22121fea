// Untyped content: the generic element and attribute classes, the wildcard
// leaves that make and read them, objects turned into trees and back, the
// additional root attributes, and trees deeper than any stack.
#include <gtest/gtest.h>

#include <thread>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

std::string const kForeign = "urn:foreign";

// <envelope>: header, an optional unqualified signature of any content, then
// any number of elements; attributes of other namespaces.
class CEnvelope : public CGenerated<CEnvelope> {
public:
    enum Property { Property_Header, Property_Signature, Property_Any, Property_Extra };

    CEnvelope() { SetElementName("envelope"), Init(); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Header: Exchange(header, readAccess, value); break;
        case Property_Signature: Exchange(signature, readAccess, value); break;
        case Property_Any:
            if (readAccess)
                value.SetXmlCollection(any);
            break;
        case Property_Extra:
            if (readAccess)
                value.SetXmlCollection(extra);
            break;
        }
    }
    void Init() override
    {
        header.Clear(), signature.Clear();
        any = new CElementCol("", "##other", NAMESPACE, 0, -1);
        extra = new CAttributeCol("", "##other", NAMESPACE);
    }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "envelope", NAMESPACE,
                                       -1, true, false),
                new CElementInfo*[4]{
                    new CElementInfoSeqPrimMnd("header", NAMESPACE, Property_Header, ItemType_string, nullptr,
                                               kPreserve, kNoFacets),
                    new CElementInfoSeqUntpdOpt("signature", "", Property_Signature, "##local", NAMESPACE),
                    new CElementInfoSeqUntpdCol("AnyElement", "", Property_Any),
                    nullptr},
                new CAttributeInfo*[2]{
                    new CAttributeInfoAny("", "", Property_Extra, true, "##other", NAMESPACE, nullptr), nullptr}};
    }

    KdVariant header, signature;
    CSmartPtr<CElementCol> any;
    CSmartPtr<CAttributeCol> extra;
};

// <choice>: a pickup, or any one element of the target namespace.
class CAlternative : public CGenerated<CAlternative> {
public:
    enum Property { Property_Pickup, Property_Any };

    CAlternative() { SetElementName("choice"); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        Exchange(propertyId == Property_Pickup ? pickup : any, readAccess, value);
    }
    void Init() override {}
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_Element, "choice", NAMESPACE, -1,
                                       true, false),
                new CElementInfo*[3]{
                    new CElementInfoChoicePrimOpt("pickup", NAMESPACE, Property_Pickup, ItemType_string, nullptr,
                                                  kPreserve, kNoFacets),
                    new CElementInfoChoiceUntpdOpt("AnyElement", "", Property_Any, "##targetNamespace", NAMESPACE),
                    nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    KdVariant pickup, any;
};

std::string EnvelopeXml(std::string const& children, std::string const& attributes = "")
{
    return "<envelope xmlns='urn:kdbind:example:po'" + attributes + "><header>h</header>" + children +
           "</envelope>";
}

CElement* ElementIn(KdVariant const& value) { return static_cast<CElement*>(value.GetXmlObject().get()); }

} // namespace

TEST(UntypedContentTest, NamespacesAreCheckedWhenContentIsMadeOrAdded)
{
    EXPECT_EQ(Failure([] { CElement("a", "##any"); }), "Invalid Namespace [##any]");
    EXPECT_THROW(CElement("a", "##other"), CKdInvalidNamespaceException);
    EXPECT_EQ(Failure([] { CElement(nullptr, "", "##any", ""); }), "Element Name must have a value");
    EXPECT_EQ(Failure([] { CElement("a", "", nullptr, ""); }), "Namespace Restriction must have a value");
    EXPECT_EQ(Failure([] { CElement("a", "", "##any", nullptr); }), "Target Namespace must have a value");
    // The element must fit its own restriction; its content is open.
    EXPECT_THROW(CElement("a", NAMESPACE, "##other", NAMESPACE), CKdInvalidNamespaceException);
    CSmartPtr<CElement> local = new CElement("a", "", "##local", NAMESPACE);
    EXPECT_NO_THROW(local->GetChildren()->Add("b", NAMESPACE));
    EXPECT_NO_THROW(local->GetAttributes()->Add("c", "v", NAMESPACE));
    EXPECT_THROW(local->SetNamespace(kForeign.c_str()), CKdInvalidNamespaceException);

    // A collection keeps no occurs and opens its restriction; a keyword
    // restriction names the namespace of new elements.
    CSmartPtr<CElementCol> col = new CElementCol("", "##other", NAMESPACE, 3, 5);
    EXPECT_EQ(col->GetMinOccurs(), 0);
    EXPECT_EQ(col->GetMaxOccurs(), -1);
    EXPECT_EQ(col->GetNamespaceRestriction(), "##any");
    EXPECT_EQ(col->Add("x")->GetNamespace(), "##other");
    EXPECT_EQ(col->Add("y", NAMESPACE)->GetNamespace(), NAMESPACE);
    EXPECT_EQ(col->GetNamespace(), NAMESPACE);
    CSmartPtr<CElementCol> plain = new CElementCol("", "urn:a", "", 0, -1);
    EXPECT_EQ(Failure([&] { plain->Add("x"); }), "A Namespace has not been set for this Collection");
    EXPECT_THROW(plain->Add("x"), CKdInvalidStateException);
    EXPECT_EQ(Failure([&] { plain->Item(0); }), "Index 0 is out of range, use 0 - 0");

    // Attributes: only Add(CAttribute*) skips the test.
    CSmartPtr<CAttributeCol> attributes = new CAttributeCol("", "##other", NAMESPACE);
    EXPECT_THROW(attributes->Add("a", "1", NAMESPACE), CKdInvalidNamespaceException);
    EXPECT_EQ(attributes->Add(new CAttribute("a", "1", NAMESPACE))->GetNamespace(), NAMESPACE);
    EXPECT_EQ(attributes->Add("b")->GetValue(), "");
    EXPECT_EQ(attributes->GetCount(), 2);
    EXPECT_EQ(CSmartPtr<CAttributeCol>(new CAttributeCol("", "urn:a urn:b", ""))->GetNamespace(), "urn:a");
    EXPECT_EQ(CSmartPtr<CAttributeCol>(new CAttributeCol("", "##any", ""))->GetNamespace(), "");
    CSmartPtr<CAttribute> lone = new CAttribute("a", "1", "");
    EXPECT_EQ(Failure([&] { CXmlObjectBase::FromXml_Int(lone, nullptr, nullptr, Context::m_defaultContext); }),
              "This should be done by the collection");
}

TEST(UntypedContentTest, ElementsWriteAndReadNamesNamespacesAttributesChildrenAndText)
{
    CSmartPtr<CElement> root = new CElement("root", kForeign.c_str());
    // Without a namespace of their own, attributes take the element's.
    root->GetAttributes()->Add("id", "7");
    root->GetAttributes()->Add("n", "1", "");
    root->GetAttributes()->Add("lang", "en", "urn:other");
    CSmartPtr<CElement> child = root->GetChildren()->Add("child", kForeign.c_str());
    child->SetText("a < b");
    child->GetChildren()->Add("leaf", "");
    root->SetText("tail");
    // The text follows the children.
    std::string const xml = Written(*root);
    EXPECT_EQ(xml, "<AA:root xmlns:AA=\"urn:foreign\" AA:id=\"7\" n=\"1\" xmlns:AB=\"urn:other\" AB:lang=\"en\">"
                   "<AA:child><leaf/>a &lt; b</AA:child>tail</AA:root>");

    CSmartPtr<CElement> read = new CElement("x");
    read->FromXml(xml.c_str());
    EXPECT_EQ(Written(*read), xml);
    EXPECT_EQ(read->GetName(), "root");
    EXPECT_EQ(read->GetNamespace(), kForeign);
    EXPECT_EQ(read->GetAttributes()->Item(2)->GetNamespace(), "urn:other");
    EXPECT_EQ(read->GetChildren()->Item(0)->GetChildren()->Item(0)->GetName(), "leaf");

    // A restriction that refuses the element reads nothing.
    CSmartPtr<CElement> refusing = new CElement("x", "", "##local", "");
    refusing->FromXml(xml.c_str());
    EXPECT_EQ(refusing->GetName(), "x");
    EXPECT_EQ(refusing->GetChildren()->GetCount(), 0);

    // Clones are deep and independent, without the default namespace.
    root->SetDefaultNamespace("urn:default");
    CSmartPtr<CElement> copy = root->Clone();
    root->SetDefaultNamespace("");
    child->SetText("changed");
    EXPECT_EQ(copy->GetDefaultNamespace(), "");
    EXPECT_EQ(Written(*copy), xml);
}

TEST(UntypedContentTest, NewRestrictionsAreOnlyTested)
{
    CSmartPtr<CElement> root = new CElement("root", "", "##any", NAMESPACE);
    root->GetChildren()->Add("inner", NAMESPACE)->GetChildren()->Add("deep", kForeign.c_str());
    EXPECT_NO_THROW(root->SetNamespaceRestrictions("##any", NAMESPACE));
    try {
        root->SetNamespaceRestrictions("##local", NAMESPACE);
        FAIL() << "no exception";
    } catch (CKdInvalidNamespaceException* e) {
        EXPECT_EQ(e->GetMessage(),
                  "The namespace inner in the class urn:kdbind:example:po is invalid against restriction ##local");
        EXPECT_NE(e->GetInnerException(), nullptr);
        delete e;
    }
    EXPECT_EQ(root->GetNamespaceRestriction(), "##any");
    // Attributes fail by value.
    root->GetAttributes()->Add("a", "1", kForeign.c_str());
    EXPECT_THROW(root->SetNamespaceRestrictions("##local", ""), CKdInvalidNamespaceException);
}

TEST(UntypedContentTest, WildcardsPassForeignContentThroughAGeneratedClass)
{
    std::string const foreign =
        "<f:note xmlns:f='urn:foreign' f:lang='en' plain='1'>hi<f:b>bold</f:b><i xmlns=''>x</i></f:note>"
        "<g:more xmlns:g='urn:g'/>";
    CSmartPtr<CEnvelope> envelope = new CEnvelope();
    EXPECT_EQ(LoadFailure(*envelope, EnvelopeXml("<signature xmlns=''>s<k/></signature>" + foreign,
                                                 " xmlns:x='urn:x' x:trace='t1'")),
              "<no exception>");
    ASSERT_NE(ElementIn(envelope->signature), nullptr);
    EXPECT_EQ(ElementIn(envelope->signature)->GetText(), "s");
    ASSERT_EQ(envelope->any->GetCount(), 2);
    CSmartPtr<CElement> note = envelope->any->Item(0);
    EXPECT_EQ(note->GetNamespace(), kForeign);
    EXPECT_EQ(note->GetText(), "hi");
    EXPECT_EQ(note->GetAttributes()->GetCount(), 2);
    EXPECT_EQ(note->GetChildren()->Item(1)->GetNamespace(), "");
    EXPECT_EQ(envelope->extra->Item(0)->GetValue(), "t1");

    // Out and in again, nothing changes.
    std::string const written = Written(*envelope);
    CSmartPtr<CEnvelope> again = new CEnvelope();
    std::wstring const wide(written.begin(), written.end());
    again->FromXml(wide.c_str());
    EXPECT_EQ(Written(*again), written);
    EXPECT_NE(written.find("AB:trace=\"t1\""), std::string::npos) << written;
    EXPECT_NE(written.find(">hi</"), std::string::npos) << written;

    // The signature must be unqualified: a qualified one is left to the
    // collection behind it, which takes anything.
    EXPECT_EQ(LoadFailure(*envelope, EnvelopeXml("<f:signature xmlns:f='urn:foreign'/>")), "<no exception>");
    EXPECT_FALSE(envelope->signature.IsValid());
    EXPECT_EQ(envelope->any->GetCount(), 1);
    // Attributes of the target namespace are refused.
    EXPECT_EQ(LoadFailure(*envelope, EnvelopeXml("", " xmlns:t='urn:kdbind:example:po' t:bad='1'")),
              "Failed to process the element [envelope]\nInvalid namespace [urn:kdbind:example:po]. The namespace "
              "must be one of [##other] where the target namespace is [urn:kdbind:example:po]");
}

TEST(UntypedContentTest, MandatoryAndChoiceWildcardsSayNoByNotConsuming)
{
    // A mandatory wildcard whose element refuses the namespace at the cursor.
    CSmartPtr<CDelivery> owner = new CDelivery();
    owner->details.SetXmlObject(new CElement("AnyElement", "", "##other", NAMESPACE));
    CElementInfoSeqUntpdMnd any("AnyElement", "urn:any", CDelivery::Property_Details, "##other", NAMESPACE);
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><a/><f:b xmlns:f='urn:foreign'>t</f:b></r>");
    EXPECT_EQ(Failure([&] { cursor.Offer(&any, *owner, XmlElementType_Element); }),
              "Failed to find the required element from namespace [urn:any]");
    EXPECT_FALSE(cursor.Offer(&any, *owner, XmlElementType_PseudoChild));
    cursor.at = cursor.Child(1);
    EXPECT_TRUE(cursor.Offer(&any, *owner, XmlElementType_Element));
    EXPECT_EQ(cursor.at, nullptr);
    EXPECT_EQ(ElementIn(owner->details)->GetText(), "t");

    // A named collection takes the run that shares the first one's namespace.
    CSmartPtr<CElementCol> col = new CElementCol("", "##any", "", 0, -1);
    owner->details.SetXmlCollection(col);
    CElementInfoChoiceUntpdCol named("b", "", CDelivery::Property_Details);
    CCursor run("<r><b xmlns='urn:1'/><b xmlns='urn:1'/><b/><c/></r>");
    EXPECT_TRUE(run.Offer(&named, *owner, XmlElementType_Element));
    EXPECT_EQ(col->GetCount(), 2);
    EXPECT_EQ(run.at, run.Child(2));
    run.at = nullptr;
    EXPECT_FALSE(run.Offer(&named, *owner, XmlElementType_Element));

    // A choice alternative that takes nothing is cleared.
    CSmartPtr<CAlternative> choice = new CAlternative();
    choice->any.SetI4(1);
    CCursor other("<r><f:x xmlns:f='urn:foreign'/></r>");
    EXPECT_FALSE(other.Offer(EntryOf(*choice, "AnyElement"), *choice, XmlElementType_Element));
    EXPECT_EQ(ElementIn(choice->any), nullptr);
    EXPECT_EQ(other.at, other.Child(0));
    EXPECT_EQ(LoadFailure(*choice, "<choice xmlns='urn:kdbind:example:po'><thing>t</thing></choice>"),
              "<no exception>");
    EXPECT_EQ(ElementIn(choice->any)->GetName(), "thing");
    EXPECT_EQ(Written(*choice), "<AA:choice xmlns:AA=\"urn:kdbind:example:po\"><AA:thing>t</AA:thing></AA:choice>");
}

TEST(UntypedContentTest, AdditionalRootAttributesAreSharedByLaterCopiesAndWrittenOnTheRoot)
{
    Context before;
    Context context;
    CSmartPtr<CAttributeCol> attributes = context.GetAdditionalRootAttributes();
    EXPECT_EQ(context.GetAdditionalRootAttributes().get(), attributes.get());
    Context after(context);
    attributes->Add("schemaLocation", "urn:kdbind:example:po po.xsd", "http://www.w3.org/2001/XMLSchema-instance");
    EXPECT_EQ(after.GetAdditionalRootAttributes()->GetCount(), 1);
    EXPECT_EQ(before.GetAdditionalRootAttributes()->GetCount(), 0);

    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->id.SetUI4(1);
    invoice->priority.SetI4(0);
    invoice->payment.SetXmlObject(CreateTestObject(ClassId_Payment, "payment"));
    static_cast<CPayment*>(invoice->payment.GetXmlObject().get())->notes->Add(new CNote("n"));
    std::string const xml = Written(*invoice, after);
    EXPECT_EQ(xml.find("<AA:invoice xmlns:AA=\"urn:kdbind:example:po\" xmlns:AB=\"http://www.w3.org/2001/"
                       "XMLSchema-instance\" AB:schemaLocation=\"urn:kdbind:example:po po.xsd\" id=\"1\""),
              0u)
        << xml;
    EXPECT_EQ(xml.find("schemaLocation", 150), std::string::npos) << xml;

    // Threads that ask a fresh context at once agree on one collection.
    for (int round = 0; round < 20; ++round) {
        Context shared;
        CAttributeCol* seen[2] = {};
        std::thread first([&] { seen[0] = shared.GetAdditionalRootAttributes().get(); });
        std::thread second([&] { seen[1] = shared.GetAdditionalRootAttributes().get(); });
        first.join(), second.join();
        ASSERT_EQ(seen[0], seen[1]);
    }
}

TEST(UntypedContentTest, ObjectsTurnIntoElementsAndBack)
{
    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->id.SetUI4(5);
    invoice->priority.SetI4(0);
    invoice->Terms().days.SetI4(30);
    CSmartPtr<CElement> tree = new CElement(invoice, nullptr);
    EXPECT_EQ(tree->GetName(), "invoice");
    EXPECT_EQ(tree->GetNamespace(), NAMESPACE);
    EXPECT_EQ(tree->GetChildren()->Item(0)->GetText(), "30");

    CSmartPtr<CInvoice> back = new CInvoice();
    back->FromXmlElement(tree.get());
    EXPECT_EQ(Written(*back), Written(*invoice));
    EXPECT_THROW(back->FromXmlElement(static_cast<CElement const*>(nullptr)), CKdInvalidParamException);

    // Under a default namespace the subtree is written apart and keeps it.
    CSmartPtr<CElement> defaulted = new CElement(invoice, NAMESPACE);
    EXPECT_EQ(defaulted->GetDefaultNamespace(), NAMESPACE);
    CSmartPtr<CElement> holder = new CElement("holder", kForeign.c_str());
    holder->GetChildren()->Add(defaulted);
    EXPECT_EQ(Written(*holder), "<AA:holder xmlns:AA=\"urn:foreign\"><invoice xmlns=\"urn:kdbind:example:po\">"
                                "<days>30</days></invoice></AA:holder>");
}

// Foreign content as deep as the parser goes: 10,000 levels, each with
// nine empty siblings, 100,000 elements in all. Every walk over it would
// overflow the stack if it recursed per level.
TEST(UntypedContentTest, DeepForeignSubtreesPassThroughWithoutRecursion)
{
    int const depth = 10000;
    std::string siblings;
    for (int i = 0; i < 9; ++i)
        siblings += "<s/>";
    std::string deep;
    for (int i = 0; i < depth; ++i)
        deep += "<d>" + siblings;
    for (int i = 0; i < depth; ++i)
        deep += "</d>";
    std::string const xml = EnvelopeXml("<f:top xmlns:f='urn:foreign'>" + deep + "</f:top>");

    CSmartPtr<CEnvelope> envelope = new CEnvelope();
    EXPECT_EQ(LoadFailure(*envelope, xml), "<no exception>");
    std::string const written = Written(*envelope);
    CSmartPtr<CEnvelope> again = new CEnvelope();
    again->FromXml(written.c_str());
    EXPECT_EQ(Written(*again), written);

    CSmartPtr<CElement> top = envelope->any->Item(0);
    CElement* at = top;
    for (int i = 0; i < depth; ++i)
        at = at->GetChildren()->Item(i == 0 ? 0 : 9);  // each level's siblings come first
    EXPECT_EQ(at->GetChildren()->GetCount(), 9);

    CSmartPtr<CElement> copy = top->Clone();
    EXPECT_NO_THROW(copy->SetNamespaceRestrictions("##any", ""));
    CXmlDocument document;
    document.LoadXml(written.c_str());
    CSmartPtr<CElement> copied = new CElement("x");
    copied->CopyXmlElement(document.GetDocumentElement());
    EXPECT_EQ(Written(*copied), written);
    envelope = nullptr;
    top = nullptr;
}
