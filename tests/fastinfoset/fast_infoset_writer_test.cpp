// The Fast Infoset writer, octet by octet: the integer and string forms, the
// held-back element starts and ends, indexing, namespaces, encoded values
// and the failures. Documents that another decoder should read alike are
// exported for the interoperability check.
#include <vector>

#include "fastinfoset/fi_test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

using Encoding = CFastInfosetContext::EncodedCharacterString;

std::string const kHeader("\xE0\x00\x00\x01\x00", 5);

std::string Hex(std::string const& bytes)
{
    static char const digits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned char c : bytes) {
        if (!text.empty())
            text += ' ';
        text += digits[c >> 4];
        text += digits[c & 15];
    }
    return text;
}

// The document's bytes after the header, as hex.
std::string Body(WriterCalls const& calls, CFastInfosetContext const& context = {})
{
    std::string const document = WriteFastInfoset(calls, context);
    EXPECT_EQ(document.substr(0, 5), kHeader);
    return Hex(document.substr(5));
}

// Writes through both writers, exports the pair, and gives the body.
std::string InteropBody(std::string const& name, WriterCalls const& calls, CFastInfosetContext const& context = {})
{
    ExportForInterop(name, WriteFastInfoset(calls, context), WriteText(calls));
    return Body(calls, context);
}

// One primitive form on a bare writer.
template <class Call>
std::string Form(Call call)
{
    CFastInfosetContext context;
    CBinaryStream stream;
    {
        CFastInfosetWriter writer(context, stream);
        call(writer);
        writer.Flush();
    }
    return Hex(Bytes(stream.GetBinaryStream()));
}

void Element(CXmlWriter& writer, char const* name, char const* text = nullptr, ItemType type = ItemType_string)
{
    writer.WriteStartElement(name, "");
    if (text)
        writer.WriteString(text, type);
    writer.WriteEndElement();
}

} // namespace

TEST(FastInfosetWriterTest, IntegerFormsChangeAtTheirBounds)
{
    struct Case {
        void (CFastInfosetWriter::*form)(unsigned char, unsigned long);
        unsigned long value;
        char const* bytes;
    };
    Case const cases[] = {
        {&CFastInfosetWriter::Integer1To2pw20Bit2, 1, "80"},
        {&CFastInfosetWriter::Integer1To2pw20Bit2, 64, "BF"},
        {&CFastInfosetWriter::Integer1To2pw20Bit2, 65, "C0 00"},
        {&CFastInfosetWriter::Integer1To2pw20Bit2, 8256, "DF FF"},
        {&CFastInfosetWriter::Integer1To2pw20Bit2, 8257, "E0 00 00"},
        {&CFastInfosetWriter::Integer1To2pw20Bit2, 1048576, "EF DF BF"},
        {&CFastInfosetWriter::Integer0To2pw20Bit2, 0, "FF"},
        {&CFastInfosetWriter::Integer0To2pw20Bit2, 1, "80"},
        {&CFastInfosetWriter::Integer1To2pw20Bit3, 32, "9F"},
        {&CFastInfosetWriter::Integer1To2pw20Bit3, 33, "A0 00"},
        {&CFastInfosetWriter::Integer1To2pw20Bit3, 2080, "A7 FF"},
        {&CFastInfosetWriter::Integer1To2pw20Bit3, 2081, "A8 00 00"},
        {&CFastInfosetWriter::Integer1To2pw20Bit3, 526368, "AF FF FF"},
        // The longest form carries value - 526368, one more than its reader takes off.
        {&CFastInfosetWriter::Integer1To2pw20Bit3, 526369, "B0 00 00 01"},
        {&CFastInfosetWriter::Integer1To2pw20Bit4, 16, "8F"},
        {&CFastInfosetWriter::Integer1To2pw20Bit4, 17, "90 00"},
        {&CFastInfosetWriter::Integer1To2pw20Bit4, 1040, "93 FF"},
        {&CFastInfosetWriter::Integer1To2pw20Bit4, 1041, "94 00 00"},
        {&CFastInfosetWriter::Integer1To2pw20Bit4, 263184, "97 FF FF"},
        {&CFastInfosetWriter::Integer1To2pw20Bit4, 263185, "98 00 00 00"},
    };
    for (Case const& c : cases)
        EXPECT_EQ(Form([&](CFastInfosetWriter& w) { (w.*c.form)(0x80, c.value); }), c.bytes) << c.value;
}

