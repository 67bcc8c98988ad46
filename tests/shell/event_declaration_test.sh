#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that hisysevent.yaml declares exactly the keys, with their types, of the events in the golden file of
# OstraRadar, with descriptions of 3 to 128 characters.
# Usage: event_declaration_test.sh DECLARATION GOLDEN_FILE
set -euo pipefail

declared=$(sed -En 's/^  ([A-Z]\w*): \{type: (\w+), desc: .{3,128}\}$/\1 \2/p' "$1" | sort)
written=$(grep -oE '"[A-Z_]+":("|-?[0-9])' "$2" | sed -E 's/"(\w+)":"/\1 STRING/; s/"(\w+)":.*/\1 INT32/' | sort -u)
diff <(echo "$declared") <(echo "$written") || { echo "lines with < are only declared, lines with > only written"; exit 1; }
headings=('domain: OSTRAADAPTER' 'OSTRA_ADAPTER_BEHAVIOR:' '  __BASE: {type: BEHAVIOR, level: MINOR, desc: [^}]*}')
for line in "${headings[@]}"; do
    grep -qx "$line" "$1" || { echo "missing: $line"; exit 1; }
done
[ "$(grep -c '^[^#]' "$1")" = $((${#headings[@]} + $(wc -l <<<"$declared"))) ] ||
    { echo "unexpected lines in $1"; exit 1; }
echo "declared and written: $declared"
