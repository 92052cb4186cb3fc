#!/usr/bin/env bash
# The library by itself needs a compiler and CMake alone: built by the oldest ones that it is for.
#   library_alone.sh SOURCES
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if ! command -v g++-11 >/dev/null; then
    [ "$(id -u)" -eq 0 ] || { echo "library_alone: only root can install g++-11" >&2; exit 77; }
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends g++-11
fi
for compiler in g++-11 clang++-14; do
    cmake -S "$1" -B "$work/$compiler" -DCMAKE_CXX_COMPILER=$compiler -DVORNAK_BUILD_PLATFORM=OFF \
        -DVORNAK_BUILD_DOCS=OFF -DVORNAK_DEVELOPER=ON >"$work/log"
    cmake --build "$work/$compiler" -- -s >>"$work/log" 2>&1 || { tail -n 40 "$work/log"; exit 1; }
done
