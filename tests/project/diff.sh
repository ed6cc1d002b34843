#!/usr/bin/env bash
# usage: diff.sh SAISH EXAMPLES_DIR
# What a script would leave in a fresh chip against what the chip holds.
set -euo pipefail
saish=$1 examples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "$1" >&2
  exit 1
}

# check CODE ERRORS COMMAND...: COMMAND exits with CODE and writes to standard error what the pattern matches.
check() {
  local code=$1 errors=$2 got=0
  shift 2
  "$@" >out 2>err </dev/null || got=$?
  [ "$got" -eq "$code" ] || fail "$*: exit code $got, not $code; it said: $(cat err)"
  [[ "$(cat err)" =~ ^$errors$ ]] || fail "$*: said '$(cat err)', which is not: $errors"
}

printf 'sai_vlan_create 0 10\nsai_vlan_port_add 0 10 3 0\nsai_vlan_create 0 20\n' >intended.sai
printf 'sai_vlan_create 0 10\nsai_vlan_port_add 0 10 4 0\nsai_vlan_create 0 20\nsai_vlan_create 0 30\n' >actual.sai

for example in "$examples"/*.sai; do
  check 0 "" "$saish" "$example" --diff "$example"
done
check 0 "" "$saish" intended.sai --diff intended.sai

check 1 '11 lines differ from what "intended\.sai" would leave' "$saish" actual.sai --diff intended.sai
cat >expected <<'TABLES'
vlan
    VLAN  tagged  untagged  flags
  - 10    {0}     {3}       -
  + 10    {0}     {4}       -
  + 30    {0}     {}        -
TABLES
sed -n '/^vlan$/,$p' out | diff expected - || fail "the differences are: $(cat out)"
# What became of one entry stands together.
cat >expected <<'TABLES'
port
    port  kind     state  speed  duplex  tagged in   untagged in
  - 0     cpu      -      -      -       1,10,20     -
  + 0     cpu      -      -      -       1,10,20,30  -
  - 3     gigabit  down   1000   full    -           1,10
  + 3     gigabit  down   1000   full    -           1
  - 4     gigabit  down   1000   full    -           1
  + 4     gigabit  down   1000   full    -           1,10
TABLES
sed -n '/^port$/,/^stp$/p' out | sed '$d' | diff expected - || fail "the differences are: $(cat out)"

# The same in a session, which goes on.
printf 'sai_vlan_create 0 10\ndiff intended.sai\nsai_unit_get\n' >session.sai
check 1 'session\.sai:2: diff intended\.sai: [0-9]+ lines differ from what "intended\.sai" would leave' "$saish" session.sai
check 0 "" "$saish" -c "diff /dev/null"
[ "$(cat out)" = "  no difference" ] || fail "diff printed: $(cat out)"

# A chip that nobody touched has everything missing; a recording in the environment stays this process's own.
SWSDK_RECORD=own.rec check 1 '[0-9]+ lines differ .*' "$saish" --diff intended.sai
! grep -q bcm_vlan_create own.rec || fail "the script's calls are in the recording"

printf 'nothing\n' >bad.sai
check 2 'bad\.sai:1: nothing: no such command .*'$'\n''the script "bad\.sai" fails on a fresh chip' "$saish" --diff bad.sai
check 2 'cannot read the script "missing\.sai": No such file or directory'$'\n''the script "missing\.sai" fails on a fresh chip' "$saish" --diff missing.sai
check 2 'the chip is off; there is nothing to compare' "$saish" --cold --diff intended.sai
check 2 '[^'$'\n'']+' "$saish" --diff intended.sai --replay a.rec

check 0 "" "$saish" --tables intended.sai
grep -q '^10  *{0}  *{3}' out || fail "the tables are: $(cat out)"
! grep -q sai_vlan_create out || fail "the script's lines are among the tables: $(cat out)"
