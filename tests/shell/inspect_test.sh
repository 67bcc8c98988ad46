#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the commands of inspect_test.txt and of README.md and compares their output, runs ostra-inspect on the worked
# examples of the page on wire formats, and checks what a transcript cannot show: terminals, pipes, and memory.
# Usage: inspect_test.sh OSTRA_INSPECT CHANNEL_PAIR SOURCE_DIRECTORY
# With UPDATE=1 it rewrites inspect_test.txt instead.
. "$(dirname "$0")/lib.sh"

inspect=$(realpath "$1")
pair=$(realpath "$2")
source=$(realpath "$3")
page=$source/docs/wire-formats.md
golden=$source/tests/shell/inspect_test.txt
mkdir "$work/bin" "$work/files"
ln -s "$inspect" "$work/bin/ostra-inspect"
export PATH=$work/bin:$PATH TZ=UTC
cd "$work/files"

# transcript FILE: runs the lines that start with "$ " and prints them with their output and failure status.
transcript() {
    local command status
    while IFS= read -r command; do
        printf '%s\n' "$command"
        status=0
        timeout 60 bash -c "${command#\$ }" </dev/null 2>&1 || status=$?
        [ "$status" = 0 ] || echo "[exit status $status]"
    done < <(grep '^\$ ' "$1")
}

# expect STATUS STRINGS ARGUMENT...: checks the exit status, and that the output contains each line of STRINGS.
expect() {
    local status=0 expected=$1 strings=$2 string
    shift 2
    timeout 60 "$inspect" "$@" >"$work/out" 2>&1 </dev/null || status=$?
    [ "$status" = "$expected" ] || fail "$*: exit status $status, not $expected"
    while read -r string; do
        tr -s ' ' <"$work/out" | grep -F -- "$string" >/dev/null || fail "$*: not printed: $string"
    done <<<"$strings"
}

# examples KIND COUNT: writes the worked examples of one kind to a file, one per line, without comments.
examples() {
    sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;s|  // .*||;p}" "$page" |
        sed -e ':a' -e '$!N;s/\n / /;ta' -e 'P;D' >"$work/$1"
    [ "$(wc -l <"$work/$1")" = "$2" ] || fail "$(wc -l <"$work/$1") examples of the kind $1, not $2"
}

check_transcripts() {
    sed -n '/^```device$/,/^```$/{/^```/d;p}' "$page" >device.json
    if [ "${UPDATE:-}" = 1 ]; then
        transcript "$golden" >"$work/new"
        cp "$work/new" "$golden"
        exit
    fi
    transcript "$golden" | diff -u "$golden" - || fail 'inspect_test.txt: unexpected output'
    # The last example prints the current time.
    sed -n '/^## Inspecting/,/OSTRA_HOST_EVENT_OUTPUT=/s/^    //p' "$source/README.md" |
        sed '/OSTRA_HOST/d' >"$work/readme"
    transcript "$work/readme" | diff -uB "$work/readme" - || fail 'README.md: unexpected output'
}

