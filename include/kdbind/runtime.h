// KdBind runtime foundation: failures, message formatting, the item kinds,
// the reference-holding pointer, the lock, facets, encodings and byte streams.
//
// The public headers are layered: runtime <- values <- xmloutput <- xmlinput
// <- fastinfoset <- binding <- metadata. Each type is declared in the lowest
// header whose dependencies are complete there.
#ifndef KDBIND_RUNTIME_H
#define KDBIND_RUNTIME_H

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

#include <pthread.h>

// ---------------------------------------------------------------------------
// Global helpers: marker base, lock, counted pointer.
// ---------------------------------------------------------------------------

// Inert marker base: takes the class name and keeps nothing.
class CInstanceMonitor {
public:
    explicit CInstanceMonitor(char const* /*className*/) {}
    virtual ~CInstanceMonitor() = default;
};

// A non-recursive mutex. Neither operation reports a failure.
class CKDCriticalSection {
public:
    CKDCriticalSection();
    virtual ~CKDCriticalSection();
    CKDCriticalSection(CKDCriticalSection const&) = delete;
    CKDCriticalSection& operator=(CKDCriticalSection const&) = delete;

    void Enter();
    void Leave();

private:
    pthread_mutex_t m_mutex;
};

// Holds one reference on an object of the CXmlObjectBase family (anything
// with AddRef/Release). Null is allowed.
template <class T>
class CSmartPtr {
public:
    CSmartPtr() : m_p(nullptr) {}
    CSmartPtr(T* p) : m_p(p) { if (m_p) m_p->AddRef(); }
    CSmartPtr(CSmartPtr const& other) : m_p(other.m_p) { if (m_p) m_p->AddRef(); }
    template <class U>
    CSmartPtr(CSmartPtr<U> const& other) : m_p(other.get()) { if (m_p) m_p->AddRef(); }
    CSmartPtr(CSmartPtr&& other) noexcept : m_p(other.m_p) { other.m_p = nullptr; }
    ~CSmartPtr() { if (m_p) m_p->Release(); }

    // Reference the new object first, so that assigning an object to the
    // pointer that already holds it cannot destroy it.
    CSmartPtr& operator=(T* p)
    {
        if (p) p->AddRef();
        T* old = m_p;
        m_p = p;
        if (old) old->Release();
        return *this;
    }
    CSmartPtr& operator=(CSmartPtr const& other) { return *this = other.m_p; }
    CSmartPtr& operator=(CSmartPtr&& other) noexcept
    {
        if (this != &other) {
            T* old = m_p;
            m_p = other.m_p;
            other.m_p = nullptr;
            if (old) old->Release();
        }
        return *this;
    }

    T* operator->() const { return m_p; }
    T& operator*() const { return *m_p; }
    operator T*() const { return m_p; }
    T* get() const { return m_p; }

private:
    T* m_p;
};

namespace KdBind {

// ---------------------------------------------------------------------------
// Failures. Thrown by value; each holds a message and an owned inner failure.
// ---------------------------------------------------------------------------

class CKdException {
public:
    CKdException();
    CKdException(std::string message);
    CKdException(std::string message, CKdException const& inner);
    // Takes over the inner failure's chain instead of copying it, so that
    // wrapping a failure on every level of a deep document costs the same on
    // each level. The inner is left without a chain of its own.
    CKdException(std::string message, CKdException&& inner);
    CKdException(CKdException const& other);
    virtual ~CKdException();
    virtual CKdException* Clone() const;

    // Replaces the inner pointer without destroying the previous inner:
    // assignment only swaps the pointer, by design.
    CKdException& operator=(CKdException const& other);

    std::string GetMessage() const { return m_message; }
    CKdException* GetInnerException() const { return m_inner; }
    // The message, then one line per inner failure, outermost first.
    std::string GetFullMessage() const;

private:
    // A copy of the chain that starts at first, made link by link.
    static CKdException* CloneChain(CKdException const* first);

