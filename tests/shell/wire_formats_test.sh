#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks the examples of the page on wire formats, which are its fenced blocks with their kind as the info string.
# inspect_test.sh and channel_pair_test.sh recompute the computed kinds, which have lines "input => output". A block of
# another kind is output of the library, and must occur verbatim in a golden file.
# Usage: wire_formats_test.sh PAGE GOLDEN_DIRECTORY
set -euo pipefail

page=$1
# Messages of several lines are indented in golden files.
golden=$(cat "$2"/*.txt | sed -e ':a' -e 'N;$!ba' -e 's/\n    |/\n/g')
declare -A kinds=([frame]=computed [header]=computed [crc]=computed [audio]=computed [parcel]=computed [pair]=computed
    [device]=golden [service]=golden [unset-service]=golden [message]=golden [request]=golden
    [event]=golden)
declare -A found=()

fail() {
    echo "wire_formats_test: $*"
    exit 1
}

# check KIND BLOCK: a line that starts with a space continues the previous one; two spaces and "//" start a comment.
check() {
    local text line
    text=$(sed 's|  //.*||' <<<"$2" | sed -e ':a' -e '$!N;s/\n //;ta' -e 'P;D')
    [ -n "$text" ] || fail "a block of the kind $1 is empty"
    if [ "${kinds[$1]}" = computed ]; then
        while IFS= read -r line; do
            [[ $line == *"=>"* ]] || fail "no example of the kind $1: $line"
        done <<<"$text"
    elif [[ $golden != *"$text"* ]]; then
        fail "in no golden file: $text"
    fi
}

kind=
while IFS= read -r line; do
    case $kind,$line in
        ,'```'*)
            kind=${line#'```'} block=
            [ -n "${kind:+${kinds[$kind]:-}}" ] || fail "unknown kind: $line"
            ;;
        ?*,'```') check "$kind" "${block%$'\n'}" && found[$kind]=1 kind= ;;
        ?*,*) block+=$line$'\n' ;;
    esac
done <"$page"
[ -z "$kind" ] || fail "the last block is not closed"
[ "${#found[@]}" = "${#kinds[@]}" ] || fail "only these kinds have examples: ${!found[*]}"
echo "examples on the page: ${!found[*]}"
