#!/usr/bin/env bash
# Frames that come while the program is busy wait for it. Those for which there is no room are counted.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host sender 1
start_switch "$lan" --port "2=pcap::$work/out.pcap"

# send COUNT TYPE: that many frames of an Ethernet type.
send() {
  on sender "$python" - "$@" <<'PY'
import socket, sys
link = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
link.bind(("eth0", 0))
frame = bytes.fromhex("020000000102020000000101" + sys.argv[2]) + bytes(46)
for _ in range(int(sys.argv[1])):
    link.send(frame)
PY
}

arrived() { tcpdump -n -e -r "$work/out.pcap" "ether proto 0x$1" 2>/dev/null | grep -c ethertype || true; }
more_arrived() { [ "$(arrived "$1")" -ge "$2" ]; }

# burst COUNT MARK: while the program stands still; until a frame that came after them has arrived.
burst() {
  kill -STOP "$switch_pid"
  send "$1" 88b5
  kill -CONT "$switch_pid"
  wait_for 10 marked "$2" || fail "nothing arrives any more"
}
marked() {
  send 1 "$1"
  more_arrived "$1" 1
}

burst 4000 88b6
[ "$(arrived 88b5)" -eq 4000 ] || fail "of a burst of 4000 frames $(arrived 88b5) arrived"
echo "a burst of 4000 frames arrived"

burst 60000 88b7
total=$(arrived 88b5)
[ "$total" -lt 64000 ] || fail "a burst of 60000 frames had room; is it counted rightly?"
shown=$(tell_switch "show plug" | sed -n "s/^ *1  p1 .* up *//p")
[ "${shown:-0}" -eq $((64000 - total)) ] || fail "show plug shows ${shown:-nothing}, not $((64000 - total)) lost frames"
echo quit >"$work/commands"
wait "$switch_pid"
said=$(sed -En 's/^swsdk-switch: port 1: ([0-9]+) frames were lost, for they came faster than .*/\1/p' "$work/switch.log")
[ "${said:-0}" -eq $((64000 - total)) ] || fail "$((64000 - total)) frames were lost, not ${said:-0}"
echo "of a burst of 60000 frames $said were lost, as the switch says"
