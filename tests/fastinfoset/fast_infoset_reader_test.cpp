// The Fast Infoset reader: documents of the writer and documents made octet
// by octet come out as the tree the text reader builds, and broken or
// hostile ones fail with a clear message and bounded cost.
#include <string>

#include <gtest/gtest.h>

#include <kdbind/binding.h>

#include "runtime/test_support.h"
#include "xmlinput/tree_dump.h"

using namespace KdBind;
using KdBindTest::DumpTree;
using KdBindTest::FailureOf;

namespace {

std::string const kHeader("\xE0\x00\x00\x01\x00", 5);

// The tree of a Fast Infoset (or any) input, through the form recognition.
std::string Tree(std::string const& bytes, CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext)
{
    CXmlDocument document(context);
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size());
    return DumpTree(document.GetDocumentElement());
}

std::string TextTree(char const* xml)
{
    CXmlDocument document;
    document.LoadXml(xml);
    return DumpTree(document.GetDocumentElement());
}

std::string Failure(std::string const& bytes)
{
    return FailureOf([&] { Tree(bytes); });
}

// <a>hi</a>, with a literal name and a literal chunk.
std::string const kSmall = kHeader + std::string("\x3C\x00" "a" "\x81" "hi" "\xF0\xF0", 8);

} // namespace

TEST(FastInfosetReaderTest, WhatDoesNotStartAsFastInfosetGoesToTheTextParser)
{
    EXPECT_EQ(Tree(kSmall), "<{}a[](hi)>");
    std::string const declared = std::string("<?xml version='1.0' encoding='finf'?>") + kSmall;
    EXPECT_EQ(Tree(declared), "<{}a[](hi)>");

    // Each of these is refused as Fast Infoset and fails as text instead.
    std::string const fourBytes("\xE0\x00\x00\x01", 4);
    std::string versionTwo = kSmall;
    versionTwo[3] = 2;
    for (std::string const& input : {fourBytes, versionTwo, std::string("<?xml version='1.0' encoding='finf'?>")}) {
        std::string const message = Failure(input);
        EXPECT_NE(message, "<no failure>");
        EXPECT_EQ(message.find("FastInfoset"), std::string::npos) << message;
    }
}

TEST(FastInfosetReaderTest, TruncatedAndOutOfRangeInputFailsClearly)
{
    // Cut anywhere before the element's terminator; what follows that
    // terminator is never read.
    for (size_t length = kHeader.size(); length + 2 < kSmall.size(); ++length)
        EXPECT_EQ(Failure(kSmall.substr(0, length)), "Failed to parse FastInfoset. Unexpected End of File.")
            << length;
    EXPECT_EQ(Tree(kSmall.substr(0, kSmall.size() - 1)), "<{}a[](hi)>");

    // A string length far past the end of the buffer.
    EXPECT_EQ(Failure(kHeader + std::string("\x3C\x60\xFF\xFF\xFF\xFF" "a", 7)),
              "Failed to parse FastInfoset. Unexpected End of File.");
    // Element name 6 of a table that has none.
    EXPECT_EQ(Failure(kHeader + std::string("\x05\xF0\xF0", 3)),
              "Failed to parse FastInfoset. Index [6] is outside the name table.");
    // A chunk by index into an empty table.
    EXPECT_EQ(Failure(kHeader + std::string("\x3C\x00" "a" "\xA3\xF0\xF0", 6)),
              "Failed to parse FastInfoset. Index [4] is outside the character chunk table.");
    EXPECT_EQ(Failure(kHeader + std::string("\x3C\x00" "a" "\xD8\xF0", 5)),
              "Failed to parse FastInfoset. Invalid Encoding of Element type.");
    EXPECT_EQ(Failure(kHeader + std::string("\x3E\x00" "a\xF0", 4)),
              "Failed to parse FastInfoset. Invalid QName type Prefix without Namespace.");
    EXPECT_EQ(Failure(kHeader + std::string("\x38\xF0", 2) + "\x3C\x70" "a"),
              "Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the second bit of an octet.");
    EXPECT_EQ(Failure(kHeader + std::string("\x3F\x00" "p" "\x00" "u" "\x00" "a" "\xBC\xF0", 10)),
              "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an "
              "octet.");
}

