#!/usr/bin/env bash
# A policer of a customer's VLAN at a port, in real time: what iperf3 measures behind it.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host sender 1 10.0.0.1/24
host receiver 2 10.0.0.2/24
start_switch "$lan"
expect_reached sender 10.0.0.2

rate=$(iperf_rate sender receiver 10.0.0.2)
about 6500 "$rate" || fail "without a policer $rate kbit/s came of 6000 and their headers"
tell_switch "sai_fp_vport_group_create 0" "sai_fp_vport_qualify_set 0 2 1 10" \
  "sai_vport_fp_policer_set 0 1 1000 2000 3000 6000" "sai_fp_vport_qualify_action 0 1 1"
rate=$(iperf_rate sender receiver 10.0.0.2)
about 2000 "$rate" || fail "a policer with a peak of 2000 kbit/s let $rate through"
echo "iperf3 behind a policer of 1000 kbit/s and a peak of 2000: $rate kbit/s with headers"
