#!/usr/bin/env bash
# The reading direction of make interop: the Java codec encodes the
# documents of scripts/interop/documents, the library reads them (plain and
# gzip-compressed) to the same tree as their text and writes them back, and
# the Java codec reads the library's documents to the same infoset.
# Usage: scripts/interop-read.sh BUILD_DIR JAR (make interop runs it)
set -euo pipefail

build_dir=$1
jar=$2
here=$(cd "$(dirname "$0")" && pwd)

out="$build_dir/interop-read"
rm -rf "$out"
mkdir -p "$out/docs" "$out/classes"
cp "$here"/interop/documents/*.xml "$out/docs/"
javac -nowarn -d "$out/classes" -cp "$jar" "$here/interop/FastInfosetReadInterop.java" "$here/interop/Infosets.java"
java -cp "$out/classes:$jar" FastInfosetReadInterop encode "$out/docs"
if ! KDBIND_INTEROP_READ_DIR="$out/docs" "$build_dir/tests/kdbind_test_fastinfoset" \
        --gtest_filter='FastInfosetInteropTest.*' --gtest_brief=1 >"$out/library.log" 2>&1; then
    cat "$out/library.log"
    exit 1
fi
grep '^ok' "$out/library.log"
java -cp "$out/classes:$jar" FastInfosetReadInterop check "$out/docs"
