#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the example pair as a user would and looks at what it prints and how it ends. Usage:
# example_pair_test.sh COMMAND [WORD ...]
set -euo pipefail

pair=("$@")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    cat "$folder/out" "$folder/err"
    echo "FAILED: $*"
    exit 1
}

# judge WHAT STATUS WANTED TEXTS: the exit status must be as wanted, and each line of TEXTS printed.
judge() {
    local text
    [ "$2" = "$3" ] || fail "$1: exit status $2, not $3"
    while read -r text; do
        grep -qF -- "$text" "$folder/out" "$folder/err" || fail "$1: not printed: $text"
    done <<<"$4"
}

# expect STATUS TEXTS ARGUMENT...: runs the pair to its end.
expect() {
    local status=0 wanted=$1 texts=$2
    shift 2
    timeout 60 "${pair[@]}" "$@" >"$folder/out" 2>"$folder/err" || status=$?
    judge "$*" "$status" "$wanted" "$texts"
}

# refuse STATUS TEXT ARGUMENT...: the same, and TEXT must be in the only line on standard error.
refuse() {
    expect "$@"
    [ "$(wc -l <"$folder/err")" = 1 ] || fail "${*:3}: not one line"
}

# disturb STATUS TEXTS SIGNAL parent|source|sink ARGUMENT...: sends the signal in the midst of an endless stream.
disturb() {
    local status=0 wanted=$1 texts=$2 signal=$3 whom=$4 sides=() parent tries
    shift 4
    "${pair[@]}" "$@" /dev/zero >"$folder/out" 2>"$folder/err" &
    parent=$!
    for ((tries = 200; tries > 0; --tries)); do
        read -r -a sides <"/proc/$parent/task/$parent/children" || true
        [ "${#sides[@]}" != 2 ] || break
        sleep 0.05
    done
    [ "$tries" -gt 0 ] || fail 'there are no two sides'
    sleep 0.3
    case $whom in
        parent) kill -s "$signal" "$parent" ;;
        source) kill -s "$signal" "${sides[0]}" ;;
        sink) kill -s "$signal" "${sides[1]}" ;;
    esac
    wait "$parent" 2>/dev/null || status=$?
    judge "$signal to the $whom" "$status" "$wanted" "$texts"
    for ((tries = 100; tries > 0; --tries)); do
        kill -0 "${sides[0]}" 2>/dev/null || kill -0 "${sides[1]}" 2>/dev/null || return 0
        sleep 0.05
    done
    fail "$signal to the $whom: a side still runs"
}

random=$folder/random
head -c 1234567 /dev/urandom >"$random"
empty=$folder/empty
: >"$empty"

# What arrives, and what is told about it.
expect 0 $'frames      253\nbytes       960838\nlost        0\ndamaged     0\n desk tablet
m******e of type *, codec bits 5, profiles 48000,2,16;16000,1,16;
48000 Hz, 2 channels, pieces of 20 ms
notified    isomerism_connect of
6 steps reported, all successful
every byte arrived'
! grep -q '[0-9a-f]\{32\}' "$folder/out" || fail "an identifier in the clear"
expect 0 $'port: 8***
FUNC=source HOST_PKG=collaboration_service BIZ_SCENE=2 BIZ_STAGE=1 STAGE_RES=1 BIZ_STATE=1
FUNC=sink TO_CALL_PKG=dsoftbus HOST_PKG=collaboration_service BIZ_SCENE=2 BIZ_STAGE=8 STAGE_RES=1' --verbose
expect 0 'frames      3' "$empty"
expect 0 $'frames      325\nevery byte arrived' "$random" --output "$folder/copy"
cmp "$folder/copy" "$random"
cp "$random" "$folder/-odd"
(cd "$folder" && expect 0 'every byte arrived' --output=-copy -- -odd && cmp ./-copy random)
(sleep 0.5 && cat "$random") | expect 0 'every byte arrived' --timeout 0.4 --output "$folder/piped" -
cmp "$folder/piped" "$random"
expect 0 'every byte arrived' /dev/stdin <"$random"

# Faults that were planned are all caught; a fault that was not makes the pair fail.
for seed in 1 2 3; do
    expect 0 $'lost        40
damaged     56 (8 flipped, 8 cut, 8 repeated, 8 late, 8 empty, 8 too long, 8 foreign)
each was caught and every other frame arrived' --faults 56 --seed "$seed" "$random"
done
head -c 500000 "$random" | expect 0 'each was caught' --faults 7 -
expect 0 'each was caught' --seconds 1 --faults 14
expect 1 $'lost        1\n3 failed\n1 of 253 frames are missing, damaged: 1 (1 flipped)' --flip 252
expect 1 'the device document is missing or not as offered' --flip 0
expect 1 'the service document is missing or not as offered' --flip 1
expect 1 'the settings are missing or not as offered' --flip 2
refuse 1 'the end of the stream is missing' --flip 253
refuse 1 'faults left over: 1' --flip 254
head -c 5000 "$random" | refuse 1 'faults left over' --faults 7 -

# Sides that are killed, stopped, interrupted or left behind.
disturb 1 $'the source was killed by signal 9\nthe end of the stream is missing' KILL source
disturb 1 $'the sink was killed by signal 9\nthe sink closed the link' KILL sink
disturb 1 'the source was stopped by signal 19' STOP source --timeout 0.5
disturb 1 'the sink was stopped by signal 19' STOP sink --timeout 0.5
disturb 130 'interrupted; of what was sent so far, every byte arrived' INT parent
disturb 130 'interrupted; of what was sent so far, every byte arrived' INT source
disturb 137 '' KILL parent

# Files that cannot be read or written.
refuse 1 "channel_pair: $folder/missing: No such file or directory" "$folder/missing"
refuse 1 "channel_pair: $folder: Is a directory" "$folder"
refuse 1 'channel_pair: /proc/self/mem: Input/output error' /proc/self/mem
refuse 1 'channel_pair: /dev/full: No space left on device' --output /dev/full /dev/zero
refuse 1 "channel_pair: $random: File exists" --output "$random" "$random"
[ -s "$random" ] || fail "the input was emptied"
if [ "$(id -u)" != 0 ]; then
    chmod 000 "$empty"
    refuse 1 "channel_pair: $empty: Permission denied" "$empty"
fi
status=0
"${pair[@]}" /dev/zero 2>"$folder/err" >/dev/full || status=$?
judge 'full standard output' "$status" 1 'channel_pair: standard output: No space left on device'
if [ -d /data/local/tmp ]; then
    expect 0 ', 1234567 bytes' --dump "$random"
    dump=$(sed -n 's/^  dump *\(.*\), .*/\1/p' "$folder/out")
    cmp "$dump" "$random"
    rm "$dump"
    (ulimit -f 200 && expect 1 'the dump is cut short: File too large' --dump "$random")
    rm -f "$(sed -n 's/^  dump *\(.*\): the dump.*/\1/p' "$folder/out")"
fi

# Wrong calls, each with what is wrong in it.
expect 2 '--nonsense' --nonsense
expect 2 '--flip' --flip -1
expect 2 '--faults' --faults some
expect 2 '--faults: at most 125 fit' --faults 126
expect 2 '--seed requires --faults' --seed 3
expect 2 'the name is empty' ''
expect 2 'second' first second
expect 2 'FILE excludes --seconds' --seconds 1 "$random"
expect 0 '--output' --help
expect 0 '--output' -h
echo "the pair behaves"
