#!/usr/bin/env bash
# Interfaces that go, and come back by their names: the port's link follows, its frames pass again, and the program
# does not run in circles meanwhile.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

cat >"$work/switch.sai" <<SAI
source $lan
sai_vlan_port_add 0 10 3 0
sai_port_untagged_vlan_set 0 3 10
SAI
host one 1 10.0.0.1/24
host two 2 10.0.0.2/24
start_switch "$work/switch.sai" --port 3=tap:t3

# expect_link PORT STATE: it is so, or becomes so.
has_link() { tell_switch "show port" | grep -Eq "^$1 +[a-z]+ +$2 "; }
expect_link() {
  wait_for 5 has_link "$@" || fail "the link of port $1 is not $2: $(tell_switch "show port")"
  echo "port $1 is $2"
}

# expect_rest: between commands the program waits.
rests() { awk '/^voluntary/ {print $2}' "/proc/$switch_pid/status"; }
expect_rest() {
  local before
  before=$(rests)
  for _ in {1..10}; do tell_switch "#" >/dev/null; done
  [ "$(rests)" -ge $((before + 10)) ] || fail "the switch does not rest: $(cat "/proc/$switch_pid/status")"
}

ip address add 10.0.0.3/24 dev t3
expect_reached one 10.0.0.2
expect_reached one 10.0.0.3
expect_rest

ip link del p1
expect_link 1 down
expect_rest
ip netns del one
host one 1 10.0.0.1/24
expect_link 1 up
expect_reached one 10.0.0.2

# To another namespace and back: its index is the same again.
ip link set p2 netns one
expect_link 2 down
on one ip link set p2 netns 1
ip link set p2 up
expect_link 2 up
expect_reached one 10.0.0.2

on two ip link set eth0 down
expect_link 2 down
on two ip link set eth0 up
expect_link 2 up
ip link set p2 down
expect_link 2 down
ip link set p2 up
expect_link 2 up
expect_reached one 10.0.0.2

# What comes back at once was away all the same: who is registered for link events is told.
tell_switch "sai_register_link_service print" >/dev/null
ip -batch - <<'IP'
link del p1
link add p1 up type veth peer name eth0 netns one
IP
on one ip link set eth0 up
told() { tell_switch "#" >/dev/null; grep -q "link of unit 0 port 1 is $1" "$work/switch.log"; }
for state in down up; do
  wait_for 5 told "$state" || fail "nobody is told that the link is $state"
done

ip link del t3
expect_link 3 down
expect_rest
ip tuntap add dev t3 mode tap
ip address add 10.0.0.3/24 dev t3
ip link set t3 up
expect_link 3 up
expect_reached two 10.0.0.3
expect_rest

ip link del ethv0
expect_rest
expect_reached two 10.0.0.3
