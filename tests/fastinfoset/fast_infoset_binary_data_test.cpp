// Encoded values: each algorithm from text to octets and back, the decoder's
// deliberate reading of short, int and float groups, and the failures.
#include <kdbind/fastinfoset.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

std::string Encode(unsigned long algorithm, char const* text)
{
    CFastInfosetBinaryData data;
    data.SetAsEncodedString(algorithm, text);
    return Bytes(data);
}

std::string Decode(unsigned long algorithm, std::string const& bytes)
{
    CFastInfosetBinaryData data(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())),
                                static_cast<unsigned long>(bytes.size()), false);
    return data.GetAsString(algorithm);
}

std::string RoundTrip(unsigned long algorithm, char const* text) { return Decode(algorithm, Encode(algorithm, text)); }

} // namespace

TEST(FastInfosetBinaryDataTest, EncodesEachAlgorithmMostSignificantFirst)
{
    EXPECT_EQ(Encode(1, "0AFF"), std::string("\x0A\xFF", 2));
    EXPECT_EQ(Encode(2, "AQI="), std::string("\x01\x02", 2));
    EXPECT_EQ(Encode(3, "-2"), "\xFF\xFE");
    EXPECT_EQ(Encode(4, "258"), std::string("\x00\x00\x01\x02", 4));
    EXPECT_EQ(Encode(5, "-2"), "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE");
    EXPECT_EQ(Encode(6, "true"), "\x38");
    EXPECT_EQ(Encode(6, "false"), "\x30");
    EXPECT_EQ(Encode(7, "1"), std::string("\x3F\x80\x00\x00", 4));
    EXPECT_EQ(Encode(8, "-2"), std::string("\xC0\x00\x00\x00\x00\x00\x00\x00", 8));
    EXPECT_EQ(Encode(9, "000102030405060708090A0B0C0D0E0F").size(), 16u);
    EXPECT_EQ(Encode(10, "plain text"), "plain text");
}

TEST(FastInfosetBinaryDataTest, DecodesTheTextOfEveryValue)
{
    EXPECT_EQ(RoundTrip(1, "0aff"), "0AFF");
    EXPECT_EQ(RoundTrip(2, "AQI="), "AQI=");
    EXPECT_EQ(RoundTrip(5, "-2"), "-2");
    EXPECT_EQ(RoundTrip(5, "9223372036854775807"), "9223372036854775807");
    EXPECT_EQ(RoundTrip(6, "true"), "true");
    EXPECT_EQ(RoundTrip(6, "false"), "false");
    EXPECT_EQ(RoundTrip(8, "139.95"), "139.95");
    EXPECT_EQ(Decode(9, std::string(32, '\x11')),
              "11111111111111111111111111111111 11111111111111111111111111111111");
    // Values whose bytes are all alike survive short, int and float.
    EXPECT_EQ(RoundTrip(3, "-1"), "-1");
    EXPECT_EQ(RoundTrip(4, "-1"), "-1");
    EXPECT_EQ(Decode(4, std::string("\x00\x00\x00\x00\xFF\xFF\xFF\xFF", 8)), "0 -1");
    // Several booleans come out in runs by octet: 0x1E has one unused bit,
    // so bits 3 to 1 are the values.
    EXPECT_EQ(Decode(6, "\x1E"), "truetruetrue");
    EXPECT_EQ(Decode(6, std::string("\x0F\x80", 2)), "truetruetruetrue truefalsefalsefalsefalsefalsefalsefalse");
}

TEST(FastInfosetBinaryDataTest, ShortIntAndFloatRepeatTheFirstByteOfTheirGroup)
{
    EXPECT_EQ(Decode(3, "\xFF\xFE"), "-1");
    EXPECT_EQ(Decode(3, "\x12\x34"), "4626");  // 0x1212
    EXPECT_EQ(Decode(4, std::string("\x00\x00\x01\x02", 4)), "0");
    EXPECT_EQ(RoundTrip(7, "1"), Decode(7, std::string(4, '\x3F')));
}

TEST(FastInfosetBinaryDataTest, RefusesUnknownAlgorithmsAndBadLengths)
{
    CFastInfosetBinaryData empty;
    for (unsigned long algorithm : {0ul, 4ul, 10ul, 99ul})
        EXPECT_EQ(empty.GetAsString(algorithm), "");  // no data: no look at the number

    EXPECT_EQ(FailureOf([] { Decode(10, "abc"); }), "Unknown byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(0, "abc"); }), "Unknown byte encoding.");
    EXPECT_EQ(FailureOf([] { Encode(0, "1"); }), "Unknown byte encoding.");
    EXPECT_EQ(FailureOf([] { Encode(11, "1"); }), "Unknown byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(3, "abc"); }), "Invalid value for SHORT byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(4, "abc"); }), "Invalid value for INT byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(5, "abc"); }), "Invalid value for LONG byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(7, "abc"); }), "Invalid value for FLOAT byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(8, "abc"); }), "Invalid value for DOUBLE byte encoding.");
    EXPECT_EQ(FailureOf([] { Decode(9, "abc"); }), "Invalid value for UUID byte encoding.");
    // The conversions refuse what they cannot read, and a list is not split.
    EXPECT_NE(FailureOf([] { Encode(4, "1 2"); }), "<no failure>");
    EXPECT_NE(FailureOf([] { Encode(3, "70000"); }), "<no failure>");
    EXPECT_NE(FailureOf([] { Encode(6, "yes"); }), "<no failure>");
    EXPECT_NE(FailureOf([] { Encode(1, "XYZ"); }), "<no failure>");
}
