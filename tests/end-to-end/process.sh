#!/usr/bin/env bash
# The program as a process: interfaces that it makes, links that it follows, signals that end it.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host one 1 10.0.0.1/24
on one ip address add 10.0.1.1/24 dev eth0
start_switch "$lan" --port 2=tap:t2 --cpu control
grep -q 02:00:00:00:00:01 <<<"$(ip link show control)" || fail "the CPU's interface: $(ip link)"
! ip link show ethv0 >/dev/null 2>&1 || fail "--cpu renames the interface"

ip address add 10.0.1.2/24 dev t2
expect_reached one 10.0.1.2
ip link set t2 down
is_down() { grep -q "not passed on: port down" <<<"$(tell_switch "send 2 ffffffffffff02000000000288b5")"; }
wait_for 3 is_down || fail "the link of port 2 does not go down with its interface"
ip link set t2 up
expect_reached one 10.0.1.2

# The host by itself: a tag on the CPU's interface is the VLAN.
watch cpu.log "vlan 10 and arp[6:2] = 2" tcpdump -Q in -i control
"$python" - <<'PY'
import socket
link = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
link.bind(("control", 0))
link.send(bytes.fromhex("ffffffffffff 020000000001 8100 000a 0806 0001 0800 06 04 0001"
                        "020000000001 0a000064 000000000000 0a000001") + bytes(18))
PY
expect_seen cpu.log 'vlan 10, .*Reply 10.0.0.1 is-at 02:00:00:00:01:01'

for signal in TERM INT; do
  kill -"$signal" "$switch_pid"
  code=0
  wait "$switch_pid" || code=$?
  [ "$code" -eq 0 ] || fail "SIG$signal: exit code $code"
  ! ip link show t2 >/dev/null 2>&1 || fail "SIG$signal left t2 behind"
  ! ip link show control >/dev/null 2>&1 || fail "SIG$signal left the CPU's interface behind"
  echo "SIG$signal ends it, and what it made is gone"
  rm "$work/commands"
  [ "$signal" = INT ] || start_switch "$lan" --port 2=tap:t2 --cpu control
done
