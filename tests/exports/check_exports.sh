#!/usr/bin/env bash
# The libraries export what their maps name and nothing else, without symbol versions, under
# their sonames; libvornak.so leaves to the host what vornak_host.h declares; neither holds a path
# of the machine that built it.
set -euo pipefail
source_dir=$1 library=$2 platform=$3 version=$4

fail() { echo "check_exports: $*" >&2; exit 1; }
exports() { nm -D --defined-only "$1" | awk '{print $3}' | sort; }

check() {   # library, its map, the least number of names in that, its soname
    local named
    named=$(sed -n '/global:/,/local:/p' "$source_dir/$2" | grep -oE '[A-Za-z_][A-Za-z0-9_]*;' |
        tr -d ';' | sort)
    [ "$(wc -l <<<"$named")" -ge "$3" ] || fail "$2 could not be read"
    difference=$(diff <(echo "$named") <(exports "$1")) ||
        fail "$2 (<) and the library (>) differ:"$'\n'"$difference"
    readelf -d "$1" | grep -qF "soname: [$4.${version%%.*}]" || fail "$1 is not $4.${version%%.*}"
    if grep -qaF "$source_dir/" "$1"; then fail "a path of this machine is in $1"; fi
}
check "$library" vornak.map 50 libvornak.so
check "$platform" platform/platform.map 20 libvornak_platform.so

# What no system library defines must come from the host.
wanted=$(nm -D --undefined-only "$library" | awk '$1 == "U" && $2 !~ /@/ {print $2}' |
    grep -vE '^__(asan|ubsan|lsan|sanitizer)_' | sort)
missing=$(comm -23 <(echo "$wanted") <(exports "$platform"))
[ -z "$missing" ] || fail "no host function: $missing"
grep -q '^CodecNameToID$' <<<"$wanted" || fail "the registry is not left to the host"
