# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
#
# Sourced by tests first: enables strict mode and creates the directory $work, which is removed when the test ends.
set -euo pipefail
unset CDPATH # with which cd prints directories

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# fail MESSAGE: ends the test
fail() {
    echo "FAILED: $*"
    exit 1
}
