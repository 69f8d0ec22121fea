#!/usr/bin/env bash
# Installs the built library into a fresh prefix, then configures, builds and
# runs a small outside project that finds it with find_package(KdBind).
set -euo pipefail
build_dir=$1 source_dir=$2 compiler=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
cmake -S "$source_dir" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
      -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="${CONSUMER_FLAGS:-}" >/dev/null
cmake --build "$work/build" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib:$work/prefix/lib64${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" "$work/build/consumer"
