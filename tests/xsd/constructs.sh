#!/bin/sh
# One small schema per schema construct, all generated in one run into one
# roundtrip program (each schema has its own target namespace, so the
# program reads whichever construct's document it is given):
#   constructs/NAME.xsd          the construct
#   constructs/NAME.ok*.xml      documents that must be read; the text written
#                                back must be read again and come back
#                                unchanged, and equal NAME.ok*.expected if
#                                that file exists
#   constructs/NAME.bad*.xml     documents that must be refused; their first
#                                line is <!-- refused: MESSAGE -->, a text the
#                                library's message must contain
#
# usage: constructs.sh KDBIND_XSD CXX LIBRARY INCLUDE_DIR SOURCE_DIR WORK_DIR [CXXFLAGS]
set -eu
tool=$1 cxx=$2 library=$3 include=$4 source=$5 work=$6 flags=${7:-}
dir=$source/constructs

fail() { echo "FAIL: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"

"$tool" --output-dir "$work/gen" --main roundtrip "$dir"/*.xsd
# shellcheck disable=SC2086
"$cxx" -std=c++17 -Wall -Wextra -Werror $flags -I "$include" "$work"/gen/*.cpp "$library" \
    -Wl,-rpath,"$(dirname "$library")" -pthread -o "$work/roundtrip"

checked=0
for document in "$dir"/*.ok*.xml; do
    [ -e "$document" ] || continue
    name=$(basename "$document" .xml)
    "$work/roundtrip" "$document" >"$work/$name.out" 2>"$work/err.txt" ||
        fail "$name was refused: $(cat "$work/err.txt")"
    "$work/roundtrip" "$work/$name.out" >"$work/$name.again" 2>"$work/err.txt" ||
        fail "$name, written back, was refused: $(cat "$work/err.txt")"
    cmp -s "$work/$name.out" "$work/$name.again" || fail "$name does not come back unchanged"
    if [ -e "$dir/$name.expected" ]; then
        cmp -s "$work/$name.out" "$dir/$name.expected" ||
            fail "$name: written [$(cat "$work/$name.out")], expected [$(cat "$dir/$name.expected")]"
    fi
    checked=$((checked + 1))
done
for document in "$dir"/*.bad*.xml; do
    [ -e "$document" ] || continue
    name=$(basename "$document" .xml)
    message=$(sed -n '1s/^<!-- refused: \(.*\) -->$/\1/p' "$document")
    [ -n "$message" ] || fail "$name: no <!-- refused: MESSAGE --> on its first line"
    if "$work/roundtrip" "$document" >/dev/null 2>"$work/err.txt"; then
        fail "$name was accepted"
    fi
    grep -qF -- "$message" "$work/err.txt" || fail "$name: expected [$message], got: $(cat "$work/err.txt")"
    checked=$((checked + 1))
done
echo "kdbind-xsd constructs: $checked documents checked"
