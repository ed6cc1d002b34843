#!/usr/bin/env bash
# A mirror port sees what comes in at another, and nothing once the mirror ends.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host one 1 10.0.0.1/24
host two 2 10.0.0.2/24
host analyzer 3
cat >"$work/switch.sai" <<SAI
source $lan
sai_mirror_init 0
SAI
start_switch "$work/switch.sai"
watch analyzer.log icmp on analyzer tcpdump -Q in -i eth0

expect_reached one 10.0.0.2
expect_unseen analyzer.log ICMP
tell_switch "sai_mirror_dest_port_set 0 1 3" "sai_mirror_source_port_set 0 1 1 1"
expect_reached one 10.0.0.2
expect_seen analyzer.log '10.0.0.1 > 10.0.0.2: ICMP echo request'
expect_unseen analyzer.log 'echo reply'
tell_switch "sai_mirror_source_port_unset 0 1 1 1" "sai_mirror_dest_port_unset 0 1 3"
: >"$work/analyzer.log"
expect_reached one 10.0.0.2
expect_unseen analyzer.log ICMP
