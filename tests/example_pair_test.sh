#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the example pair as a user would and looks at what it prints and how it ends. Usage:
# example_pair_test.sh COMMAND [WORD ...]
set -euo pipefail

pair=("$@")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# expect STATUS TEXT ARGUMENT...: runs the pair, and wants that exit status and each line of TEXT in its output.
expect() {
    local status=0
    local wanted=$1 texts=$2
    shift 2
    "${pair[@]}" "$@" >"$folder/out" 2>&1 || status=$?
    [ "$status" = "$wanted" ] || { cat "$folder/out"; echo "exit status $status, not $wanted: $*"; exit 1; }
    while read -r text; do
        grep -qF -- "$text" "$folder/out" || { cat "$folder/out"; echo "not printed: $text: $*"; exit 1; }
    done <<<"$texts"
}

expect 0 $'frames          253\nCRC mismatches  0\nport: 8***\ndesk tablet\nm******e of type *\ncodec bits      5
profiles        48000,2,16;16000,1,16;
settings        48000 Hz, 2 channels, pieces of 20 ms
"isomerism_event":"isomerism_connect"}
"isomerism_event":"isomerism_disconnect"}
reset: 0
FUNC=source HOST_PKG=collaboration_service BIZ_SCENE=2 BIZ_STAGE=1 STAGE_RES=1 BIZ_STATE=1
FUNC=sink TO_CALL_PKG=dsoftbus HOST_PKG=collaboration_service BIZ_SCENE=2 BIZ_STAGE=8 STAGE_RES=1
every byte arrived'
expect 1 $'CRC mismatches  1\nsequence gaps   0\nBIZ_STAGE=9 STAGE_RES=2 BIZ_STATE=2 ERROR_CODE=-1\nDIFFERS' --flip 252
expect 1 $'CRC mismatches  1\ncodec bits      0\nevery byte arrived' --flip 1

head -c 1234567 /dev/urandom >"$folder/random"
expect 0 $'frames          325\nevery byte arrived' "$folder/random"
expect 1 'DIFFERS' --flip 3 "$folder/random"
: >"$folder/empty"
expect 0 'every byte arrived' "$folder/empty"

expect 0 ', 1234567 bytes' --dump "$folder/random"
dump=$(sed -n 's/^  dump *\(.*\), .*/\1/p' "$folder/out")
cmp "$dump" "$folder/random"
rm "$dump"

expect 1 'No such file' "$folder/missing"
expect 1 'DIFFERS' "$folder"
expect 2 'Usage' --nonsense
expect 2 'Usage' --flip -1
expect 2 'Usage' ''
expect 1 'a side FAILED' --flip 253
expect 0 'Usage' --help
echo "the pair behaves"
