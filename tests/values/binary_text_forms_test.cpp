// The hexadecimal and base64 forms of binary data, and their lexical
// conversions through KdVariant.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include <kdbind/values.h>

using namespace KdBind;

namespace {

std::string Bytes(CBinaryData const& data)
{
    return data.GetData() ? std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength())
                          : std::string();
}

std::string HexFailure(char const* text)
{
    try {
        CBinaryData data;
        data.SetAsHexString(text);
    } catch (CKdInvalidValueException const&) {
        return "(wrong type)";
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "(no failure)";
}

std::string RandomBytes(size_t length, unsigned seed)
{
    std::mt19937 generator(seed);
    std::string bytes(length, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator());
    return bytes;
}

CBinaryData FromBytes(std::string const& bytes)
{
    CBinaryData data;
    data.SetBuffer(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size());
    return data;
}

} // namespace

TEST(HexFormTest, ReadsEitherCaseAndWritesUpperCase)
{
    CBinaryData data;
    data.SetAsHexString("0aFF");
    ASSERT_EQ(data.GetLength(), 2u);
    EXPECT_EQ(data[0], 10);
    EXPECT_EQ(data[1], 255);
    EXPECT_EQ(data.GetAsHexString(), "0AFF");

    data.SetAsHexString("");
    EXPECT_NE(data.GetData(), nullptr);  // a holder of length 0
    EXPECT_EQ(data.GetLength(), 0u);
    EXPECT_EQ(data.GetAsHexString(), "");

    EXPECT_EQ(CBinaryData::GetAsHexString(nullptr, 5), "");
    std::string const all = RandomBytes(4096, 7);
    CBinaryData back;
    back.SetAsHexString(FromBytes(all).GetAsHexString().c_str());
    EXPECT_EQ(Bytes(back), all);
}

TEST(HexFormTest, RefusesAnythingButHexDigits)
{
    EXPECT_EQ(HexFailure("G0"), "Invalid char in hex string [G]");
    EXPECT_EQ(HexFailure("0g"), "Invalid char in hex string [g]");
    EXPECT_EQ(HexFailure("00 11"), "Invalid char in hex string [ ]");
    // An odd length pairs the last digit with the terminating NUL, which the
    // message cannot show.
    EXPECT_EQ(HexFailure("ABC"), "Invalid char in hex string [");
    EXPECT_EQ(HexFailure("\xC3\xA9"), "Invalid char in hex string [\xC3]");

    CBinaryData data("kept?");
    EXPECT_THROW(data.SetAsHexString("1"), CKdException);
    EXPECT_EQ(data.GetData(), nullptr);  // cleared before the text was read
}

TEST(Base64FormTest, EncodesTheStandardForm)
{
    CBinaryData none;
    EXPECT_EQ(none.GetAsBase64(), "");
    EXPECT_EQ(CBinaryData("AB").GetAsBase64(), "QUI=");
    EXPECT_EQ(CBinaryData("ABC").GetAsBase64(), "QUJD");
    EXPECT_EQ(CBinaryData("ABCD").GetAsBase64(), "QUJDRA==");
    EXPECT_EQ(CBinaryData("").GetAsBase64(), "");
    EXPECT_EQ(FromBytes(std::string("\xFB\xFF\xBF", 3)).GetAsBase64(), "+/+/");
    // One byte: two characters, one "=" and a NUL.
    EXPECT_EQ(CBinaryData("A").GetAsBase64(), std::string("QQ=\0", 4));
    // No line breaks at any length.
    std::string const encoded = FromBytes(std::string(1000, 'x')).GetAsBase64();
    EXPECT_EQ(encoded.size(), 1336u);
    EXPECT_EQ(encoded.find('\n'), std::string::npos);
}

