// The xsd:pattern facet: XML Schema escapes rewritten into PCRE terms, then an
// anchored PCRE2 match that must cover the whole value.
#include <cstring>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include <pcre2.h>

#include "kdbind/values.h"

namespace KdBind {

namespace {

// The rewrites, applied in this order, each to every occurrence. The first
// turns an escaped backslash into a guard byte so that "\\i" keeps its
// backslashes and its letter; the last turns the guard back. The escapes
// become groups, not bracket items, so they only work outside brackets, and
// they mean PCRE's ASCII word class, not the XML name tables.
struct Rewrite {
    char const* find;
    char const* replacement;
};

Rewrite const kRewrites[] = {
    {"\\\\", "\x01"},
    {"\\i", "([^\\W\\d]|:)"},
    {"\\I", "([\\W\\d])"},
    {"\\c", "(\\w|\\.|-|:)"},
    {"\\C", "([^\\w\\.\\-\\:])"},
    {"\\p{IsBasicLatin}", "[\\000-\\177]"},
    {"\\p{IsLatin-1Supplement}", "[\\200-\\377]"},
    {"\\p{IsLatinExtended-A}", "[\\400-\\577]"},
    // PCRE reads at most three octal digits, so this range ends before it
    // starts and the pattern is refused: the block cannot be used.
    {"\\p{IsLatinExtended-B}", "[\\600-\\1117]"},
    {"\x01", "\\\\"},
};

// The budget of one match: PCRE's default step limit (ten million), and a
// cap on the backtracking memory, so that catastrophic backtracking or a huge
// value with a nested repeat ends as a non-match instead of running for
// hours or exhausting memory.
constexpr uint32_t kMatchLimit = 10000000;
constexpr uint32_t kHeapLimitKiB = 64 * 1024;

pcre2_match_context* MatchContext()
{
    // Built once, then only read by pcre2_match: safe to share.
    static pcre2_match_context* const context = [] {
        pcre2_match_context* built = pcre2_match_context_create(nullptr);
        if (!built)
            throw std::bad_alloc();
        pcre2_set_match_limit(built, kMatchLimit);
        pcre2_set_depth_limit(built, kMatchLimit);
        pcre2_set_heap_limit(built, kHeapLimitKiB);
        return built;
    }();
    return context;
}

// One pair of offsets is all the end test needs: a match with more groups
// than that still reports where the whole match lies (pcre2_match returns 0).
// Match data is written by every match, so each thread has its own.
struct MatchData {
    pcre2_match_data* data = pcre2_match_data_create(1, nullptr);
    MatchData() = default;
    MatchData(MatchData const&) = delete;
    MatchData& operator=(MatchData const&) = delete;
    ~MatchData() { pcre2_match_data_free(data); }
};

pcre2_match_data* ThreadMatchData()
{
    thread_local MatchData match;
    if (!match.data)
        throw std::bad_alloc();
    return match.data;
}

// Word-wide: values can be long.
bool IsAscii(std::string const& text)
{
    return !DoesUTF8StrContainAnyCharsLargerThanOneByte(
        reinterpret_cast<unsigned char*>(const_cast<char*>(text.data())), text.size());
}

// The process-wide cache of compiled patterns. Patterns come from metadata
// tables, so there are few; the cap only guards against a caller that tests
// endless distinct patterns. Dropping entries is safe: holders share them.
class CPatternCache {
public:
    std::shared_ptr<CCompiledPattern const> Get(std::string const& pattern)
    {
        {
            std::shared_lock<std::shared_mutex> reading(m_lock);
            auto const found = m_patterns.find(pattern);
            if (found != m_patterns.end())
                return found->second;
        }
        // Compiled outside the lock; a thread that loses the race to insert
        // takes the winner's copy.
        auto compiled = std::make_shared<CCompiledPattern const>(pattern);
        std::unique_lock<std::shared_mutex> writing(m_lock);
        if (m_patterns.size() >= kCapacity)
            m_patterns.clear();
        return m_patterns.emplace(pattern, std::move(compiled)).first->second;
    }

private:
    static constexpr std::size_t kCapacity = 1024;
    std::shared_mutex m_lock;
    std::unordered_map<std::string, std::shared_ptr<CCompiledPattern const>> m_patterns;
};

// The one translation and compilation of a pattern, for the matcher and for
// the probe that schema compilers ask: null when PCRE2 refuses it, with its
// error code and the offset in the rewritten pattern.
pcre2_code* CompilePattern(std::string pattern, int& error, PCRE2_SIZE& errorOffset)
{
    for (Rewrite const& rewrite : kRewrites)
        FindReplace(pattern, rewrite.find, rewrite.replacement);
    // Zero-terminated as a C string: a NUL ends the pattern. UTF without UCP,
    // so that \w, \d and \s stay ASCII.
    return pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()), PCRE2_ZERO_TERMINATED, PCRE2_UTF, &error,
                         &errorOffset, nullptr);
}

} // namespace

CCompiledPattern::CCompiledPattern(std::string pattern) : m_code(nullptr)
{
    int error = 0;
    PCRE2_SIZE errorOffset = 0;
    m_code = CompilePattern(std::move(pattern), error, errorOffset);
    // A refused pattern is no property of the document being processed: stop
    // at once, distinctly from any thrown failure.
    if (!m_code)
        __builtin_trap();
}

std::string CCompiledPattern::Diagnose(std::string const& pattern)
{
    int error = 0;
    PCRE2_SIZE errorOffset = 0;
    pcre2_code* const code = CompilePattern(pattern, error, errorOffset);
    if (code) {
        pcre2_code_free(code);
        return std::string();
    }
    PCRE2_UCHAR message[256];
    if (pcre2_get_error_message(error, message, sizeof message) < 0)
        return "error " + std::to_string(error);
    return reinterpret_cast<char const*>(message) + std::string(" at offset ") + std::to_string(errorOffset) +
           " of the translated pattern";
}

CCompiledPattern::~CCompiledPattern() { pcre2_code_free(static_cast<pcre2_code*>(m_code)); }

bool CCompiledPattern::Matches(std::string const& value) const
{
    // The value as UTF-8, up to a first NUL. ASCII is UTF-8 already.
    std::string converted;
    char const* subject = value.c_str();
    if (!ASCII_ONLY && !IsAscii(value)) {
        CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(value.c_str());
        if (utf8.GetData())
            converted.assign(reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength());
        subject = converted.c_str();
    }
    std::size_t const length = strlen(subject);
    pcre2_match_data* const match = ThreadMatchData();
    int const result = pcre2_match(static_cast<pcre2_code*>(m_code), reinterpret_cast<PCRE2_SPTR>(subject), length,
                                   0, PCRE2_ANCHORED, match, MatchContext());
    // Negative: no match, bad UTF-8 in the value, or the budget ran out.
    if (result < 0)
        return false;
    PCRE2_SIZE const* offsets = pcre2_get_ovector_pointer(match);
    // No "^" or "$" is added: the first alternative found decides, and it
    // must reach the end ("a|ab" does not match "ab").
    return offsets[0] == 0 && offsets[1] == length;
}

std::shared_ptr<CCompiledPattern const> CCompiledPattern::Shared(std::string const& pattern)
{
    static CPatternCache* const cache = new CPatternCache();  // never destroyed: usable until the very end
    return cache->Get(pattern);
}

bool TestRegEx(std::string pattern, std::string value) { return CCompiledPattern::Shared(pattern)->Matches(value); }

} // namespace KdBind
