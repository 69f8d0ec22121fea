// Documents and object trees nested far deeper than any schema intends:
// they fail cleanly, or are freed, without running out of stack.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

namespace BindingTest {
namespace {

CSmartPtr<CXmlObjectBase> CreateSection(int, char const* elementName);

// <xs:complexType name="Section">
//   <xs:sequence><xs:element name="section" type="Section" minOccurs="0"/></xs:sequence>
//   <xs:attribute name="n" type="xs:unsignedInt"/>
// </xs:complexType>
class CSection : public CGenerated<CSection> {
public:
    enum Property { Property_Child, Property_Number };

    CSection() { SetElementName("section"); }
    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        Exchange(propertyId == Property_Child ? child : number, readAccess, value);
    }
    void Init() override { child.Clear(), number.Clear(); }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "section", NAMESPACE,
                                       -1, true, false),
                new CElementInfo*[2]{new CElementInfoSeqClsOpt("section", NAMESPACE, Property_Child,
                                                               XmlElementType_Element, &CreateSection, 0),
                                     nullptr},
                new CAttributeInfo*[2]{new CAttributeInfoPrimitive("n", "", Property_Number, true, ItemType_ui4,
                                                                   nullptr, kCollapse, kNoFacets, nullptr),
                                       nullptr}};
    }

    CSection* Child() const { return static_cast<CSection*>(child.GetXmlObject().get()); }

    KdVariant child, number;
};

CSmartPtr<CXmlObjectBase> CreateSection(int, char const* elementName)
{
    CSmartPtr<CXmlObjectBase> section = new CSection();
    section->SetElementName(elementName);
    return section;
}

std::string Nested(int depth, std::string const& innermost = "")
{
    std::string xml;
    for (int i = 0; i < depth; ++i)
        xml += i ? "<section>" : "<section xmlns='urn:kdbind:example:po'>";
    xml += innermost;
    for (int i = 0; i < depth; ++i)
        xml += "</section>";
    return xml;
}

CSmartPtr<CSection> Chain(int depth)
{
    CSmartPtr<CSection> root = new CSection();
    CSection* last = root;
    for (int i = 1; i < depth; ++i) {
        CSmartPtr<CSection> next = new CSection();
        last->child.SetXmlObject(next);
        last = next;
    }
    return root;
}

int Count(std::string const& text, std::string const& what)
{
    int count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size()))
        ++count;
    return count;
}

int Lines(std::string const& text) { return static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1; }

TEST(DeepNestingTest, InputDeeperThanTheLimitFailsWithThePath)
{
    Context context;
    context.SetMaxDepth(50);
    CSmartPtr<CSection> section = new CSection();
    std::string const fits = Nested(50);
    section->FromXml(std::wstring(fits.begin(), fits.end()).c_str(), context);

    std::string const message = LoadFailure(*section, Nested(51), context);
    EXPECT_EQ(Lines(message), 52);  // the 51st element names itself too
    EXPECT_EQ(message.substr(0, message.find('\n')), "Failed to process the element [section]");
    EXPECT_EQ(message.substr(message.rfind('\n') + 1),
              "The document nests deeper than the limit of 50 levels (MaxDepth)");

    // The default limit holds for a document that would otherwise overflow
    // the stack, and the failure costs the same on every level.
    std::string const hostile = LoadFailure(*section, Nested(200000));
    EXPECT_EQ(Lines(hostile), Context::kDefaultMaxDepth + 2);
    // The same object loads a sane document afterwards.
    section->FromXml(std::wstring(fits.begin(), fits.end()).c_str(), context);
    EXPECT_NE(section->Child(), nullptr);
}

TEST(DeepNestingTest, AFailureDeepDownKeepsEveryLevelOfTheChain)
{
    Context context;
    context.SetMaxDepth(0);  // no limit: the chain itself must stay cheap
    CSmartPtr<CSection> section = new CSection();
    std::string const message = LoadFailure(*section, Nested(800, "<bad/>"), context);
    EXPECT_EQ(Lines(message), 801);
    EXPECT_NE(message.find("remains un processed"), std::string::npos);

    try {
        std::string const xml = Nested(3, "<bad/>");
        section->FromXml(std::wstring(xml.begin(), xml.end()).c_str(), context);
        FAIL();
    } catch (CKdException const& e) {
        // Every link is its own object of the thrower's type, and a copy of
        // the whole chain is independent of the original.
        CKdException const* link = e.GetInnerException();
        ASSERT_NE(link, nullptr);
        EXPECT_NE(dynamic_cast<CKdValidationException const*>(link->GetInnerException()), nullptr);
        CKdException const copy(e);
        EXPECT_EQ(copy.GetFullMessage(), e.GetFullMessage());
        EXPECT_NE(copy.GetInnerException(), e.GetInnerException());
    }
}

TEST(DeepNestingTest, OutputIsBoundedAndLinear)
{
    Context context;
    context.SetMaxDepth(100);
    std::string const written = Written(*Chain(100), context);
    EXPECT_EQ(Count(written, "<AA:section"), 100);
    std::string const message = Failure([&] { Written(*Chain(101), context); });
    EXPECT_EQ(message.substr(message.rfind('\n') + 1),
              "The object tree nests deeper than the limit of 100 levels (MaxDepth)");

    // A cycle is only a tree of unbounded depth.
    CSmartPtr<CSection> cycle = Chain(3);
    cycle->Child()->Child()->child.SetXmlObject(cycle);
    std::string const cyclic = Failure([&] { Written(*cycle); });
    EXPECT_EQ(Count(cyclic, "Failed to convert the element [section] to XML"), Context::kDefaultMaxDepth + 1);
    EXPECT_EQ(cyclic.substr(cyclic.rfind('\n') + 1),
              "The object tree nests deeper than the limit of 1000 levels (MaxDepth)");
    cycle->Child()->Child()->child.Clear();

    // Deep but within the limit: every level writes in constant time.
    context.SetMaxDepth(0);
    CSmartPtr<CSection> deep = Chain(3000);
    EXPECT_EQ(Count(Written(*deep, context), "</AA:section>"), 2999);
}

TEST(DeepNestingTest, ReleasingAMillionLinkChainNeedsNoStack)
{
    CSmartPtr<CSection> chain = Chain(1000000);
    CSection* last = chain;
    while (last->Child())
        last = last->Child();
    CSmartPtr<CSection> held = last;
    chain = nullptr;  // frees all but the one still held
    EXPECT_EQ(Holders(held), 1);
}

} // namespace
} // namespace BindingTest
