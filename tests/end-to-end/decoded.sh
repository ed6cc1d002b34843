#!/usr/bin/env bash
# A table of frames: what scapy sends into ports that are files, and what it decodes of what came out.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"
"$python" -c 'import scapy' 2>/dev/null || skip "python3-scapy is not installed"

# Port 1 is the customer's, without tags in VLAN 10; port 2 has all VLANs with their tags, port 3 without.
cat >"$work/switch.sai" <<SAI
source $basics
sai_vlan_create 0 10
sai_vlan_create 0 20
sai_vlan_create 0 30
sai_vlan_port_add 0 10 1 0
sai_vlan_port_add 0 20 1 1
sai_vlan_port_add 0 30 1 1
sai_vlan_port_add 0 10 2 1
sai_vlan_port_add 0 20 2 1
sai_vlan_port_add 0 30 2 1
sai_vlan_port_add 0 10 3 0
sai_vlan_port_add 0 20 3 0
sai_port_untagged_vlan_set 0 1 10
sai_port_untagged_vlan_set 0 3 20

# Customers' VLAN 50 is VLAN 20 in here; their VLAN 60 goes through in VLAN 30.
sai_vlan_translate_add 0 1 50 0 20 4
sai_vlan_dtag_add 0 1 60 2 30 6

sai_l3_intf_create 0 02:00:00:00:00:01 10
sai_l3_intf_create 0 02:00:00:00:00:01 20
sai_l3_enable_set 0 1
learn 02:00:00:00:02:03 20 3
learn 02:00:00:00:02:02 20 2
sai_l3_host_route_create 0 10.0.20.3 02:00:00:00:00:01 02:00:00:00:02:03 3 20 0
sai_l3_subnet_route_create 0 10.0.30.0 255.255.255.0 10.0.20.254 02:00:00:00:00:01 02:00:00:00:02:02 2 20 0
SAI

cat >"$work/frames.py" <<'PY'
import collections, re, subprocess, sys
from scapy.all import ARP, IP, LLC, SNAP, TCP, UDP, Dot1AD, Dot1Q, Ether, IPOption_NOP, IPv6, Raw, rdpcap, wrpcap

ALL, ROUTER = "ff:ff:ff:ff:ff:ff", "02:00:00:00:00:01"
sources = {port: f"02:00:00:00:01:0{port}" for port in (1, 2, 3)}
ip = IP(src="10.0.10.1", dst="10.0.10.255") / UDP(sport=5, dport=6)

def tag(vlan, prio=0):
    return Dot1Q(vlan=vlan, prio=prio)

def headers(source, destination, *layers):
    frame = Ether(src=source, dst=destination)
    for layer in layers:
        frame /= layer
    return frame

def flood(name, port, layers, **out):  # out: p2=[...], the layers behind the addresses at port 2
    copies = {int(to[1:]): headers(sources[port], ALL, *behind) for to, behind in out.items()}
    return name, port, headers(sources[port], ALL, *layers), copies

def packet(to, ttl, **fields):
    return IP(src="10.0.10.1", dst=to, ttl=ttl, **fields) / TCP(sport=7, dport=8)

def routed(name, to, port, mac, *tags, ttl=64, **fields):
    frame = headers(sources[1], ROUTER, packet(to, ttl, **fields))
    return name, 1, frame, {port: headers(ROUTER, mac, *tags, packet(to, ttl - 1, **fields))}

def refused(name, layer):
    return name, 1, headers(sources[1], ROUTER, layer), {}

# The last payload tells the case; it is long enough that nothing is padded.
def marked(frame, number):
    return frame / Raw(f"case {number} ".encode().ljust(48, b"."))

# An identity with which the checksum goes round when the time to live does.
def checksum(identity):
    return IP(bytes(marked(packet("10.0.20.3", 64, id=identity), 0))).chksum
going_round = (checksum(0) + 0x7F) % 0xFFFF
assert checksum(going_round) >= 0xFF00

