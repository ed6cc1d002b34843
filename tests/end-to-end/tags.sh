#!/usr/bin/env bash
# Tags of a trunk: to another switch, which has the hosts behind it, and from scapy.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
"$python" -c 'import scapy' 2>/dev/null || skip "python3-scapy is not installed"

host access 1 10.0.10.1/24
host other 2 10.0.20.2/24
host trunk 3
cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_create 0 20
sai_vlan_port_add 0 10 1 0
sai_vlan_port_add 0 20 2 0
sai_vlan_port_add 0 10 3 1
sai_vlan_port_add 0 20 3 1
sai_port_untagged_vlan_set 0 1 10
sai_port_untagged_vlan_set 0 2 20
SAI
start_switch "$work/switch.sai"

cat >"$work/second.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_create 0 20
sai_vlan_port_add 0 10 1 1
sai_vlan_port_add 0 20 1 1
sai_vlan_port_add 0 10 2 0
sai_vlan_port_add 0 20 3 0
sai_port_untagged_vlan_set 0 2 10
sai_port_untagged_vlan_set 0 3 20
SAI
on trunk "$switch" "$work/second.sai" --port 1=eth0 --port 2=tap:t10 --port 3=tap:t20 </dev/null >"$work/second.log" 2>&1 &
wait_for 10 grep -qsx "The switch is up." "$work/second.log" || fail "the second switch: $(cat "$work/second.log")"
on trunk ip address add 10.0.10.3/24 dev t10
on trunk ip address add 10.0.20.3/24 dev t20

expect_reached access 10.0.10.3
expect_reached other 10.0.20.3
expect_unreached access 10.0.20.3

# Hosts with tags of their own below the trunk's: the outer one is the switch's, the inner one is none of its business.
watch access.log "udp or vlan" on access tcpdump -i eth0
watch other.log "udp or vlan" on other tcpdump -i eth0
watch trunk.log "udp or vlan" on trunk tcpdump -Q in -i eth0
cat >"$work/send.py" <<'PY'
import sys
from scapy.all import Dot1Q, Ether, IP, UDP, sendp
both = Ether(src="02:00:00:00:01:03", dst="ff:ff:ff:ff:ff:ff")
frames = {
    "trunk": [both / Dot1Q(vlan=10) / Dot1Q(vlan=77, prio=5) / IP(dst="10.0.10.255") / UDP(dport=1001),
              both / Dot1Q(vlan=20, prio=3) / IP(dst="10.0.20.255") / UDP(dport=1002),
              both / Dot1Q(vlan=30) / IP(dst="10.0.30.255") / UDP(dport=1003),
              both / Dot1Q(vlan=10) / IP(dst="10.0.10.255") / UDP(dport=1004)],
    "access": [Ether(src="02:00:00:00:01:01", dst="ff:ff:ff:ff:ff:ff") / IP(dst="10.0.10.255") / UDP(dport=1005)],
}
sendp(frames[sys.argv[1]], iface="eth0", verbose=False)
PY
on trunk "$python" "$work/send.py" trunk
on access "$python" "$work/send.py" access

expect_seen trunk.log 'vlan 10, .*\.1005:'
expect_seen access.log '\.1004:'
expect_seen access.log 'vlan 77, p 5, .*\.1001:'
expect_seen other.log '\.1002:'
expect_unseen access.log 'vlan 10'
expect_unseen access.log '\.(1002|1003):'
expect_unseen other.log 'vlan|\.(1001|1003|1004|1005):'
