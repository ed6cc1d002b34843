#!/usr/bin/env bash
# usage: capture.sh SAISH SWSDK_SWITCH
# What the shell and the switch capture, as Wireshark's reader sees it.
set -euo pipefail
saish=$1 switch=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "$1" >&2
  exit 1
}

# fields FILE: a line for each frame: its interface, direction, addresses and comment.
fields() {
  tshark -n -r "$1" -T fields -E separator=' ' -e frame.interface_name -e frame.packet_flags_direction -e eth.src \
    -e eth.dst -e frame.comment 2>tshark.err || fail "tshark does not read $1: $(cat tshark.err)"
}

# expect FILE: the fields of the frames of a file are those on standard input.
expect() {
  fields "$1" >came
  diff -u - came >difference || fail "$1 has other frames than expected: $(cat difference)"
}

cat >frames.sai <<'END'
sai_vlan_create 0 10
sai_vlan_port_add 0 10 1 1
sai_vlan_port_add 0 10 2 1
link 1 up
link 2 up
capture start
send 1 02:00:00:00:00:01 > ff:ff:ff:ff:ff:ff vlan 10
send 2 02:00:00:00:00:02 > 02:00:00:00:00:01 vlan 10
send 2 02:00:00:00:00:02 > 02:00:00:00:00:01 vlan 11
capture shell.pcapng
END
"$saish" frames.sai >/dev/null
expect shell.pcapng <<'END'
port 1 0x00000001 02:00:00:00:00:01 ff:ff:ff:ff:ff:ff out 2\ncpu (destination)\npassed on
port 2 0x00000002 02:00:00:00:00:01 ff:ff:ff:ff:ff:ff 
cpu 0x00000002 02:00:00:00:00:01 ff:ff:ff:ff:ff:ff cpu (destination)
port 2 0x00000001 02:00:00:00:00:02 02:00:00:00:00:01 out 1\npassed on
port 1 0x00000002 02:00:00:00:00:02 02:00:00:00:00:01 
port 2 0x00000001 02:00:00:00:00:02 02:00:00:00:00:01 dropped: no such vlan; to pass it needs the creation of its VLAN
drops  02:00:00:00:00:02 02:00:00:00:00:01 dropped: no such vlan; to pass it needs the creation of its VLAN
END

# With the whole way, the calls that made the entries are in the comment.
sed -i 's/^capture start$/capture start --trace/; s/shell.pcapng/ways.pcapng/' frames.sai
"$saish" frames.sai >/dev/null
fields ways.pcapng | grep -q 'bcm_vlan_port_add(0, 10, {2}, {}) = 0' || fail "no call is in the comments: $(fields ways.pcapng)"

# The switch captures what passes between its ports, here files.
cat >config.sai <<'END'
sai_vlan_create 0 10
sai_vlan_port_add 0 10 1 1
sai_vlan_port_add 0 10 2 1
END
"$switch" config.sai --port 1=pcap:shell.pcapng:one.pcap --port 2=pcap:shell.pcapng:two.pcap --capture switch.pcapng \
  </dev/null >switch.out 2>switch.err || true
fields switch.pcapng | grep -q '^port 1 0x00000001 02:00:00:00:00:01 ff:ff:ff:ff:ff:ff ' ||
  fail "the switch captured: $(fields switch.pcapng; cat switch.out switch.err)"

# A full disk ends the capture with one line, and nothing else.
code=0
"$switch" config.sai --port 1=pcap:shell.pcapng:one.pcap --capture /dev/full </dev/null >switch.out 2>switch.err ||
  code=$?
[ "$code" -eq 1 ] || fail "a full disk made the switch exit with $code"
[ "$(grep -c 'cannot write "/dev/full": No space left on device; the capture has ended' switch.err)" -eq 1 ] ||
  fail "a full disk gave: $(cat switch.err)"
"$saish" -c "capture /dev/full --seconds 0" >full.out 2>full.err && fail "the shell wrote to a full disk"
grep -q 'cannot write "/dev/full": No space left on device' full.err || fail "the shell said: $(cat full.err)"
"$switch" config.sai --port 1=pcap:shell.pcapng:one.pcap --capture no/such.pcapng </dev/null >switch.out 2>switch.err &&
  fail "the switch started without its capture"
grep -q 'cannot write "no/such.pcapng": No such file or directory' switch.err || fail "the switch said: $(cat switch.err)"
