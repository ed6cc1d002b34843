#include "chip/pipeline/drop.h"

#include <array>
#include <cstddef>

namespace chip {

namespace {

struct Reason {
  const char* name;
  const char* remedy;
};

/// By Drop.
constexpr std::array<Reason, drop_count> reasons{{
    {"none", ""},
    {"malformed", "an Ethernet header that is complete, tags included"},
    {"port down", "a link of its port: a cable, and a port that is enabled"},
    {"too long", "a shorter frame, or a larger maximum of its port"},
    {"port rate", "a higher rate or burst of its port at ingress, or a pause"},
    {"no such vlan", "the creation of its VLAN"},
    {"not a member of the vlan", "its port as a member of its VLAN, or no membership check of the port at ingress"},
    {"spanning tree", "the state \"forward\" of its port in the spanning-tree group of its VLAN"},
    {"trapped to the cpu", "no entry that sends it to the CPU alone"},
    {"switch control", "no control of its port that drops such frames"},
    {"source discard", "no MAC entry that discards frames of its source"},
    {"learn limit", "a higher limit of learned addresses, or one that does not drop"},
    {"unknown source", "a MAC entry of its source, or a port that forwards from unknown addresses"},
    {"field rule", "an entry of higher precedence that permits it, or no entry that drops it"},
    {"policer", "a higher rate or burst of the policer, or a pause"},
    {"storm control", "a higher limit of such frames at its port, or a pause"},
    {"destination discard", "no MAC entry that discards frames to its destination"},
    {"no route", "an IPv4 host or route for its destination, or a port that sends what has none to the CPU"},
    {"no destination", "another port in its VLAN, or a MAC entry of its destination"},
    {"source is a group", "the address of a host as its source"},
    {"not ip", "an IP packet in it, or another destination address than the router's"},
    {"ip length", "lengths in its IP header that agree with each other and with the frame"},
    {"ip options", "an IPv4 header without options"},
    {"ip checksum", "the right checksum in its IPv4 header"},
    {"martian source", "an IP source that a host can have"},
    {"martian destination", "an IP destination that a host can have"},
    {"ttl expired", "a TTL of 2 or more"},
    {"no next hop", "the trunk or virtual port of its next hop, with a link"},
    {"wrong ingress port", "a multicast route that accepts its port"},
    {"no group member", "another member in its multicast group that has a port with a link"},
    {"multicast flood", "a VLAN that floods unknown multicasts, or a group for its address"},
    {"own port", "a destination that is not where it came from"},
    {"isolated port", "the destination among the ports to which its port may send"},
    {"split horizon", "the destination in the same network group, or a group that is not isolated"},
    {"flood blocked", "a port in its VLAN to which its port may flood such frames"},
    {"no exit", "the trunk or virtual port of its destination, with a link"},
    {"no interface", "the layer 3 interface by which it leaves"},
    {"ttl threshold", "a TTL as high as its layer 3 interface requires"},
    {"egress no such vlan", "the creation of the VLAN in which it leaves"},
    {"egress not a member",
     "another destination port, that port as a member of the VLAN, or no membership check there"},
    {"egress spanning tree", "the state \"forward\" of the port by which it leaves"},
    {"egress port down", "a link of the port by which it leaves"},
    {"egress field rule", "no egress entry that drops it"},
    {"egress policer", "a higher rate or burst of the policer of the egress entry, or a pause"},
    {"egress too long", "a shorter frame, or a larger maximum of the port by which it leaves"},
    {"egress rate", "a higher rate or burst of the port by which it leaves, or a pause"},
    {"egress no exit", "the trunk or virtual port by which it leaves, with a link"},
    {"egress loop", "no loopback at a port to which what comes in there is sent"},
}};

}  // namespace

const char* name(Drop drop) { return reasons[static_cast<std::size_t>(drop)].name; }
const char* remedy(Drop drop) { return reasons[static_cast<std::size_t>(drop)].remedy; }

}  // namespace chip
