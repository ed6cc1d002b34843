// Who is told how the chip decides on a frame.
#pragma once

#include <cstdint>
#include <variant>

#include "chip/egress_actions.h"
#include "chip/hosts.h"
#include "chip/l2_cache.h"
#include "chip/l3_interfaces.h"
#include "chip/mac_table.h"
#include "chip/multicast_routes.h"
#include "chip/pipeline/drop.h"
#include "chip/protocol_vlans.h"
#include "chip/routes.h"
#include "chip/switch_controls.h"
#include "chip/vlan_assignments.h"
#include "chip/vlan_controls.h"
#include "chip/vlan_translations.h"

namespace chip {

struct Passage;

/// The entries and settings that decide on frames, each by its key.
namespace decider {

/// Whether the port has a link, and how long its frames may be; then its forwarding settings, checks and rates.
struct Link {
  Port port;
};
struct FrameMax {
  Port port;
};
struct UntaggedVlan {
  Port port;
};
struct UnknownSources {
  Port port;
};
struct Destinations {
  Port port;
};
struct MembershipChecks {
  Port port;
};
struct BlockedFloods {
  Port from;
  Port to;
};
struct IngressRate {
  Port port;
};
struct EgressRate {
  Port port;
};
struct StormRate {
  Port port;
  uint32_t kind;
};
struct Control {
  SwitchControlOfPort control;
  Port port;
};
struct ChipControl {
  SwitchControlOfChip control;
};
struct VlanControl {
  VlanControlOfPort control;
  Port port;
};
/// Whether the chip translates at all.
struct ChipTranslation {};
struct UnicastRouting {};
struct MulticastRouting {};
struct ReservedAddresses {};
struct NetworkGroup {
  int group;
};
struct ProtocolVlan {
  ProtocolVlans::Key key;
};
struct MacVlan {
  Mac mac;
};
struct SubnetVlan {
  const VlanAssignment* assignment;
};
struct IngressTranslation {
  Port port;
  int vlan;
};
struct OuterTranslation {
  Port port;
  int vlan;
};
struct EgressTranslation {
  Port port;
  int vlan;
};
struct TagsAtEgress {
  EgressActions::Key key;
};
struct OfVlan {
  int id;
};
struct SpanningTreeState {
  int group;
  Port port;
};
struct L2CacheSlot {
  int index;
};
struct OfMac {
  const MacEntry* entry;
};
struct OfLearnLimit {
  MacScope scope;
};
struct FieldRules {
  int entry;
};
struct OfPolicer {
  int id;
};
struct Interface {
  const L3Interface* interface;
};
struct Host {
  HostKey key;
};
struct Route {
  int vrf;
  uint32_t address;  // of the packet
};
struct NextHop {
  int egress_object;
};
struct GroupRoute {
  MulticastRouteKey key;
};
struct Group {
  GroupId id;
};
struct OfTrunk {
  TrunkId id;
};
struct OfVirtualPort {
  VirtualPortId id;
};
struct Mirror {
  Port source;
  MirrorId destination;
};

}  // namespace decider

using Decider =
    std::variant<decider::Link, decider::FrameMax, decider::UntaggedVlan, decider::UnknownSources,
                 decider::Destinations, decider::MembershipChecks, decider::BlockedFloods, decider::IngressRate,
                 decider::EgressRate, decider::StormRate, decider::Control, decider::ChipControl, decider::VlanControl,
                 decider::ChipTranslation, decider::UnicastRouting, decider::MulticastRouting,
                 decider::ReservedAddresses, decider::NetworkGroup, decider::ProtocolVlan, decider::MacVlan,
                 decider::SubnetVlan, decider::IngressTranslation, decider::OuterTranslation,
                 decider::EgressTranslation, decider::TagsAtEgress, decider::OfVlan, decider::SpanningTreeState,
                 decider::L2CacheSlot, decider::OfMac, decider::OfLearnLimit, decider::FieldRules, decider::OfPolicer,
                 decider::Interface, decider::Host, decider::Route, decider::NextHop, decider::GroupRoute,
                 decider::Group, decider::OfTrunk, decider::OfVirtualPort, decider::Mirror>;

/// Called in the order of what happens to a frame. The frame is as it is at that moment.
class Observer {
 public:
  /// A frame comes in, by the cable or, a later round, by a port that is looped back.
  virtual void arrives(const Passage& frame) = 0;
  /// A stage begins, and ends. Between both it names the entries that decide.
  virtual void begins(const char* stage, const Passage& frame) = 0;
  virtual void ends(const Passage& frame) = 0;
  virtual void decides(const Decider& decider) = 0;
  /// A copy is on its way out of a port. Then the wire gets it, or it is lost, or it comes in again by that port.
  virtual void sends(Port port, const Passage& frame) = 0;
  virtual void lost(const Place& to, Drop reason) = 0;
  virtual void comes_back(Port port) = 0;
  /// The frame has passed; it is lost if there is a reason.
  virtual void passed(const Passage& frame, Drop reason) = 0;

 protected:
  ~Observer() = default;
};

}  // namespace chip
