#!/bin/sh
# Installs the build into a temporary prefix and builds a user's project
# against it with find_package(KdBind) and kdbind_generate.
#
# usage: outside_project.sh BUILD_DIR CXX SOURCE_DIR WORK_DIR [CXXFLAGS]
set -eu
build=$1 cxx=$2 source=$(cd "$3" && pwd) work=$4 flags=${5:-}

rm -rf "$work"
cmake --install "$build" --prefix "$work/prefix" >/dev/null
[ -x "$work/prefix/bin/kdbind-xsd" ] || { echo "FAIL: kdbind-xsd was not installed" >&2; exit 1; }
cmake -S "$source/outside_project" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" -DSCHEMA_DIR="$source" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/library_reader" "$source/library.xml" >"$work/out.txt"
cat >"$work/expected.txt" <<TEXT
Town library has 2 books
Crime and Punishment: novel
Collected Poems: poetry
librarian: Ada
TEXT
diff "$work/expected.txt" "$work/out.txt" || { echo "FAIL: unexpected output" >&2; exit 1; }
echo "kdbind_generate: an outside project builds and runs"