TEST(FastInfosetWriterTest, OctetStringLengthsChangeForm)
{
    struct Case {
        void (CFastInfosetWriter::*form)(unsigned char, unsigned char const*, unsigned long);
        unsigned long length;
        char const* head;
    };
    Case const cases[] = {
        {&CFastInfosetWriter::NonEmptyOctetStringBit2, 64, "3F"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit2, 65, "40 00"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit2, 320, "40 FF"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit2, 321, "60 00 00 00 00"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit5, 8, "07"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit5, 9, "08 00"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit5, 264, "08 FF"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit5, 70000, "0C 00 01 10 67"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit7, 1, "00"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit7, 2, "01"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit7, 3, "02 00"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit7, 258, "02 FF"},
        {&CFastInfosetWriter::NonEmptyOctetStringBit7, 259, "03 00 00 00 00"},
    };
    for (Case const& c : cases) {
        std::vector<unsigned char> data(c.length, 0xAB);
        std::string const bytes = Form([&](CFastInfosetWriter& w) { (w.*c.form)(0, data.data(), c.length); });
        std::string const head = c.head;
        EXPECT_EQ(bytes.substr(0, head.size()), head) << c.length;
        EXPECT_EQ(bytes.size(), head.size() + 3 * c.length) << c.length;  // "AB" and a blank per byte
    }
    EXPECT_EQ(FailureOf([] { Form([](CFastInfosetWriter& w) { w.NonEmptyOctetUTF8StringBit2(0, ""); }); }),
              "Failed to write FastInfoset. Empty octet string.");
}

TEST(FastInfosetWriterTest, DocumentHeaderAndTrailer)
{
    auto empty = [](CXmlWriter& w) { Element(w, "order"); };
    // An empty document element: literal name, and one octet ends it and the document.
    EXPECT_EQ(InteropBody("empty_element", empty), "3C 04 6F 72 64 65 72 FF");

    std::string const declared = WriteFastInfoset(empty, {}, FInfoDecl_10_Encoding);
    std::string const declaration = "<?xml version='1.0' encoding='finf'?>";
    EXPECT_EQ(declared.substr(0, declaration.size()), declaration);
    EXPECT_EQ(declared.substr(declaration.size(), 5), kHeader);

    // A generated vocabulary is named as the external vocabulary, and the
    // names it holds are indexes from the start.
    CFastInfosetContext context;
    context.GetVocabulary().AddElement("", "", "order");
    context.SetUseGeneratedVocabulary(true);
    context.SetExternalVocabularyURI("urn:v");
    EXPECT_EQ(Hex(WriteFastInfoset(empty, context)), "E0 00 00 01 20 10 00 04 75 72 6E 3A 76 00 FF");
    context.SetExternalVocabularyURI("");
    std::string const named = WriteFastInfoset(empty, context);
    EXPECT_NE(named.find(BRACKEN_URI), std::string::npos);
    EXPECT_EQ(FailureOf<CKdInvalidParamException>([&] { WriteFastInfoset(empty, {}, static_cast<FInfoDecl>(10)); }),
              "Invalid Fast Infoset declaration [10]");
}

TEST(FastInfosetWriterTest, HeldBackStartsAndEnds)
{
    // Attributes are announced in the first octet and closed by F0.
    EXPECT_EQ(InteropBody("attribute",
                          [](CXmlWriter& w) {
                              w.WriteStartElement("r", "");
                              w.WriteAttributeString("a", "", "1", ItemType_string);
                              w.WriteEndElement();
                          }),
              "7C 00 72 78 00 61 40 31 F0 FF");
    // One empty child: FF ends both, F0 the document.
    EXPECT_EQ(InteropBody("one_child",
                          [](CXmlWriter& w) {
                              w.WriteStartElement("r", "");
                              Element(w, "c");
                              w.WriteEndElement();
                          }),
              "3C 00 72 3C 00 63 FF F0");
    // Siblings are parted by F0; the second name is an index.
    EXPECT_EQ(InteropBody("siblings",
                          [](CXmlWriter& w) {
                              w.WriteStartElement("r", "");
                              Element(w, "c");
                              Element(w, "c");
                              w.WriteEndElement();
                          }),
              "3C 00 72 3C 00 63 F0 01 FF F0");
    // Three levels closing at once: FF for two, and FF for the third with the document.
    EXPECT_EQ(InteropBody("deep",
                          [](CXmlWriter& w) {
                              w.WriteStartElement("a", "");
                              w.WriteStartElement("b", "");
                              Element(w, "c");
                              w.WriteEndElement();
                              w.WriteEndElement();
                          }),
              "3C 00 61 3C 00 62 3C 00 63 FF FF");
}

