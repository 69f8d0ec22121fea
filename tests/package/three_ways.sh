#!/bin/sh
# Builds a user's project from outside this tree in each of the three ways in:
#   1. `cmake --install` into a temporary prefix; a CMake project finds it with
#      find_package(KdBind) and generates its classes with kdbind_generate;
#   2. the same prefix; a plain Makefile gets flags, libraries and kdbind-xsd
#      from pkg-config;
#   3. the Debian package cpack makes, checked for its contents and
#      dependencies and unpacked with dpkg-deb -x into a directory (not
#      installed): both projects again, so the CMake package and the .pc file
#      must be relocatable.
# Each project reads the same catalogue through its generated classes.
#
# usage: three_ways.sh BUILD_DIR CXX PACKAGE_TEST_DIR SCHEMA_DIR WORK_DIR [CXXFLAGS]
set -eu
build=$1 cxx=$2 here=$(cd "$3" && pwd) schemas=$(cd "$4" && pwd) work=$5 flags=${6:-}

fail() { echo "FAIL: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
cat >"$work/expected.txt" <<TEXT
Town library has 2 books
Crime and Punishment: novel
Collected Poems: poetry
librarian: Ada
TEXT

run_reader() {  # program library-dir what
    LD_LIBRARY_PATH="$2${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" "$1" "$schemas/library.xml" >"$work/out.txt" ||
        fail "$3: the program failed"
    diff "$work/expected.txt" "$work/out.txt" || fail "$3: unexpected output"
}

cmake_way() {  # prefix name
    cmake -S "$here/cmake_project" -B "$work/$2-cmake" -DCMAKE_PREFIX_PATH="$1" -DCMAKE_CXX_COMPILER="$cxx" \
        -DCMAKE_CXX_FLAGS="$flags" -DSCHEMA_DIR="$schemas" >"$work/$2-cmake.log" 2>&1 ||
        fail "$2: CMake configuration: $(cat "$work/$2-cmake.log")"
    cmake --build "$work/$2-cmake" >>"$work/$2-cmake.log" 2>&1 || fail "$2: CMake build: $(cat "$work/$2-cmake.log")"
    # The imported library's directory is on the program's run path.
    run_reader "$work/$2-cmake/library_reader" "" "$2, find_package"
}

make_way() {  # prefix name
    pcdir=$(dirname "$(find "$1" -name kdbind.pc)")
    mkdir "$work/$2-make"
    cp "$here/make_project/Makefile" "$here/library_reader.cpp" "$work/$2-make/"
    PKG_CONFIG_PATH="$pcdir" make -C "$work/$2-make" CXX="$cxx" EXTRA_FLAGS="$flags" SCHEMA_DIR="$schemas" \
        >"$work/$2-make.log" 2>&1 || fail "$2: make: $(cat "$work/$2-make.log")"
    # Paths from the .pc file lead into this tree, wherever it was put.
    case $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs kdbind) in
    *"-I$pcdir/"*"-L$pcdir/"*) ;;
    *) fail "$2: pkg-config names other paths: $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs kdbind)" ;;
    esac
    run_reader "$work/$2-make/library_reader" "$(PKG_CONFIG_PATH="$pcdir" pkg-config --variable=libdir kdbind)" \
        "$2, pkg-config"
}

# 1 and 2: an installation.
cmake --install "$build" --prefix "$work/prefix" >/dev/null
[ -x "$work/prefix/bin/kdbind-xsd" ] || fail "kdbind-xsd was not installed"
cmake_way "$work/prefix" installed
make_way "$work/prefix" installed

# 3: the Debian package.
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/cpack" >"$work/cpack.log" 2>&1 ||
    fail "cpack: $(cat "$work/cpack.log")"
deb=$(ls "$work"/cpack/kdbind_*.deb)
dpkg-deb -c "$deb" >"$work/contents.txt"
for file in ./usr/bin/kdbind-xsd ./usr/include/kdbind/kdbind.h ./usr/lib/libkdbind.so.0 \
    ./usr/lib/cmake/KdBind/KdBindConfig.cmake ./usr/lib/cmake/KdBind/KdBindGenerate.cmake \
    ./usr/lib/pkgconfig/kdbind.pc; do
    grep -q " $file" "$work/contents.txt" || fail "$file is not in the package"
done
depends=$(dpkg-deb -f "$deb" Depends)
for package in libexpat1 zlib1g libpcre2-8-0; do
    case ", $depends," in *", $package,"*) ;; *) fail "the package does not depend on $package: $depends" ;; esac
done
dpkg-deb -x "$deb" "$work/deb"
cmake_way "$work/deb/usr" unpacked
make_way "$work/deb/usr" unpacked

echo "three ways in: CMake, pkg-config and the Debian package all build and run"
