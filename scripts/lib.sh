# shellcheck shell=bash
# What every script here begins with: strict, at the top folder, and with the answer to --help, which is the comment at
# the script's head, and what `tell_more` prints where the script defines it before it sources this. To be sourced.
set -euo pipefail

script=$(cd "$(dirname "$0")" && pwd)/${0##*/}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
called=${script#"$PWD"/}

# refuse WHY: for a call that the script does not understand
refuse() {
    echo "$called: $*; $called --help tells what there is" >&2
    exit 2
}

# at_most COUNT ARGUMENT ...
at_most() {
    [ $# -le $(($1 + 1)) ] || refuse "too many arguments: ${*:2}"
}

# presets build|test: the names of those that can be built, or tested
presets() {
    local preset='^    {"name": "\([a-z0-9-]*\)", "\(inherits\|configurePreset\)".*'
    sed -n "/\"$1Presets\"/,/^  ]/s/$preset/\1/p" CMakePresets.json
}

# need_preset build|test NAME
need_preset() {
    [ "$(presets "$1" | grep -cxF -e "$2")" = 1 ] ||
        refuse "no preset to $1 is called $2; there are $(presets "$1" | paste -sd ' ')"
}

case ${1-} in
    -h | --help)
        sed -n '2,/^[^#]/{s/^# \{0,1\}//p;}' "$script"
        ! declare -F tell_more >/dev/null || tell_more
        exit
        ;;
esac