check_frames() {
    local line content
    examples frame 11
    while IFS= read -r line; do
        content=${line#*:}
        content=$(tr -d ' ' <<<"${content%=>*}")
        # The bytes of the frame must be split into arguments.
        # shellcheck disable=SC2086
        expect 0 "value $((${line%%:*} & 0xFFFFFFF))"$'\n'"content length $((${#content} / 2))" frame ${line#*=> }
        ! grep -q overlong "$work/out" || fail "overlong header value: $line"
        [ "$("$inspect" frame --content "${line#*=> }" | xxd -p -u)" = "$content" ] || fail "unexpected content: $line"
    done <"$work/frame"
    examples header 4
    while IFS= read -r line; do
        expect 0 "value $(sed 's/.*value \([0-9]*\),.*/\1/' <<<"$line")
            offset ${line#*next }" frame "${line%% =>*}"
    done <"$work/header"
    examples crc 3
    while IFS= read -r line; do
        expect 0 '' frame --crc "$(tr -d ' ' <<<"${line#*=> }")" "${line%% =>*}"
    done <"$work/crc"
}

check_documents() {
    local line output result profiles bits
    examples service 1
    expect 0 $'deviceName desk tablet\nserviceType 4\nstatus {"state":"idle"}\ncode 0 bit 1' \
        service "$(<"$work/service")"
    examples unset-service 1
    expect 0 $'deviceId (empty)\nprofile string 48000,2,16;' service "$(<"$work/unset-service")"
    examples audio 6
    while IFS= read -r line; do
        output=${line##*=> }
        result=${output%%,*}
        profiles=$(sed 's/.*"\(.*\)"/\1/' <<<"$output")
        bits=$(sed 's/.*bits \([0-9]*\),.*/\1/' <<<"$output")
        expect "$((result != 0))" "result $result"$'\n'"codec bits $bits"$'\n'"profile string ${profiles:-(empty)}" \
            audio "${line% =>*}"
    done <"$work/audio"
}

# words NUMBER...: prints 32-bit little-endian words in hexadecimal.
words() { for number in "$@"; do printf '%02x%02x%02x%02x' $((number & 255)) $((number >> 8 & 255)) 0 0; done; }
# compose ENTRY...: prints a parcel with these entries in hexadecimal.
compose() {
    local entry
    words "$#"
    for entry in "$@"; do
        words "${#entry}"
        printf '%s' "$entry" | xxd -p | tr -d '\n'
        printf '%0*d' $((8 - ${#entry} % 4 * 2)) 0
    done
}

# A parcel of the accepted entries, in ascending order of keys, must equal the parcel in the example.
check_parcels() {
    local line entries accepted
    examples parcel 4
    while IFS= read -r line; do
        IFS=, read -r -a entries <<<"${line%%=>*}"
        entries=("${entries[@]# }")
        # The last entry with a key replaces earlier ones.
        mapfile -t accepted < <("$inspect" parcel "$(compose "${entries[@]% }")" |
            sed -n 's/^  key \([^ ]*\)  value \(.*\)/\1#\2/p' | sed 's/(empty)//' |
            awk -F'#' '{ map[$1] = $0 } END { for (key in map) print map[key] }' | sort -n)
        [ "$(compose "${accepted[@]}")" = "$(tr -d ' ' <<<"${line##*=> }" | tr A-F a-f)" ] ||
            fail "unexpected parcel: $line"
    done <"$work/parcel"
}

check_events() {
    local operation number
    while read -r operation number; do
        printf '{"domain_":"OSTRAADAPTER","name_":"OSTRA_ADAPTER_BEHAVIOR",%s,"BIZ_STAGE":%s,"STAGE_RES":1}\n' \
            '"HOST_PKG":"h","BIZ_SCENE":2' "$number" >event
        expect 0 "h 2 $operation ok" events event
    done < <(sed -n 's/^| `\([A-Za-z]*Res\)` | \([0-9]*\) |.*/\1 \2/p' "$page" | tee "$work/stages")
    [ "$(wc -l <"$work/stages")" = 11 ] || fail "$(wc -l <"$work/stages") stages, not 11"
    OSTRA_HOST_LOG_LEVEL=off OSTRA_HOST_EVENT_OUTPUT=$PWD/written "$pair" --seconds 0.2 >"$work/out" 2>&1
    expect 0 $'ServiceStartRes ok source\nDisconnectDeviceRes ok sink calls dsoftbus' events written
    [ "$(wc -l <"$work/out")" = "$(($(wc -l <written) + 1))" ] || fail 'the number of rows is not the number of events'
    # Each event must be printed before the next one arrives.
    mkfifo pipe
    "$inspect" events - <pipe >"$work/out" &
    exec 3>pipe
    cat event >&3
    for tries in {250..0}; do
        [ "$(wc -l <"$work/out")" != 2 ] || break
        sleep 0.02
    done
    exec 3>&-
    wait $!
    [ "$tries" != 0 ] || fail 'the event was not printed immediately'
}

check_terminals() {
    on_terminal() { script -qec "$*" /dev/null </dev/null >"$work/out" || true; }
    on_terminal "'$inspect' frame"
    grep -q 'no input: standard input is a terminal' "$work/out" || fail 'waits for input on a terminal'
    on_terminal "'$inspect' frame --content 85 1B"
    grep -q 'writes binary data' "$work/out" || fail 'raw content is not rejected on a terminal'
    ! grep -q $'\x1b' "$work/out" || fail 'raw content is printed to a terminal'
    sed 's/"STAGE_RES":1/"STAGE_RES":2/' event >failure
    on_terminal "stty cols 5; NO_COLOR= '$inspect' events failure"
    grep -q $'^\033.*FAILED' "$work/out" || fail 'failures are not highlighted'
    on_terminal "NO_COLOR=1 '$inspect' events failure"
    grep -q FAILED "$work/out" || fail 'no failure is printed'
    ! grep -q $'\033' "$work/out" || fail 'colored despite NO_COLOR'
}

# run_limited KIB ARGUMENT...: runs the tool with an address space of so many KiB.
run_limited() { (ulimit -v "$1" && shift && timeout 60 "$inspect" "$@") >"$work/out" 2>&1; }

# reject_large MIB ARGUMENT...: fails unless the input is rejected because it is larger than so many MiB.
reject_large() {
    local limit=$1
    shift
    ! run_limited 100000 "$@" || fail "$*: accepted"
    grep -q "input too large: the limit is $limit MiB" "$work/out" || fail "$*: unexpected error"
}

# A frame needs little more memory than its bytes, everything else is bounded by a constant, and every failed allocation
# is reported. Sanitizers need more address space.
check_memory() {
    local limit status subcommand
    run_limited 100000 --version || return 0
    { printf '\205' && head -c 67108863 /dev/zero; } >frame
    run_limited 100000 frame frame || fail 'a frame of 64 MiB needs too much memory'
    grep -q 'content length  67108863' "$work/out" || fail 'the content is not complete'
    run_limited 100000 --json frame - <frame || fail 'the JSON of a frame of 64 MiB needs too much memory'
    grep -q '"content_omitted":.*67098863' "$work/out" || fail 'the JSON contains the whole content'
    printf 'a' >>frame
    head -c 1048577 frame >large
    reject_large 64 frame frame
    reject_large 64 frame <(yes)
    for subcommand in service audio device parcel; do
        reject_large 1 "$subcommand" large
        reject_large 1 "$subcommand" <(yes)
    done
    run_limited 40000 events frame && fail 'a line of 64 MiB is accepted as an event'
    grep -q '1 of 1 lines not recognized' "$work/out" || fail 'unexpected error for a line of 64 MiB'
    printf '{"2102":"{\\"profiles\\":[{}%s]}"}' "$(yes ',{}' | head -300000 | tr -d '\n')" >profiles
    run_limited 100000 audio profiles || fail 'many profiles need too much memory'
    grep -q 'warnings omitted *890003' "$work/out" || fail 'the report contains all warnings'
    # No document of 1 MiB is known to need more memory than this one.
    { printf '{"properties":{"2102":"{}","x":[' && head -524260 <(yes 0,) | tr -d '\n' &&
        printf '0]},"deviceId":"d1"}'; } >large
    for limit in {8000..120000..8000}; do
        status=0
        run_limited "$limit" --version || continue
        run_limited "$limit" service large || status=$?
        if [ "$status" = 0 ]; then
            grep -q 'deviceId *d1' "$work/out" || fail "a member is missing with $limit KiB"
        else
            grep -q 'out of memory' "$work/out" || fail "unexpected error with $limit KiB"
        fi
    done
    [ "$status" = 0 ] || fail 'a document of 1 MiB needs too much memory'
}

check_transcripts
check_frames
check_documents
check_parcels
check_events
check_terminals
check_memory
! "$inspect" events written >/dev/full 2>"$work/out" || fail 'a full standard output is not an error'
grep -q 'No space left on device' "$work/out" || fail 'the reason is missing'
echo 'the tool behaves as documented'
