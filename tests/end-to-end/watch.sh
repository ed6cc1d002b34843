# shellcheck shell=bash disable=SC2034  # who includes it uses more of it
# What the end-to-end tests add to examples/hosts.sh: frames seen where they arrive.
# shellcheck source=examples/hosts.sh
source "$(dirname "${BASH_SOURCE[0]}")/../../examples/hosts.sh"

setpriv --clear-groups true 2>/dev/null || skip "tcpdump and lldpd change their user, which takes root"
[ -x "$switch" ] || fail "no switch to test"
python=/usr/bin/python3  # Debian's, for which scapy is packaged
basics=$work/basics.sai
cat >"$basics" <<'SAI'
open_sai_log switch 0 0 8
log off
sai_switch_chip_init 02:00:00:00:00:01
log errors
SAI
# The hosts at ports 1 and 2 are in VLAN 10 and see no tags.
lan=$work/lan.sai
cat >"$lan" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_port_add 0 10 1 0
sai_vlan_port_add 0 10 2 0
sai_port_untagged_vlan_set 0 1 10
sai_port_untagged_vlan_set 0 2 10
SAI

# watch LOG FILTER COMMAND...: tcpdump by that command, such as: on host tcpdump -i eth0; its lines go into the log.
watch() {
  local log=$work/$1 filter=$2
  shift 2
  "$@" -l -n -e --immediate-mode "$filter" >>"$log" 2>"$log.errors" &
  wait_for 10 grep -qs "listening on" "$log.errors" || fail "tcpdump does not start: $(cat "$log.errors")"
}

# seen LOG PATTERN: such a line has come.
seen() { grep -Eqs -- "$2" "$work/$1"; }

# expect_seen LOG PATTERN [COMMAND...]: such a line comes, after as many runs of the command as it takes.
expect_seen() {
  wait_for 10 seen_after "$@" || fail "no '$2' in $1: $(cat "$work/$1")"
  echo "$1: $(grep -Em 1 -- "$2" "$work/$1")"
}
seen_after() {
  [ $# -eq 2 ] || "${@:3}"
  seen "$1" "$2"
}

# What would be seen has had its time: call it after something later was.
expect_unseen() {
  ! seen "$1" "$2" || fail "'$2' in $1: $(cat "$work/$1")"
  echo "$1: nothing of '$2'"
}

# about WANTED GOT: within a tenth.
about() { [ $(($2 * 10)) -ge $(($1 * 9)) ] && [ $(($2 * 10)) -le $(($1 * 11)) ]; }

listens() { grep -q :5201 <<<"$(on "$1" ss -ltn)"; }

# iperf_rate SENDER RECEIVER ADDRESS: what comes of 6000 kbit/s, in kbit/s, with the headers and the checksum that count
# at a port.
iperf_rate() {
  command -v iperf3 >/dev/null || fail "iperf3 is not installed"
  on "$2" iperf3 -s -1 >"$work/iperf.log" 2>&1 &
  wait_for 5 listens "$2" || fail "iperf3 does not start: $(cat "$work/iperf.log")"
  on "$1" iperf3 -c "$3" -u -b 6M -l 500 -t 2 -J >"$work/iperf.json" || fail "iperf3: $(cat "$work/iperf.json")"
  "$python" -c '
import json, sys
end = json.load(open(sys.argv[1]))["end"]["sum"]
print(round(end["bits_per_second"] * (1 - end["lost_percent"] / 100) * (500 + 46) / 500 / 1000))' "$work/iperf.json"
}

# stream HOST read|ignore|send ADDRESS: TCP without end, in the background.
cat >"$work/stream.py" <<'PY'
"""stream.py read|ignore|send ADDRESS: TCP without end; who ignores it reads nothing."""
import socket, sys, time
role, address = sys.argv[1:]
def endless():
    link = socket.create_connection((address, 6000), timeout=5)
    while True:
        link.sendall(bytes(100_000))
if role != "send":
    server = socket.create_server((address, 6000))
    while True:
        link, _ = server.accept()
        while role == "ignore" or link.recv(1 << 16):
            if role == "ignore":
                time.sleep(60)
while True:
    try:
        endless()
    except OSError:
        time.sleep(0.05)
PY
stream() { on "$1" "$python" "$work/stream.py" "${@:2}" 2>/dev/null & }

received() { on h2 cat /sys/class/net/eth0/statistics/rx_bytes; }
# expect_flow WHEN: a megabyte passes.
passed() { [ "$(received)" -ge $((before + 1000000)) ]; }
expect_flow() {
  before=$(received)
  wait_for 10 passed || fail "h1 sends nothing to h2 $1"
  echo "h1 sends to h2 $1"
}
