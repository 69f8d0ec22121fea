// KdBind XML Schema value types: whitespace rules, lexical conversions, the
// value classes and the tagged value KdVariant that carries them.
#ifndef KDBIND_VALUES_H
#define KDBIND_VALUES_H

#include <memory>
#include <string>

#include "kdbind/runtime.h"

namespace KdBind {

class CBinaryData;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class CBigInteger;
class CXmlObjectBase;
class CXmlCollectionBase;

// ---------------------------------------------------------------------------
// Whitespace rules (xsd:whiteSpace), applied before every conversion.
// ---------------------------------------------------------------------------

class CWhitespaceUtils {
public:
    // Over int, so that any number the metadata holds is a value of the type
    // and an unknown one reaches ApplyRule's failure rather than undefined
    // behaviour.
    enum WhitespaceRule : int {
        WhitespaceRule_None = 0,
        WhitespaceRule_Preserve = 1,
        WhitespaceRule_Replace = 2,
        WhitespaceRule_Collapse = 3
    };

    static bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    static std::string Preserve(char const* text, int length);
    static std::string Preserve(std::string const& text);
    static std::string Replace(std::string const& text);
    static std::string Collapse(std::string const& text);
    static std::string ApplyRule(WhitespaceRule rule, std::string const& text);
};

// ---------------------------------------------------------------------------
// Lexical conversions: the one place where a primitive value meets its XML
// text. <kind>ToString prints a value; <kind>FromString applies the
// whitespace rule, then parses, and throws CKdInvalidValueException on text
// it cannot convert. Output does not depend on the process's locale; input
// is read as in the "C" locale.
// ---------------------------------------------------------------------------

class CConversions {
public:
    CConversions() = delete;

    typedef CWhitespaceUtils::WhitespaceRule WhitespaceRule;

    static std::string booleanToString(bool value);
    // i4 and ui4 hold a long, but print only its low 32 bits.
    static std::string i1ToString(char value);
    static std::string i2ToString(short value);
    static std::string i4ToString(long value);
    static std::string i8ToString(long long value);
    static std::string ui1ToString(unsigned char value);
    static std::string ui2ToString(unsigned short value);
    static std::string ui4ToString(unsigned long value);
    static std::string ui8ToString(unsigned long long value);
    // A null format prints "%.7g" (r4) or "%.16g" (r8); NaN and the
    // infinities print "NaN", "INF", "-INF" whatever the format.
    static std::string r4ToString(float value, char const* format = nullptr);
    static std::string r8ToString(double value, char const* format = nullptr);
    static std::string yearToString(unsigned short value);
    static std::string monthToString(unsigned char value);
    static std::string dayToString(unsigned char value);
    static std::string charToString(char value);
    static std::string stringToString(std::string const& value);
    static std::string hexBinaryToString(CBinaryData const& value);
    static std::string base64BinaryToString(CBinaryData const& value);
    // The wider value classes add their printers here as they join:
    // integer, decimal, duration, yearMonth, monthDay, date, datetime, time.

