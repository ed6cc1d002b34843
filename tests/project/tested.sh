#!/usr/bin/env bash
# usage: tested.sh LIBRARY TESTS_DIR
# Every name that the library exports is used by a test of its family.
set -euo pipefail
library=$1 tests=$2

names=$("${NM:-nm}" --dynamic --defined-only "$library" | awk '{print $3}' | sed 's/@.*//')
[ "$(wc -w <<<"$names")" -ge 200 ] || { echo "$library: too few names found; is it still read rightly?"; exit 1; }
missing=$(for name in $names; do
  grep --recursive --quiet --word-regexp --include='*.cpp' -e "$name" \
    "$tests"/{core,field,l2,l3,port,vlan,vport} || echo "$name"
done)
[ -z "$missing" ] && exit 0
echo "no test uses: $missing"
exit 1
