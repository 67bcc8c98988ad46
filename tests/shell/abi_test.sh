#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Holds the exported interface of the library to the list under version control, symbol by symbol.
# Usage: abi_test.sh NM LIBRARY LIST; with --print as LIST, prints the list of the library instead.
set -euo pipefail

nm=$1
library=$2
list=$3

# One line a symbol, as a person reads it. A constructor has two symbols that read the same.
symbols() {
    "$nm" -D --defined-only "$library" | sed 's/^[0-9a-f]* //' | c++filt | LC_ALL=C sort -u
}

if [ "$list" = --print ]; then
    symbols
    exit
fi
exported=$(symbols)
if diff -U0 "$list" - <<<"$exported"; then
    echo "the exported interface is as listed: $(wc -l <"$list") symbols"
    exit 0
fi
echo "the exported interface has changed (- gone, + new); if that is meant, run scripts/abi-refresh and say why"
exit 1