    std::string m_message;
    CKdException* m_inner;  // owned; a chain of any length, copied and destroyed without recursion
};

#define KDBIND_DECLARE_EXCEPTION(Name, Base)                                   \
    class Name : public Base {                                                 \
    public:                                                                    \
        Name() = default;                                                      \
        Name(std::string message) : Base(std::move(message)) {}               \
        Name(std::string message, CKdException const& inner)                   \
            : Base(std::move(message), inner) {}                               \
        Name(std::string message, CKdException&& inner)                        \
            : Base(std::move(message), std::move(inner)) {}                    \
        Name(CKdException const& other) : Base(other) {}                       \
        Name(Name const& other) : Base(static_cast<CKdException const&>(other)) {} \
        CKdException* Clone() const override { return new Name(*this); }      \
    }

KDBIND_DECLARE_EXCEPTION(CKdOverFlowException, CKdException);
KDBIND_DECLARE_EXCEPTION(CKdInvalidParamException, CKdException);
KDBIND_DECLARE_EXCEPTION(CKdInvalidStateException, CKdException);
KDBIND_DECLARE_EXCEPTION(CKdValidationException, CKdException);
KDBIND_DECLARE_EXCEPTION(CKdInvalidNamespaceException, CKdValidationException);
KDBIND_DECLARE_EXCEPTION(CKdInvalidValueException, CKdValidationException);

#undef KDBIND_DECLARE_EXCEPTION

// ---------------------------------------------------------------------------
// Message formatting and small helpers.
// ---------------------------------------------------------------------------

std::string FormatV(char const* format, va_list args);
std::string FormatString(char const* format, ...) __attribute__((format(printf, 1, 2)));
void FindReplace(std::string& text, std::string const& find, std::string const& replacement);
void FindReplace(std::wstring& text, std::wstring const& find, std::wstring const& replacement);
char* strupr(char* text);
long _filelength(FILE* stream);

// ---------------------------------------------------------------------------
// The primitive kinds; also the tag of KdVariant. The values are fixed:
// generated code passes them to metadata constructors.
// ---------------------------------------------------------------------------

enum ItemType : int {
    ItemType_invalid = 0,
    ItemType_hexBinary = 1,
    ItemType_base64Binary = 2,
    ItemType_i1 = 3,
    ItemType_i2 = 4,
    ItemType_i4 = 5,
    ItemType_i8 = 6,
    ItemType_ui1 = 7,
    ItemType_ui2 = 8,
    ItemType_ui4 = 9,
    ItemType_ui8 = 10,
    ItemType_r4 = 11,
    ItemType_r8 = 12,
    ItemType_duration = 13,
    ItemType_yearMonth = 14,
    ItemType_monthDay = 15,
    ItemType_year = 16,
    ItemType_month = 17,
    ItemType_day = 18,
    ItemType_date = 19,
    ItemType_datetime = 20,
    ItemType_time = 21,
    ItemType_char = 22,
    ItemType_string = 23,
    ItemType_boolean = 24,
    ItemType_decimal = 25,
    ItemType_integer = 26,
    ItemType_xmlObject = 27,
    ItemType_xmlCollection = 28
};

// The name text of a primitive kind ("hexBinary" ... "integer"), or null
// for 0, 27, 28 and values out of range.
char const* ItemTypeName(int type);

// ---------------------------------------------------------------------------
// Enumerations of the entry points.
// ---------------------------------------------------------------------------

// Encoding named in the XML declaration and used by byte streams.
enum XmlEncoding : int {
    XmlEncoding_None = 0,            // no encoding named; GetEncodedStream refuses it
    XmlEncoding_UTF8 = 1,
    XmlEncoding_UTF16 = 2,
    XmlEncoding_UTF16_NoDecl = 3     // UTF-16, but the declaration names no encoding
};

enum EOLType : int {
    EOLType_CRLF = 0,
    EOLType_LF = 1
};

enum CompressionType : int {
    CompressionType_None = 0,
    CompressionType_GZip = 1,
    CompressionType_ZLib = 2         // only for the Stream entry points
};

// The XML declaration a Fast Infoset document starts with.
enum FInfoDecl : int {
    FInfoDecl_None = 0,
    FInfoDecl_Encoding = 1,
    FInfoDecl_Encoding_Standalone = 2,
    FInfoDecl_Encoding_NotStandalone = 3,
    FInfoDecl_10_Encoding = 4,
    FInfoDecl_10_Encoding_Standalone = 5,
    FInfoDecl_10_Encoding_NotStandalone = 6,
    FInfoDecl_11_Encoding = 7,
    FInfoDecl_11_Encoding_Standalone = 8,
    FInfoDecl_11_Encoding_NotStandalone = 9
};

// Schema dialect of the bound classes. Only 2 has a meaning here: it makes
// namespaces ignored and element names compared by local name.
enum SchemaType : int {
    SchemaType_Default = 0,
    SchemaType_Reserved = 1,
    SchemaType_IgnoreNamespaces = 2
};

// ---------------------------------------------------------------------------
// Facets of a primitive, as text bounds and lengths.
// ---------------------------------------------------------------------------

// The facets in a form ready for testing, built by the facet checks of the
// binding layer on a record's first test. The kind is the ItemType the forms
// were built for.
class CParsedRestrictions {
public:
    explicit CParsedRestrictions(ItemType kind) : m_kind(kind) {}
    CParsedRestrictions(CParsedRestrictions const&) = delete;
    CParsedRestrictions& operator=(CParsedRestrictions const&) = delete;
    virtual ~CParsedRestrictions() = default;
    ItemType GetKind() const { return m_kind; }

private:
    ItemType m_kind;
};

class CPrimitiveRestrictions {
public:
    CPrimitiveRestrictions() = default;
    CPrimitiveRestrictions(std::string pattern, int minLength, int maxLength,
                           std::string minInclusive, std::string maxInclusive,
                           std::string minExclusive, std::string maxExclusive, int length)
        : pattern(std::move(pattern)), minLength(minLength), maxLength(maxLength),
          minInclusive(std::move(minInclusive)), maxInclusive(std::move(maxInclusive)),
          minExclusive(std::move(minExclusive)), maxExclusive(std::move(maxExclusive)),
          length(length) {}
    // Copies take the facets, not the parsed forms.
    CPrimitiveRestrictions(CPrimitiveRestrictions const& other)
        : CPrimitiveRestrictions(other.pattern, other.minLength, other.maxLength, other.minInclusive,
                                 other.maxInclusive, other.minExclusive, other.maxExclusive, other.length) {}
    CPrimitiveRestrictions& operator=(CPrimitiveRestrictions const& other);
    virtual ~CPrimitiveRestrictions();

