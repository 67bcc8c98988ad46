#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the example pair as a user would, and checks its output and exit status. Also checks that scripts/demo rejects
# the same arguments before it builds anything, and that docs/wire-formats.md shows the messages of the pair.
# Usage: channel_pair_test.sh COMMAND [ARGUMENT ...]
. "$(dirname "$0")/lib.sh"

here=$(cd "$(dirname "$0")" && pwd)
pair=("$@")

fail() {
    cat "$work/out" "$work/err"
    echo "FAILED: $*"
    exit 1
}

# check WHAT STATUS EXPECTED STRINGS: compares the exit status, and looks for each line of STRINGS in the output.
check() {
    local line
    [ "$2" = "$3" ] || fail "$1: exit status $2, expected $3"
    while read -r line; do
        grep -qF -- "$line" "$work/out" "$work/err" || fail "$1: not printed: $line"
    done <<<"$4"
}

# expect STATUS STRINGS ARGUMENT...: runs the pair until it ends.
expect() {
    local status=0 expected=$1 lines=$2
    shift 2
    timeout 60 "${pair[@]}" "$@" >"$work/out" 2>"$work/err" || status=$?
    check "$*" "$status" "$expected" "$lines"
}

# expect_error STATUS STRING ARGUMENT...: the same, but STRING must be in the only line on standard error.
expect_error() {
    expect "$@"
    [ "$(wc -l <"$work/err")" = 1 ] || fail "${*:3}: not one line"
}

# A copy of scripts/demo that cannot install or build anything.
mkdir -p "$work/copy/examples"
cp -r "$here/../../scripts" "$work/copy"
cp -r "$here/../../examples/channel_pair" "$work/copy/examples"
printf 'echo nothing is built here >&2; exit 99\n' >"$work/copy/scripts/setup"

# expect_demo STATUS STRINGS ARGUMENT...: runs that copy.
expect_demo() {
    local status=0 expected=$1 lines=$2
    shift 2
    "$work/copy/scripts/demo" "$@" >"$work/out" 2>"$work/err" || status=$?
    check "scripts/demo $*" "$status" "$expected" "$lines"
}

# invalid STRING ARGUMENT...: both the pair and scripts/demo must reject the arguments.
invalid() {
    expect_error 2 "$@"
    expect_demo 2 '' "${@:2}"
}

# send_signal STATUS STRINGS SIGNAL parent|source|sink ARGUMENT...: sends the signal during an endless stream.
send_signal() {
    local status=0 expected=$1 lines=$2 signal=$3 process=$4 sides=() parent tries
    shift 4
    "${pair[@]}" "$@" /dev/zero >"$work/out" 2>"$work/err" &
    parent=$!
    for ((tries = 200; tries > 0; --tries)); do
        read -r -a sides <"/proc/$parent/task/$parent/children" || true
        [ "${#sides[@]}" != 2 ] || break
        sleep 0.05
    done
    [ "$tries" -gt 0 ] || fail 'the two sides did not start'
    sleep 0.3
    case $process in
        parent) kill -s "$signal" "$parent" ;;
        source) kill -s "$signal" "${sides[0]}" ;;
        sink) kill -s "$signal" "${sides[1]}" ;;
    esac
    for ((tries = 400; tries > 0; --tries)); do
        kill -0 "$parent" 2>/dev/null || break
        sleep 0.05
    done
    [ "$tries" -gt 0 ] || { kill -s KILL "$parent"; fail "$signal to the $process: the pair hangs"; }
    wait "$parent" 2>/dev/null || status=$?
    check "$signal to the $process" "$status" "$expected" "$lines"
    for ((tries = 100; tries > 0; --tries)); do
        kill -0 "${sides[0]}" 2>/dev/null || kill -0 "${sides[1]}" 2>/dev/null || return 0
        sleep 0.05
    done
    fail "$signal to the $process: a side is still running"
}

# interrupt_open SIGNAL ARGUMENT...: the signal must end the pair while it waits for the other end of a FIFO. The exit
# status of timeout is then 124, or 137 if it had to kill the pair.
interrupt_open() {
    local status=0 signal=$1
    shift
    timeout --kill-after 5 --signal "$signal" 0.5 "${pair[@]}" "$@" >"$work/out" 2>"$work/err" || status=$?
    [ "$status" = 124 ] || fail "$signal while opening a FIFO: exit status $status"
}

# replace_dump COMMAND...: prints one chunk, replaces its dump with the file that `COMMAND... FILE` creates, and prints
# the chunk again.
replace_dump() {
    local dump tries
    cat "$work/chunk"
    for ((tries = 100; tries > 0; --tries)); do
        for dump in /data/local/tmp/channel_pair_*; do
            ! [ -f "$dump" ] || ! cmp -s "$dump" "$work/chunk" || break 2
        done
        sleep 0.05
    done
    [ "$tries" -gt 0 ] || { echo 'the dump does not appear' >&2; return 1; }
    rm "$dump"
    "$@" "$dump"
    cat "$work/chunk"
}

