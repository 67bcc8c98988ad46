#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compares the declaration of the event with the events in a golden file: the same keys and types, and descriptions of 3
# to 128 characters.
# Usage: event_declaration_test.sh DECLARATION GOLDEN_FILE
set -euo pipefail

declared=$(sed -En 's/^  ([A-Z]\w*): \{type: (\w+), desc: .{3,128}\}$/\1 \2/p' "$1" | sort)
written=$(grep -oE '"[A-Z_]+":("|-?[0-9])' "$2" | sed -E 's/"(\w+)":"/\1 STRING/; s/"(\w+)":.*/\1 INT32/' | sort -u)
diff <(echo "$declared") <(echo "$written") || { echo "only declared: <, only written: >"; exit 1; }
heads=('domain: OSTRAADAPTER' 'OSTRA_ADAPTER_BEHAVIOR:' '  __BASE: {type: BEHAVIOR, level: MINOR, desc: [^}]*}')
for line in "${heads[@]}"; do
    grep -qx "$line" "$1" || { echo "not declared: $line"; exit 1; }
done
[ "$(grep -c '^[^#]' "$1")" = $((${#heads[@]} + $(wc -l <<<"$declared"))) ] ||
    { echo "$1 has an unexpected line"; exit 1; }
echo "the declaration matches the events: $declared"
