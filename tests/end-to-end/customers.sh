#!/usr/bin/env bash
# Virtual ports: customers of one port, told apart by their tags, have VLANs of the service provider behind it, and get
# the answers with the tags that they know.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
"$python" -c 'import scapy' 2>/dev/null || skip "python3-scapy is not installed"

host customers 1
host provider 2
cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_create 0 20
sai_vlan_create 0 30
sai_vlan_port_add 0 10 2 1
sai_vlan_port_add 0 20 2 1
sai_vlan_port_add 0 30 2 1
sai_vlan_vport_init 0
# From the second on, the log says of each port that it is in the flood groups.
log off
sai_vport_create 0 1 {match_vlan=100, vlan=10, priority=0}
sai_vport_create 0 1 {match_vlan=200, vlan=20, priority=0}
sai_vport_create 0 1 {match_vlan=300, match_inner_vlan=7, vlan=30, priority=0}
log errors
SAI
start_switch "$work/switch.sai"
watch provider.log "vlan" on provider tcpdump -Q in -i eth0
watch customers.log "vlan" on customers tcpdump -Q in -i eth0

# send HOST: a frame of each customer, numbered by its UDP port; the last one is nobody's customer.
cat >"$work/send.py" <<'PY'
import sys
from scapy.all import Dot1Q, Ether, IP, UDP, sendp
def frame(number, *tags):
    result = Ether(src="02:00:00:00:01:0" + sys.argv[2], dst="ff:ff:ff:ff:ff:ff")
    for tag in tags:
        result /= Dot1Q(vlan=tag)
    return result / IP(src="10.0.0.1", dst="10.0.0.255") / UDP(sport=5, dport=number)
frames = {
    "customers": [frame(1009, 400), frame(1001, 100), frame(1002, 200), frame(1003, 300, 7)],
    "provider": [frame(2009, 40), frame(2001, 10), frame(2002, 20), frame(2003, 30)],
}
sendp(frames[sys.argv[1]], iface="eth0", verbose=False)
PY
as_customers() { on customers "$python" "$work/send.py" customers 1; }
as_provider() { on provider "$python" "$work/send.py" provider 2; }

expect_seen provider.log '02:00:00:00:01:01 > .* vlan 30, p 0, ethertype IPv4.*\.1003:' as_customers
expect_seen provider.log 'vlan 10, p 0, ethertype IPv4.*\.1001:'
expect_seen provider.log 'vlan 20, p 0, ethertype IPv4.*\.1002:'
expect_unseen provider.log '\.1009:|vlan (100|200|300|7),'

expect_seen customers.log '02:00:00:00:01:02 > .* vlan 300, p 0, ethertype 802.1Q.* vlan 7, p 0, ethertype IPv4.*\.2003:' as_provider
expect_seen customers.log 'vlan 100, p 0, ethertype IPv4.*\.2001:'
expect_seen customers.log 'vlan 200, p 0, ethertype IPv4.*\.2002:'
expect_unseen customers.log '\.2009:|vlan (10|20|30),'
