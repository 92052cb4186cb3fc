#!/usr/bin/env bash
# examples/decide.c, on profiles that answer in different ways; and as README.md shows it.
#   check_example.sh SOURCES --shown BUILD    README.md's commands, and what stands below them
#   check_example.sh SOURCES PROGRAM…         what the built program says, run by another, if any
set -euo pipefail
sources=$1
shift

shown=$(sed -n '/^    \$ gcc /,/^$/{/./s/^    //p}' "$sources/README.md")
answer=$(grep -v '^\$ ' <<<"$shown")

expect() {   # status, output, command: compares standard output and error together
    local status=0 output
    output=$("${@:3}" 2>&1) || status=$?
    [ "$status $output" = "$1 $2" ] && return
    printf 'got %s %s\nnot %s %s\n' "$status" "$output" "$1" "$2" >&2
    exit 1
}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
if [ "$1" = --shown ]; then
    ln -s "$sources"/{include,platform,examples} .
    ln -s "$2" build
    expect 0 "$answer" sh -ec "$(sed -n 's/^\$ //p' <<<"$shown")"
    exit
fi

profile() { printf '<DEVICE NAME="T">%s</DEVICE>\n' "$1" >t.xml; }   # its VIDEO section
rules='<VCODEC NAME="h264"%s><ACODEC NAME="%s"><FORMAT NAME="%s"%s/></ACODEC></VCODEC>'

expect 0 "$answer" "$@" "$sources/examples/profiles/living-room-tv.xml"
expect 2 "decide: can't load the profile" "$@" none.xml
expect 1 'decide: the profile has no rule for such files' "$@" \
    "$sources/examples/profiles/hifi-streamer.xml"
for section in '<VIDEO/>' "$(printf "<VIDEO>$rules</VIDEO>" '' none mp4 '')" \
    "$(printf "<VIDEO>$rules</VIDEO>" '' flac none '')"; do
    profile "$section"
    expect 1 'decide: the profile has no rule for such files' "$@" t.xml
done

kept=$'video: keep, rule 0\naudio: keep, rule 0\noutput: container matroska, entry 0\n'
kept+=$'MIME type video/any, DLNA profile none\nsent as it is'
# the second entry's text is lost where a table is thought to end at id 0
more=' MIME="video/any"/><FORMAT NAME="mp4" MIME="video/mp4"'
profile "$(printf "<VIDEO>$rules</VIDEO>" '' flac any "$more")"
expect 0 "$kept" "$@" t.xml

profile "$(printf "<VIDEO>$rules</VIDEO>" ' NOTRANSCODE="1"' flac mp4 '')"
expect 0 'refused: it would have to be transcoded, and the profile forbids that' "$@" t.xml

stream=$'video: keep, rule 0\naudio: transcode, rule 0\noutput: container mp4, entry 0\n'
stream+=$'MIME type none, DLNA profile none\nthe output can\'t be sought in'
profile "$(printf "<VIDEO>$rules</VIDEO>" '' ac3 mp4 ' NONSEEKABLE="1"')"
expect 0 "$stream" "$@" t.xml
