# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
#
# Sourced by every script first: enables strict mode, changes to the top directory, and handles --help, which prints the
# comment at the top of the script, then the output of the function `more_help` if the script has defined it.
set -euo pipefail
unset CDPATH # with which cd prints directories

script=$(cd "$(dirname "$0")" && pwd)/${0##*/}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
called=${script#"$PWD"/}

# usage_error REASON: exits because of invalid arguments
usage_error() {
    echo "$called: $*; see $called --help" >&2
    exit 2
}

# at_most COUNT ARGUMENT ...: rejects options, and more than COUNT arguments
at_most() {
    local count=$1 argument
    shift
    for argument in "$@"; do
        [[ $argument != -?* ]] || usage_error "unknown option $argument"
    done
    [ $# -le "$count" ] || usage_error "too many arguments: $*"
}

# presets build|test: prints the names of the presets that can be built or tested
presets() {
    local preset='^    {"name": "\([a-z0-9-]*\)", "\(inherits\|configurePreset\)".*'
    sed -n "/\"$1Presets\"/,/^  ]/s/$preset/\1/p" CMakePresets.json
}

# need_preset build|test NAME: rejects a name that is not a preset of that kind
need_preset() {
    [ "$(presets "$1" | grep -cxF -e "$2")" = 1 ] ||
        usage_error "unknown $1 preset '$2'; $1 presets: $(presets "$1" | paste -sd ' ')"
}

case ${1-} in
    -h | --help)
        sed -n '2,/^[^#]/{/^# SPDX/d;s/^# \{0,1\}//p;}' "$script"
        ! declare -F more_help >/dev/null || more_help
        exit
        ;;
esac
