#!/usr/bin/env bash
# The page of `vornak matrix`, driven in Chromium at a desk's and a phone's width.
#   page_test.sh VORNAK SOURCES
set -euo pipefail
vornak=$(realpath "$1")
sources=$(realpath "$2")
here=$(dirname "$(realpath "$0")")

fail() { echo "page_test: $*" >&2; exit 1; }
skip() { echo "page_test: $*" >&2; exit 77; }

missing=()
for program in chromium nodejs:node npm; do
    command -v "${program#*:}" >/dev/null || missing+=("${program%:*}")
done
if [ ${#missing[@]} -gt 0 ]; then
    [ "$(id -u)" -eq 0 ] || skip "only root can install ${missing[*]}"
    { apt-get update -qq && DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >/dev/null ||
        skip "no ${missing[*]} to be had"
fi

work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
cd "$work"
npm install --loglevel=error --no-audit --no-fund --prefix driver \
    playwright-core@1.65.1 axe-core@4.14.1 >npm.log 2>&1 || skip "npm: $(head -n 1 npm.log)"

matrix() { # page, options: 1 is what unreadable files lead to
    local status=0
    "$vornak" matrix --html "$@" >sums 2>complaints || status=$?
    [ $status -le 1 ] && [ -s "$1" ] || fail "status $status: $(cat complaints)"
}

echo "== a page of the example profiles"
mkdir -p media/'<' profiles
clip() { ffmpeg -v error -f lavfi -i "testsrc=s=$1:d=1" -f lavfi -i "anullsrc=cl=$2:d=1" "${@:3}"; }
clip 320x240 5.1 -c:v libx264 -pix_fmt yuv420p -c:a aac media/film.mkv
clip 320x240 stereo -c:v libx264 -pix_fmt yuv420p -c:a aac media/clip.mp4
clip 640x480 stereo -c:v mpeg2video -c:a mp2 media/tape.mpg
clip 640x480 5.1 -c:v mpeg4 -c:a ac3 media/old.avi
ffmpeg -v error -f lavfi -i sine=d=1 media/song.flac
echo none >media/text.mp4
cp media/film.mkv 'media/</script><img src=x onerror="document.title=1">&amp;.mkv'
cp media/clip.mp4 $'media/a line\nand \u202egpj.mp4'
cp "$sources"/examples/profiles/*.xml profiles
sed 's|<DEVICE NAME="[^"]*"|<DEVICE NAME="\&lt;/script>\&lt;img src=x>"|' profiles/phone.xml \
    >'profiles/<b>phone.xml'
echo '<DEVICE' >profiles/torn.xml
"$vornak" probe -o media.jsonl media >/dev/null 2>&1 || true
matrix page.html --profiles profiles --probed media.jsonl
"$vornak" matrix --json --profiles profiles --probed media.jsonl >page.json 2>/dev/null || true
grep -q $'\u202e' page.html && fail "a mark that turns text round is in the page"

echo "== it replaces pages alone"
cp page.html first.html
matrix page.html -p phone --probed media.jsonl
cp first.html page.html
cp media/film.mkv kept.mkv
if "$vornak" matrix --html kept.mkv -p phone media 2>/dev/null; then fail "a film was replaced"; fi
cmp -s media/film.mkv kept.mkv || fail "a film was changed"

echo "== in Chromium"
export NODE_PATH=$work/driver/node_modules
for profile in living-room-tv phone hifi-streamer; do
    "$vornak" decide --explain -p "profiles/$profile.xml" --probed media.jsonl \
        >"$profile.txt" 2>/dev/null || true
done
node "$here/page_test.js" page

echo "== 50 players"
node "$here/page_test.js" many 50 2000 5000
matrix large.html --profiles many --probed 2000.jsonl
matrix groups.html --profiles many --probed 5000.jsonl
node "$here/page_test.js" large
