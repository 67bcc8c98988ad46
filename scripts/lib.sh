# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
#
# Sourced by every script first: strict mode, the top directory as the current one, and --help, which prints the comment
# at the head of the script, then whatever the function `tell_more` prints if the script defined it before.
set -euo pipefail

script=$(cd "$(dirname "$0")" && pwd)/${0##*/}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
called=${script#"$PWD"/}

# refuse REASON: ends the script because of wrong arguments
refuse() {
    echo "$called: $*; see $called --help" >&2
    exit 2
}

# at_most COUNT ARGUMENT ...
at_most() {
    [ $# -le $(($1 + 1)) ] || refuse "too many arguments: ${*:2}"
}

# presets build|test: prints the names of the presets that can be built or tested
presets() {
    local preset='^    {"name": "\([a-z0-9-]*\)", "\(inherits\|configurePreset\)".*'
    sed -n "/\"$1Presets\"/,/^  ]/s/$preset/\1/p" CMakePresets.json
}

# need_preset build|test NAME
need_preset() {
    [ "$(presets "$1" | grep -cxF -e "$2")" = 1 ] ||
        refuse "unknown $1 preset $2; $1 presets: $(presets "$1" | paste -sd ' ')"
}

case ${1-} in
    -h | --help)
        sed -n '2,/^[^#]/{/^# SPDX/d;s/^# \{0,1\}//p;}' "$script"
        ! declare -F tell_more >/dev/null || tell_more
        exit
        ;;
esac
