// Failures, message formatting, the string and file helpers, and the
// options record.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <typeinfo>

#include <kdbind/binding.h>

#include "runtime/test_support.h"

using namespace KdBind;
using KdBindTest::FailureOf;

TEST(ExceptionTest, ChainsAreClonedWithTheirDynamicTypes)
{
    CKdException outer("outer", CKdValidationException("middle", CKdInvalidNamespaceException("leaf")));
    EXPECT_EQ(outer.GetFullMessage(), "outer\nmiddle\nleaf");
    EXPECT_EQ(CKdException("alone").GetFullMessage(), "alone");
    CKdException const* const middle = outer.GetInnerException();
    CKdException const* const leaf = middle->GetInnerException();
    EXPECT_EQ(typeid(*middle), typeid(CKdValidationException));
    EXPECT_EQ(typeid(*leaf), typeid(CKdInvalidNamespaceException));

    // A copy, a clone and an assignment each own a private chain. (The
    // assignment target holds no inner: assigning over one drops it unfreed.)
    CKdException copy(outer);
    std::unique_ptr<CKdException> clone(outer.Clone());
    CKdException assigned("other");
    assigned = outer;
    for (CKdException const* e : {&copy, clone.get(), &assigned}) {
        CKdException const* const inner = e->GetInnerException();
        EXPECT_EQ(e->GetFullMessage(), "outer\nmiddle\nleaf");
        EXPECT_NE(inner, middle);
        EXPECT_EQ(typeid(*inner), typeid(CKdValidationException));
    }
}

namespace {
// Hidden from the compiler's printf checks, which would flag a literal null.
char const* NullText()
{
    static char const* volatile nothing = nullptr;
    return nothing;
}
} // namespace

TEST(ExceptionTest, ChainsOfAnyLengthAreBuiltCopiedAndFreedWithoutRecursion)
{
    // Each wrap takes the inner chain over: the moved-from failure keeps its
    // message and type but no chain.
    std::unique_ptr<CKdException> chain(new CKdInvalidValueException("fault"));
    for (int i = 0; i < 200000; ++i)
        chain.reset(new CKdValidationException("level", std::move(*chain)));
    CKdValidationException moved("top", std::move(*chain));
    EXPECT_EQ(chain->GetInnerException(), nullptr);
    EXPECT_EQ(chain->GetMessage(), "level");

    CKdException const copy(moved);
    CKdException* clone = copy.Clone();
    std::string const full = clone->GetFullMessage();
    EXPECT_EQ(std::count(full.begin(), full.end(), '\n'), 200001);
    EXPECT_EQ(full.substr(full.rfind('\n') + 1), "fault");
    CKdException const* last = clone;
    while (last->GetInnerException())
        last = last->GetInnerException();
    EXPECT_NE(dynamic_cast<CKdInvalidValueException const*>(last), nullptr);
    delete clone;
}

TEST(FormatTest, PrintsAsPrintfWhateverTheLength)
{
    EXPECT_EQ(FormatString("%d|%5d|%-4d|%05d|%+d|%#x", -7, 42, 3, 9, 1, 255u), "-7|   42|3   |00009|+1|0xff");
    EXPECT_EQ(FormatString("%ld %lld %u %X %o", 123456789012L, -5LL, 4000000000u, 255u, 8u),
              "123456789012 -5 4000000000 FF 10");
    EXPECT_EQ(FormatString("%.3f %e %g", 3.14159, 1.5, 0.25), "3.142 1.500000e+00 0.25");
    EXPECT_EQ(FormatString("%*d|%.*s|%5s|100%%|%ls", 4, 1, 2, "abcdef", "ab", L"wide"), "   1|ab|   ab|100%|wide");
    // %c is budgeted, not a trap: the hex failure's message uses it.
    EXPECT_EQ(FormatString("Invalid char in hex string [%c]|%3c", 'G', 'x'), "Invalid char in hex string [G]|  x");

    char expected[400];
    snprintf(expected, sizeof expected, "%s", NullText());
    EXPECT_EQ(FormatString("%s", NullText()), expected);
    std::string const longText(10000, 'q');
    EXPECT_EQ(FormatString("<%s>", longText.c_str()), "<" + longText + ">");
    snprintf(expected, sizeof expected, "%f", 1e300);
    EXPECT_EQ(FormatString("%f", 1e300), expected);
    EXPECT_EQ(FormatString("%.400f", 1.0).size(), 402u);
    EXPECT_EQ(FormatString("%s", ""), "");
}

TEST(StringHelpersTest, FindReplaceStruprAndFileLength)
{
    // Every search starts again at the front, so "aab" loses both a's.
    std::string text = "aab";
    FindReplace(text, "ab", "b");
    EXPECT_EQ(text, "b");

    char upper[] = "abc-Xyz 09";
    EXPECT_STREQ(strupr(upper), "ABC-XYZ 09");

    FILE* file = tmpfile();
    ASSERT_NE(file, nullptr);
    fputs("hello world", file);
    fseek(file, 3, SEEK_SET);
    EXPECT_EQ(_filelength(file), 11);
    EXPECT_EQ(ftell(file), 3);
    fclose(file);
    FILE* pipe = popen("true", "r");
    ASSERT_NE(pipe, nullptr);
    EXPECT_EQ(_filelength(pipe), -1);
    pclose(pipe);
}

TEST(SerializationContextTest, GuardedAndImpliedOptions)
{
    std::string const both =
        "The parser can only ignore additional elements, or ignore the fact that some required ones are missing, "
        "you can not ignore both\n";
    CXmlSerializationContext context;
    EXPECT_TRUE(context.GetStripCDATA());
    context.SetIgnoreUnknownElements(true);
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { context.SetIgnoreMissingMandatoryElements(true); }),
              both + "Set IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true");
    EXPECT_FALSE(context.GetIgnoreMissingMandatoryElements());

    context.SetIgnoreUnknownElements(false);
    context.SetIgnoreMissingMandatoryElements(true);
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { context.SetIgnoreUnknownElements(true); }),
              both + "Set IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true");
    EXPECT_FALSE(context.GetIgnoreUnknownElements());

    // Schema type 2 ignores namespaces whatever the flag says.
    context.SetSchemaType(SchemaType_IgnoreNamespaces);
    context.SetIgnoreNamespaces(false);
    EXPECT_TRUE(context.GetIgnoreNamespaces());
    context.SetSchemaType(SchemaType_Default);
    EXPECT_FALSE(context.GetIgnoreNamespaces());
}
