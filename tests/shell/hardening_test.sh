#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks the hardening of built libraries: immediate binding, read-only relocations, stack protection, and landing pads
# for indirect branches on processors that have them. The first library must not be unloadable. No program in the build
# tree may search the current directory for libraries.
# Usage: hardening_test.sh READELF OBJDUMP BUILD_DIRECTORY LIBRARY ...
set -euo pipefail

readelf=$1
objdump=$2
build=$3
shift 3
failed=0

# require LIBRARY WHAT PATTERN TEXT
require() {
    grep -Eq -- "$3" <<<"$4" || { echo "$1: no $2"; failed=1; }
}

files=0
while read -r file; do
    files=$((files + 1))
    if "$readelf" -dW "$file" 2>/dev/null | grep -E '\((RUNPATH|RPATH)\).*(\[:|::|:\]|\[\])'; then
        echo "$file: empty element in the library search path"
        failed=1
    fi
done < <(find "$build" -type f \( -perm -u+x -o -name '*.so*' \) ! -name '*.sh')
[ "$files" -gt 0 ] || { echo "no programs in $build"; failed=1; }

require "$1" "flag NODELETE" 'FLAGS_1.*NODELETE' "$("$readelf" -dW "$1")"
for library in "$@"; do
    symbols=$("$readelf" --dyn-syms -W "$library")
    require "$library" "immediate binding" 'FLAGS.*(BIND_)?NOW' "$("$readelf" -dW "$library")"
    require "$library" "read-only relocations" GNU_RELRO "$("$readelf" -lW "$library")"
    require "$library" "stack protector" __stack_chk_fail "$symbols"
    code=$("$objdump" -d --no-show-raw-insn "$library")
    case $("$readelf" -hW "$library" | sed -n 's/^ *Machine: *//p') in
        *X86-64)
            mark=endbr64
            # A function that allocates more than a page at once can skip the guard page of the stack.
            if grep -E 'sub +[$]0x([1-9a-f][0-9a-f]{3}|[0-9a-f]{5,7}),%rsp' <<<"$code" | grep -v '[$]0x1000,'; then
                echo "$library: no protection against stack clashes"
                failed=1
            fi
            ;;
        AArch64) mark='paciasp|bti' ;;
        *) continue ;;
    esac
    # Compares addresses instead of names: without optimization, the symbols of a constructor share an address.
    unmarked=$({
        sed -nE 's/^ *[0-9]+: 0*([0-9a-f]+) .* FUNC +(GLOBAL|WEAK) +DEFAULT +[0-9].*/\1/p' <<<"$symbols" | sort -u
        echo "$code"
    } | awk -v mark="^($mark)\$" '
        NF == 1 { entries["" $1 ":"]; next }
        $1 in entries { ++seen; if ($2 !~ mark) print $0 }
        END { if (seen == 0) print "no function found" }')
    [ -z "$unmarked" ] || { echo "$library: not marked with $mark: $unmarked"; failed=1; }
done
[ "$failed" = 0 ] && echo "hardened: $*"
exit "$failed"