    static std::string stringFromString(std::string const& text, WhitespaceRule rule);
    static bool booleanFromString(std::string const& text, WhitespaceRule rule);
    static char charFromString(std::string const& text, WhitespaceRule rule);
    // i4 and ui4 accept the whole range of long; no 32-bit test.
    static char i1FromString(std::string const& text, WhitespaceRule rule);
    static short i2FromString(std::string const& text, WhitespaceRule rule);
    static long i4FromString(std::string const& text, WhitespaceRule rule);
    static long long i8FromString(std::string const& text, WhitespaceRule rule);
    static unsigned char ui1FromString(std::string const& text, WhitespaceRule rule);
    static unsigned short ui2FromString(std::string const& text, WhitespaceRule rule);
    static unsigned long ui4FromString(std::string const& text, WhitespaceRule rule);
    static unsigned long long ui8FromString(std::string const& text, WhitespaceRule rule);
    // The empty text is a NaN, not a failure.
    static float r4FromString(std::string const& text, WhitespaceRule rule);
    static double r8FromString(std::string const& text, WhitespaceRule rule);
    // Any date form that holds the field is read: "2004-05-06" is year 2004.
    static unsigned short yearFromString(std::string const& text, WhitespaceRule rule);
    static unsigned char monthFromString(std::string const& text, WhitespaceRule rule);
    static unsigned char dayFromString(std::string const& text, WhitespaceRule rule);
    static CBinaryData hexBinaryFromString(std::string const& text, WhitespaceRule rule);
    static CBinaryData base64BinaryFromString(std::string const& text, WhitespaceRule rule);
    // The wider value classes add their parsers here as they join:
    // integer, decimal, duration, datetime, date, time, yearMonth, monthDay.
};

// Removes trailing "0" characters but never the first one: "100" -> "1".
// (The name is kept as the library has always spelt it.)
std::string TrimTrainingZeros(std::string text);
// value printed with at least width digits, zero-padded: PadZero(7, 3) -> "007".
std::string PadZero(int value, unsigned char width);
// The fraction of a second in its shortest form with its point, ".5" for
// 500 ms; the empty string when all three groups are zero.
std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano);

// ---------------------------------------------------------------------------
// The xsd:pattern facet, decided by PCRE2.
// ---------------------------------------------------------------------------

// Whether the whole of value (local code page) matches pattern (UTF-8). The
// XML Schema escapes \i \I \c \C and the blocks IsBasicLatin,
// IsLatin-1Supplement, IsLatinExtended-A and IsLatinExtended-B are rewritten
// into PCRE terms; everything else is PCRE's own syntax, with \w and \d
// ASCII only. A pattern PCRE2 refuses stops the process on a trap: a bad
// pattern is a fault of the schema's translation, not of the document.
// Compiled patterns are kept and shared by all threads.
bool TestRegEx(std::string pattern, std::string value);

// One compiled pattern. Immutable once built, so one instance serves any
// number of threads.
class CCompiledPattern {
public:
    // Rewrites and compiles; traps on a pattern PCRE2 refuses.
    explicit CCompiledPattern(std::string pattern);
    CCompiledPattern(CCompiledPattern const&) = delete;
    CCompiledPattern& operator=(CCompiledPattern const&) = delete;
    ~CCompiledPattern();

    // The match of TestRegEx: anchored at the start, and it must end at the
    // end of the value (up to a first NUL). A match that runs out of its step
    // or memory budget is a non-match, never a hang.
    bool Matches(std::string const& value) const;

    // The compiled form of pattern from the process-wide cache, compiled on
    // first use. Holders keep their pattern alive even if the cache drops it.
    static std::shared_ptr<CCompiledPattern const> Shared(std::string const& pattern);

private:
    void* m_code;  // pcre2_code, owned
};

// ---------------------------------------------------------------------------
// Binary data: the value of hexBinary and base64Binary and the library's byte
// buffer. A handle to a counted, copy-on-write holder.
// ---------------------------------------------------------------------------

class CBinaryData {
public:
    class CDataHolder;

    CBinaryData();
    CBinaryData(CBinaryData const& other);
    explicit CBinaryData(char const* text);
    CBinaryData(unsigned char* data, unsigned long length, bool adopt);
    CBinaryData& operator=(CBinaryData const& other);
    virtual ~CBinaryData();

    void Clear();
    unsigned char const* GetData() const;
    unsigned long GetLength() const;
    unsigned char& operator[](unsigned long index);
    unsigned char const& operator[](unsigned long index) const;
    bool operator==(CBinaryData const& other) const;
    bool operator!=(CBinaryData const& other) const;
    void Append(unsigned char* data, unsigned long length);
    void Append(CBinaryData const& data);
    void Append(char const* text);
    void Append(std::string const& text);
    void Append(char c);
    void Append(unsigned char c);
    void SetBuffer(unsigned char* data, unsigned long length);
    void SetBuffer(char const* text);
    unsigned char* ReleaseData();
    std::string GetAsHexString() const;
    static std::string GetAsHexString(unsigned char* data, unsigned long length);
    void SetAsHexString(char const* text);
    static unsigned long ConvertToHexData(char const* text, unsigned char** out);
    std::string GetAsBase64() const;
    void SetAsBase64(char const* text);

private:
    CDataHolder* m_holder;
};

