#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compares the exported symbols of the library with the list under version control.
# Usage: abi_test.sh NM LIBRARY LIST; with --print as LIST, prints the symbols of the library instead.
set -euo pipefail

nm=$1
library=$2
list=$3

# Prints one demangled symbol per line. A constructor has two symbols with the same demangled name.
symbols() {
    "$nm" -D --defined-only "$library" | sed 's/^[0-9a-f]* //' | c++filt | LC_ALL=C sort -u
}

if [ "$list" = --print ]; then
    symbols
    exit
fi
exported=$(symbols)
if diff -U0 "$list" - <<<"$exported"; then
    echo "the exported symbols match the list: $(wc -l <"$list") symbols"
    exit 0
fi
echo "the exported symbols have changed (- removed, + added); if this is intended, run scripts/abi-refresh"
exit 1
