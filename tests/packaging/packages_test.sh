#!/usr/bin/env bash
# The packages of the last commit: built twice, looked over, and used on a fresh Debian 12.
#   packages_test.sh SOURCES
set -euo pipefail
cd "$1"

fail() { echo "packages_test: $*" >&2; exit 1; }
skip() { echo "packages_test: $*" >&2; exit 77; }

[ "$(id -u)" -eq 0 ] || skip "only root can set up a system in a folder"
git rev-parse -q --verify HEAD >/dev/null || skip "no git repository"

missing=()
for package in debootstrap debhelper lintian; do
    dpkg-query -W -f '${db:Status-Status}' $package 2>/dev/null | grep -q '^installed$' ||
        missing+=($package)
done
[ ${#missing[@]} -eq 0 ] || { apt-get update -qq &&
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"; }

work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
root=$work/root

echo "== two builds are equal to the byte"
git clone -q . "$work/clone" # whose last commit stays the same
"$work/clone/scripts/package" "$work/one"
"$work/clone/scripts/package" "$work/two" >/dev/null
diff -r "$work/one" "$work/two" || fail "the builds differ"
lintian --allow-root --fail-on error "$work"/one/*.deb

echo "== they hold no path of this machine"
for package in "$work"/one/*.deb; do dpkg-deb -x "$package" "$work/files"; done
if grep -rlaF -e "$1/" -e /tmp/tmp. "$work/files"; then fail "a path is in these"; fi
readelf -d "$work/files/usr/bin/vornak" | grep -E 'RUNPATH|RPATH' && fail "the tool has a run path"

echo "== a fresh Debian 12"
mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' \
    'Created-By: Packages' 'Codename: bookworm' | awk '$2 == "bookworm" && $3 == "main" {print $1; exit}')
debootstrap --variant=minbase bookworm "$root" "${mirror:-http://deb.debian.org/debian}" >"$work/log" ||
    { tail "$work/log"; fail "debootstrap"; }
mkdir "$root/debs"
cp "$work"/one/*.deb "$root/debs"
ffmpeg -v error -f lavfi -i testsrc=d=1 -f lavfi -i sine=d=1 -c:v mpeg4 -c:a ac3 "$root/film.avi"

inside() {   # command of the shell, in the system with a /proc of its own
    unshare --mount --pid --fork --mount-proc="$root/proc" chroot "$root" \
        env HOME=/root DEBIAN_FRONTEND=noninteractive sh -ec "$1"
}
# but for what apt and dpkg keep themselves
files() {
    find "$root" -xdev \( -path '*/proc' -o -path '*/var/lib/apt' -o -path '*/var/cache' -o \
        -path '*/var/log' -o -path '*/var/lib/dpkg' \) -prune -o -print | sort
}
packages() { inside "dpkg-query -W -f '\${Package} \${db:Status-Abbrev}\n'"; }

inside 'apt-get update -qq'
files >"$work/files-before"
packages >"$work/packages-before"
inside 'apt-get install -y -qq --no-install-recommends /debs/*.deb' >"$work/log" 2>&1 ||
    { tail "$work/log"; fail "apt-get install"; }

inside 'vornak profile list' | grep -q '^living-room-tv .*/usr/share/vornak/profiles/' ||
    fail "the profiles are not found"
answer=$(inside 'vornak decide -p living-room-tv /film.avi')
grep -q '^  video: transcode: no rule for mpeg4; output as in rule 0 (h264, ' <<<"$answer" ||
    fail "the answer is $answer"
for page in man1/vornak.1 man1/vornak-decide.1 man3/vornak.3 man5/vornak-profile.5; do
    [ -s "$root/usr/share/man/$page.gz" ] || fail "$page is missing"
done

echo "== nothing is left of them"
inside 'apt-get purge -y -qq vornak libvornak-dev libvornak1 libvornak-platform1
        apt-get autoremove --purge -y -qq' >"$work/log" 2>&1 || { tail "$work/log"; fail "purge"; }
files | diff "$work/files-before" - || fail "files are left"
packages | diff "$work/packages-before" - || fail "packages are left"