    std::string pattern;        // empty: none
    int minLength = -1;         // negative: none
    int maxLength = -1;
    std::string minInclusive;   // empty: none
    std::string maxInclusive;
    std::string minExclusive;
    std::string maxExclusive;
    int length = -1;

    // The parsed forms, null until a check installs them. Installed at most
    // once and never changed afterwards, so that a record in a metadata table
    // serves every thread; users of the forms still compare them with the
    // fields, which stay public and may have changed.
    CParsedRestrictions const* GetParsed() const { return m_parsed.load(std::memory_order_acquire); }
    // Takes ownership of parsed; returns what is installed, which is another
    // thread's forms if that thread was first (parsed is then freed).
    CParsedRestrictions const* InstallParsed(CParsedRestrictions* parsed) const;

private:
    mutable std::atomic<CParsedRestrictions*> m_parsed{nullptr};  // owned
};

// ---------------------------------------------------------------------------
// Process-wide switch: all text in the program is plain ASCII, so encoding
// conversions may be skipped. Set before work starts.
// ---------------------------------------------------------------------------

extern bool ASCII_ONLY;
void ASCIIOnly(bool asciiOnly);

class CBinaryData;

// ---------------------------------------------------------------------------
// Conversions between the local code page, wide strings (one code point per
// wchar_t) and UTF-8. Static operations, no state.
// ---------------------------------------------------------------------------

class CEncoder {
public:
    static CBinaryData UnicodeToUtf8Binary(wchar_t const* text);
    static CBinaryData LocalCodePageToUtf8Binary(char const* text);
    static CBinaryData LocalCodePageToUnicodeBinary(char const* text);
    static std::string Utf16ToLocalCodePage(unsigned char* text, int length);
    // The buffers are scratch space the caller may lend to avoid allocation.
    static std::string Utf8ToLocalCodePage(unsigned char* text, int length, wchar_t* wideBuffer,
                                           unsigned long wideCapacity, char* narrowBuffer,
                                           unsigned long narrowCapacity);
    static std::string Utf8ToLocalCodePage(unsigned char* text, int length);
    static std::string Utf8ToLocalCodePage(char const* text);
    static std::string Utf8ToLocalCodePage(char const* text, wchar_t* wideBuffer, unsigned long wideCapacity,
                                           char* narrowBuffer, unsigned long narrowCapacity);
};

// Wide text to the local code page; a character that does not convert
// becomes a question mark.
std::string UnicodeToMultiByte(wchar_t const* text);

} // namespace KdBind

