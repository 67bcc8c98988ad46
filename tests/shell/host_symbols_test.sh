#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compares the names that the host platform exports with a list. All others must be hidden: otherwise a class of the
# same name in a program would replace that of the library.
# Usage: host_symbols_test.sh NM LIBRARY LIST
set -euo pipefail

nm=$1
library=$2
list=$3

# Without return types, parameters and template arguments, which differ between processors. Whether names that headers
# define (V, W) and type information are exported depends on the compiler, but they must belong to the platform.
exported=$("$nm" -D --defined-only "$library" | sed 's/^[0-9a-f]* //' | c++filt)
varying='^[VvWw] |^. (typeinfo|vtable|VTT)'
names=$(grep -vE "$varying" <<<"$exported" | sed 's/^. //' | sed -E 's/\[abi:[^]]*\]//; s/(\(|<).*//' | LC_ALL=C sort -u)
names+=$(grep -E "$varying" <<<"$exported" | grep -v OHOS:: | sed 's/^/\n/' || true)
if diff -U0 <(grep -v '^#' "$list") - <<<"$names"; then
    echo "$(wc -l <<<"$names") names are exported, as listed"
    exit 0
fi
echo "the exported names differ from $list (- missing, + unexpected)"
exit 1
