#!/usr/bin/env bash
# Hosts join groups of IPv4 and IPv6 by their kernels: the rules for IGMP and MLD keep their reports for the CPU.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host joiner 1 10.0.0.1/24
host neighbour 2 10.0.0.2/24
on joiner sh -c 'echo 0 >/proc/sys/net/ipv6/conf/eth0/disable_ipv6'
cat >"$work/switch.sai" <<SAI
source $lan
# Outside the VLAN, the CPU gets no copies of what is flooded.
sai_vlan_port_remove 0 10 0
SAI
start_switch "$work/switch.sai"
watch cpu.log "vlan and (igmp or icmp6 or ip6)" tcpdump -v -i ethv0
watch neighbour.log "igmp or ip6" on neighbour tcpdump -v -Q in -i eth0

# join NUMBER: groups 239.1.1.NUMBER and ff05::NUMBER, until the host ends.
join() {
  on joiner "$python" - "$1" <<'PY' &
import socket, struct, sys, time
index = socket.if_nametoindex("eth0")
ip4 = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
ip4.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
               socket.inet_aton("239.1.1." + sys.argv[1]) + struct.pack("@ii", 0, index))
ip6 = socket.socket(socket.AF_INET6, socket.SOCK_DGRAM)
ip6.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_JOIN_GROUP,
               socket.inet_pton(socket.AF_INET6, "ff05::" + sys.argv[1]) + struct.pack("@I", index))
time.sleep(60)
PY
}
has_address() { [ -n "$(on joiner ip -6 address show dev eth0 scope link -tentative)" ]; }
wait_for 5 has_address || fail "the host has no IPv6 address"

join 1
expect_seen neighbour.log 'gaddr 239.1.1.1 to_ex'
expect_seen neighbour.log 'gaddr ff05::1 to_ex'
expect_unseen cpu.log gaddr

group() { tell_switch "$1" | sed -n 's/^  group = //p'; }
ip4=$(group "sai_system_ipv4_fp_create 0")
ip6=$(group "sai_system_ipv6_fp_create 0")
tell_switch "sai_fp_igmp_packet_to_cpu 0 1 $ip4" "sai_fp_mld_packet_to_cpu 0 1 $ip6"
: >"$work/neighbour.log"
join 2
expect_seen cpu.log 'gaddr 239.1.1.2 to_ex'
expect_seen cpu.log 'gaddr ff05::2 to_ex'
expect_unseen neighbour.log 'gaddr (239.1.1.2|ff05::2) '
