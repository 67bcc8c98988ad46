#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tests the environment variables for events, parameters and the log. Opening a FIFO must never block.
# Usage: host_environment_test.sh COMMAND..., where COMMAND runs the program of tests/host/environment.cpp
. "$(dirname "$0")/lib.sh"

umask 022
export OSTRA_HOST_PARAMETERS='test.both=from list; test.list=a=b;nothing;;test.empty='

# expect WHAT PATTERN: the output of the last run must match the extended regular expression; dots match newlines.
expect() {
    [[ $(cat "$work/output") =~ $2 ]] || {
        cat "$work/output"
        fail "$1: no match of $2"
    }
}

# run VARIABLE VALUE
run() {
    env "$1=$2" timeout 20 "${command[@]}" >"$work/output" 2>&1 ||
        { cat "$work/output"; fail "$1=$2"; }
}

command=("$@")
mkfifo "$work/fifo"
printf '# a=1\n\n  test.file=from file \r\ntest.both=from file\nB-D=1\ntest.semicolon=a;b\n' >"$work/parameters"

TZ=XST-5:30 run OSTRA_HOST_EVENT_OUTPUT stderr
expect 'time zone' '"tz_":"\+0530"'
ids=$(sed -nE 's/^ids (.*) (.*)/"pid_":\1,"tid_":\2,/p' "$work/output")
expect 'process and thread' "${ids:?}"
expect stderr '\{"domain_".*,"T":"a"\}'$'\n''.*,"T":"b"\}'$'\n''.*results received 0 received 0'
run OSTRA_HOST_EVENT_OUTPUT ''
expect 'no output' $'\nresults received 0 received 0'
run OSTRA_HOST_EVENT_OUTPUT "$work/events"
run OSTRA_HOST_EVENT_OUTPUT "$work/events"
[ "$(sed 's/^{"domain_":.*"T":"\([ab]\)"}$/\1/' "$work/events" | tr '\n' .)" = a.b.a.b. ] || fail "not 4 complete lines"
[ "$(stat -c %a "$work/events")" = 644 ] || fail "mode of the event file"
run OSTRA_HOST_EVENT_OUTPUT /dev/full
expect 'a full disk' 'results -5 -5'
for rejected in "$work" "$work/fifo"; do
    run OSTRA_HOST_EVENT_OUTPUT "$rejected"
    expect "$rejected" "OSTRA_HOST_EVENT_OUTPUT=$rejected cannot be opened: .*results -5 -5"
    run OSTRA_HOST_PARAMETER_FILE "$rejected"
    expect "$rejected" "OSTRA_HOST_PARAMETER_FILE=$rejected cannot be opened: .*test.file is unset.*list is a=b"
done
exec 3<>"$work/fifo" # has a reader now
run OSTRA_HOST_EVENT_OUTPUT "$work/fifo"
expect 'a FIFO with a reader' $'Is a FIFO\n.*results -5 -5'
run OSTRA_HOST_PARAMETER_FILE "$work/none"
expect 'a missing file' 'cannot be opened: .*test.file is unset'
run OSTRA_HOST_PARAMETER_FILE /proc/self/mem
expect 'a read error' '/proc/self/mem cannot be read: Input/output error'
run OSTRA_HOST_PARAMETER_FILE "$work/parameters"
expect 'skipped entries' 'PARAMETER_FILE: skipping malformed entry "B-D=1".*PARAMETERS: skipping malformed entry "nothing"'
expect parameters $'file is from file\ntest.both is from list\ntest.semicolon is a;b\ntest.list is a=b\ntest.empty is $'
run OSTRA_HOST_PARAMETER_FILE "$work/parameters" <&- # the file gets descriptor 0
expect 'parameters without standard input' 'file is from file'
! grep -E '# a=1|cannot be read' "$work/output" || fail 'a comment or the end of the file is reported'

# level VALUE DELIVERED LINE...: checks the level and message of each log line.
level() {
    local value=$1 delivered=$2 today ids
    shift 2
    today=$(date +%m-%d)
    run OSTRA_HOST_LOG_LEVEL "$value"
    today+="|$(date +%m-%d)"
    ids=$(sed -n 's/^ids \(.*\) /\1 +/p' "$work/output") # of process and thread
    sed -nE "s#^($today) [0-9:]{8}\.[0-9]{3} +$ids (.) C04160/TAG: #\2#p" "$work/output" \
        >"$work/lines"
    [ "$(tr '\n' ' ' <"$work/lines")" = "${*:+$* }" ] || { cat "$work/output"; fail "log level $value"; }
    expect "log level $value" $'\n'"delivered $delivered"$'\n'
    [ "$value" = none ] || ! grep ignored "$work/output" || fail "log level $value is ignored"
}

level debug 34567 D3 I4 W5 E6 F7
level info 4567 I4 W5 E6 F7
level warn 4567 W5 E6 F7
level error 4567 E6 F7
level fatal 4567 F7
level off 4567
level none 4567 I4 W5 E6 F7
expect 'an unknown level' 'OSTRA_HOST_LOG_LEVEL=none is ignored: expected debug, info, warn, error, fatal or off'
