#!/usr/bin/env bash
#
# Check.sh: compares what ./check prints with what ctest prints, for one test of each kind.

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."
. Scripts/common.sh

failed=0

# Expect WHAT EXPECTED ACTUAL
Expect()
{
  [ "$2" != "$3" ] || return 0
  printf '%s: expected\n%s\nbut got\n%s\n' "$1" "$2" "$3" >&2
  failed=1
}

long=SuiteTest.Cases/EveryWay.$(printf 'A%.0s' {1..80})
dots=$(printf '.%.0s' {1..60})

passed=$(ShortenTestLines <<<"1177/1270 Test #1179: $long/Sudo  # GetParam() = Sudo $dots   Passed    0.09 sec")
Expect "the length of the line of a test that passed is at most 100" yes "$([ ${#passed} -le 100 ] && echo yes)"
Expect "the number and the end of the name remain" yes \
  "$([[ $passed == '1177/1270 Test #1179: ..'*'AAA/Sudo Passed    0.09 sec' ]] && echo yes)"
Expect "the start of a test has no line" "" "$(ShortenTestLines <<<"        Start   12: $long")"
Expect "a dot at the end of a name remains" "1/2 Test #2: a/..$(printf ' %.0s' {1..50}) Passed    0.09 sec" \
  "$(ShortenTestLines <<<"1/2 Test #2: a/.. $dots   Passed    0.09 sec")"
Expect "the name of a test that failed is printed in full" "1/2 Test #2: $long ...***Failed    0.41 sec" \
  "$(ShortenTestLines <<<"1/2 Test #2: $long $dots***Failed    0.41 sec")"
for line in "100% tests passed, 0 tests failed out of 1270" "  Which is: 12 ... Passed" ""; do
  Expect "other lines remain" "$line" "$(ShortenTestLines <<<"$line")"
done

log=$(mktemp)
trap 'rm -f "$log"' EXIT
cat >"$log" <<'END'
1/3 Testing: Suite.Case/Sudo  # GetParam() = Sudo
Command: "sh" "-c" "echo script: skipped, of no interest"
[ RUN      ] Suite.Case/Sudo
/tree/Tests/Suite.cpp:12: Skipped
There are no transcripts in /shared

[  SKIPPED ] Suite.Case/Sudo (0 ms)
2/3 Testing: script
script: skipped, npm is not installed
3/3 Testing: Suite.Other
[       OK ] Suite.Other (0 ms)
END
Expect "skipped tests are listed with their reasons" "
Skipped tests and their reasons:
    Suite.Case/Sudo: There are no transcripts in /shared
    script: npm is not installed" "$(PrintSkippedTests "$log")"
Expect "without skipped tests there is no list" "" "$(PrintSkippedTests /dev/null)"

exit "$failed"
