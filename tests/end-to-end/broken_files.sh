#!/usr/bin/env bash
# Files of frames that are damaged, are not what they should be, or cannot be written: the program says which and how,
# passes on the frames that there are, and its exit code says that not all was well.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

"$python" - "$work" <<'PY'
import struct, sys
def record(second):
    frame = bytes.fromhex("0200000001000200000000%02x88b5" % second) + bytes(46)
    return struct.pack("<IIII", second, 0, len(frame), len(frame)) + frame
def block(kind, body):
    body += bytes(-len(body) % 4)
    return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)
def header(link_type): return struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, link_type)
def section(link_type):
    return block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)) + block(1, struct.pack("<HHI", link_type, 0, 0))
three = header(1) + record(1) + record(2) + record(3)
packets = b"".join(block(6, struct.pack("<IIIII", 0, 0, 0, 60, 60) + record(i)[16:]) for i in (1, 2, 3))
files = {
    "good": three,
    "next": section(1) + packets,
    "cut": three[:-20],
    "cut_header": three[:-70],
    "damaged": header(1) + record(1) + struct.pack("<IIII", 2, 0, 0xFFFFFFFF, 60) + bytes(60),
    "next_cut": (section(1) + packets)[:-20],
    "mixed": section(1) + packets + block(1, struct.pack("<HHI", 113, 0, 0)) + packets,
    "cooked": header(113) + record(1),
    "next_cooked": section(113) + packets,
    "text": b"these are no frames, but a line of text\n",
    "empty": b"",
    "many": header(1) + b"".join(record(i) for i in range(1, 256)) * 8,
}
for name, content in files.items():
    with open(f"{sys.argv[1]}/{name}.pcap", "wb") as file:
        file.write(content)
PY
cd "$work"

# run CODE PORT...: what the switch says on standard error is in the file "errors".
run() {
  local wanted=$1 code=0 ports=()
  shift
  for port in "$@"; do ports+=(--port "$port"); done
  "$switch" "$lan" "${ports[@]}" </dev/null >switch.log 2>errors || code=$?
  [ "$code" -eq "$wanted" ] || fail "$*: exit code $code, not $wanted; it said $(cat errors)"
}

# said PATTERN: one line like that.
said() {
  # shellcheck disable=SC2053
  [[ $(cat errors) == "swsdk-switch: "$1 && $(wc -l <errors) -eq 1 ]] || fail "said '$(cat errors)', not '$1'"
  cat errors
}

# holds COUNT FILE: so many whole frames.
holds() {
  local got
  got=$(tcpdump -n -e -r "$2" 2>tcpdump.errors | grep -c ethertype) || fail "$2: $(cat tcpdump.errors)"
  [ "$got" -eq "$1" ] || fail "$2 holds $got frames, not $1"
}

for input in good next; do
  run 0 "1=pcap:$input.pcap:" 2=pcap::out.pcap
  [ ! -s errors ] || fail "$input.pcap: said $(cat errors)"
  holds 3 out.pcap
done

# damaged NAME FRAMES WHY: the frames before the damage are passed on, and those of other files.
damaged() {
  run 1 "1=pcap:$1.pcap:two.pcap" 2=pcap:many.pcap:out.pcap
  said "port 1: \"$1.pcap\" is cut off or damaged after $2: *$3*"
  holds "${2% *}" out.pcap
  holds 2040 two.pcap
}
damaged cut "2 frames" truncated
damaged cut_header "2 frames" truncated
damaged damaged "1 frame" "invalid packet capture length"
damaged next_cut "2 frames" truncated
damaged mixed "3 frames" "an interface has a type"

takes="pcap and pcapng files with Ethernet frames are read"
run 2 1=pcap:cooked.pcap:
said "port 1: \"cooked.pcap\" holds frames of link type Linux cooked v1; $takes"
run 2 1=pcap:next_cooked.pcap:
said "port 1: \"next_cooked.pcap\" holds frames of link type Linux cooked v1; $takes"
run 2 1=pcap:text.pcap:
said "port 1: cannot read \"text.pcap\": *unknown*; $takes"
run 2 1=pcap:empty.pcap:
said "port 1: cannot read \"empty.pcap\": truncated *; $takes"
run 2 1=pcap:missing.pcap:
said 'port 1: cannot read "missing.pcap": No such file or directory'
run 2 1=pcap::missing/out.pcap
said 'port 1: cannot write "missing/out.pcap": No such file or directory'

# A file that is read is not emptied, by whatever name and port; nor do two ports write one.
ln -s good.pcap other_name.pcap
used="is read or written already, and would be emptied; write another file"
run 2 1=pcap:good.pcap:good.pcap
said "port 1: \"good.pcap\" $used"
run 2 1=pcap:good.pcap: 2=pcap::other_name.pcap
said "port 2: \"other_name.pcap\" $used"
holds 3 good.pcap
run 2 1=pcap::out.pcap 2=pcap::out.pcap
said "port 2: \"out.pcap\" $used"
run 2 1=pcap::out.pcap 2=pcap:out.pcap:
said 'port 2: "out.pcap" is written already; read another file'
run 0 1=pcap:good.pcap:/dev/null 2=pcap:good.pcap:/dev/null

# A disk that is full from the start, and one that gets full: what is in the file stays readable, other ports go on.
run 1 1=pcap:many.pcap: 2=pcap::/dev/full
said 'port 2: cannot write "/dev/full": No space left on device; it ends after 0 frames, and all others are lost'
mkdir small
mount -t tmpfs -o size=64k tmpfs small
cat >"$work/three.sai" <<SAI
source $lan
sai_vlan_port_add 0 10 3 0
SAI
lan=$work/three.sai run 1 1=pcap:many.pcap: 2=pcap::small/out.pcap 3=pcap::out.pcap
written=$(sed -En 's/.*"small.out.pcap": No space left on device; it ends after ([0-9]+) frames, and all others are lost$/\1/p' errors)
[ "${written:-0}" -gt 100 ] || fail "said $(cat errors)"
said '*'
holds "$written" small/out.pcap
holds 2040 out.pcap
