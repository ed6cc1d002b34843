#!/usr/bin/env bash
# Ports that are files of frames; and what the program says when it cannot start.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_port_add 0 10 1 0
sai_vlan_port_add 0 10 2 1
sai_port_untagged_vlan_set 0 1 10
SAI
"$python" - "$work/in.pcap" <<'PY'
import struct, sys
frame = bytes.fromhex("02000000000202000000000188b5") + bytes(46)
with open(sys.argv[1], "wb") as file:
    file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
    for second in range(3):
        file.write(struct.pack("<IIII", second, 0, len(frame), len(frame)) + frame)
PY
"$switch" "$work/switch.sai" --port "1=pcap:$work/in.pcap:" --port "2=pcap::$work/out.pcap" </dev/null >"$work/switch.log"
tcpdump -n -e -r "$work/out.pcap" >"$work/out" 2>/dev/null
[ "$(grep -c '02:00:00:00:00:01 > 02:00:00:00:00:02, .*vlan 10' "$work/out")" -eq 3 ] || fail "came out: $(cat "$work/out")"
echo "3 frames from file to file"

# refused TEXT ARGUMENT...: the program ends with 2 and says that.
refused() {
  local text=$1 code=0
  shift
  "$switch" "$@" </dev/null >/dev/null 2>"$work/errors" || code=$?
  [ "$code" -eq 2 ] || fail "$*: exit code $code"
  grep -qF -- "$text" "$work/errors" || fail "$*: said $(cat "$work/errors")"
  cat "$work/errors"
}
ip link add cable type veth peer name end
refused 'port 1: there is no interface "nowhere"' "$work/switch.sai" --port 1=nowhere
refused 'port 1: it is plugged in twice' "$work/switch.sai" --port 1=cable --port 1=tap:other
refused 'port 99: the chip has no such port; it has ports 1 to 12' "$work/switch.sai" --port 99=cable
refused 'port 1: "a-name-that-is-too-long" is no name of an interface' "$work/switch.sai" --port 1=tap:a-name-that-is-too-long
refused 'port 1: cannot read "/nowhere": No such file or directory' "$work/switch.sai" --port 1=pcap:/nowhere:
refused 'port 1: "pcap:x" is not pcap:IN:OUT' "$work/switch.sai" --port 1=pcap:x
refused '"cable" is not N=IFACE' "$work/switch.sai" --port cable
refused 'cannot make the interface "cable": Device or resource busy' "$work/switch.sai" --cpu cable
refused 'cannot read the script "missing.sai": No such file or directory' missing.sai