random=$work/random
head -c 1234567 /dev/urandom >"$random"
empty=$work/empty
: >"$empty"
fifo=$work/fifo
mkfifo "$fifo"

# Complete streams.
expect 0 $'sending 5 s of a generated tone, as fast as possible\nchunks      250\nbytes       960000
lost        0 of 250 chunks\ndetected    0\n desk tablet
m******e of type *, codec bits 5, profiles 48000,2,16;16000,1,16;
48000 Hz, 2 channels, chunks of 20 ms
notified    isomerism_connect of
6 business-flow stages reported, none failed
every byte arrived'
! grep -q '[0-9a-f]\{32\}' "$work/out" || fail "an identifier is not masked"
expect 0 'sending a generated tone for 0.1 s, as fast as possible' --seconds 0.1
expect 0 $'port: 8***
"FUNC":"source","HOST_PKG":"collaboration_service","BIZ_SCENE":2,"BIZ_STAGE":1,"STAGE_RES":1,"BIZ_STATE":1
"FUNC":"sink","TO_CALL_PKG":"dsoftbus","HOST_PKG":"collaboration_service","BIZ_SCENE":2,"BIZ_STAGE":8,"STAGE_RES":1' -v
expect 0 'nothing was sent: the input is empty' "$empty"
expect 0 $'chunks      322\nbytes       1234567\nevery byte arrived' "$random" --output "$work/received"
cmp "$work/received" "$random"
cp "$random" "$work/-odd"
(cd "$work" && expect 0 'every byte arrived' --output=-copy -- -odd && cmp ./-copy random)
(sleep 0.5 && cat "$random") | expect 0 'every byte arrived' --timeout 0.4 --output "$work/piped" -
cmp "$work/piped" "$random"
(for byte in {a..l}; do printf %s "$byte"; sleep 0.15; done) | expect 0 'bytes       12' --timeout 1 -
expect 0 'every byte arrived' /dev/stdin <"$random"
expect 0 '' --output - "$random"
cmp "$work/out" "$random"
grep -q 'every byte arrived' "$work/err" || fail 'no report on standard error'

# All counted faults are detected. An uncounted one makes the pair fail, even if no chunk is missing: frame 3 is the
# first keep-alive frame of an idle input.
for seed in 1 2 3; do
    expect 0 $'lost        40 of 322 chunks
