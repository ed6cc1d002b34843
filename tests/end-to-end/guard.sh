#!/usr/bin/env bash
# IP source guard: at a guarded port a host is heard under the address that it was given, and under no other.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host guarded 1 10.0.0.1/24
host neighbour 2 10.0.0.2/24
on guarded ip address add 10.0.0.66/24 dev eth0
start_switch "$lan"
watch sent.log icmp on guarded tcpdump -Q out -i eth0
watch neighbour.log icmp on neighbour tcpdump -Q in -i eth0
as_itself() { on guarded ping -n -q -c 1 -W 1 -I 10.0.0.1 10.0.0.2 >/dev/null || true; }
spoofed() { on guarded ping -n -q -c 1 -W 1 -I 10.0.0.66 10.0.0.2 >/dev/null || true; }

expect_seen neighbour.log '10.0.0.66 > 10.0.0.2: ICMP echo request' spoofed
tell_switch "sai_ipsg_init 0" "sai_ipsg_verify_config 1 10 0 1 0" \
  "sai_ipsg_parameter_config 1 10.0.0.1 255.255.255.255 10 0 1 0"
expect_seen sent.log '10.0.0.1 > ' as_itself # behind the last one of before
expect_seen neighbour.log '10.0.0.1 > ' as_itself
: >"$work/sent.log"
: >"$work/neighbour.log"
expect_seen sent.log '10.0.0.66 > 10.0.0.2: ICMP echo request' spoofed
expect_seen neighbour.log '10.0.0.1 > 10.0.0.2: ICMP echo request' as_itself
expect_unseen neighbour.log 10.0.0.66

# Who has the address by right now, after the binding, is heard.
tell_switch "sai_ipsg_parameter_config 1 10.0.0.66 255.255.255.255 10 0 1 0"
expect_seen neighbour.log '10.0.0.66 > 10.0.0.2: ICMP echo request' spoofed
