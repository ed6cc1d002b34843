#!/usr/bin/env bash
# usage: forwarding.sh LIBRARY TESTS_DIR
# Every function that the library exports is called by a test with frames, or is listed among those that leave
# forwarding as it is.
set -euo pipefail
export LC_ALL=C  # comm wants what sort makes
library=$1 folder=$2/forwarding list=$2/forwarding/leave_forwarding.txt

names=$("${NM:-nm}" --dynamic --defined-only "$library" | awk '$2 == "T" {print $3}' | sed 's/@.*//' | sort)
[ "$(wc -w <<<"$names")" -ge 200 ] || { echo "$library: too few functions found; is it still read rightly?"; exit 1; }
listed=$(grep -v -e '^#' -e '^$' "$list" | sort)
code=0
complain() { # complain WHAT NAMES
  [ -z "$2" ] || { echo "$1: ${2//$'\n'/ }"; code=1; }
}

complain "listed twice" "$(uniq --repeated <<<"$listed")"
listed=$(uniq <<<"$listed")
complain "listed, but not exported" "$(comm -13 <(echo "$names") <(echo "$listed"))"
# What a fixture calls for all its tests is no test of it.
called=$(grep --recursive --no-filename --only-matching --word-regexp --include='*_test.cpp' -E '\w+' "$folder" | sort -u)
forwarding=$(comm -23 <(echo "$names") <(echo "$listed"))
complain "no test has frames before and after" "$(comm -23 <(echo "$forwarding") <(echo "$called"))"
echo "$(wc -l <<<"$forwarding") functions of $(wc -l <<<"$names") change what becomes of frames"
exit "$code"
