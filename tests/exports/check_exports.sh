#!/usr/bin/env bash
# libvornak.so exports what vornak.map names and nothing else, leaves to the host what
# vornak_host.h declares, and holds no path of the machine that built it.
set -euo pipefail
source_dir=$1 library=$2 platform=$3

fail() { echo "check_exports: $*" >&2; exit 1; }

named=$(sed -n '/global:/,/local:/p' "$source_dir/vornak.map" | grep -oE '[A-Za-z_][A-Za-z0-9_]*;' |
    tr -d ';' | sort)
exported=$(nm -D --defined-only "$library" | awk '{print $3}' | sort)
[ "$(wc -l <<<"$named")" -gt 50 ] || fail "vornak.map could not be read"
difference=$(diff <(echo "$named") <(echo "$exported")) ||
    fail "vornak.map (<) and the library (>) differ:"$'\n'"$difference"

# What no system library defines must come from the host.
wanted=$(nm -D --undefined-only "$library" | awk '$1 == "U" && $2 !~ /@/ {print $2}' |
    grep -vE '^__(asan|ubsan|lsan|sanitizer)_' | sort)
offered=$(nm -D --defined-only "$platform" | awk '{print $3}' | sort)
missing=$(comm -23 <(echo "$wanted") <(echo "$offered"))
[ -z "$missing" ] || fail "no host function: $missing"
grep -q '^CodecNameToID$' <<<"$wanted" || fail "the registry is not left to the host"

if grep -qaF "$source_dir/" "$library"; then fail "a path of this machine is in the library"; fi
