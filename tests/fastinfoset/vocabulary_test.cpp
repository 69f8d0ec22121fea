// The vocabulary's starting tables, its index rules and limits, and the
// context's encoding table.
#include <kdbind/binding.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {
using Encoding = CFastInfosetContext::EncodedCharacterString;
}

TEST(FIVocabularyTest, NewVocabularyHoldsOnlyTheAlphabetsAndTheXmlPrefix)
{
    CFIVocabulary vocabulary;
    ASSERT_EQ(vocabulary.GetRestrictedAlphabets().size(), 2u);
    EXPECT_EQ(vocabulary.GetRestrictedAlphabets()[0], "0123456789-+.e ");
    EXPECT_EQ(vocabulary.GetRestrictedAlphabets()[1], "0123456789-:TZ ");

    unsigned long index = 0;
    EXPECT_TRUE(vocabulary.FindPrefixNameIndex("xml", index));
    EXPECT_EQ(index, 1u);
    EXPECT_TRUE(vocabulary.FindNamespaceNameIndex("http:////www.w3.org//XML//1998//namespace", index));
    EXPECT_EQ(index, 1u);
    // The doubled slashes are the table's own: the real namespace is not there.
    EXPECT_FALSE(vocabulary.FindNamespaceNameIndex("http://www.w3.org/XML/1998/namespace", index));
    EXPECT_FALSE(vocabulary.FindLocalNameIndex("xml", index));

    EXPECT_EQ(vocabulary.GetLocalNamesTable().m_values.size(), 0u);
    EXPECT_EQ(vocabulary.GetElementNamesTable().m_names.size(), 0u);
    EXPECT_EQ(vocabulary.GetCharacterChunksMap().size(), 0u);

    vocabulary.AddPrefixName("po");
    EXPECT_TRUE(vocabulary.FindPrefixNameIndex("po", index));
    EXPECT_EQ(index, 2u);
}

TEST(FIVocabularyTest, AValueKeepsItsFirstIndex)
{
    CFIVocabulary vocabulary;
    vocabulary.AddAttributeValue("a");
    vocabulary.AddAttributeValue("b");
    vocabulary.AddAttributeValue("a");
    unsigned long index = 0;
    ASSERT_TRUE(CFIVocabulary::FindIndex(vocabulary.GetAttributeValuesMap(), "a", index));
    EXPECT_EQ(index, 1u);
    ASSERT_TRUE(CFIVocabulary::FindIndex(vocabulary.GetAttributeValuesMap(), "b", index));
    EXPECT_EQ(index, 2u);
    EXPECT_EQ(vocabulary.GetAttributeValuesMap().size(), 2u);
}

TEST(FIVocabularyTest, QualifiedNamesShareTheirParts)
{
    CFIVocabulary vocabulary;
    vocabulary.AddElement("", "", "order");
    vocabulary.AddElement("a", "urn:x", "item");
    vocabulary.AddElement("b", "urn:x", "item");
    vocabulary.AddElement("b", "urn:x", "item");  // known: nothing happens
    vocabulary.AddAttribute("", "", "item");

    auto const& names = vocabulary.GetElementNamesTable().m_names;
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0].m_prefixIndex, 0u);
    EXPECT_EQ(names[0].m_namespaceIndex, 0u);
    EXPECT_EQ(names[0].m_localNameIndex, 1u);
    EXPECT_EQ(names[1].m_prefixIndex, 2u);
    EXPECT_EQ(names[1].m_namespaceIndex, 2u);
    EXPECT_EQ(names[1].m_localNameIndex, 2u);
    EXPECT_EQ(names[2].m_prefixIndex, 3u);
    EXPECT_EQ(names[2].m_namespaceIndex, 2u);
    EXPECT_EQ(names[2].m_localNameIndex, 2u);
    EXPECT_EQ(vocabulary.GetLocalNamesTable().m_values, (std::vector<std::string>{"order", "item"}));

    unsigned long index = 0;
    EXPECT_TRUE(CFIVocabulary::FindIndex(vocabulary.GetElementNamesMap(),
                                         CFIVocabulary::MakeQNameKey("b", "urn:x", "item"), index));
    EXPECT_EQ(index, 3u);
    EXPECT_EQ(CFIVocabulary::MakeQNameKey("b", "urn:x", "item"), std::string("item\x01urn:x\x01") + "b");
    ASSERT_EQ(vocabulary.GetAttributeNamesTable().m_names.size(), 1u);
    EXPECT_EQ(vocabulary.GetAttributeNamesTable().m_names[0].m_localNameIndex, 2u);
}

