#!/usr/bin/env bash
# Routed packets as the receiver sees them: addresses of the router's, one hop less to live.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host left 1 10.0.10.1/24
host right 2 10.0.20.1/24
on left ip route add default via 10.0.10.254
on right ip route add default via 10.0.20.254
on right ip address add 10.0.30.1/24 dev lo
# The gateways are known: nobody but the chip has a part in this.
on left ip neighbour add 10.0.10.254 lladdr 02:00:00:00:00:01 dev eth0
on right ip neighbour add 10.0.20.254 lladdr 02:00:00:00:00:01 dev eth0
start_switch "$project/examples/router/switch.sai"
tell_switch "learn 02:00:00:00:01:01 10 1" "learn 02:00:00:00:01:02 20 2"
watch right.log icmp on right tcpdump -v -Q in -i eth0
watch left.log icmp on left tcpdump -v -Q in -i eth0

expect_unreached left 10.0.20.1
expect_unseen right.log 10.0.10.1
tell_switch "sai_l3_host_route_create 0 10.0.10.1 02:00:00:00:00:01 02:00:00:00:01:01 1 10 0" \
  "sai_l3_host_route_create 0 10.0.20.1 02:00:00:00:00:01 02:00:00:00:01:02 2 20 0"
expect_reached left 10.0.20.1
expect_seen right.log '02:00:00:00:00:01 > 02:00:00:00:01:02, .*ttl 63,'
expect_seen left.log '02:00:00:00:00:01 > 02:00:00:00:01:01, .*ttl 63,'

expect_unreached left 10.0.30.1
tell_switch "sai_l3_subnet_route_create 0 10.0.30.0 255.255.255.0 10.0.20.1 02:00:00:00:00:01 02:00:00:00:01:02 2 20 0"
expect_reached left 10.0.30.1
expect_seen right.log '10.0.10.1 > 10.0.30.1'
on left ping -n -q -c 1 -t 1 -W 0.2 10.0.30.1 >/dev/null && fail "a packet passed with no hop left"
tell_switch "sai_l3_subnet_route_delete 0 10.0.30.0 255.255.255.0 0"
expect_unreached left 10.0.30.1
expect_reached left 10.0.20.1
