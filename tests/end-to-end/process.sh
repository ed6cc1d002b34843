#!/usr/bin/env bash
# The program as a process: interfaces that it makes, links that it follows, signals that end it.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host one 1 10.0.0.1/24
on one ip address add 10.0.1.1/24 dev eth0
cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_port_add 0 10 1 0
sai_vlan_port_add 0 10 2 0
sai_port_untagged_vlan_set 0 1 10
sai_port_untagged_vlan_set 0 2 10
SAI
start_switch "$work/switch.sai" --port 2=tap:t2 --cpu control
ip link show control | grep -q 02:00:00:00:00:01 || fail "the CPU's interface: $(ip link)"
! ip link show ethv0 >/dev/null 2>&1 || fail "--cpu renames the interface"

ip address add 10.0.1.2/24 dev t2
expect_reached one 10.0.1.2
ip link set t2 down
is_down() { tell_switch "send 2 ffffffffffff02000000000288b5" | grep -q "not passed on: port down"; }
wait_for 3 is_down || fail "the link of port 2 does not go down with its interface"
ip link set t2 up
expect_reached one 10.0.1.2

# The host by itself: a tag on the CPU's interface is the VLAN.
ip link add link control name control.10 up type vlan id 10
ip address add 10.0.0.100/24 dev control.10
ip link set t2 down
expect_reached one 10.0.0.100

for signal in TERM INT; do
  kill -"$signal" %1
  code=0
  wait %1 || code=$?
  [ "$code" -eq 0 ] || fail "SIG$signal: exit code $code"
  ! ip link show t2 >/dev/null 2>&1 || fail "SIG$signal left t2 behind"
  ! ip link show control >/dev/null 2>&1 || fail "SIG$signal left the CPU's interface behind"
  echo "SIG$signal ends it, and what it made is gone"
  rm "$work/commands"
  [ "$signal" = INT ] || start_switch "$work/switch.sai" --port 2=tap:t2 --cpu control
done