TEST(Base64FormTest, DecodingSkipsPaddingAndBlanksAnywhere)
{
    CBinaryData data;
    data.SetAsBase64("QUJD");
    EXPECT_EQ(Bytes(data), "ABC");
    data.SetAsBase64("QU JD\n");
    EXPECT_EQ(Bytes(data), "ABC");
    data.SetAsBase64("Q=U\tJ\r\nD");
    EXPECT_EQ(Bytes(data), "ABC");
    data.SetAsBase64("QUI=");
    EXPECT_EQ(Bytes(data), "AB");
    data.SetAsBase64("QUI");  // missing padding: leftover bits dropped
    EXPECT_EQ(Bytes(data), "AB");
    data.SetAsBase64("Q");
    EXPECT_EQ(data.GetLength(), 0u);
    // Only the low 7 bits count: "Q" with the top bit set is still "Q".
    data.SetAsBase64("\xD1UJD");
    EXPECT_EQ(Bytes(data), "ABC");
}

TEST(Base64FormTest, ABadCharacterGivesAnEmptyValueWithoutFailure)
{
    CBinaryData data;
    EXPECT_NO_THROW(data.SetAsBase64("QU!D"));
    EXPECT_NE(data.GetData(), nullptr);
    EXPECT_EQ(data.GetLength(), 0u);
    data.SetAsBase64("QUJDQUJD-");
    EXPECT_EQ(data.GetLength(), 0u);

    CBase64 codec;
    unsigned char out[4];
    EXPECT_EQ(codec.Decode(nullptr, out), 0);
    EXPECT_EQ(codec.Decode("QUJD", nullptr), 0);
    EXPECT_EQ(codec.Decode("", out), 0);
}

TEST(Base64FormTest, RoundTripsEveryLengthAroundTheGroupSize)
{
    for (size_t length = 2; length < 200; ++length) {
        std::string const bytes = RandomBytes(length, static_cast<unsigned>(length));
        std::string const encoded = FromBytes(bytes).GetAsBase64();
        CBinaryData back;
        back.SetAsBase64(encoded.c_str());
        ASSERT_EQ(Bytes(back), bytes) << "length " << length;

        // Broken into lines at an odd width, so that groups straddle the breaks.
        std::string broken;
        for (size_t at = 0; at < encoded.size(); at += 7)
            broken += encoded.substr(at, 7) + "\r\n";
        back.SetAsBase64(broken.c_str());
        ASSERT_EQ(Bytes(back), bytes) << "length " << length << " with line breaks";
    }
}

TEST(Base64FormTest, BitHelpersReadHighBitsFirstAndFillTheLastGroup)
{
    CBase64 codec;
    unsigned char out[4] = {};
    int position = 0;
    codec.Write(0x3, 2, out, position);
    codec.Write(0x3F, 6, out, position);
    codec.Write(0x5, 4, out, position);
    EXPECT_EQ(position, 1);
    EXPECT_EQ(out[0], 0xFF);
    codec.Write(0xA, 4, out, position);
    EXPECT_EQ(position, 2);
    EXPECT_EQ(out[1], 0x5A);

    // Without a running Encode there is no input: nothing to read.
    int got = -1;
    int readPosition = 0;
    EXPECT_EQ(codec.Read(6, &got, readPosition), 0u);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(codec.Read(9, &got, readPosition), 0u);
    EXPECT_EQ(got, 0);
}

TEST(BinaryConversionsTest, VariantTextFormsUseTheKindsCodec)
{
    KdVariant variant;
    variant.FromString("0aff", ItemType_hexBinary);
    EXPECT_EQ(variant.GetItemType(), ItemType_hexBinary);
    EXPECT_EQ(variant.ToString(), "0AFF");

    variant.FromString(" QUJD ", ItemType_base64Binary);
    EXPECT_EQ(variant.ToString(), "QUJD");
    EXPECT_EQ(Bytes(variant.GetBase64Binary()), "ABC");

    // Hex refuses blanks unless the rule removes the outer ones.
    EXPECT_THROW(variant.FromString(" 0A ", ItemType_hexBinary), CKdException);
    EXPECT_EQ(variant.ToString(), "QUJD");  // a failed parse leaves the variant
    variant.FromString(" 0A ", ItemType_hexBinary, CWhitespaceUtils::WhitespaceRule_Collapse);
    EXPECT_EQ(variant.ToString(), "0A");

    EXPECT_EQ(CConversions::hexBinaryToString(CBinaryData()), "");
    EXPECT_EQ(CConversions::base64BinaryToString(CBinaryData("AB")), "QUI=");
}
