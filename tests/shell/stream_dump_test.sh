#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the commands of the page on stream dumps on a stream of the example pair, and compares the measured values with
# those on the page. Plays to a null device. Usage: stream_dump_test.sh PAGE CHANNEL_PAIR
. "$(dirname "$0")/lib.sh"

page=$(realpath "$1")
pair=$(realpath "$2")
cd "$work"

# The sink writes the same bytes with --output as with --dump.
OSTRA_HOST_LOG_LEVEL=off "$pair" --output dump.pcm >/dev/null
play() { sox "$@" -n; }

mapfile -t commands < <(sed -n '/^```sh$/,/^```$/{/^```/d;p}' "$page")
[ "${#commands[@]}" = 4 ] || fail "${#commands[@]} commands, not 4"
for command in "${commands[@]}"; do
    eval "$command" >output 2>&1 || { cat output; fail "$command"; }
    [[ $command != *stats ]] || mv output stats
done

sed -n '/^For 5 s/,/^Levels/s/^    //p' "$page" >measured
[ "$(wc -l <measured)" = 3 ] || fail "$(wc -l <measured) measured values, not 3"
while IFS= read -r line; do
    grep -qxF -- "$line" stats || { cat stats; fail "not measured: $line"; }
done <measured
cmp <(tail -c "$(wc -c <dump.pcm)" dump.wav) dump.pcm || fail 'the WAV file has other samples'
[ "$(head -c 8 dump.png | od -An -t x1)" = ' 89 50 4e 47 0d 0a 1a 0a' ] || fail 'not a PNG file'
echo 'the four commands work'
