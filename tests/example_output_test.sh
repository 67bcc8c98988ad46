#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Holds what a program prints against the comment "Prints: ..." in its source.
# Usage: example_output_test.sh SOURCE COMMAND ...
set -euo pipefail

promised=$(sed -n 's/^ *\/\/ Prints: //p' "$1")
printed=$("${@:2}")
[ "$printed" = "${promised:?}" ] || { echo "${1##*/} promises $promised, not $printed"; exit 1; }
