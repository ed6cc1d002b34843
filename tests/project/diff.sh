#!/usr/bin/env bash
# usage: diff.sh SAISH EXAMPLES_DIR
# What a script would leave in a fresh chip, or a saved state, against what the chip holds.
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

# Cables and frames are no script's work: links are taken as they are, counters are left out.
printf 'link 3 up\nlink 4 up\nsend 3 ffffffffffff02000000000388b5\n' >cables.sai
check 1 '1 line differs from .*' "$saish" cables.sai --diff /dev/null
grep -q '^  + 1     02:00:00:00:00:03  port 3' out || fail "the learned address does not differ: $(cat out)"

# The fresh chip is on the same board.
check 0 "" "$saish" --board ports=20,units=2,chip_type=3 intended.sai --diff intended.sai
check 1 '[0-9]+ lines differ from .*' "$saish" --board ports=20 actual.sai --diff intended.sai
! grep -Eq '^  [-+] 20 ' out || fail "the ports of the boards differ: $(cat out)"

# A script that compares itself ends, with one more process.
printf 'sai_vlan_create 0 10\ndiff itself.sai\n' >itself.sai
check 1 "itself\.sai:2: diff itself\.sai: a script whose tables are compared or printed can have no diff; .*"$'\n'"\
itself\.sai:2: diff itself\.sai: the script \"itself\.sai\" fails on a fresh chip" timeout -s KILL 30 "$saish" itself.sai

# A chip that nobody touched has everything missing; a recording in the environment stays this process's own.
SWSDK_RECORD=own.rec check 1 '[0-9]+ lines differ .*' "$saish" --diff intended.sai
! grep -q bcm_vlan_create own.rec || fail "the script's calls are in the recording"

printf 'nothing\n' >bad.sai
check 2 'bad\.sai:1: nothing: no such command .*'$'\n''the script "bad\.sai" fails on a fresh chip' "$saish" --diff bad.sai
check 2 'cannot read the script "missing\.sai": No such file or directory'$'\n''the script "missing\.sai" fails on a fresh chip' "$saish" --diff missing.sai
check 2 'the chip is off; there is nothing to compare' "$saish" --cold --diff intended.sai
check 2 '[^'$'\n'']+' "$saish" --diff intended.sai --replay a.rec

check 2 'board: "ports=0" is none of ports=1 to 255, units=0 to 16, .*' "$saish" --board ports=0 intended.sai

check 0 "" "$saish" --tables intended.sai
grep -q '^10  *{0}  *{3}' out || fail "the tables are: $(cat out)"
! grep -q sai_vlan_create out || fail "the script's lines are among the tables: $(cat out)"

check 0 "" "$saish" --tables intended.sai --tables actual.sai
grep -q '^10  *{0}  *{3-4}' out || fail "the tables of two scripts are: $(cat out)"

# A saved state has everything, counters and the clock too.
cat >saved.sai <<'SAI'
source cables.sai
age 7
save chip.state
diff chip.state
SAI
check 0 "" "$saish" saved.sai
printf 'restore chip.state\ndiff chip.state\nshow clock\nshow mac\nage 1\ndiff chip.state\n' >restored.sai
check 1 'restored\.sai:6: diff chip\.state: 2 lines differ from the state "chip\.state"' "$saish" restored.sai
grep -q '^7000000000' out || fail "the clock is not restored: $(cat out)"
grep -q '02:00:00:00:00:03  port 3' out || fail "the MAC table is not restored: $(cat out)"
check 2 '"missing\.state" cannot be read' "$saish" -c "restore missing.state"
check 2 '"missing/chip\.state" cannot be written' "$saish" -c "save missing/chip.state"
check 2 '"bad\.sai" is no saved state, or a damaged one, or of another version' "$saish" -c "restore bad.sai"
head -c 1000 chip.state >cut.state
check 2 '-:1: restore .*cut\.state: ".*cut\.state" is no saved state, .*'$'\n''the state "cut\.state" cannot be put into a chip' "$saish" -c "diff cut.state"
