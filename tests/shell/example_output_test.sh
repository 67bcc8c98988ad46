#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Holds what a program prints against the comment "Prints: ..." in its source, and removes the stream dump that it
# makes. Usage: example_output_test.sh SOURCE COMMAND ...
set -euo pipefail

dump=$(sed -n 's/.*DumpStreamData("\([^"]*\)".*/\1/p' "$1")
[ -z "$dump" ] || trap 'rm -f "/data/local/tmp/$dump"' EXIT
promised=$(sed -n 's/^ *\/\/ Prints: //p' "$1")
printed=$("${@:2}")
[ "$printed" = "${promised:?}" ] || { echo "${1##*/} promises $promised, not $printed"; exit 1; }