TEST(FastInfosetWriterTest, ShortValuesAreIndexedLongOnesNot)
{
    auto calls = [](CXmlWriter& w) {
        w.WriteStartElement("r", "");
        for (int i = 0; i < 2; ++i) {
            w.WriteStartElement("e", "");
            w.WriteAttributeString("a", "", "12345", ItemType_string);
            w.WriteAttributeString("b", "", "123456", ItemType_string);
            w.WriteAttributeString("c", "", "", ItemType_string);
            w.WriteString("hello", ItemType_string);
            w.WriteEndElement();
        }
        Element(w, "t", "hello!");
        Element(w, "t", "hello!");
        w.WriteEndElement();
    };
    std::string const body = InteropBody("indexing", calls);
    std::string const first = "7C 00 65 78 00 61 44 31 32 33 34 35 78 00 62 05 31 32 33 34 35 36 78 00 63 FF F0 "
                              "92 02 68 65 6C 6C 6F";
    std::string const second = "41 00 80 01 05 31 32 33 34 35 36 02 FF F0 A0";
    std::string const texts = "3C 00 74 82 03 68 65 6C 6C 6F 21 F0 02 82 03 68 65 6C 6C 6F 21 FF F0";
    EXPECT_EQ(body, "3C 00 72 " + first + " F0 " + second + " F0 " + texts);

    // A limit of 0 indexes nothing; the lengths count bytes before UTF-8.
    CFastInfosetContext context;
    context.SetElementMaxAddLength(0);
    EXPECT_EQ(Body([](CXmlWriter& w) { Element(w, "t", "x"); }, context), "3C 00 74 80 78 FF");
}

TEST(FastInfosetWriterTest, NamespacesOnTheDocumentElementAndLiteralPrefixesBelow)
{
    // The default namespace is an attribute of the document element, and the name refers to it by index.
    EXPECT_EQ(InteropBody("default_namespace",
                          [](CXmlWriter& w) {
                              w.SetDefaultNamespace("urn:a");
                              w.WriteStartElement("r", "urn:a");
                              w.WriteEndElement();
                          }),
              "38 CD 04 75 72 6E 3A 61 F0 3D 81 00 72 FF");
    EXPECT_EQ(InteropBody("prefixed_namespace",
                          [](CXmlWriter& w) {
                              w.AddNamespace("p", "urn:a");
                              w.WriteStartElement("r", "urn:a");
                              w.WriteAttributeString("x", "urn:a", "1", ItemType_string);
                              Element(w, "c");
                              w.WriteEndElement();
                          }),
              "78 CF 00 70 04 75 72 6E 3A 61 F0 3F 81 81 00 72 7B 81 81 00 78 40 31 F0 3C 00 63 FF F0");
    // A namespace the document element did not declare: a made-up prefix
    // on the wire and no declaration; the text writer would declare it.
    EXPECT_EQ(Body([](CXmlWriter& w) {
                  w.WriteStartElement("r", "");
                  w.WriteStartElement("c", "urn:x");
                  w.WriteEndElement();
                  w.WriteEndElement();
              }),
              "3C 00 72 3F 01 41 41 04 75 72 6E 3A 78 00 63 FF F0");
}

