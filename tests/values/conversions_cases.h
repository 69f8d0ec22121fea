// Table-driven checks for the lexical conversions: each row is a text, a
// whitespace rule, and either the value it must give or the message of the
// failure it must raise.
#ifndef KDBIND_TESTS_CONVERSIONS_CASES_H
#define KDBIND_TESTS_CONVERSIONS_CASES_H

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kdbind/values.h>

namespace KdBindTest {

using Rule = KdBind::CWhitespaceUtils::WhitespaceRule;
constexpr Rule kNone = KdBind::CWhitespaceUtils::WhitespaceRule_None;
constexpr Rule kPreserve = KdBind::CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr Rule kReplace = KdBind::CWhitespaceUtils::WhitespaceRule_Replace;
constexpr Rule kCollapse = KdBind::CWhitespaceUtils::WhitespaceRule_Collapse;

// The message of the failure of type Failure that `action` raises, or a
// marker when it raises none. Any other exception escapes and fails the test.
template <class Failure, class Action>
std::string FailureOf(Action action)
{
    try {
        action();
    } catch (Failure const& failure) {
        return failure.GetMessage();
    }
    return "<no failure>";
}

template <class T>
struct ParseCase {
    std::string text;
    Rule rule;
    T expected;           // when no failure is expected
    char const* failure;  // the expected message, or null
};

// NaN matches NaN; a zero must keep its sign.
inline bool SameValue(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}
inline bool SameValue(float a, float b) { return SameValue(static_cast<double>(a), static_cast<double>(b)); }
template <class T>
bool SameValue(T a, T b) { return a == b; }

template <class Failure = KdBind::CKdInvalidValueException, class T, class Parse>
void ExpectParses(Parse parse, std::vector<ParseCase<T>> const& cases)
{
    for (ParseCase<T> const& c : cases) {
        SCOPED_TRACE("text [" + c.text + "], rule " + std::to_string(static_cast<int>(c.rule)));
        if (c.failure) {
            EXPECT_EQ(FailureOf<Failure>([&] { parse(c.text, c.rule); }), c.failure);
        } else {
            T const value = parse(c.text, c.rule);
            EXPECT_TRUE(SameValue(value, c.expected)) << "got " << +value << ", expected " << +c.expected;
        }
    }
}

struct PrintCase {
    std::string printed;
    char const* expected;
};

inline void ExpectPrints(std::vector<PrintCase> const& cases)
{
    for (size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(cases[i].printed, cases[i].expected) << "row " << i;
}

} // namespace KdBindTest

#endif