// ---------------------------------------------------------------------------
// UTF converters. Each reads [sourceStart, sourceEnd) and writes into
// [targetStart, targetEnd); a null targetStart only counts. They return the
// target units written, or needed when counting: unsigned char for UTF-8,
// unsigned short for UTF-16, unsigned int for UTF-32 (native byte order).
// Malformed input ends the work: counting then returns 0, writing returns
// what was written so far. Writing also stops where the next character does
// not fit.
// ---------------------------------------------------------------------------

unsigned long ConvertUTF32toUTF16(unsigned int const* sourceStart, unsigned int const* sourceEnd,
                                  unsigned short* targetStart, unsigned short* targetEnd);
// The writing form returns 0 even on success: writers rely on a counting call.
unsigned long ConvertUTF16toUTF32(unsigned short const* sourceStart, unsigned short const* sourceEnd,
                                  unsigned int* targetStart, unsigned int* targetEnd);
unsigned long ConvertUTF16toUTF8(unsigned short const* sourceStart, unsigned short const* sourceEnd,
                                 unsigned char* targetStart, unsigned char* targetEnd);
unsigned long ConvertUTF8toUTF16(unsigned char const* sourceStart, unsigned char const* sourceEnd,
                                 unsigned short* targetStart, unsigned short* targetEnd);
unsigned long ConvertUTF32toUTF8(unsigned int const* sourceStart, unsigned int const* sourceEnd,
                                 unsigned char* targetStart, unsigned char* targetEnd);
unsigned long ConvertUTF8toUTF32(unsigned char const* sourceStart, unsigned char const* sourceEnd,
                                 unsigned int* targetStart, unsigned int* targetEnd);
// Whether the length bytes at source form one well-formed UTF-8 sequence.
bool IsLegalUTF8(unsigned char const* source, int length);
// Whether the sequence starting at source is well formed and ends by sourceEnd.
bool IsLegalUTF8Sequence(unsigned char const* source, unsigned char const* sourceEnd);

// The same conversions over wide text (one code point per wchar_t). count
// counts source units and capacity target units (16-bit units for UTF-16,
// whose bytes are in native order); a null target only counts.
unsigned long UnicodeToUTF8(wchar_t const* source, unsigned long count, unsigned char* target,
                            unsigned long capacity);
unsigned long UTF8ToUnicode(unsigned char* source, unsigned long count, wchar_t* target, unsigned long capacity);
unsigned long UnicodeToUTF16(wchar_t const* source, unsigned long count, unsigned char* target,
                             unsigned long capacity);
// Like ConvertUTF16toUTF32, the writing form returns 0.
unsigned long UTF16ToUnicode(unsigned char* source, unsigned long count, wchar_t* target, unsigned long capacity);

// Whether any code point of the text is above 127.
bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(wchar_t const* text, int length);
// Whether any byte of the text is above 127.
bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char* text, unsigned long length);

#endif
