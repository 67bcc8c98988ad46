#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Gives ostra-inspect the worked examples of the page on wire formats, input in all spellings, and input that it must
# refuse, and looks at what it prints and how it ends. Usage: inspect_test.sh OSTRA_INSPECT PAGE CHANNEL_PAIR
set -euo pipefail

inspect=$1
page=$2
pair=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    cat "$folder/out" "$folder/err"
    echo "FAILED: $*"
    exit 1
}

# expect STATUS TEXTS ARGUMENT...: the tool must end so, print each line of TEXTS, and no second line of errors.
expect() {
    local status=0 wanted=$1 texts=$2 text
    shift 2
    timeout 60 "$inspect" "$@" >"$folder/out" 2>"$folder/err" || status=$?
    [ "$status" = "$wanted" ] || fail "$*: exit status $status, not $wanted"
    [ "$(wc -l <"$folder/err")" = "$((wanted > 0))" ] || fail "$*: not one line of errors for status $wanted"
    while read -r text; do
        cat "$folder/out" "$folder/err" | tr -s ' ' | grep -F -- "$text" >/dev/null || fail "$*: not printed: $text"
    done <<<"$texts"
}

# times NUMBER CHARACTER: that many of it.
times() { printf "%0$1d" 0 | sed "s/0/$2/g"; }

# examples KIND: the worked examples of one kind, one a line, without comments.
examples() {
    sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;s|  // .*||;p}" "$page" | sed -e ':a' -e '$!N;s/\n / /;ta' -e 'P;D'
}

# count_as NUMBER WHAT: that many examples must have been there.
count_as() {
    [ "$examples" = "$1" ] || fail "$examples examples of $2, not $1"
    examples=0
}
examples=0

