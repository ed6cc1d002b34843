#!/usr/bin/env bash
# usage: messages.sh SAI_MESSAGES SAISH
# sai-messages explains a line and a log, and knows which lines are harmless.
set -euo pipefail
messages=$1 saish=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "$1" >&2
  exit 1
}
# says STATUS PATTERN COMMAND...: the command ends so and prints a line like that.
says() {
  local status=0 wanted=$1 pattern=$2
  shift 2
  "$@" >"$work/out" 2>&1 || status=$?
  [ $status -eq "$wanted" ] || fail "$* ended with $status: $(cat "$work/out")"
  grep -Eq -- "$pattern" "$work/out" || fail "$* said: $(cat "$work/out")"
}

says 0 '^Failed to add port \[%d\] to vlan' "$messages" find \
  "2026/11/21 07:24:30 NONE: Failed to add port [4] to vlan [30]: Entry not found"
says 0 'the VLAN does not exist' "$messages" find Failed to add port '[4]' to vlan '[30]: Entry not found'
says 0 '^"Entry not found" \(SAI_E_NOT_FOUND' "$messages" find "Failed to add port [4] to vlan [30]: Entry not found"
says 0 '^Harmless: ' "$messages" find "switch cmd [ led 0 load /usr/sbin/bcm956275k.hex ] error"
says 1 'No message' "$messages" find "the cat sat on the mat"
says 2 'usage' "$messages" look

# All that start-up and a second virtual port log is harmless; a failure is not.
cat >"$work/script.sai" <<'end'
open_sai_log switchd 0 0 8
log errors
sai_switch_chip_init 02:00:00:00:00:01
sai_vlan_create 0 51
sai_vport_create 0 3 {priority=3,match_vlan=51,vlan=51}
sai_vport_create 0 3 {priority=3,match_vlan=52,vlan=51}
expect SAI_E_NOT_FOUND sai_l3_host_route_hit_get 10.0.0.1
end
"$saish" "$work/script.sai" >"$work/log"
grep -c ' NONE: ' "$work/log" >"$work/count"
[ "$(cat "$work/count")" -ge 10 ] || fail "too few lines are logged; is the log still read rightly?"
says 0 "^0 lines to look at, $(cat "$work/count") harmless" "$messages" find "$work/log"
"$messages" harmless >"$work/harmless"
grep ' NONE: ' "$work/log" | grep -vEf "$work/harmless" >"$work/left" && fail "not harmless: $(cat "$work/left")"
echo "expect SAI_E_NOT_FOUND sai_vlan_port_add 0 77 4 1" >>"$work/script.sai"
"$saish" "$work/script.sai" >"$work/log"
says 0 '^== 1 of: .*Failed to add port \[4\] to vlan \[77\]' "$messages" find "$work/log"
grep ' NONE: ' "$work/log" | grep -qvEf "$work/harmless" || fail "a failure is called harmless"

# Traces are counted, and a reader who has seen enough may go.
sed 's/^log errors$/log debugging/' "$work/script.sai" >"$work/traced.sai"
"$saish" "$work/traced.sai" >"$work/log"
says 0 '^1 lines to look at, [0-9]+ harmless, [1-9][0-9]* traces, ' "$messages" find "$work/log"
"$messages" find "$work/log" >"$work/explained"
grep -q '^Traces\.' "$work/explained" && fail "a trace is explained: $(cat "$work/explained")"
{ sleep 0.3 && "$messages" find "$work/log" 2>"$work/complaint"; } | true || true
[ ! -s "$work/complaint" ] || fail "it complains of a closed pipe: $(cat "$work/complaint")"
