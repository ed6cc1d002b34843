#!/usr/bin/env bash
# The request of a real DHCP client: neighbours see it, until sai_dhcp_packet_to_cpu keeps it for the CPU.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
command -v udhcpc >/dev/null || skip "udhcpc is not installed"

host client 1
host neighbour 2
start_switch "$lan"
watch cpu.log "vlan and udp port 67" tcpdump -i ethv0
watch neighbour.log "udp port 67" on neighbour tcpdump -Q in -i eth0
ask() { on client udhcpc -i eth0 -n -q -t 1 -T 1 -s /bin/true >/dev/null 2>&1 || true; }

expect_seen neighbour.log 'BOOTP/DHCP, Request from 02:00:00:00:01:01' ask
tell_switch "sai_dhcp_packet_to_cpu 0 1"
: >"$work/neighbour.log"
: >"$work/cpu.log"
expect_seen cpu.log 'vlan 10, .*BOOTP/DHCP, Request from 02:00:00:00:01:01' ask
expect_unseen neighbour.log DHCP
