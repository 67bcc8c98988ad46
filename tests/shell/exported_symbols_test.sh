#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that the library exports only names of its namespace and the listed C functions.
# Usage: exported_symbols_test.sh NM LIBRARY [C_FUNCTION ...]
set -euo pipefail

nm=$1
library=$2
shift 2
namespace='OHOS::DistributedHardware::OstraAdapter::'

exported=$("$nm" -D --defined-only "$library" | sed 's/^[0-9a-f]* //')
[ -n "$exported" ] || { echo "no exported symbols in $library"; exit 1; }

failed=0
while read -r type name; do
    readable=$(printf '%s' "$name" | c++filt)
    case " $* " in
        *" $name "*) continue ;;
    esac
    if [ "$type" = T ] && [[ $readable == "$namespace"* ]]; then
        continue
    fi
    echo "must not be exported: $type $readable"
    failed=1
done <<<"$exported"
for name in "$@"; do
    grep -qx "T $name" <<<"$exported" || { echo "not exported: $name"; failed=1; }
done
[ "$failed" = 0 ] && echo "$(wc -l <<<"$exported") symbols, all of them part of the public interface"
exit "$failed"