TEST(FIVocabularyTest, TablesStopSilentlyAtTheirLimit)
{
    CFIVocabulary::IndexMap map;
    std::vector<std::string> table;
    for (unsigned long n = 0; n < FI_TABLE_LIMIT; ++n) {
        std::string const value = std::to_string(n);
        CFIVocabulary::AddValueToMap(value, map);
        CFIVocabulary::AddValueToVector(value, table);
    }
    ASSERT_EQ(map.size(), FI_TABLE_LIMIT);
    CFIVocabulary::AddValueToMap("one more", map);
    CFIVocabulary::AddValueToVector("one more", table);
    EXPECT_EQ(map.size(), FI_TABLE_LIMIT);
    EXPECT_EQ(table.size(), FI_TABLE_LIMIT);
    EXPECT_EQ(map.count("one more"), 0u);

    std::vector<CFIVocabulary::CQNameParts> names(FI_TABLE_LIMIT - 1);
    CFIVocabulary::AddQNameToVector(0, 0, 1, names);
    CFIVocabulary::AddQNameToVector(0, 0, 2, names);
    EXPECT_EQ(names.size(), FI_TABLE_LIMIT);
}

TEST(FastInfosetContextTest, DefaultsAndSuggestedEncodings)
{
    CFastInfosetContext context;
    EXPECT_EQ(context.GetAttributeMaxAddLength(), 6u);
    EXPECT_EQ(context.GetElementMaxAddLength(), 6u);
    EXPECT_EQ(context.GetDefaultStringEncoding(), 0);
    EXPECT_FALSE(context.GetUseGeneratedVocabulary());
    EXPECT_EQ(context.GetExternalVocabularyURI(), "");
    for (unsigned long type = 0; type < CFastInfosetContext::kEncodingCount; ++type)
        EXPECT_EQ(context.GetEncoding(type).m_kind, Encoding::Kind_String) << type;

    context.SetSuggestedValues();
    auto expect = [&](ItemType type, Encoding::Kind kind, unsigned long index) {
        Encoding const encoding = context.GetEncoding(type);
        EXPECT_EQ(encoding.m_kind, kind) << type;
        EXPECT_EQ(encoding.m_index, index) << type;
    };
    expect(ItemType_hexBinary, Encoding::Kind_EncodingAlgorithm, 1);
    expect(ItemType_i1, Encoding::Kind_EncodingAlgorithm, 3);
    expect(ItemType_ui2, Encoding::Kind_EncodingAlgorithm, 4);  // the next wider signed form
    expect(ItemType_ui4, Encoding::Kind_EncodingAlgorithm, 5);
    expect(ItemType_r8, Encoding::Kind_EncodingAlgorithm, 8);
    expect(ItemType_duration, Encoding::Kind_RestrictedAlphabet, 2);
    expect(ItemType_boolean, Encoding::Kind_EncodingAlgorithm, 6);
    expect(ItemType_integer, Encoding::Kind_RestrictedAlphabet, 1);
    for (ItemType untouched : {ItemType_invalid, ItemType_char, ItemType_string, ItemType_xmlObject,
                               ItemType_xmlCollection})
        EXPECT_EQ(context.GetEncoding(untouched).m_kind, Encoding::Kind_String) << untouched;

    EXPECT_EQ(FailureOf<CKdInvalidParamException>([&] { context.GetEncoding(29); }), "Invalid item type [29]");
}

TEST(FastInfosetContextTest, SerializationContextCopiesItsOptions)
{
    CXmlSerializationContext context;
    context.GetFIContext().SetElementMaxAddLength(9);
    context.GetFIContext().GetVocabulary().AddElement("", "", "order");
    CXmlSerializationContext copy(context);
    context.GetFIContext().SetElementMaxAddLength(3);
    EXPECT_EQ(copy.GetFIContext().GetElementMaxAddLength(), 9u);
    EXPECT_EQ(copy.GetFIContext().GetVocabulary().GetElementNamesTable().m_names.size(), 1u);
}