// ---------------------------------------------------------------------------
// Byte sinks: an in-memory block, and the same written to a file at the end.
// (Declared here rather than beside the other streams because they hold a
// CBinaryData by value.)
// ---------------------------------------------------------------------------

class CBinaryStream : private CInstanceMonitor {
public:
    CBinaryStream();
    // Starts from the given block, shared until the first append.
    explicit CBinaryStream(CBinaryData& data);
    CBinaryStream(CBinaryStream const&) = delete;
    CBinaryStream& operator=(CBinaryStream const&) = delete;
    ~CBinaryStream() override;

    CBinaryData GetBinaryStream() const { return m_data; }
    void Append(unsigned char c) { m_data.Append(c); }
    void Append(CBinaryData const& data) { m_data.Append(data); }
    void Append(unsigned char* data, unsigned long length) { m_data.Append(data, length); }

protected:
    explicit CBinaryStream(char const* monitorName);
    CBinaryStream(char const* monitorName, CBinaryData& data);

private:
    CBinaryData m_data;
};

class CFileBinaryStream : public CBinaryStream {
public:
    CFileBinaryStream(char const* path, XmlEncoding encoding);
    CFileBinaryStream(char const* path, XmlEncoding encoding, CBinaryData& data);

    // Writes the block to the file, truncating it; UTF-16 encodings start
    // with the byte order mark FF FE. An empty block is a failed write.
    void ToFile();

private:
    std::string m_path;
    XmlEncoding m_encoding;
};

// ---------------------------------------------------------------------------
// The tagged value: one ItemType tag and one word of payload. It is how
// values cross between the engine and generated code.
// ---------------------------------------------------------------------------

class KdVariant {
public:
    KdVariant();
    KdVariant(KdVariant const& other);
    // No self-assignment guard: assigning a variant to itself empties it.
    KdVariant& operator=(KdVariant const& other);
    virtual ~KdVariant();

    void Clear();
    bool IsValid() const { return m_type != ItemType_invalid; }
    void SetInvalid() { Clear(); }
    // The tag as stored (the enumerator, not the name text).
    ItemType GetItemType() const { return m_type; }
    // The name text of the tag ("i4", "string", ...).
    std::string GetType() const;

    std::string ToString(char const* format = nullptr) const;
    void FromString(std::string const& value, ItemType type,
                    CWhitespaceUtils::WhitespaceRule rule = CWhitespaceUtils::WhitespaceRule_None);

    void SetHexBinary(CBinaryData const& value);
    void SetBase64Binary(CBinaryData const& value);
    void SetI1(char value);
    void SetI2(short value);
    void SetI4(long value);
    void SetI8(long long value);
    void SetUI1(unsigned char value);
    void SetUI2(unsigned short value);
    void SetUI4(unsigned long value);
    void SetUI8(unsigned long long value);
    void SetR4(float value);
    void SetR8(double value);
    void SetDuration(CDateTimeSpan const& value);
    void SetYearMonth(CDateTime const& value);
    void SetMonthDay(CDateTime const& value);
    void SetYear(unsigned short value);
    void SetMonth(unsigned char value);
    void SetDay(unsigned char value);
    void SetDate(CDateTime const& value);
    void SetDateTime(CDateTime const& value);
    void SetTime(CDateTime const& value);
    void SetChar(char value);
    void SetString(std::string value);
    void SetBoolean(bool value);
    void SetDecimal(CDecimal const& value);
    void SetInteger(CBigInteger const& value);
    void SetXmlObject(CXmlObjectBase* value);
    void SetXmlCollection(CXmlCollectionBase* value);

