// Every function and variable that a public header declares is defined by the
// library. This program refers to the symbol of each, so that one declared
// but never defined fails the link of the test. The list is made from the
// headers by scripts/list-public-symbols.py and is to be made again when a
// header changes.
#include <gtest/gtest.h>

// The symbols are referred to by their names alone: declared as functions,
// whatever they are, so that the reference goes through the symbol table
// and needs no type.
extern "C" {
#define KDBIND_PUBLIC_SYMBOL(symbol, declaration) void symbol();
#include "api/public_symbols.inc"
#undef KDBIND_PUBLIC_SYMBOL
}

namespace {

struct CSymbol {
    void (*address)();
    char const* declaration;
};

CSymbol const kSymbols[] = {
#define KDBIND_PUBLIC_SYMBOL(symbol, declaration) {&symbol, declaration},
#include "api/public_symbols.inc"
#undef KDBIND_PUBLIC_SYMBOL
};

} // namespace

TEST(PublicApiTest, EveryDeclaredOperationIsDefined)
{
    for (CSymbol const& symbol : kSymbols)
        EXPECT_NE(symbol.address, nullptr) << symbol.declaration;
}
