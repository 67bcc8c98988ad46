#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tests that every script prints its usage for --help and -h and rejects unknown arguments with status 2, both before it
# does anything else, and that benchmarks are selected and rated correctly. Usage: scripts_test.sh SOURCE_DIRECTORY
. "$(dirname "$0")/lib.sh"

cd "$1"

for script in scripts/* .ci/run; do
    [[ $script != scripts/lib.sh && -f $script ]] || continue # lib.sh is sourced
    for option in --help -h; do
        help=$(timeout 10 "$script" $option </dev/null) && [ -n "$help" ] || fail "$script $option prints no help"
    done
    for argument in --no-such-option ''; do
        status=0
        message=$(timeout 10 "$script" "$argument" </dev/null 2>&1) || status=$?
        [ $status = 2 ] || fail "$script: status $status for the argument '$argument'"
    done
    [ "$script" != scripts/build ] || [[ $("$script" nosuch 2>&1) == *"presets: "*host*device-like* ]] ||
        fail "$script does not list the presets"
done
for script in scripts/{fuzz,soak,test}; do
    message=$("$script" --no-such-option 2>&1) || true
    [[ $message == *'unknown option --no-such-option'* ]] || fail "$script does not name an unknown option: $message"
done

message=$(scripts/test bench 2>&1) && fail "scripts/test accepts a preset without tests"
[[ ${message#*presets: } == *host* && ${message#*presets: } != *bench* ]] ||
    fail "scripts/test does not list the presets with tests: $message"

# A copy of scripts/bench with a program that lists two operations and fails to measure them.
mkdir -p "$work/copy/build/bench/bench"
cp -r scripts "$work/copy"
install /dev/null "$work/copy/scripts/build"
cat >"$work/copy/build/bench/bench/ostra_bench" <<'PROGRAM'
#!/usr/bin/env bash
case $* in
    *--benchmark_no_such*) echo "error: unrecognized" >&2 && exit 1 ;;
    *--benchmark_list_tests=true*) printf '%s\n' '`A` + B' '`A` + B (baseline)' {C,'C (baseline)'}/manual_time ;;
    *) echo "$*" >&2 && exit 1 ;;
esac
PROGRAM
chmod +x "$work/copy/build/bench/bench/ostra_bench"
while IFS=';' read -r options expected; do
    message=$("$work/copy/scripts/bench" $options 2>&1) || true
    [[ $message == *"$expected"* ]] || fail "scripts/bench $options: $message"
done <<'ROWS'
--benchmark_list_tests;`A` + B
--benchmark_filter=^A;--benchmark_filter=^(`A` \+ B)( .baseline.)?
--benchmark_filter=`A`;--benchmark_filter=^(`A` \+ B)( .baseline.)?
--benchmark_filter=C;--benchmark_filter=^(C)( .baseline.)?(/manual_time)?$
--benchmark_filter=D;bench: no operation matches D
--benchmark_no_such=1;error: unrecognized
ROWS

# Two rounds in which an operation takes TIME1 and TIME2 times as long as its baseline, with a limit of 1.6.
while read -r time1 time2 result status; do
    for i in 1 2; do
        time=time$i
        cat >"$work/round$i.json" <<JSON
{"benchmarks": [
  {"run_type": "iteration", "run_name": "name", "family_index": 0, "cpu_time": ${!time}, "time_unit": "ms",
   "max ratio": 1.6, "label": "hand-written loop"},
  {"run_type": "iteration", "run_name": "name (baseline)", "cpu_time": 1000, "time_unit": "us"}]}
JSON
    done
    actual=0
    table=$(bench/report.py table --strict "$work"/round*.json 2>/dev/null) || actual=$?
    [[ $table == *"| $result |" && $actual = "$status" ]] || fail "ratios $time1 and $time2: status $actual, $table"
done <<'ROWS'
1.0 1.1 met 0
1.2 1.5 unstable 0
1.6 1.7 missed 1
ROWS

echo "all scripts print help and reject unknown arguments"