    // Getters of inline kinds check nothing: asking for another kind than the
    // tag reads the payload word as that kind. Callers test the tag or know
    // what they stored. Getters of owned and counted kinds give an empty value
    // under another tag rather than follow a word that is no pointer.
    CBinaryData GetHexBinary() const;
    CBinaryData GetBase64Binary() const;
    char GetI1() const { return m_value.i1; }
    short GetI2() const { return m_value.i2; }
    long GetI4() const { return m_value.i4; }
    long long GetI8() const { return m_value.i8; }
    unsigned char GetUI1() const { return m_value.ui1; }
    unsigned short GetUI2() const { return m_value.ui2; }
    unsigned long GetUI4() const { return m_value.ui4; }
    unsigned long long GetUI8() const { return m_value.ui8; }
    float GetR4() const { return m_value.r4; }
    double GetR8() const { return m_value.r8; }
    CDateTimeSpan GetDuration() const;
    CDateTime GetYearMonth() const;
    CDateTime GetMonthDay() const;
    unsigned short GetYear() const { return m_value.ui2; }
    unsigned char GetMonth() const { return m_value.ui1; }
    unsigned char GetDay() const { return m_value.ui1; }
    CDateTime GetDate() const;
    CDateTime GetDateTime() const;
    CDateTime GetTime() const;
    char GetChar() const { return m_value.i1; }
    std::string GetString() const
    {
        return m_type == ItemType_string && m_value.string ? *m_value.string : std::string();
    }
    // The text ToString would give: a string payload in place, any other kind
    // printed into scratch. Valid while the variant and scratch are unchanged.
    std::string const& TextOf(char const* format, std::string& scratch) const
    {
        if (m_type == ItemType_string && m_value.string)
            return *m_value.string;
        return scratch = ToString(format);
    }
    bool GetBoolean() const { return m_value.boolean; }
    CDecimal GetDecimal() const;
    CBigInteger GetInteger() const;
    CSmartPtr<CXmlObjectBase> GetXmlObject() const;
    CSmartPtr<CXmlCollectionBase> GetXmlCollection() const;

private:
    union Payload {
        char i1;
        short i2;
        long i4;
        long long i8;
        unsigned char ui1;
        unsigned short ui2;
        unsigned long ui4;
        unsigned long long ui8;
        float r4;
        double r8;
        bool boolean;
        std::string* string;
        CBinaryData* binary;
        CDateTime* dateTime;
        CDateTimeSpan* duration;
        CDecimal* decimal;
        CBigInteger* integer;
        CXmlObjectBase* object;
        CXmlCollectionBase* collection;
        void* pointer;
    };

    // Clears, then stores a tag with a zeroed payload; setters fill it in.
    Payload& Reset(ItemType type);

    ItemType m_type;
    Payload m_value;
};

} // namespace KdBind

// ---------------------------------------------------------------------------
// The base64 codec (RFC 4648 alphabet, no line breaks).
// ---------------------------------------------------------------------------

class CBase64 {
public:
    CBase64();
    virtual ~CBase64();

    // Null data or a length of 0 gives the empty text. The output is padded
    // with "=" to a multiple of four, except that a single byte encodes as two
    // characters, one "=" and a NUL.
    std::string Encode(unsigned char* data, int length);
    // Writes the bytes of text to out, which must hold strlen(text) + 1 bytes
    // (all of them are zeroed first), and returns their number. Blanks, tabs,
    // line ends and "=" are skipped wherever they stand; any other character
    // outside the alphabet makes the result 0. Only the low 7 bits of each
    // character count.
    int Decode(char const* text, unsigned char* out);

    // Takes bits (1 to 8) from the input of the running Encode, high bits
    // first; got tells how many were there. A short last group is filled with
    // zero bits.
    unsigned int Read(int bits, int* got, int& position);
    // Adds bits of value to the accumulator and stores each full byte at
    // out[position++].
    void Write(unsigned int value, int bits, unsigned char* out, int& position);

    // The low-bit mask for a count of bits.
    static constexpr int m_nMask[9] = {0, 1, 3, 7, 15, 31, 63, 127, 255};
    static constexpr char m_sBase64Alphabet[65] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

private:
    int m_inputLength = 0;
    int m_bitCount = 0;
    unsigned long m_accumulator = 0;
    unsigned char* m_input = nullptr;
};

#endif
