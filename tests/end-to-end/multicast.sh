#!/usr/bin/env bash
# Streams of IPv4 and IPv6: routed to the viewers that are members of their groups, and to nobody else.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
"$python" -c 'import scapy' 2>/dev/null || skip "python3-scapy is not installed"

host station 1
host first 2
host second 3
router=02:00:00:00:00:01
cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 100
sai_vlan_port_add 0 100 1 0
sai_port_untagged_vlan_set 0 1 100
sai_vlan_create 0 10
sai_vlan_port_add 0 10 2 0
sai_vlan_port_add 0 10 3 0
sai_port_untagged_vlan_set 0 2 10
sai_port_untagged_vlan_set 0 3 10
# What nobody asked for goes nowhere.
sai_vlan_mcast_flood_set 0 3 100
sai_ipv6_vlan_mcast_flood_set 0 3 100
# One group for each viewer, and one for both.
sai_multicast_egress_add 0 100 239.1.1.1 $router 2 10
sai_ipv6_ipmc_add 0 100 10 3 ff3e::1 2001:db8::1 $router
sai_multicast_egress_add 0 100 239.1.1.3 $router 2 10
sai_multicast_egress_add 0 100 239.1.1.3 $router 3 10
SAI
start_switch "$work/switch.sai"
watch first.log udp on first tcpdump -v -Q in -i eth0
watch second.log udp on second tcpdump -v -Q in -i eth0

# send.py PORT: the UDP ports begin there.
cat >"$work/send.py" <<'PY'
import sys
from scapy.all import Ether, IP, IPv6, UDP, sendp
port = int(sys.argv[1])
station = "02:00:00:00:01:01"
def ip4(group):
    mac = "01:00:5e:01:01:%02x" % group
    ip = IP(src="10.1.0.1", dst="239.1.1.%d" % group, ttl=9)
    return Ether(src=station, dst=mac) / ip / UDP(sport=5, dport=port + group)
def ip6(number, source):
    ip = IPv6(src=source, dst="ff3e::1", hlim=9)
    return Ether(src=station, dst="33:33:00:00:00:01") / ip / UDP(sport=5, dport=port + number)
sendp([ip4(1), ip4(2), ip6(6, "2001:db8::1"), ip6(7, "2001:db8::2"), ip4(3)], iface="eth0", verbose=False)
PY
stream() { on station "$python" "$work/send.py" "$1"; }

# The last one of a stream is for both.
expect_seen first.log '10.1.0.1.5 > 239.1.1.3.1003' stream 1000
expect_seen second.log '10.1.0.1.5 > 239.1.1.3.1003'
expect_seen first.log '10.1.0.1.5 > 239.1.1.1.1001'
expect_seen first.log "$router > 01:00:5e:01:01:01, .*ttl 8,"
expect_seen second.log "$router > 33:33:00:00:00:01, .*hlim 8, .*2001:db8::1.5 > ff3e::1.1006"
expect_unseen first.log '\.(1002|1006|1007):'
expect_unseen second.log '\.(1001|1002|1007):'

# Who leaves sees no more of it.
tell_switch "sai_multicast_egress_del 0 100 239.1.1.1 $router 2 10" \
  "sai_ipv6_multicast_destroy 0 100 ff3e::1 2001:db8::1"
expect_seen first.log '239.1.1.3.2003' stream 2000
expect_seen second.log '239.1.1.3.2003'
expect_unseen first.log '\.(2001|2006):'
expect_unseen second.log '\.(2001|2006):'