TEST(FastInfosetWriterTest, SuggestedEncodings)
{
    CFastInfosetContext context;
    context.SetSuggestedValues();
    auto calls = [](CXmlWriter& w) {
        w.WriteStartElement("r", "");
        w.WriteAttributeString("n", "", "258", ItemType_i4);
        Element(w, "d", "2026-11-21", ItemType_date);
        Element(w, "b", "true", ItemType_boolean);
        Element(w, "s", "1.5", ItemType_string);
        w.WriteEndElement();
    };
    EXPECT_EQ(InteropBody("suggested_encodings", calls, context),
              "7C 00 72 78 00 6E 70 33 00 00 01 02 F0 "  // int: algorithm 4, four octets
              "3C 00 64 88 06 02 20 26 A1 1A 21 F0 "     // date: alphabet 2, two characters an octet
              "3C 00 62 9C 14 38 F0 "                    // boolean: algorithm 6, added to the table
              "3C 00 73 92 00 31 2E 35 FF F0");             // a string stays a string
    // The duration's letters are not in the date alphabet.
    EXPECT_EQ(FailureOf([&] { WriteFastInfoset([](CXmlWriter& w) { Element(w, "d", "P1D", ItemType_duration); },
                                               context); }),
              "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
    // Values that the algorithm cannot take fail in the conversion.
    EXPECT_NE(FailureOf([&] { WriteFastInfoset([](CXmlWriter& w) { Element(w, "n", "1.5", ItemType_i4); },
                                               context); }),
              "<no failure>");
    // An odd count of characters ends with all ones in the last half octet.
    CFastInfosetContext numeric;
    numeric.SetEncoding(ItemType_integer, Encoding(Encoding::Kind_RestrictedAlphabet, 1));
    EXPECT_EQ(Body([](CXmlWriter& w) { Element(w, "i", "-12", ItemType_integer); }, numeric),
              "3C 00 69 98 01 A1 2F FF");
}

TEST(FastInfosetWriterTest, RefusesWhatItCannotWrite)
{
    auto valueOf = [](ItemType type, Encoding encoding, char const* text) {
        CFastInfosetContext context;
        context.SetEncoding(type, encoding);
        return FailureOf([&] {
            WriteFastInfoset(
                [&](CXmlWriter& w) {
                    w.WriteStartElement("r", "");
                    w.WriteAttributeString("a", "", text, type);
                    w.WriteString(text, type);
                    w.WriteEndElement();
                },
                context);
        });
    };
    EXPECT_EQ(valueOf(ItemType_i4, Encoding(Encoding::Kind_EncodingAlgorithm, 11), "1"),
              "Failed to write FastInfoset. Invalid Encoding Algorithm value [11]");
    EXPECT_EQ(valueOf(ItemType_i4, Encoding(Encoding::Kind_EncodingAlgorithm, 0), "1"),
              "Failed to write FastInfoset. Invalid Encoding Algorithm value [0]");
    EXPECT_EQ(valueOf(ItemType_i4, Encoding(Encoding::Kind_RestrictedAlphabet, 3), "1"),
              "Failed to write FastInfoset. Invalid Restricted Alphabet value [3]");
    EXPECT_EQ(valueOf(ItemType_i4, Encoding(static_cast<Encoding::Kind>(7), 1), "1"),
              "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5.");
    EXPECT_EQ(valueOf(ItemType_i4, Encoding(Encoding::Kind_EncodingAlgorithm, 1), "01"), "<no failure>");
    EXPECT_NE(valueOf(ItemType_hexBinary, Encoding(Encoding::Kind_EncodingAlgorithm, 1), "XY"), "<no failure>");

    // The character-chunk form names the next bit in its message.
    CFastInfosetContext unknown;
    unknown.SetEncoding(ItemType_i4, Encoding(static_cast<Encoding::Kind>(7), 1));
    EXPECT_EQ(FailureOf([&] { WriteFastInfoset([](CXmlWriter& w) { Element(w, "r", "1", ItemType_i4); }, unknown); }),
              "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7.");

    // Alphabets of the wrong size reach the writer through a generated vocabulary.
    auto alphabet = [](std::string const& letters, char const* text) {
        CFastInfosetContext context;
        context.GetVocabulary().GetRestrictedAlphabets()[0] = letters;
        context.SetUseGeneratedVocabulary(true);
        context.SetEncoding(ItemType_string, Encoding(Encoding::Kind_RestrictedAlphabet, 1));
        return FailureOf([&] {
            WriteFastInfoset([&](CXmlWriter& w) { Element(w, "r", text); }, context);
        });
    };
    EXPECT_EQ(alphabet("a", "a"), "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain "
                                  "between 2 and 2^20 characters.");
    EXPECT_EQ(alphabet("abcdefghijklmnopq", "a"),
              "Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");
    std::string wide;
    for (int c = 1; c < 200; ++c)
        wide += static_cast<char>(c);
    EXPECT_EQ(alphabet(wide, "abc"), "<no failure>");  // eight bits a character

    // Attributes after content, and after a child.
    EXPECT_EQ(FailureOf([] {
                  WriteFastInfoset([](CXmlWriter& w) {
                      w.WriteStartElement("r", "");
                      w.WriteString("t", ItemType_string);
                      w.WriteAttributeString("a", "", "1", ItemType_string);
                  });
              }),
              "Attributes must be added before elements");
    EXPECT_EQ(FailureOf([] {
                  WriteFastInfoset([](CXmlWriter& w) {
                      w.WriteStartElement("r", "");
                      Element(w, "c");
                      w.WriteAttributeType("", "T", ItemType_string);
                  });
              }),
              "Attributes must be added before elements");
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([] { WriteFastInfoset([](CXmlWriter& w) { w.WriteEndElement(); }); }),
              "No element is open.");
    EXPECT_EQ(FailureOf([] { WriteFastInfoset([](CXmlWriter& w) { w.WriteStartElement("r", ""); w.WriteString("t", ItemType_string); }); }),
              "An Element has not been closed.");
}

