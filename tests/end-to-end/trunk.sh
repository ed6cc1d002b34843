#!/usr/bin/env bash
# A trunk of two ports: each destination has one of them, and what a member carried goes through the other when its
# link goes down.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host sender 1 10.0.0.1/24
host one 3
host two 4
cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_port_add 0 10 1 0
sai_vlan_port_add 0 10 3 1
sai_vlan_port_add 0 10 4 1
sai_port_untagged_vlan_set 0 1 10
sai_trunk_init 0
sai_trunk_create 0 0 0
# By destination MAC; bit 0 is port 1.
sai_trunk_set 0 0 10 0xC 2
SAI
start_switch "$work/switch.sai"
watch one.log icmp on one tcpdump -i eth0
watch two.log icmp on two tcpdump -i eth0

# Sends one packet to each of eight stations behind the trunk.
stations="11 12 13 14 15 16 17 18"
for station in $stations; do
  on sender ip neighbour add "10.0.0.$station" lladdr "02:00:00:00:02:$station" dev eth0
done
send_to_all() {
  for station in $stations; do on sender ping -n -q -c 1 -W 0.01 -s "$1" "10.0.0.$station" >/dev/null 2>&1 || true; done
}
# arrived LOG LENGTH: how many of them came there.
arrived() { grep -c "length $(($2 + 8))\$" "$work/$1" || true; }
all_arrived() { [ $(($(arrived one.log "$1") + $(arrived two.log "$1"))) -eq 8 ]; }

send_to_all 100
wait_for 3 all_arrived 100 || fail "of 8, $(arrived one.log 100) and $(arrived two.log 100) came"
[ "$(arrived one.log 100)" -gt 0 ] || fail "port 4 has it all"
[ "$(arrived two.log 100)" -gt 0 ] || fail "port 3 has it all"
echo "both up: $(arrived one.log 100) and $(arrived two.log 100)"

on one ip link set eth0 down
is_down() { grep -q "not passed on: port down" <<<"$(tell_switch "send 3 ffffffffffff02000000000388b5")"; }
wait_for 3 is_down || fail "the link of port 3 does not go down with its interface"
send_to_all 200
wait_for 3 all_arrived 200 || fail "of 8, $(arrived one.log 200) and $(arrived two.log 200) came"
[ "$(arrived two.log 200)" -eq 8 ] || fail "frames went to a port without link"
echo "one down: 0 and 8"
