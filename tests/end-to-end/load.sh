#!/usr/bin/env bash
# Under load, what happens to one port does not stop the others: interfaces that go, come back and change, readers that
# do not read, thousands of commands. The end is orderly then, too.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

cat >"$work/switch.sai" <<SAI
source $lan
sai_vlan_port_add 0 10 3 0
sai_port_untagged_vlan_set 0 3 10
sai_vlan_port_add 0 10 4 0
sai_port_untagged_vlan_set 0 4 10
sai_vlan_port_add 0 10 5 0
SAI
mkdir "$work/small"
mount -t tmpfs -o size=64k tmpfs "$work/small"
for vlan in {100..199}; do echo "sai_vlan_create 0 $vlan" >>"$work/switch.sai"; done
for number in 1 2 3; do host "h$number" "$number" "10.0.0.$number/24"; done
start_switch "$work/switch.sai" --port 4=tap:t4 --port "5=pcap::$work/small/out.pcap"
ip address add 10.0.0.4/24 dev t4
expect_reached h1 10.0.0.2
expect_reached h1 10.0.0.3
expect_reached h3 10.0.0.4

# From h1 to h2, all the time.
stream h2 read 10.0.0.2
stream h1 send 10.0.0.2
expect_flow "at first"

for _ in 1 2 3; do
  ip link set p3 down
  ip link set p3 up
done
expect_flow "while port 3 goes down and up"
expect_reached h1 10.0.0.3
ip link del p3
expect_flow "while port 3 has no interface"
ip netns del h3
host h3 3 10.0.0.3/24
expect_reached h1 10.0.0.3

ip link del t4
expect_flow "while port 4 has no interface"
ip tuntap add dev t4 mode tap
ip address add 10.0.0.4/24 dev t4
ip link set t4 up
expect_reached h3 10.0.0.4

# A port of the stream itself.
ip link set p2 down
ip link set p2 up
expect_flow "after its port went down and up"

# What is too long for an interface is lost there, and only that.
ip link set p3 mtu 1000
large() { on h1 ping -n -q -c 1 -W 1 -s 1200 -M "do" 10.0.0.3 >/dev/null 2>&1; }
! large || fail "frames that are longer than the MTU of port 3 pass"
expect_reached h1 10.0.0.3
ip link set p3 mtu 1500
wait_for 5 large || fail "frames of the usual length do not pass any more"
expect_flow "while the MTU of port 3 changes"

stream h3 ignore 10.0.0.3
ignoring=$!
stream h1 send 10.0.0.3
sleep 0.5
expect_flow "while h3 does not read"
expect_reached h1 10.0.0.3
kill "$ignoring" $!

# longest COMMAND...: the longest that a ping takes meanwhile, in milliseconds.
longest() {
  on h3 ping -n -q -i 0.005 -c 200 10.0.0.2 >"$work/ping.log" &
  local ping=$!
  "$@"
  wait "$ping" || fail "pings are lost: $(cat "$work/ping.log")"
  sed -n 's|.*= [0-9.]*/[0-9.]*/\([0-9]*\)[0-9.]*/.*|\1|p' "$work/ping.log"
}
without=$(longest true)
commands() { for _ in {1..2000}; do echo "show vlan"; done >"$work/commands"; }
with=$(longest commands)
[ "$with" -le $((without + 15)) ] || fail "commands stop frames: a ping takes $with ms instead of $without"
tell_switch "# all are done" >/dev/null
[ "$(grep -cx "show vlan" "$work/switch.log")" -eq 2000 ] || fail "some of 2000 commands are missing"
echo "2000 commands while a ping takes up to $with ms, and $without ms without them"

on h1 ping -n -q -b -c 100 -i 0.002 -s 1000 10.0.0.255 >/dev/null 2>&1 || true
told_full() { grep -q 'port 5: cannot write .*No space left on device; it ends after [0-9]* frames' "$work/switch.log"; }
wait_for 5 told_full || fail "nothing is said of a file that gets full"
expect_flow "after the file of port 5 got full"
expect_reached h3 10.0.0.4

ended() { ! kill -0 "$switch_pid" 2>/dev/null; }
kill -TERM "$switch_pid"
wait_for 5 ended || fail "SIGTERM does not end the switch"
code=0
wait "$switch_pid" || code=$?
[ "$code" -eq 1 ] || fail "exit code $code, although a file got full"
echo "SIGTERM ends it"
