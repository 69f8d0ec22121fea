#!/usr/bin/env python3
"""Lists the symbol of every function and variable that the public headers
declare and the library must define, for tests/api/public_symbols.inc.

Usage: scripts/list-public-symbols.py > tests/api/public_symbols.inc

Symbols named in tests/api/undefined_symbols.txt, one mangled name a line,
are written as comments instead: declarations whose definitions are known to
be missing still, listed so that the check holds for everything else.

clang reads include/kdbind/kdbind.h and dumps the declarations of the
namespaces KdBind and KdBindData. Left out: what needs no definition in the
library (pure virtual, deleted, implicit, defaulted or defined in the header,
inline, constexpr) and templates, which the headers define.
"""
import json
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl"}
SKIPPED = {"FunctionTemplateDecl", "ClassTemplateDecl", "FriendDecl", "CXXDeductionGuideDecl"}


def dump():
    command = ["clang++", "-std=c++17", "-fsyntax-only", "-I" + os.path.join(ROOT, "include"),
               "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=KdBind",
               "-x", "c++", os.path.join(ROOT, "include", "kdbind", "kdbind.h")]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    decoder, at, roots = json.JSONDecoder(), 0, []
    while True:
        while at < len(text) and text[at].isspace():
            at += 1
        if at >= len(text):
            return roots
        root, at = decoder.raw_decode(text, at)
        roots.append(root)


def has_body(node):
    return any(child.get("kind") == "CompoundStmt" for child in node.get("inner", []))


def needs_no_definition(node):
    return (node.get("isImplicit") or node.get("pure") or node.get("explicitlyDeleted")
            or node.get("explicitlyDefaulted") or node.get("inline") or node.get("constexpr")
            or has_body(node))


def collect(node, scope, wanted, defined):
    kind = node.get("kind")
    if kind in SKIPPED:
        return
    name = node.get("name", "")
    if kind in FUNCTIONS and "mangledName" in node:
        symbol = node["mangledName"]
        if kind == "CXXConstructorDecl":
            # The base-object constructor: clang makes no complete-object
            # one for an abstract class.
            symbol = symbol.replace("C1E", "C2E", 1)
        if needs_no_definition(node):
            defined.add(symbol)
        else:
            signature = node["type"]["qualType"]
            wanted.setdefault(symbol, f"{scope}::{name}" + signature[signature.find("("):])
        return
    if kind == "VarDecl" and "mangledName" in node:
        symbol = node["mangledName"]
        if node.get("init") or node.get("inline") or node.get("constexpr"):
            defined.add(symbol)
        elif node.get("storageClass") in ("extern", "static"):
            wanted.setdefault(symbol, f"{scope}::{name}")
        return
    if kind in ("NamespaceDecl", "CXXRecordDecl"):
        if kind == "CXXRecordDecl" and not node.get("completeDefinition"):
            return
        inner_scope = f"{scope}::{name}" if scope else name
        for child in node.get("inner", []):
            collect(child, inner_scope, wanted, defined)


def known_undefined():
    path = os.path.join(ROOT, "tests", "api", "undefined_symbols.txt")
    if not os.path.exists(path):
        return set()
    with open(path) as lines:
        return {line.split()[0] for line in lines if line.strip() and not line.startswith("#")}


def main():
    wanted, defined = {}, set()
    missing = known_undefined()
    for root in dump():
        collect(root, "", wanted, defined)
    out = sys.stdout
    out.write("// Made by scripts/list-public-symbols.py from the public headers; do not edit.\n")
    out.write("// KDBIND_PUBLIC_SYMBOL(symbol, declaration)\n")
    for symbol in sorted(s for s in wanted if s not in defined):
        declaration = wanted[symbol].replace("\\", "\\\\").replace('"', '\\"')
        if symbol in missing:
            out.write(f"// not defined yet: {symbol} {wanted[symbol]}\n")
        else:
            out.write(f'KDBIND_PUBLIC_SYMBOL({symbol}, "{declaration}")\n')


if __name__ == "__main__":
    main()