# Frames: value, content and bytes; the position behind the header; the CRC.
while IFS= read -r line; do
    value=$((${line%%:*} & 0xFFFFFFF)) content=${line#*:}
    content=$(tr -d " " <<<"${content%=>*}")
    expect 0 "value $value (" frame "${line#*=> }"
    expect 0 "content length $((${#content} / 2))" frame "${line#*=> }"
    ! grep -q needless "$folder/out" || fail "a writer writes a shorter header: $line"
    [[ $(tr -d ' ' <<<"${line#*=>}") == *"$content" ]] || fail "another content: $line"
    examples=$((examples + 1))
done < <(examples frame)
count_as 11 frames
while IFS= read -r line; do
    expect 0 "value $(sed 's/.*value \([0-9]*\),.*/\1/' <<<"$line") ("$'\n'"offset ${line#*next }" frame "${line%% =>*}"
    examples=$((examples + 1))
done < <(examples header)
count_as 4 headers
while IFS= read -r line; do
    expect 0 "crc $(tr -d ' ' <<<"${line#*=> }")" frame "${line%% =>*}"
    examples=$((examples + 1))
done < <(examples crc)
count_as 3 CRCs
expect 0 'has no end mark; a writer does so for a negative value, such as -1' frame 7F7F7F7F
expect 0 'has no end mark: the frame ends within it' frame 05
expect 0 'has needless groups: it takes 2 bytes and needs 1' frame '00 80 68'
expect 0 'the frame ends with its header' frame 80
expect 0 '0000 68 20 6C FF 6F |h l.o|' frame '85 68 20 6C FF 6F'
! grep -q warnings "$folder/out" || fail 'a warning about a good frame'

# Each spelling of the same bytes.
bytes=$folder/bytes
printf '\x85hello, a stream of more than sixteen bytes\n' >"$bytes"
head -c 100 /dev/zero >>"$bytes"
"$inspect" frame "$bytes" >"$folder/wanted"
hex=$(od -An -v -t x1 "$bytes" | tr -d '\n')
spellings=(
    "od -t x1" "od -A x -t x1z" "od -v -t x1"
    "echo $hex" "echo ${hex// /}" "echo ${hex// /,0x}" "echo ${hex// /\\x}" "echo ${hex// /, }" "echo {${hex^^}};"
)
for dump in "hexdump -C" "xxd" "xxd -a" "xxd -p"; do
    ! command -v "${dump%% *}" >/dev/null || spellings+=("$dump")
done
for spelling in "${spellings[@]}"; do
    if [ "${spelling%% *}" = echo ]; then printf '%s\n' "${spelling#echo }"; else $spelling "$bytes"; fi >"$folder/text"
    expect 0 '' frame "$folder/text"
    cmp -s "$folder/out" "$folder/wanted" || fail "read differently: $(head -1 "$folder/text")"
    "$inspect" frame <"$folder/text" | cmp -s - "$folder/wanted" || fail "standard input, read differently: $spelling"
done
printf 85 >"$folder/text"
expect 0 'value 5 (' frame "$folder/text"
expect 0 'header 38 35' frame --raw "$folder/text"

# Documents.
expect 0 $'deviceName desk tablet\nserviceType 4\nserviceId microphone\nstatus {"state":"idle"}\n0: bit 1
note: unknown' service "$(examples service)"
expect 0 $'deviceId (empty)\nprofile text 48000,2,16; (the default' service "$(examples unset-service)"
expect 0 $'serviceType not set\ndevicename: repeated\nserviceType: a text, not a number\nextra: unknown
what follows the document is ignored: 1 byte
deviceName first' service '{"deviceName":"first","devicename":"x","serviceType":"4","extra":1}!'
while IFS= read -r line; do
    output=${line##*=> }
    result=${output%%,*}
    profiles=$(sed 's/.*"\(.*\)"/\1/' <<<"$output")
    bits=$(sed 's/.*bits \([0-9]*\),.*/\1/' <<<"$output")
    expect "$((result != 0))" "result $result"$'\n'"codec bits $bits"$'\n'"profile text ${profiles:-(empty)}" \
        audio "${line% =>*}"
    examples=$((examples + 1))
done < <(examples audio)
count_as 6 'audio capabilities'
expect 0 $'48000,12,1: 48 kHz, stereo, 16 bits\n44100,3,4: 44.1 kHz, stereo, 24 bits\n16000,16,3: 16 kHz, mono, 32 bits
8000,5,1: left out, the channel code 5 is unknown\n7: gives no bit (UpdataAudioCodec: ' audio "$(examples audio | head -1)"
expect 1 'cJSON_Parse audioCapablitiesStr failed; Unmarshal: Failed to unmarshal AudioCapablities: -70005 (in 2102,
the JSON breaks near offset 1 of 1 bytes)' audio '{"2102":"{"}'
expect 0 $'codecs[1]: a text, not a number\nprofiles[0].sampleRate counts as 0' audio "$(examples audio | sed -n 2p)"
sed -n '/^```device$/,/^```$/{/^```/d;p}' "$page" >"$folder/device"
expect 0 $'deviceName desk "tablet"\nport 8080\nservice type 2: version 2\nservice type 512: version 1
as written yes' device "$folder/device"
sed 's/8080/"8080"/; s/\(4[\]":[\]t\)2/\13/' "$folder/device" >"$folder/changed"
expect 0 $'port missing\nport: a text, not a number\nas written no
service type 4: version 3 (this library has 2)' device - <"$folder/changed"
expect 0 'the version table is not read, since the JSON breaks near offset 1 of 1 bytes: {' \
    device '{"properties":{"2016":"{"}}'

# Parcels: what the tool accepts of the entries that arrive, composed anew in ascending order, is the next parcel.
words() { for number in "$@"; do printf '%02x%02x%02x%02x' $((number & 255)) $((number >> 8 & 255)) 0 0; done; }
compose() {
    local entry
    words "$#"
    for entry in "$@"; do
        words "${#entry}"
        printf '%s' "$entry" | od -An -v -t x1 | tr -d ' \n'
        printf '%0*d' $((8 - ${#entry} % 4 * 2)) 0
    done
}
# Of equal keys the last one counts.
map_of() { "$inspect" parcel "$1" | awk '$2 == "=" { map[$1] = $0 } END { for (key in map) print map[key] }'; }
while IFS= read -r line; do
    IFS=, read -r -a entries <<<"${line%%=>*}"
    entries=("${entries[@]# }")
    arrived=$(compose "${entries[@]% }")
    mapfile -t accepted < <(map_of "$arrived" | sort -n | sed 's/^ *//; s/ *= */#/')
    [ "$(compose "${accepted[@]}")" = "$(tr -d ' ' <<<"${line##*=> }" | tr A-F a-f)" ] || fail "not the parcel of: $line"
    expect 0 "count ${#accepted[@]}"$'\n'"accepted ${#accepted[@]}" parcel "${line##*=> }"
    examples=$((examples + 1))
done < <(examples parcel)
count_as 4 parcels
parcel=$(examples parcel | sed -n '1s/.*=> //p')
expect 0 $'count 3\naccepted 3\n-3 = a#b\n7 = x\n10 = ' parcel "$parcel"
expect 1 'refused after 2 of 3 entries: UnMarshalling: read value failed!' parcel "${parcel% 03 00 00 00 31*}"
expect 0 'skipped: "7x#" (UnMarshalling: key_str is not Num)' parcel 01000000 03000000 37782300
expect 0 '4 bytes follow the map' parcel 0000000000000000
expect 1 'refused after 0 of 10001 entries: UnMarshalling: Params size is invalid!size : 10001' parcel 11270000

# Events: those of the page and of every stage, what a process writes, and a file that grows.
while IFS= read -r stage; do
    read -r operation number <<<"$stage"
    printf '{"domain_":"OSTRAADAPTER","name_":"OSTRA_ADAPTER_BEHAVIOR","HOST_PKG":"h","BIZ_SCENE":2,"BIZ_STAGE":%s,"STAGE_RES":1}\n' \
        "$number" >"$folder/event"
    expect 0 "h scenario 2 $operation ok" events "$folder/event"
    examples=$((examples + 1))
done < <(sed -n 's/^| `\([A-Za-z]*Res\)` | \([0-9]*\) |.*/\1 \2/p' "$page")
count_as 11 stages
examples event | sed 's/.*=> *//; s/, "/,"/g' >"$folder/events"
expect 0 $'collaboration_service scenario 2 ConnectDeviceRes FAILED, error -3 (Connect calls dsoftbus)
- - scenario 7 ServiceStartRes ok (OnStart)' events "$folder/events"
expect 0 '"operation":"ConnectDeviceRes","function":"Connect","called":"dsoftbus","success":false,"error_code":-3' \
    --json events "$folder/events"
if command -v script >/dev/null; then
    script -qec "NO_COLOR= '$inspect' events '$folder/events'" /dev/null </dev/null >"$folder/out"
    grep -q $'^\033.*FAILED' "$folder/out" && ! grep -q $'^\033.*ok' "$folder/out" || fail 'failures do not stand out'
    script -qec "NO_COLOR=1 '$inspect' events '$folder/events'" /dev/null </dev/null >"$folder/out"
    ! grep -q $'\033' "$folder/out" || fail 'colours against NO_COLOR'
fi
expect 1 '1 of 3 lines are no events of the library, the first is line 1' events - < <(echo '{}' && cat "$folder/events")
"$inspect" events --follow "$folder/events" >"$folder/out" 2>"$folder/err" &
follower=$!
printf 'no line yet' >>"$folder/events"
for tries in {200..0}; do
    [ "$tries" != 150 ] || printf '\n%s\n' "$(head -1 "$folder/events")" >>"$folder/events"
    [ "$(wc -l <"$folder/out")" != 3 ] || break
    sleep 0.02
done
kill "$follower"
wait "$follower" 2>/dev/null || true
[ "$(grep -c FAILED "$folder/out")" = 2 ] || fail 'the file was not followed'
OSTRA_HOST_LOG_LEVEL=off OSTRA_HOST_EVENT_OUTPUT=$folder/written "$pair" --seconds 0.2 >"$folder/out" 2>&1
expect 0 $'ServiceStartRes ok (source)\nDisconnectDeviceRes ok (sink calls dsoftbus)' events "$folder/written"
[ "$(wc -l <"$folder/out")" = "$(wc -l <"$folder/written")" ] || fail 'not every event was printed'

# A dump of 1 s at 8 kHz: left a square wave at half of full scale, right clipped; then half a second of silence.
{
    for i in {1..2000}; do printf '\x00\xc0\x00\x80\x00\x40\xff\x7f'; done
    head -c 16001 /dev/zero
} >"$folder/dump"
expect 0 $'seconds 1.000\npeak dB -6.0\nrms dB -9.0\nclipped 0\npeak dB 0.0\nrms dB -3.0\nclipped 4000
silence 0.500 s, the longest 0.500 s from 0.500 s on\nthe end is no whole frame: 1 of 4 bytes' \
    dump "$folder/dump" --rate 8000 --wav "$folder/wav"
[ "$(od -A n -t x1 -j 44 -N 4 "$folder/wav" | tr -d ' ')" = 00c00080 ] || fail 'other samples in the WAV file'
expect 0 'seconds 4.000' dump --rate 8000 --channels 1 --bits 8 - --wav "$folder/wav" < <(cat "$folder/dump")
[ "$(od -A n -t x1 -j 44 -N 4 "$folder/wav" | tr -d ' ')" = 00c00080 ] || fail 'other bytes in the WAV file'
printf '\0\100\0\0' >"$folder/left"
expect 0 'silence 0.000 s' dump --rate 1 "$folder/left"
expect 0 'there is no sound in it' dump /dev/null
expect 0 "$(times 38 ▄) "$'\n'"$(times 38 █)$(times 37 ▀)"$'\n'"$(times 38 ▀) " dump "$folder/dump"
expect 1 "$folder/dump: is the dump itself" dump "$folder/dump" --wav "$folder/dump"
if command -v sox >/dev/null; then
    expect 0 '' dump "$folder/dump" --image "$folder/image"
    [ "$(head -c 4 "$folder/image")" = $'\x89PNG' ] || fail 'no image'
else
    expect 1 'sox is not installed' dump "$folder/dump" --image "$folder/image"
fi

# JSON of every subject, which the tool reads back as a document, and of a refusal.
for call in "frame 85" "service {}" "audio {}" "device {}" "parcel 00000000" "dump $folder/dump"; do
    # The words of the call are to be split.
    # shellcheck disable=SC2086
    "$inspect" --json $call | "$inspect" device - >"$folder/out" 2>"$folder/err" || fail "the JSON of $call is none"
    ! grep -q 'what follows' "$folder/out" || fail "more than JSON from $call"
done
expect 0 $'"text":\t"a\\\\xFF"\n"text_bytes":\t"61 FF"\n"skipped":\t"UnMarshalling: Not found the separator!"' --json parcel 010000000200000061FF0000
expect 1 '"error":' frame --json xyz
expect 1 '"error":' parcel --json 11270000
expect 0 'info: GetCrc: ChannelProtocol::GetCrc: getCrc16:' --log frame 85

# What cannot be read, and wrong calls, each with what is wrong in it; nothing steers the terminal.
expect 1 "$folder/missing: no such file" frame "$folder/missing"
expect 1 "$folder/missing: No such file or directory" dump "$folder/missing"
expect 1 "$folder: Is a directory" service "$folder"
expect 1 'an odd number of hexadecimal digits: 856' frame 856
expect 1 'not hexadecimal: 8x' frame 8x
expect 1 'no frame: CreateFromBuffer: ChannelProtocol::CreateFromBuffer: Invalid para.' frame ''
expect 1 'no service document (-70005): Unmarshal: Failed to unmarshal DHOSTRADeviceServiceJson.' service '{'
expect 1 'Json. (the JSON breaks near offset 5 of 9 bytes)' service '{"a":tru}'
expect 1 'no device document: the JSON breaks near offset 1 of 1 bytes' device '{'
expect 1 'no device document: it is an array, not an object' device - <<<'[]'
levels() { echo "{\"a\":$(times $(($1 - 1)) '[')$(times $(($1 - 1)) ']')}"; }
for subject in service audio device; do
    expect 0 'a: unknown' "$subject" "$(levels 100)"
    expect 1 'the JSON nests deeper than 100 levels' "$subject" "$(levels 101)"
    expect 1 'the JSON nests deeper than 100 levels' "$subject" "$(levels 990)"
done
expect 1 'the dump does not go on at offset 00000020' frame "00000000: 8568"$'\n'"00000020: 8568"
expect 1 'a dump of words' frame '0000000 6885 6c65'
! "$inspect" events "$folder/written" >/dev/full 2>"$folder/err" || fail 'a full standard output goes unnoticed'
grep -q 'No space left on device' "$folder/err" || fail 'not told why standard output fails'
expect 0 'deviceName \x1B[31m' service '{"deviceName":"\u001b[31m"}'
expect 2 'nonsense' nonsense
expect 2 'subcommand' --json
expect 2 '--nonsense' frame --nonsense
expect 2 '--bits' dump --bits 12 "$folder/dump"
expect 2 'FILE is required' dump
expect 0 '--follow' --help-all
echo "the tool behaves"
