#!/usr/bin/env bash
# TCP and UDP between hosts that leave checksums and segments to their interfaces, by themselves and in tunnels: what
# they send arrives, and on the wire it is in frames of the usual length with right checksums.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
command -v tshark >/dev/null || fail "tshark is not installed"

for number in 1 2; do
  host "h$number" "$number" "10.0.0.$number/24"
  on "h$number" sysctl -qw net.ipv6.conf.eth0.disable_ipv6=0
  on "h$number" ip address add "fd00::$number/64" dev eth0 nodad
done
cat >"$work/transfer.py" <<'PY'
"""transfer.py send|receive FAMILY ADDRESS [EXTENSION]: a megabyte through TCP, and their checksum."""
import hashlib, socket, sys
role, family, address = sys.argv[1:4]
link = socket.socket(getattr(socket, family), socket.SOCK_STREAM)
link.settimeout(20)
if role == "receive":
    link.bind((address, 6000))
    link.listen()
    print("listening", flush=True)
    link, _ = link.accept()
    sum, size = hashlib.sha256(), 0
    while part := link.recv(1 << 16):
        sum.update(part)
        size += len(part)
    print(size, sum.hexdigest())
else:
    if len(sys.argv) > 4:  # a header of destination options, with four bytes of padding
        IPV6_DSTOPTS = 59
        link.setsockopt(socket.IPPROTO_IPV6, IPV6_DSTOPTS, bytes([0, 0, 1, 4, 0, 0, 0, 0]))
    link.connect((address, 6000))
    data = bytes(number * 7 % 251 for number in range(1 << 16)) * 16
    for at in range(0, len(data), 100_000):
        link.sendall(data[at:at + 100_000])
    link.shutdown(socket.SHUT_WR)
    link.recv(1)
    print(len(data), hashlib.sha256(data).hexdigest())
PY

# transfer WHAT FAMILY ADDRESS [EXTENSION]: from h1 to that address of h2.
transfer() {
  local what=$1
  shift
  : >"$work/received"
  on h2 timeout 30 "$python" "$work/transfer.py" receive "$1" "$2" >"$work/received" 2>&1 &
  local receiver=$!
  wait_for 10 grep -q listening "$work/received" || fail "nobody listens: $(cat "$work/received")"
  on h1 timeout 30 "$python" "$work/transfer.py" send "$@" >"$work/sent" 2>&1 || fail "$what: $(tail -n 1 "$work/sent")"
  wait "$receiver" || fail "$what: $(tail -n 1 "$work/received")"
  [ "$(tail -n 1 "$work/received")" = "$(cat "$work/sent")" ] || fail "$what: what arrives is not what was sent"
  echo "$what passes"
}

# tunnel NAME COMMAND...: an interface of both hosts, made by `ip link add NAME COMMAND`, in which LOCAL and REMOTE stand
# for the addresses; false where the kernel has none of the kind.
tunnel() {
  local number other command
  for number in 1 2; do
    other=$((3 - number))
    command=${*:2}
    command=${command//LOCAL6/fd00::$number} command=${command//REMOTE6/fd00::$other}
    command=${command//LOCAL/10.0.0.$number} command=${command//REMOTE/10.0.0.$other}
    # shellcheck disable=SC2086
    on "h$number" ip link add "$1" $command 2>"$work/tunnel.log" || return 1
    on "h$number" ip link set "$1" up
    on "h$number" ip address add "10.1.0.$number/24" dev "$1"
    on "h$number" sysctl -qw "net.ipv6.conf.$1.disable_ipv6=0" || true
    on "h$number" ip address add "fd01::$number/64" dev "$1" nodad
  done
}
no_tunnel() {
  local number
  for number in 1 2; do on "h$number" ip link del "$1" 2>/dev/null || true; done
}

start_switch "$lan" --capture "$work/frames.pcapng"
transfer "TCP over IPv4" AF_INET 10.0.0.2
transfer "TCP over IPv6" AF_INET6 fd00::2
transfer "TCP over IPv6 with options" AF_INET6 fd00::2 options
while read -r name arguments; do
  if ! tunnel t0 "$arguments"; then
    echo "$name is left out: $(cat "$work/tunnel.log")"
  else
    transfer "TCP over IPv4 in $name" AF_INET 10.1.0.2
    [ "$name" = ipip ] || transfer "TCP over IPv6 in $name" AF_INET6 fd01::2
  fi
  no_tunnel t0
done <<'TUNNELS'
vxlan type vxlan id 42 dstport 4789 local LOCAL remote REMOTE noudpcsum
vxlan-with-checksum type vxlan id 42 dstport 4789 local LOCAL remote REMOTE udpcsum
vxlan-ip6 type vxlan id 42 dstport 4789 local LOCAL6 remote REMOTE6
vxlan-ip6-without-checksum type vxlan id 42 dstport 4789 local LOCAL6 remote REMOTE6 udp6zerocsumtx udp6zerocsumrx
geneve type geneve id 42 remote REMOTE
ipip type ipip local LOCAL remote REMOTE
gre type gre local LOCAL remote REMOTE key 7
gre-with-checksum type gre local LOCAL remote REMOTE key 7 ocsum icsum
TUNNELS
kill -TERM "$switch_pid"
wait "$switch_pid" || fail "exit code $?"

# select_frames FIELD FILTER: of the frames on the wire.
select_frames() {
  tshark -r "$work/frames.pcapng" -o ip.check_checksum:TRUE -o tcp.check_checksum:TRUE -o udp.check_checksum:TRUE \
    -T fields -e "$1" -Y "$2" 2>"$work/tshark.log"
}
longest=$(select_frames frame.len tcp | sort -n | tail -n 1)
[ "$longest" -eq 1514 ] || fail "the longest frame has $longest bytes"
bad='ip.checksum.status == "Bad" || tcp.checksum.status == "Bad" || udp.checksum.status == "Bad"'
bad=$(select_frames _ws.col.Info "$bad || tcp.checksum == 0xffff")
[ -z "$bad" ] || fail "wrong checksums: $(head -n 5 <<<"$bad")"
echo "no frame is longer than 1514 bytes, and all checksums are right"