TEST(FastInfosetReaderTest, TerminatorsCloseChainsOfAnyDepth)
{
    // Element 1 is the literal "e"; each child refers to it by index. The
    // chain closes with double terminators, and a single one where the
    // depth is odd.
    for (int depth : {1, 2, 3, 4, 7}) {
        std::string bytes = kHeader + std::string("\x3C\x00" "e", 3);
        std::string xml;
        for (int i = 1; i < depth; ++i)
            bytes += '\x00';
        if (depth % 2)
            bytes += '\xF0';
        bytes += std::string(depth / 2, '\xFF');
        if (depth % 2 == 0)
            bytes += '\xF0';  // the document's own terminator, never read
        for (int i = 0; i < depth; ++i)
            xml += "<e>";
        for (int i = 0; i < depth; ++i)
            xml += "</e>";
        EXPECT_EQ(Tree(bytes), TextTree(xml.c_str())) << depth;
    }
}

TEST(FastInfosetReaderTest, NestingAMillionDeepNeedsNoStack)
{
    unsigned long const depth = 1000000;
    std::string bytes = kHeader + std::string("\x3C\x00" "e", 3);
    bytes += std::string(depth - 1, '\x00');
    bytes += std::string(depth / 2, '\xFF');
    CXmlDocument document;
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(&bytes[0]), bytes.size());
    unsigned long count = 0;
    for (CXmlElement const* element = document.GetDocumentElement(); element; element = element->GetFirstElement())
        ++count;
    EXPECT_EQ(count, depth);
}

TEST(FastInfosetReaderTest, ItemsOutsideTheTreeVanish)
{
    // <a x="" y="v">one, comment, processing instruction, entity, two</a>
    std::string const bytes =
        kHeader + std::string("\x7C\x00" "a", 3) +
        std::string("\x78\x00" "x" "\xFF", 4) +          // attribute x, value index 0
        std::string("\x78\x00" "y" "\x40" "v", 5) +      // attribute y, literal added to the table
        std::string("\xF0", 1) +                         // end of attributes
        std::string("\x82\x00" "one", 5) +
        std::string("\xE2\x01" "xy", 4) +                // comment
        std::string("\xE1\x00" "t" "\x00" "d", 5) +      // processing instruction
        std::string("\xC8\x00" "e", 3) +                 // unexpanded entity reference
        std::string("\x92\x00" "two", 5) +               // chunk added to the table
        std::string("\xA0", 1) +                         // chunk 1 by index
        std::string("\xF0\xF0", 2);
    EXPECT_EQ(Tree(bytes), "<{}a[{}x=;{}y=v;](onetwotwo)>");
}

TEST(FastInfosetReaderTest, PrefixesEncodedValuesAndAlphabetsBecomeText)
{
    // <p:a xmlns:p="urn:x">: the prefix and URI join their tables after the
    // built-in entries, and the name refers to them as 2 and 2.
    std::string const prefixed = kHeader + std::string("\x38\xCF\x00" "p" "\x04" "urn:x" "\xF0", 11) +
                                 std::string("\x3F\x81\x81\x00" "a" "\xF0\xF0", 7);
    CXmlDocument document;
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(prefixed.data())), prefixed.size());
    EXPECT_EQ(DumpTree(document.GetDocumentElement()), "<{urn:x}a[]()>");
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "urn:x");

    // base64 of "hi" (algorithm 2), then "12" and "3" in the numeric alphabet.
    std::string const values = kHeader + std::string("\x3C\x00" "a" "\x8C\x05" "hi" "\x88\x00\x12" "\x88\x00\x3F"
                                                     "\xF0\xF0",
                                                     14);
    EXPECT_EQ(Tree(values), "<{}a[](aGk=123)>");

    // A UTF-16 string cannot be read, and says so in the library's own type.
    std::string const utf16 = kHeader + std::string("\x3C\x00" "a" "\x85\x00" "a" "\xF0\xF0", 8);
    EXPECT_EQ(Failure(utf16).rfind("Failed to parse FastInfoset.", 0), 0u);
}

TEST(FastInfosetReaderTest, AGeneratedVocabularyOnTheReadersSideAloneServesIndexes)
{
    CXmlSerializationContext context;
    context.GetFIContext().SetUseGeneratedVocabulary(true);
    context.GetFIContext().GetVocabulary().AddElement("", "urn:g", "known");
    EXPECT_EQ(Tree(kHeader + std::string("\x00\xF0\xF0", 3), context), "<{urn:g}known[]()>");
    EXPECT_NE(Failure(kHeader + std::string("\x00\xF0\xF0", 3)), "<no failure>");
}
