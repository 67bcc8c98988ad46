#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Reads from a built library how it is hardened: addresses bound at load and read-only from then on, guarded stacks, and
# entries marked for the processor's protection of jumps, where it has one. The first library must also stay loaded.
# Usage: hardening_test.sh READELF OBJDUMP LIBRARY ...
set -euo pipefail

readelf=$1
objdump=$2
shift 2
failed=0

# hold LIBRARY WHAT PATTERN TEXT
hold() {
    grep -Eq -- "$3" <<<"$4" || { echo "$1: no $2"; failed=1; }
}

hold "$1" "flag NODELETE" 'FLAGS_1.*NODELETE' "$("$readelf" -dW "$1")"
for library in "$@"; do
    symbols=$("$readelf" --dyn-syms -W "$library")
    hold "$library" "immediate binding" 'FLAGS.*(BIND_)?NOW' "$("$readelf" -dW "$library")"
    hold "$library" "read-only relocations" GNU_RELRO "$("$readelf" -lW "$library")"
    hold "$library" "guarded stack" __stack_chk_fail "$symbols"
    case $("$readelf" -hW "$library" | sed -n 's/^ *Machine: *//p') in
        *X86-64) mark=endbr64 ;;
        AArch64) mark='paciasp|bti' ;;
        *) continue ;;
    esac
    # By address: without an optimiser the symbols of one constructor share it.
    unmarked=$({
        sed -nE 's/^ *[0-9]+: 0*([0-9a-f]+) .* FUNC +(GLOBAL|WEAK) +DEFAULT +[0-9].*/\1/p' <<<"$symbols" | sort -u
        "$objdump" -d --no-show-raw-insn "$library"
    } | awk -v mark="^($mark)\$" '
        NF == 1 { entries["" $1 ":"]; next }
        $1 in entries { ++seen; if ($2 !~ mark) print $0 }
        END { if (seen == 0) print "no entry was seen" }')
    [ -z "$unmarked" ] || { echo "$library: not marked with $mark: $unmarked"; failed=1; }
done
[ "$failed" = 0 ] && echo "hardened: $*"
exit "$failed"