injected    56 (8 corrupted, 8 truncated, 8 duplicated, 8 delayed, 8 empty, 8 oversized, 8 unexpected)
detected    56 (8 corrupted, 8 truncated, 8 duplicated, 8 delayed, 8 empty, 8 oversized, 8 unexpected)
faults injected: 56, detected: 56\n40 of 322 chunks lost (corrupted' --faults 56 --seed "$seed" "$random"
done
head -c 500000 "$random" | expect 0 'faults injected: 7, detected: 7' --faults 7 -
expect 0 'faults injected: 14, detected: 14' --seconds 1 --faults 14
expect 1 $'lost        1 of 250 chunks\n6 business-flow stages reported, 3 failed
1 of 250 chunks missing; faults detected: 1 (1 corrupted); the first missing frame is frame 10' --flip 10
expect 1 'the device document is missing or not as expected' --flip 0
expect 1 'the service document is missing or not as expected' --flip 1
expect 1 $'the settings are missing or not as expected\nthe first missing frame is frame 2' --flip 2
expect_error 1 'the end of the stream is missing, expected frame 253' --flip 253
expect_error 1 'the stream has only 254 frames; faults not injected: 1' --flip 254
(sleep 1) | expect_error 1 'faults detected: 1 (1 corrupted); faults injected: 0; the first missing frame is frame 3' \
    --timeout 0.4 --flip 3 -
head -c 5000 "$random" | expect_error 1 ' frames; faults not injected: ' --faults 7 -

# Sides that are killed, stopped or interrupted.
send_signal 1 $'the source was killed by signal 9\nthe end of the stream is missing' KILL source
send_signal 1 $'the sink was killed by signal 9\nthe sink closed the connection' KILL sink
send_signal 1 $'the source sent nothing for 1 s\nthe source did not end within 1 s' STOP source --timeout 0.9999999
send_signal 1 $'the sink received nothing for 0.5 s\nthe sink did not end within 0.5 s' STOP sink --timeout 0.5
send_signal 130 'interrupted; of the part that was sent, every byte arrived' INT parent
send_signal 130 'interrupted; of the part that was sent, every byte arrived' TERM parent
send_signal 130 'interrupted; of the part that was sent, every byte arrived' INT source
send_signal 137 '' KILL parent
for signal in INT TERM; do
    interrupt_open "$signal" "$fifo"
    interrupt_open "$signal" --output "$fifo" "$random"
done

# Files that cannot be read or written.
expect_error 1 "channel_pair: $work/missing: No such file or directory" "$work/missing"
expect_error 1 "channel_pair: $work: Is a directory" "$work"
expect_error 1 'channel_pair: /proc/self/mem: Input/output error' /proc/self/mem
expect_error 1 'channel_pair: /dev/full: No space left on device' --output /dev/full /dev/zero
expect_error 1 "channel_pair: $random: the output is the input file" --output "$random" "$random"
expect_error 1 "channel_pair: $random: the trace is the input file" --trace "$random" "$random"
cp "$random" "$work/copied"
for trace in "$work/copied" -; do
    expect_error 1 "channel_pair: $trace: the trace is the output file" --output "$trace" --trace "$trace" "$random"
done
expect_error 1 "channel_pair: $work: Is a directory" --output "$work/copied" --trace "$work" "$random"
! grep -q sending "$work/out" || fail "the trace was not opened before sending"
cmp "$work/copied" "$random" || fail "the output was truncated although the trace cannot be written"
[ -s "$random" ] || fail "the input was truncated"
if [ "$(id -u)" != 0 ]; then
    chmod 000 "$empty"
    expect_error 1 "channel_pair: $empty: Permission denied" "$empty"
fi
status=0
"${pair[@]}" /dev/zero 2>"$work/err" >/dev/full || status=$?
check 'full standard output' "$status" 1 'channel_pair: standard output: No space left on device'
if [ -d /data/local/tmp ]; then
    dumps=()
    for run in 1 2; do
        expect 0 '; delete it with: rm /data/local/tmp/channel_pair_' --dump "$random"
        dump=$(sed -n 's/^  dump *\(.*\); .*/\1/p' "$work/out")
        cmp "$dump" "$random"
        rm "$dump"
        [[ $dump =~ /channel_pair_[0-9a-f]{16}\.pcm$ ]] || fail "$run: the dump has another name: $dump"
        dumps+=("$dump")
    done
    [ "${dumps[0]}" != "${dumps[1]}" ] || fail "the name of the dump can be guessed"
    remove_dump() { rm "$(sed -n 's/^channel_pair: \(.*\): the dump.*/\1/p' "$work/err")"; }
    (ulimit -f 200 && expect 1 'the dump is incomplete: File too large' --dump "$random")
    remove_dump
    # If another user replaces the file, the sink neither waits for the reader of a FIFO nor follows a symbolic link.
    head -c 3840 "$random" >"$work/chunk"
    replace_dump mkfifo | expect 1 'the dump is incomplete: No such device or address' --dump -
    remove_dump
    replace_dump ln -s "$work/target" | expect 1 'the dump is incomplete: Too many levels of symbolic links' --dump -
    remove_dump
fi

# Invalid arguments.
invalid 'unknown option --nonsense' --nonsense
expect_demo 2 'unknown option --nonsense' --nonsense
invalid 'unknown option --verb' --verb
invalid '--flip' --flip -1
invalid '--faults' --faults some
invalid '--faults' --faults 1000001 "$random"
invalid '--seconds' --seconds
invalid '--seconds' --seconds 0
invalid '--timeout' --timeout 3601
invalid '--seed requires --faults' --seed 3
invalid '--faults excludes --flip' --flip 3 --faults 4
invalid 'the name is empty' ''
invalid 'the name is empty' --output ''
invalid 'unexpected argument second' first second
invalid 'FILE excludes --seconds' --seconds 1 "$random"
expect 2 '--faults: the maximum for 5 s of a generated tone is 125' --faults 126
expect 0 '--output' --help
expect 0 '--output' -h
expect_demo 1 "$work/missing: No such file" "$work/missing"
expect_demo 1 "$work: Is a directory" "$work"
expect_demo 99 'nothing is built here' "$random" -o "$work/copy" --faults=8 --seed 1 --timeout .5 --trace x --dump -v
expect_demo 99 'nothing is built here' -
expect_demo 0 "$("${pair[@]}" --help)" --help

# The worked examples of messages; a line that starts with a space continues the previous one.
printf hi >"$work/hi"
expect 0 '' --trace "$work/trace" "$work/hi"
expect 0 'every byte arrived' --trace - "$work/hi"
grep -qxF "$(tail -n 1 "$work/trace")" "$work/out" || fail "no trace on standard output"
! grep -q 'every byte arrived' "$work/out" || fail "the report is not on standard error"
(sleep 2) | expect 0 '' --trace "$work/idle" --timeout 0.4 -
examples=0
while read -r message; do
    grep -qxF "$message " "$work/trace" "$work/idle" || fail "the pair does not send this message: $message"
    examples=$((examples + 1))
done < <(sed -n '/^```pair$/,/^```$/{/^```/d;s|  // .*||;p}' "$here/../../docs/wire-formats.md" |
    sed -e ':a' -e '$!N;s/\n / /;ta' -e 'P;D' | sed 's/.*=> //')
[ "$examples" = 4 ] || fail "$examples examples of messages, expected 4"
echo "the pair works"
