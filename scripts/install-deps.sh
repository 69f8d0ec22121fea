#!/usr/bin/env bash
# Installs the Debian packages the build needs, only those that are missing.
# As root it installs them; otherwise it names them and fails.
set -euo pipefail

packages=(cmake make g++ pkg-config libexpat1-dev zlib1g-dev libpcre2-dev
          libgtest-dev libgmock-dev libbenchmark-dev)
# The sanitizer build uses clang and its runtime libraries.
if [ "${1:-}" = "--sanitize" ]; then
    packages+=(clang libclang-rt-14-dev)
fi

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
    echo "KdBind needs these Debian packages: ${missing[*]}" >&2
    echo "Install them with: sudo apt-get install ${missing[*]}" >&2
    exit 1
fi

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
