#!/usr/bin/env bash
# A real lldpd on a host: the CPU's interface gets its frames after sai_lldp_set, and not before.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
command -v lldpd >/dev/null || skip "lldpd is not installed"

host talker 1 10.0.10.1/24
host neighbour 2 10.0.10.2/24
cat >"$work/switch.sai" <<SAI
source $lan
# Outside the VLAN, the CPU gets no copies of what is flooded.
sai_vlan_port_remove 0 10 0
SAI
start_switch "$work/switch.sai"
watch cpu.log "ether[0:4] = 0x0180c200" tcpdump -i ethv0
watch neighbour.log "ether proto 0x88cc or ether proto 0x88b5" on neighbour tcpdump -Q in -i eth0

mkdir -p /run/lldpd
on talker lldpd -d -I eth0 -u "$work/lldpd" >"$work/lldpd.log" 2>&1 &
wait_for 5 test -S "$work/lldpd" || skip "lldpd does not start here: $(tail -n 1 "$work/lldpd.log")"
say_hello() {
  on talker lldpcli -u "$work/lldpd" update >/dev/null
  sleep 0.2
}

expect_seen neighbour.log '02:00:00:00:01:01 > 01:80:c2:00:00:0e, .*LLDP' say_hello
expect_unseen cpu.log LLDP
tell_switch "sai_lldp_set 0" "send 1 ffffffffffff02000000000188b5"
expect_seen neighbour.log 'ethertype .*0x88b5' # behind the last LLDP frame that went through
: >"$work/neighbour.log"
expect_seen cpu.log '02:00:00:00:01:01 > 01:80:c2:00:00:0e, .*vlan 10, .*LLDP' say_hello
expect_unseen neighbour.log LLDP
