#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compares the output of a program with the comment "Prints: ..." in its source, and removes the stream dump that it
# writes. Usage: example_output_test.sh SOURCE COMMAND ...
set -euo pipefail

dump=$(sed -n 's/.*DumpStreamData("\([^"]*\)".*/\1/p' "$1")
[ -z "$dump" ] || trap 'rm -f "/data/local/tmp/$dump"' EXIT
expected=$(sed -n 's/^ *\/\/ Prints: //p' "$1")
printed=$("${@:2}")
[ "$printed" = "${expected:?}" ] || { echo "FAILED: ${1##*/} printed \"$printed\" instead of \"$expected\""; exit 1; }
