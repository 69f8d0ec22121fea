#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <stdexcept>
#include <string>

#include <kdbind/values.h>

using namespace KdBind;

namespace {

// Switches the process's locale (and the ASCII switch) for one test.
class LocaleScope {
public:
    explicit LocaleScope(char const* name, bool asciiOnly = false)
        : m_previous(setlocale(LC_ALL, nullptr)), m_asciiOnly(ASCII_ONLY)
    {
        m_available = setlocale(LC_ALL, name) != nullptr;
        ASCIIOnly(asciiOnly);
    }
    ~LocaleScope()
    {
        setlocale(LC_ALL, m_previous.c_str());
        ASCIIOnly(m_asciiOnly);
    }
    bool Available() const { return m_available; }

private:
    std::string m_previous;
    bool m_asciiOnly;
    bool m_available = false;
};

std::string Bytes(CBinaryData const& data)
{
    return data.GetData() ? std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength())
                          : std::string();
}

unsigned char* Utf8(char const* text) { return reinterpret_cast<unsigned char*>(const_cast<char*>(text)); }

char const kEAcuteUtf8[] = "caf\xC3\xA9";
char const kEuroUtf8[] = "\xE2\x82\xAC";

} // namespace

TEST(EncoderTest, Utf8LocaleConvertsBothWays)
{
    LocaleScope scope("C.UTF-8");
    if (!scope.Available())
        GTEST_SKIP() << "no UTF-8 locale";

    // In a UTF-8 locale both forms are the same bytes.
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(kEAcuteUtf8), kEAcuteUtf8);
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUtf8Binary(kEuroUtf8)), kEuroUtf8);
    EXPECT_EQ(Bytes(CEncoder::UnicodeToUtf8Binary(L"\u20AC!")), std::string(kEuroUtf8) + "!");
    EXPECT_EQ(UnicodeToMultiByte(L"caf\u00E9"), kEAcuteUtf8);

    CBinaryData const wide = CEncoder::LocalCodePageToUnicodeBinary(kEAcuteUtf8);
    ASSERT_EQ(wide.GetLength(), 4 * sizeof(wchar_t));
    wchar_t last;
    memcpy(&last, wide.GetData() + 3 * sizeof(wchar_t), sizeof last);
    EXPECT_EQ(last, static_cast<wchar_t>(0xE9));
}

TEST(EncoderTest, ScratchBuffersAreUsedOnlyWhenLargeEnough)
{
    LocaleScope scope("C.UTF-8");
    if (!scope.Available())
        GTEST_SKIP() << "no UTF-8 locale";
    wchar_t wide[4];
    char narrow[4];
    // Six bytes of text do not fit four wide or four narrow places: both are allocated.
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("caf\xC3\xA9!", wide, 4, narrow, 4), "caf\xC3\xA9!");
    wchar_t bigWide[16];
    char bigNarrow[16];
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(kEuroUtf8, bigWide, 16, bigNarrow, 16), kEuroUtf8);
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(Utf8("ab\0cd"), 5), "ab");  // up to the first zero byte
}

TEST(EncoderTest, PosixLocaleTurnsNonAsciiIntoQuestionMarks)
{
    LocaleScope scope("C");
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(kEAcuteUtf8), "caf?");
    EXPECT_EQ(UnicodeToMultiByte(L"\u20AC1"), "?1");
    // A byte the local code page cannot decode becomes "?" in UTF-8.
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUtf8Binary("a\xE9z")), "a?z");
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUtf8Binary("plain ascii")), "plain ascii");
}

TEST(EncoderTest, IllegalUtf8CutsTheTextWithoutFailure)
{
    LocaleScope scope("C.UTF-8");
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("ok\xC3\xA9\xFFrest"), "ok\xC3\xA9");
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("ab\xE2\x82"), "ab");  // truncated at the end
}

TEST(EncoderTest, AsciiOnlyKeepsEveryByte)
{
    LocaleScope scope("C", true);
    char const raw[] = "x\xFF\xC3(y";
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(raw), raw);
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(Utf8("a\0b"), 3), std::string("a\0b", 3));
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUtf8Binary(raw)), raw);
    // The wide form does not look at the switch.
    EXPECT_EQ(CEncoder::LocalCodePageToUnicodeBinary(raw).GetLength(), 5 * sizeof(wchar_t));
}

TEST(EncoderTest, EmptyInputsGiveEmptyResults)
{
    EXPECT_EQ(CEncoder::UnicodeToUtf8Binary(L"").GetLength(), 0u);
    EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("").GetLength(), 0u);
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(""), "");
    EXPECT_EQ(UnicodeToMultiByte(L""), "");
    EXPECT_EQ(CEncoder::LocalCodePageToUnicodeBinary("abc").GetLength(), 12u);
    // A lone surrogate has no UTF-8 form: nothing is converted.
    wchar_t const surrogate[] = {L'a', 0xD800, 0};
    EXPECT_EQ(CEncoder::UnicodeToUtf8Binary(surrogate).GetLength(), 0u);
}

TEST(EncoderTest, Utf16InputHasNoConversionHere)
{
    unsigned char units[] = {'a', 0};
    EXPECT_THROW(CEncoder::Utf16ToLocalCodePage(units, 1), std::logic_error);
}
