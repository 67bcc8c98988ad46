#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Reads the examples of the page on wire formats strictly: its fenced blocks, of which the word behind the fence is the
# kind. Those of the computed kinds, one "input => output" each, are for inspect_test.sh to recompute; a block of
# another kind is what leaves the library, and must stand word for word in the reviewed texts of the sessions.
# Usage: wire_formats_test.sh PAGE SESSIONS
set -euo pipefail

page=$1
# A text of several lines is indented in the sessions.
reviewed=$(cat "$2"/*.txt | sed -e ':a' -e 'N;$!ba' -e 's/\n    |/\n/g')
declare -A kinds=([frame]=computed [header]=computed [crc]=computed [audio]=computed [parcel]=computed [pair]=computed
    [device]=reviewed [service]=reviewed [unset-service]=reviewed [message]=reviewed [request]=reviewed
    [event]=reviewed)
declare -A found=()

fail() {
    echo "wire_formats_test: $*"
    exit 1
}

# check KIND BLOCK: a line that begins with a space continues the one above, two spaces and "//" begin a comment.
check() {
    local text line
    text=$(sed 's|  //.*||' <<<"$2" | sed -e ':a' -e '$!N;s/\n //;ta' -e 'P;D')
    [ -n "$text" ] || fail "a block of the kind $1 is empty"
    if [ "${kinds[$1]}" = computed ]; then
        while IFS= read -r line; do
            [[ $line == *"=>"* ]] || fail "no example of the kind $1: $line"
        done <<<"$text"
    elif [[ $reviewed != *"$text"* ]]; then
        fail "in no reviewed text: $text"
    fi
}

kind=
while IFS= read -r line; do
    case $kind,$line in
        ,'```'*)
            kind=${line#'```'} block=
            [ -n "${kind:+${kinds[$kind]:-}}" ] || fail "no kind is called so: $line"
            ;;
        ?*,'```') check "$kind" "${block%$'\n'}" && found[$kind]=1 kind= ;;
        ?*,*) block+=$line$'\n' ;;
    esac
done <"$page"
[ -z "$kind" ] || fail "the last block has no end"
[ "${#found[@]}" = "${#kinds[@]}" ] || fail "only these kinds have examples: ${!found[*]}"
echo "the page holds: ${!found[*]}"
