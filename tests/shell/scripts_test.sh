#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Every script tells what it does when asked with --help or -h, and refuses a call that it does not understand with
# status 2, both before it does anything else. Usage: scripts_test.sh SOURCE_FOLDER
set -euo pipefail

cd "$1"
failed=0
for script in scripts/* .ci/run; do
    case $script in
        scripts/lib.sh | scripts/*.awk | scripts/gn_platform) continue ;; # not commands
    esac
    for question in --help -h; do
        help=$(timeout 10 "$script" $question </dev/null) && [ -n "$help" ] ||
            { echo "$script: no answer to $question"; failed=1; }
    done
    status=0
    timeout 10 "$script" --no-such-option </dev/null >/dev/null 2>&1 || status=$?
    [ $status = 2 ] || { echo "$script: status $status for an unknown option"; failed=1; }
done

reason=$(scripts/build nosuch 2>&1) && failed=1
[[ $reason == *" host "*device-like* ]] || { echo "scripts/build does not name the presets: $reason"; failed=1; }
reason=$(scripts/test bench 2>&1) && failed=1
[[ ${reason#*there are} == *" host "* && ${reason#*there are} != *" bench "* ]] ||
    { echo "scripts/test does not name the presets with tests: $reason"; failed=1; }

[ $failed = 1 ] || echo "every script tells and refuses"
exit $failed
