#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks the examples in docs/wire-formats.md: its fenced code blocks, whose info string names their kind. A block of a
# computed kind has lines "input => output", which inspect_test.sh recomputes, or channel_pair_test.sh those of the kind
# pair. Any other block is output of the library and must occur unchanged in a golden file.
# Usage: wire_formats_test.sh PAGE GOLDEN_DIRECTORY
. "$(dirname "$0")/lib.sh"

page=$1
# Joins messages of several lines, which are indented in golden files.
golden=$(cat "$2"/*.txt | sed -e ':a' -e 'N;$!ba' -e 's/\n    |/\n/g')
declare -A kinds=([frame]=computed [header]=computed [crc]=computed [audio]=computed [parcel]=computed [pair]=computed
    [device]=golden [service]=golden [unset-service]=golden [message]=golden [request]=golden
    [event]=golden)
declare -A found=()

# check KIND BLOCK: checks one block. A line that begins with a space continues the previous line; two spaces and "//"
# begin a comment.
check() {
    local example line
    example=$(sed 's|  //.*||' <<<"$2" | sed -e ':a' -e '$!N;s/\n //;ta' -e 'P;D')
    [ -n "$example" ] || fail "empty $1 block"
    if [ "${kinds[$1]}" = computed ]; then
        while IFS= read -r line; do
            [[ $line == *"=>"* ]] || fail "not an example in a $1 block: $line"
        done <<<"$example"
    elif [[ $golden != *"$example"* ]]; then
        fail "not in a golden file: $example"
    fi
}

kind=
while IFS= read -r line; do
    case $kind,$line in
        ,'```'*)
            kind=${line#'```'} block=
            [ -n "${kind:+${kinds[$kind]:-}}" ] || fail "unknown kind of block: $line"
            ;;
        ?*,'```') check "$kind" "${block%$'\n'}" && found[$kind]=1 kind= ;;
        ?*,*) block+=$line$'\n' ;;
    esac
done <"$page"
[ -z "$kind" ] || fail "unterminated block"
[ "${#found[@]}" = "${#kinds[@]}" ] || fail "missing kinds of blocks; found: ${!found[*]}"
echo "checked: ${!found[*]}"
