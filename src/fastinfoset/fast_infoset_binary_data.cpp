// CFastInfosetBinaryData: a value's text as the octets of a built-in
// encoding algorithm, and the octets back as text.
#include <cstring>

#include "kdbind/fastinfoset.h"

namespace KdBind {

namespace {

constexpr CWhitespaceUtils::WhitespaceRule kNoRule = CWhitespaceUtils::WhitespaceRule_None;

char const kUnknownEncoding[] = "Unknown byte encoding.";

// Big-endian bytes of the low size bytes of value.
void AppendBigEndian(CBinaryData& data, unsigned long long value, unsigned size)
{
    unsigned char bytes[8];
    for (unsigned i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (8 * (size - 1 - i)));
    data.Append(bytes, size);
}

// The value of one group as the decoder assembles it. Long and double take
// all their bytes, most significant first; short, int and float repeat the
// group's first byte in every position and step over the rest.
unsigned long long AssembleGroup(unsigned char const* group, unsigned size, bool allBytes)
{
    unsigned long long value = 0;
    for (unsigned i = 0; i < size; ++i)
        value = (value << 8) | (allBytes ? group[i] : group[0]);
    return value;
}

// The texts of the fixed-size groups, joined with one blank.
template <class Print>
std::string JoinGroups(CBinaryData const& data, unsigned size, char const* lengthMessage, Print print)
{
    unsigned long const length = data.GetLength();
    if (length % size != 0)
        throw CKdException(lengthMessage);
    unsigned char const* bytes = data.GetData();
    std::string text;
    for (unsigned long offset = 0; offset < length; offset += size) {
        if (offset != 0)
            text += ' ';
        text += print(bytes + offset);
    }
    return text;
}

std::string BooleansToString(CBinaryData const& data)
{
    unsigned char const* bytes = data.GetData();
    unsigned long const length = data.GetLength();
    unsigned const unused = bytes[0] >> 4;
    std::string text;
    for (unsigned long octet = 0; octet < length; ++octet) {
        if (octet != 0)
            text += ' ';
        int const highest = octet == 0 ? 3 : 7;
        int const lowest = octet + 1 == length ? static_cast<int>(unused) : 0;
        for (int bit = highest; bit >= lowest; --bit)
            text += CConversions::booleanToString(((bytes[octet] >> bit) & 1) != 0);
    }
    return text;
}

} // namespace

CFastInfosetBinaryData::CFastInfosetBinaryData() = default;

CFastInfosetBinaryData::CFastInfosetBinaryData(CBinaryData const& data) : CBinaryData(data) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool adopt)
    : CBinaryData(data, length, adopt)
{
}

CFastInfosetBinaryData::CFastInfosetBinaryData(char const* text) : CBinaryData(text) {}

CFastInfosetBinaryData::~CFastInfosetBinaryData() = default;

void CFastInfosetBinaryData::SetAsEncodedString(unsigned long algorithm, char const* text)
{
    Clear();
    std::string const value = text ? text : "";
    switch (algorithm) {
    case 1:
    case 9:  // a UUID takes the hexadecimal text, without hyphens
        SetAsHexString(value.c_str());
        return;
    case 2:
        SetAsBase64(value.c_str());
        return;
    case 3:
        AppendBigEndian(*this, static_cast<unsigned short>(CConversions::i2FromString(value, kNoRule)), 2);
        return;
    case 4:
        AppendBigEndian(*this, static_cast<unsigned int>(CConversions::i4FromString(value, kNoRule)), 4);
        return;
    case 5:
        AppendBigEndian(*this, static_cast<unsigned long long>(CConversions::i8FromString(value, kNoRule)), 8);
        return;
    case 6:
        // One value: three unused bits at the end, the value in bit 3.
        Append(static_cast<unsigned char>(CConversions::booleanFromString(value, kNoRule) ? 0x38 : 0x30));
        return;
    case 7: {
        float const number = CConversions::r4FromString(value, kNoRule);
        unsigned int bits;
        memcpy(&bits, &number, sizeof bits);
        AppendBigEndian(*this, bits, 4);
        return;
    }
    case 8: {
        double const number = CConversions::r8FromString(value, kNoRule);
        unsigned long long bits;
        memcpy(&bits, &number, sizeof bits);
        AppendBigEndian(*this, bits, 8);
        return;
    }
    case 10:
        Append(CEncoder::LocalCodePageToUtf8Binary(value.c_str()));
        return;
    default:
        throw CKdException(kUnknownEncoding);
    }
}

std::string CFastInfosetBinaryData::GetAsString(unsigned long algorithm) const
{
    if (GetLength() == 0)
        return std::string();
    switch (algorithm) {
    case 1:
        return GetAsHexString();
    case 2:
        return GetAsBase64();
    case 3:
        return JoinGroups(*this, 2, "Invalid value for SHORT byte encoding.", [](unsigned char const* group) {
            return CConversions::i2ToString(static_cast<short>(AssembleGroup(group, 2, false)));
        });
    case 4:
        return JoinGroups(*this, 4, "Invalid value for INT byte encoding.", [](unsigned char const* group) {
            return CConversions::i4ToString(static_cast<int>(AssembleGroup(group, 4, false)));
        });
    case 5:
        return JoinGroups(*this, 8, "Invalid value for LONG byte encoding.", [](unsigned char const* group) {
            return CConversions::i8ToString(static_cast<long long>(AssembleGroup(group, 8, true)));
        });
    case 6:
        return BooleansToString(*this);
    case 7:
        return JoinGroups(*this, 4, "Invalid value for FLOAT byte encoding.", [](unsigned char const* group) {
            unsigned int const bits = static_cast<unsigned int>(AssembleGroup(group, 4, false));
            float number;
            memcpy(&number, &bits, sizeof number);
            return CConversions::r4ToString(number);
        });
    case 8:
        return JoinGroups(*this, 8, "Invalid value for DOUBLE byte encoding.", [](unsigned char const* group) {
            unsigned long long const bits = AssembleGroup(group, 8, true);
            double number;
            memcpy(&number, &bits, sizeof number);
            return CConversions::r8ToString(number);
        });
    case 9:
        return JoinGroups(*this, 16, "Invalid value for UUID byte encoding.", [](unsigned char const* group) {
            return GetAsHexString(const_cast<unsigned char*>(group), 16);
        });
    default:
        throw CKdException(kUnknownEncoding);
    }
}

} // namespace KdBind
