#!/usr/bin/env bash
# make interop: every document the Fast Infoset tests export must decode,
# through an independent Java codec, to the same infoset as its XML text.
# Usage: scripts/interop.sh BUILD_DIR
set -euo pipefail

build_dir=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)

find_jar() {
    for jar in /usr/share/java/FastInfoset.jar /usr/share/java/FastInfoset-*.jar; do
        [ -f "$jar" ] && { echo "$jar"; return 0; }
    done
    return 1
}

if ! command -v javac >/dev/null || ! find_jar >/dev/null; then
    if [ "$(id -u)" -ne 0 ]; then
        echo "make interop needs: sudo apt-get install default-jdk-headless libfastinfoset-java" >&2
        exit 1
    fi
    echo "Installing: default-jdk-headless libfastinfoset-java"
    export DEBIAN_FRONTEND=noninteractive
    for attempt in 1 2 3 4 5; do
        apt-get install -y -qq --no-install-recommends default-jdk-headless libfastinfoset-java && break
        [ "$attempt" -eq 5 ] && exit 1
        sleep 5  # another dpkg may hold the lock
    done
fi
jar=$(find_jar)

out="$build_dir/interop"
rm -rf "$out"
mkdir -p "$out/docs" "$out/classes"
javac -nowarn -d "$out/classes" -cp "$jar" "$here/interop/FastInfosetInterop.java" "$here/interop/Infosets.java"
KDBIND_INTEROP_DIR="$out/docs" "$build_dir/tests/kdbind_test_fastinfoset" --gtest_brief=1 >/dev/null
java -cp "$out/classes:$jar" FastInfosetInterop "$out/docs"
# The reading direction: documents of the Java encoder, plain and compressed.
"$here/interop-read.sh" "$build_dir" "$jar"