TEST(FastInfosetWriterTest, TypeAttributesAndDroppedMarkup)
{
    // A type in the default namespace: the schema-instance "type" with a made-up prefix.
    EXPECT_EQ(Body([](CXmlWriter& w) {
                  w.WriteStartElement("r", "");
                  w.WriteAttributeType("", "T", ItemType_string);
                  w.WriteEndElement();
              }),
              "7C 00 72 7B 01 41 41 28 68 74 74 70 3A 2F 2F 77 77 77 2E 77 33 2E 6F 72 67 2F 32 30 30 31 2F 58 4D 4C "
              "53 63 68 65 6D 61 2D 69 6E 73 74 61 6E 63 65 03 74 79 70 65 40 54 F0 FF");
    // A known type namespace lends its prefix to "type"; a new one names the attribute after the type.
    EXPECT_EQ(Body([](CXmlWriter& w) {
                  w.AddNamespace("p", "urn:a");
                  w.WriteStartElement("r", "");
                  w.WriteAttributeType("urn:a", "T", ItemType_string);
                  w.WriteAttributeType("urn:b", "U", ItemType_string);
                  w.WriteEndElement();
              }).substr(0, 42),
              "78 CF 00 70 04 75 72 6E 3A 61 F0 3C 00 72 ");

    // Comments and schemas vanish; an instruction sends a waiting element
    // out without attributes, so a later attribute is not announced.
    EXPECT_EQ(Body([](CXmlWriter& w) {
                  w.WriteComment("c");
                  w.WriteStartElement("r", "");
                  w.WriteInlineSchema("<xs:schema/>");
                  w.WritePI("pi");
                  w.WriteAttributeString("a", "", "1", ItemType_string);
                  w.WriteEndElement();
              }),
              "3C 00 72 78 00 61 40 31 FF");
}

TEST(FastInfosetWriterTest, LongFormsOfIndexesAndLengths)
{
    LocaleScope locale("C.UTF-8");
    ASSERT_TRUE(locale.Available());
    // Enough names and values for the two- and three-octet index forms, and
    // texts long enough for every length form; the other decoder reads them.
    auto calls = [](CXmlWriter& w) {
        w.AddNamespace("p", "urn:p");
        w.WriteStartElement("root", "urn:p");
        for (int pass = 0; pass < 2; ++pass) {
            for (int i = 0; i < 2100; ++i) {
                std::string const n = std::to_string(i);
                w.WriteStartElement("e" + n, i % 2 ? "urn:p" : "");
                w.WriteAttributeString("a" + n, i % 3 ? "" : "urn:p", "v" + n, ItemType_string);
                w.WriteString("t" + n, ItemType_string);
                w.WriteEndElement();
            }
        }
        for (size_t length : {7, 9, 64, 65, 258, 259, 264, 265, 320, 321, 70000}) {
            std::string text(length, 'x');
            text.replace(0, 3, "\xC3\xA9z");  // UTF-8 on both sides
            w.WriteStartElement("long", "");
            w.WriteAttributeString("v", "", text, ItemType_string);
            w.WriteString(text, ItemType_string);
            w.WriteEndElement();
        }
        w.WriteEndElement();
    };
    std::string const document = WriteFastInfoset(calls);
    ExportForInterop("long_forms", document, WriteText(calls));
    // The longest text as a chunk: F0 before it, then the four-octet length 70000 - 259.
    EXPECT_NE(document.find(std::string("\x83\x00\x01\x10\x6D\xC3\xA9z", 8)), std::string::npos);
}