HOST, GATEWAY = "02:00:00:00:02:03", "02:00:00:00:02:02"
six = IPv6(src="2001:db8::1", dst="2001:db8::2") / UDP(sport=5, dport=6)
arp = ARP(hwsrc=sources[1], psrc="10.0.10.1", pdst="10.0.10.9")
snap = LLC(dsap=0xAA, ssap=0xAA, ctrl=3) / SNAP(code=0x9000)
cases = [
    flood("untagged", 1, [ip], p2=[tag(10), ip], p3=[ip]),
    flood("untagged IPv6", 1, [six], p2=[tag(10), six], p3=[six]),
    flood("untagged ARP", 1, [arp], p2=[tag(10), arp], p3=[arp]),
    flood("with a length", 1, [snap], p2=[tag(10), snap], p3=[snap]),
    flood("tagged", 1, [tag(10, 3), ip], p2=[tag(10, 3), ip], p3=[ip]),
    flood("tagged with another type", 1, [Dot1AD(vlan=20), ip], p2=[tag(10), Dot1AD(vlan=20), ip],
          p3=[Dot1AD(vlan=20), ip]),
    flood("with another type inside", 1, [tag(10), Dot1AD(vlan=20), ip], p2=[tag(10), Dot1AD(vlan=20), ip],
          p3=[Dot1AD(vlan=20), ip]),
    flood("double-tagged", 1, [tag(10), tag(77, 5), ip], p2=[tag(10), tag(77, 5), ip], p3=[tag(77, 5), ip]),
    flood("three tags", 1, [tag(10), tag(77), tag(78), ip], p2=[tag(10), tag(77), tag(78), ip],
          p3=[tag(77), tag(78), ip]),
    flood("priority-tagged", 1, [tag(0, 5), ip], p2=[tag(10, 5), ip], p3=[ip]),
    flood("of a VLAN that is not there", 1, [tag(40), ip]),
    flood("translated inwards", 1, [tag(50, 1), ip], p2=[tag(20, 4), ip], p3=[ip]),
    flood("translated outwards", 2, [tag(20, 1), ip], p1=[tag(50, 0), ip], p3=[ip]),
    flood("untagged, translated outwards", 3, [ip], p1=[tag(50, 0), ip], p2=[tag(20), ip]),
    flood("a tag put in front", 1, [tag(60, 1), ip], p2=[tag(30, 6), tag(60, 1), ip]),
    flood("a tag taken off", 2, [tag(30, 1), tag(60, 3), ip], p1=[tag(60, 2), ip]),
    routed("to a host", "10.0.20.3", 3, HOST),
    routed("to a network", "10.0.30.9", 2, GATEWAY, tag(20)),
    routed("with its last hop but one", "10.0.20.3", 3, HOST, ttl=2),
    routed("whose checksum goes round", "10.0.20.3", 3, HOST, id=going_round),
    routed("with fields of its own", "10.0.20.3", 3, HOST, tos=0xB8, flags="DF"),
    refused("its time to live is over", packet("10.0.20.3", 1)),
    refused("its checksum is wrong", packet("10.0.20.3", 64, chksum=0x1234)),
    refused("it has options", packet("10.0.20.3", 64, options=[IPOption_NOP()])),
    refused("nobody knows the way", packet("10.9.9.9", 64)),
]

def write(folder):
    for port in sources:
        frames = [marked(frame, number) for number, (_, at, frame, _) in enumerate(cases) if at == port]
        wrpcap(f"{folder}/in{port}.pcap", frames)

def check(folder):
    seen = collections.defaultdict(list)
    for port in sources:
        for frame in rdpcap(f"{folder}/out{port}.pcap"):
            if found := re.search(rb"case (\d+) ", bytes(frame)):
                seen[int(found[1]), port].append(Ether(bytes(frame)).command())
    wrong = 0
    for number, (name, at, frame, copies) in enumerate(cases):
        for port in sources:
            expected = [Ether(bytes(marked(copies[port], number))).command()] if port in copies else []
            if seen[number, port] != expected:
                wrong += 1
                print(f"{name}, from port {at}: at port {port} came {seen[number, port]}, not {expected}")
    print(f"{len(cases)} frames in, {sum(map(len, seen.values()))} copies out, {wrong} of them wrong")
    return wrong != 0

write(sys.argv[1])
subprocess.run(sys.argv[2:], check=True, stdin=subprocess.DEVNULL)
sys.exit(check(sys.argv[1]))
PY
ports=()
for port in 1 2 3; do ports+=(--port "$port=pcap:$work/in$port.pcap:$work/out$port.pcap"); done
"$python" "$work/frames.py" "$work" "$switch" "$work/switch.sai" "${ports[@]}" >"$work/switch.log" 2>&1 ||
  fail "other frames came out"
tail -n 1 "$work/switch.log"
