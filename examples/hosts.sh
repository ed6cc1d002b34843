# shellcheck shell=bash disable=SC2034  # who includes it uses more of it
# Hosts around a virtual switch, each in a network namespace of its own; for scripts that begin with
#
#     source hosts.sh
#
# From there on they run in namespaces of their own, in which they are root and which leave nothing behind: neither
# interfaces nor processes. Where that is not allowed, they say so and exit with 77.
set -euo pipefail

skip() {
  echo "SKIPPED: $1"
  exit 77
}

fail() {
  echo "FAILED: $1" >&2
  echo "--- the switch said:" >&2
  tail -n 40 "$work/switch.log" >&2 || true
  exit 1
}

if [ -z "${IN_OWN_NAMESPACES:-}" ]; then
  export IN_OWN_NAMESPACES=1
  own=(unshare --net --mount --pid --fork --kill-child --mount-proc)
  [ "$(id -u)" -eq 0 ] || own+=(--user --map-root-user)
  why=$("${own[@]}" sh -c 'mount -t tmpfs tmpfs /run && ip tuntap add probe mode tap' 2>&1) ||
    skip "namespaces and TAP interfaces are not allowed here ($why); try it as root"
  exec "${own[@]}" "$BASH" "$0" "$@"
fi

here=$(cd "$(dirname "$0")" && pwd)
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
newest=$({ ls -t "$project"/build/*/tools/switch/swsdk-switch 2>/dev/null || true; } | head -n 1)
switch=${SWSDK_SWITCH:-$newest}
switch=${switch:-$(command -v swsdk-switch || true)}
[ -n "$switch" ] || switch=$(command -v "$project/../../../bin/swsdk-switch" || true) # beside installed examples
[ -n "$switch" ] || skip "there is no swsdk-switch: build it with scripts/demo, or install it"

mount -t tmpfs tmpfs /run
work=/run/example
mkdir "$work"
ip link set lo up
echo 1 >/proc/sys/net/ipv6/conf/default/disable_ipv6
echo 1 >/proc/sys/net/ipv4/conf/all/arp_ignore # an interface answers only for its own addresses

# on HOST COMMAND...
on() { ip netns exec "$@"; }

# host NAME PORT [ADDRESS/LENGTH]: a host at that port of the switch, with the MAC address 02:00:00:00:01:PORT.
host() {
  ip netns add "$1"
  on "$1" sh -c 'echo 1 >/proc/sys/net/ipv6/conf/default/disable_ipv6; ip link set lo up'
  ip link add "p$2" type veth peer name eth0 netns "$1"
  ip link set "p$2" up
  on "$1" ip link set eth0 address "$(printf '02:00:00:00:01:%02x' "$2")" up
  [ $# -lt 3 ] || on "$1" ip address add "$3" dev eth0
  plugs+=(--port "$2=p$2")
}
plugs=()

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
  local end=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    sleep 0.02
  done
}

# start_switch CONFIG [ARGUMENT...]: between the existing hosts.
start_switch() {
  mkfifo "$work/commands"
  "$switch" "$1" "${plugs[@]}" "${@:2}" <>"$work/commands" >"$work/switch.log" 2>&1 &
  switch_pid=$!
  wait_for 10 grep -Eqs "^The switch is (up|listening)" "$work/switch.log" || fail "the switch does not start"
  tell_switch "# by now it has seen the links" >/dev/null
}

# tell_switch COMMAND...: commands of the shell, one after the other; prints what the switch says.
tell_switch() {
  local before mark
  mark="# $EPOCHREALTIME"
  before=$(wc -l <"$work/switch.log")
  printf '%s\n' "$@" "$mark" >"$work/commands"
  wait_for 10 grep -qx "$mark" "$work/switch.log" || fail "the switch does not answer to: $*"
  sed -n "$((before + 1)),\$p" "$work/switch.log" | grep -vx "$mark" || true
}

# reaches HOST ADDRESS: by ping.
reaches() { on "$1" ping -n -q -c 2 -i 0.1 -W 1 "$2" >"$work/ping.log" 2>&1; }

# expect_reached HOST ADDRESS and expect_unreached HOST ADDRESS print what they find.
expect_reached() {
  wait_for 3 reaches "$1" "$2" || fail "$1 does not reach $2: $(cat "$work/ping.log")"
  echo "$1 reaches $2"
}
expect_unreached() {
  ! reaches "$1" "$2" || fail "$1 reaches $2"
  echo "$1 does not reach $2, as it should be"
}
