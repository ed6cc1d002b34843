#!/usr/bin/env bash
# Limits in real time: an ARP storm, and what iperf3 measures behind a port's rate.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host sender 1 10.0.0.1/24
host receiver 2 10.0.0.2/24
start_switch "$lan"
expect_reached sender 10.0.0.2

cat >"$work/storm.py" <<'PY'
import socket, time
link = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
link.bind(("eth0", 0))
frame = bytes.fromhex("ffffffffffff 020000000101 0806 0001 0800 06 04 0001"
                      "020000000101 0a000001 000000000000 0a000063") + bytes(18)
begin = time.monotonic()
for tick in range(200):  # 2000 a second, for two seconds
    for _ in range(20):
        link.send(frame)
    time.sleep(max(0, begin + tick * 0.01 - time.monotonic()))
PY
received() { on receiver cat /sys/class/net/eth0/statistics/rx_packets; }
storm() {
  local before
  before=$(received)
  on sender "$python" "$work/storm.py"
  sleep 0.2
  echo $(($(received) - before))
}
count=$(storm)
about 4000 "$count" || fail "of a storm of 4000 frames $count came"
tell_switch "sai_rate_bcast_set 0 1 1 100"
count=$(storm)
about 200 "$((count - 100))" || fail "a storm at 100 frames a second let $count through in two seconds"
echo "an ARP storm of 4000 frames in two seconds, at 100 a second after a burst of 100: $count"
tell_switch "sai_rate_bcast_set 0 1 0 100"

tell_switch "sai_port_rate_ingress_set 0 1 2000 50"
rate=$(iperf_rate sender receiver 10.0.0.2)
about 2000 "$rate" || fail "a rate of 2000 kbit/s let $rate through"
echo "iperf3 behind a rate of 2000 kbit/s: $rate kbit/s with headers"
