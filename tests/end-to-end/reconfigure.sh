#!/usr/bin/env bash
# Random changes of the switch and of its interfaces under traffic: frames go on to pass, and neither memory nor
# descriptors grow. usage: reconfigure.sh [SECONDS [SEED]]
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

seconds=${1:-8}
RANDOM=${2:-1}
cat >"$work/switch.sai" <<SAI
source $lan
sai_vlan_port_add 0 10 3 0
sai_port_untagged_vlan_set 0 3 10
sai_vlan_port_add 0 10 4 0
sai_port_untagged_vlan_set 0 4 10
log off
SAI
for number in 1 2 3; do host "h$number" "$number" "10.0.0.$number/24"; done
start_switch "$work/switch.sai" --port 4=tap:t4
ip address add 10.0.0.4/24 dev t4
stream h2 read 10.0.0.2
stream h1 send 10.0.0.2
on h3 ping -q -i 0.01 10.0.0.2 >/dev/null 2>&1 &

below() { echo $((RANDOM % $1)); }
vlan() { echo $((100 + RANDOM % 50)); }
port() { echo $((1 + RANDOM % 12)); }
address() { echo "10.0.$((1 + RANDOM % 4)).$((1 + RANDOM % 200))"; }
mac() { printf '02:00:00:00:%02x:%02x' "$(below 256)" "$(below 256)"; }

# What is not possible just now is refused, which is as good.
change_chip() {
  case $(below 12) in
    0) echo "sai_vlan_create 0 $(vlan)" ;;
    1) echo "sai_vlan_destroy 0 $(vlan)" ;;
    2 | 3) echo "sai_vlan_port_add 0 $(vlan) $(port) $(below 2)" ;;
    4) echo "sai_vlan_port_remove 0 $(vlan) $(port)" ;;
    5) echo "learn $(mac) 10 3" ;;
    6) echo "age $(below 400)" ;;
    7) echo "sai_port_storm_ctrl_set 0 3 {rate=$((100 + RANDOM)), type=$((1 << RANDOM % 3))}" ;;
    8) echo "sai_l3_host_route_create 0 $(address) 02:00:00:00:00:01 $(mac) $(port) $(vlan) 0" ;;
    9) echo "sai_port_rate_ingress_set 0 3 $((10000 + RANDOM)) 1000" ;;
    10) echo "trace 3 $(mac) > ff:ff:ff:ff:ff:ff" ;;
    11) echo "show mac" ;;
  esac
}
change_interfaces() {
  case $(below 5) in
    0) ip link set "p$((1 + RANDOM % 3))" down ;;
    1) ip link set p1 up && ip link set p2 up && ip link set p3 up ;;
    2) ip link set p3 mtu $((600 + RANDOM % 900)) ;;
    3) ip link del t4 2>/dev/null || ip tuntap add dev t4 mode tap && ip link set t4 up ;;
    4) ip link del p3 2>/dev/null || { ip netns del h3; host h3 3 10.0.0.3/24; } ;;
  esac 2>/dev/null || true
}
# The switch takes a moment to open an interface that came back.
is_plugged() { [ "$(tell_switch "show plug" | grep -c " up ")" -eq 4 ]; }
changes=0
change_until() {
  while [ "$SECONDS" -lt "$1" ]; do
    for _ in {1..20}; do change_chip; done >"$work/commands"
    change_interfaces
    changes=$((changes + 21))
    sleep 0.05
  done
  ip link set p1 up
  ip link set p2 up
  ip link show p3 >/dev/null 2>&1 || { ip netns del h3 2>/dev/null || true; host h3 3 10.0.0.3/24; }
  ip link show t4 >/dev/null 2>&1 || ip tuntap add dev t4 mode tap
  ip link set p3 up
  ip link set t4 up
  wait_for 5 is_plugged || fail "some port stays without its interface: $(tell_switch "show plug")"
  expect_flow "after $changes changes"
}
memory() { awk '/^VmRSS/ { print $2 }' "/proc/$switch_pid/status"; }
descriptors() { find "/proc/$switch_pid/fd" | wc -l; }

begin=$SECONDS
change_until $((begin + (seconds + 3) / 4))
memory_before=$(memory)
descriptors_before=$(descriptors)
change_until $((begin + seconds))
echo "$changes changes in $seconds s: memory from $memory_before to $(memory) KiB, $(descriptors) descriptors"
[ "$(descriptors)" -eq "$descriptors_before" ] || fail "it had $descriptors_before descriptors a while ago"
[ "$(memory)" -le $((memory_before * 5 / 4)) ] || fail "memory grows"
kill -TERM "$switch_pid"
code=0
wait "$switch_pid" || code=$?
[ "$code" -eq 0 ] || fail "exit code $code"
