// Every way to lose a frame has a reason of its own.
#include <functional>
#include <memory>
#include <set>

#include "pipeline_fixture.h"

namespace {

using chip::Chip;
using chip::Drop;
using chip::FieldAction;
using chip::FieldProcessor;
using chip::L3Entry;
using chip::L3Interface;
using chip::MacEntry;
using chip::Place;
using chip::Port;
using chip::PortForwardings;
using chip::Status;
using support::Bytes;
using support::Frame;

constexpr int router = 0xE0;

chip::Mac mac(int last) {
  chip::Mac result;
  std::ranges::copy(support::mac(last), result.begin());
  return result;
}

/// A chip with VLAN 10 of the ports 1 to 4, tagged, and VLAN 20 of the ports 5 and 6.
struct Scene {
  Scene() {
    for (const Port port : chip.ports.ethernet()) chip.port_macs.set_partner(port, true);
    chip.vlans.create(10);
    chip.vlans.add_ports(10, {1, 2, 3, 4}, {});
    chip.vlans.create(20);
    chip.vlans.add_ports(20, {5, 6}, {});
  }

  void mac_entry(int last, Place place, uint32_t flags = 0) {
    EXPECT_EQ(chip.mac_table.add({.mac = mac(last), .vlan = 10, .flags = flags, .place = place}), Status::ok);
  }
  void rule(int stage, FieldAction action, bool red = false, int to = 0) {
    int group = 0;
    int entry = 0;
    const int vlan = static_cast<int>(chip::FieldQualifier::outer_vlan);
    EXPECT_EQ(chip.field_processor.create_group({stage, vlan}, 0, group), Status::ok);
    chip.field_processor.enable_group(group, true);
    chip.field_processor.create_entry(group, entry);
    chip.field_processor.add_action(entry, static_cast<int>(action), 0, static_cast<uint32_t>(to));
    if (red) {
      int policer = 0;
      chip.policers.create({.mode = 3, .committed = {0, 0, 0}, .peak = {0, 0, 0}}, policer);
      chip.field_processor.attach_policer(entry, 0, policer);
    }
    EXPECT_EQ(chip.field_processor.install(entry), Status::ok);
  }
  /// The router, in VLANs 10 and 20. Returns its interface in VLAN 20.
  int route(int ttl = 0) {
    int in = 0;
    int out = 0;
    chip.unicast_routing = true;
    chip.l3_interfaces.create({.flags = L3Interface::in_mac_table, .mac = mac(router), .vlan = 10}, in);
    chip.l3_interfaces.create({.flags = L3Interface::in_mac_table, .mac = mac(router), .vlan = 20, .ttl = ttl}, out);
    return out;
  }
  void trunk_of(Port port) {
    chip::TrunkId trunk = 7;
    EXPECT_EQ(chip.trunks.create(chip::Trunks::with_id, trunk), Status::ok);
    EXPECT_EQ(chip.trunks.set(trunk, 0, {port}), Status::ok);
  }
  void host(int interface, Place place) {
    EXPECT_EQ(chip.hosts.add({0, support::ip4("20.0.0.5")},
                             {.interface = interface, .next_hop = mac(5), .place = place}, false),
              Status::ok);
  }
  /// A multicast route for 239.1.1.1 in VLAN 10, from port 1 alone if `checks`, whose group has no members.
  void multicast_route(bool checks) {
    chip.multicast_routing = true;
    chip::GroupId group = 5;
    EXPECT_EQ(chip.multicast_groups.create(chip::MulticastGroups::l3 | chip::MulticastGroups::with_id, group),
              Status::ok);
    chip::MulticastRouteKey key{.vlan = 10};
    key.address = {239, 1, 1, 1};
    EXPECT_EQ(chip.multicast_routes.add(
                  key, {.flags = checks ? 0 : chip::MulticastRoute::from_any_port, .group = group, .from = Port{1}}),
              Status::ok);
  }

  Chip chip{12};
};

struct Nowhere : chip::Wire {
  void transmit(Port, std::span<const uint8_t>) override {}
  void deliver(const chip::CpuFrame&) override {}
};

const Frame plain = Frame(1, 2).tag(10).type(0x9000);
const Frame broadcast = Frame(1, 0xFF).tag(10).type(0x9000);

Frame packet(const char* to = "20.0.0.5", int ttl = 64, const char* from = "10.0.0.1") {
  return Frame(1, router).tag(10).ip(from, to, ttl).udp(5, 6);
}
Bytes changed(Bytes frame, std::size_t at, uint8_t value) {
  frame[at] = value;
  return frame;
}

struct Case {
  Drop reason;
  std::function<void(Scene&)> prepare;
  Bytes frame = plain;
  Port port = 1;
  Port counted_at = 1;
  int earlier = 0;      // frames that pass before
  bool passes = false;  // another copy leaves, or left
};

const Case cases[] = {
    {Drop::malformed, [](Scene&) {}, Bytes(13)},
    {Drop::port_down, [](Scene& s) { s.chip.port_macs.set_partner(1, false); }},
    {Drop::too_long, [](Scene& s) { s.chip.port_macs.set_frame_max(1, 64); }, Frame(1, 2).tag(10).type(1).length(100)},
    {Drop::rate,
     [](Scene& s) {
       s.chip.port_rates.police(1, {chip::RateUnit::kilobits, 1, 2});
     },
     plain, 1, 1, 3},
    {Drop::no_vlan, [](Scene&) {}, Frame(1, 2).tag(30).type(0x9000)},
    {Drop::not_member, [](Scene& s) { s.chip.port_filters.set_membership_checks(1, chip::PortFilters::check_ingress); },
     Frame(1, 2).tag(20).type(0x9000)},
    {Drop::spanning_tree,
     [](Scene& s) { s.chip.spanning_trees.set_state(1, 1, static_cast<int>(chip::StpState::block)); }},
    {Drop::trapped, [](Scene& s) { s.rule(FieldProcessor::ingress_stage, FieldAction::redirect_port); }},
    {Drop::switch_control,
     [](Scene& s) { s.chip.switch_controls.set_port(1, static_cast<int>(chip::SwitchControlOfPort::dhcp_drop), 1); },
     Frame(1, 0xFF).tag(10).ip("0.0.0.0", "255.255.255.255").udp(68, 67)},
    {Drop::source_discard, [](Scene& s) { s.mac_entry(1, Port{1}, MacEntry::discard_source); }},
    {Drop::learn_limit,
     [](Scene& s) {
       s.chip.learn_limits.set({chip::AllAddresses{}}, {.limit = 0, .actions = chip::LearnLimit::drop});
       s.chip.learn_limits.enable(true);
     }},
    {Drop::unknown_source, [](Scene& s) { s.chip.port_forwarding.set_learning(1, PortForwardings::learn); }},
    {Drop::field_rule, [](Scene& s) { s.rule(FieldProcessor::ingress_stage, FieldAction::drop); }},
    {Drop::policer, [](Scene& s) { s.rule(FieldProcessor::ingress_stage, FieldAction::drop_red, true); }},
    {Drop::storm,
     [](Scene& s) {
       s.chip.storm_rates.set({1, chip::StormRates::broadcast}, chip::StormRates::broadcast, 0);
     },
     broadcast},
    {Drop::discard, [](Scene& s) { s.mac_entry(2, Port{2}, MacEntry::discard_destination); }},
    {Drop::no_route, [](Scene& s) { s.route(); }, packet()},
    {Drop::no_destination,
     [](Scene& s) {
       s.chip.vlans.remove_ports(10, {2, 3, 4});
     }},
    {Drop::group_source, [](Scene&) {}, Frame(Bytes{3, 0, 0, 0, 0, 1}, support::mac(2)).tag(10).type(0x9000)},
    {Drop::not_ip, [](Scene& s) { s.route(); }, Frame(1, router).tag(10).type(0x9000)},
    {Drop::ip_length, [](Scene& s) { s.route(); }, changed(packet(), 20, 1)},
    {Drop::ip_options, [](Scene& s) { s.route(); }, changed(packet(), 18, 0x46)},
    {Drop::ip_checksum, [](Scene& s) { s.route(); }, changed(packet(), 28, 0x77)},
    {Drop::martian_source, [](Scene& s) { s.route(); }, packet("20.0.0.5", 64, "127.0.0.1")},
    {Drop::martian_destination, [](Scene& s) { s.route(); }, packet("240.0.0.1")},
    {Drop::ttl_expired, [](Scene& s) { s.route(); }, packet("20.0.0.5", 1)},
    {Drop::no_next_hop, [](Scene& s) { s.host(s.route(), chip::TrunkId{3}); }, packet()},
    {Drop::wrong_ingress_port, [](Scene& s) { s.multicast_route(true); },
     Frame(support::mac(1), {1, 0, 0x5E, 1, 1, 1}).tag(10).ip("10.0.0.1", "239.1.1.1").udp(5, 6), 2, 2},
    {Drop::no_group_member, [](Scene& s) { s.multicast_route(false); },
     Frame(support::mac(1), {1, 0, 0x5E, 1, 1, 1}).tag(10).ip("10.0.0.1", "239.1.1.1").udp(5, 6)},
    {Drop::multicast_flood,
     [](Scene& s) {
       s.chip.vlans.set_multicast_flood(10, {&chip::VlanControl::l2_multicast_flood_mode},
                                        chip::VlanControl::flood_nowhere);
     },
     Frame(support::mac(1), {1, 2, 3, 4, 5, 6}).tag(10).type(0x9000)},
    {Drop::own_port, [](Scene& s) { s.mac_entry(2, Port{1}); }},
    {Drop::isolated,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.chip.port_forwarding.set_destinations(1, {3});
     }},
    {Drop::split_horizon,
     [](Scene& s) {
       chip::VirtualPortId id;
       for (const int group : {1, 2}) {
         const auto vlan = static_cast<uint16_t>(100 * group);
         EXPECT_EQ(s.chip.virtual_ports.create({.criteria = chip::VirtualPort::match_port_vlan,
                                                .port = 1,
                                                .match_vlan = vlan,
                                                .egress_vlan = 10,
                                                .ingress_network_group = group,
                                                .egress_network_group = group},
                                               id),
                   Status::ok);
         s.chip.vlans.add_virtual_port(10, id);
       }
       s.chip.vlan_controls.set(static_cast<int>(chip::VlanControlOfChip::translate), 1);
       s.chip.vlan_controls.set_port(1, static_cast<int>(chip::VlanControlOfPort::translate_ingress), 1);
       s.chip.vlan_controls.set_port(1, static_cast<int>(chip::VlanControlOfPort::translate_first_key),
                                     chip::VlanControls::key_port_outer);
       s.chip.network_groups.set(1, chip::NetworkGroups::prune_ingress);
       s.mac_entry(2, id);
     },
     Frame(1, 2).tag(100).type(0x9000)},
    {Drop::flood_blocked,
     [](Scene& s) {
       for (const Port to : chip::PortSet{2, 3, 4})
         s.chip.port_filters.block_floods(1, to, chip::PortFilters::broadcast);
     },
     broadcast},
    {Drop::no_exit, [](Scene& s) { s.mac_entry(2, chip::TrunkId{3}); }},
    {Drop::no_interface,
     [](Scene& s) {
       s.route();
       s.host(77, Port{5});
     },
     packet(), 1, 5},
    {Drop::ttl_threshold, [](Scene& s) { s.host(s.route(200), Port{5}); }, packet(), 1, 5},
    {Drop::egress_no_vlan,
     [](Scene& s) {
       s.host(s.route(), Port{5});
       s.chip.vlans.destroy(20);
     },
     packet(), 1, 5},
    {Drop::egress_not_member,
     [](Scene& s) {
       s.mac_entry(2, Port{5});
       s.chip.port_filters.set_membership_checks(5, chip::PortFilters::check_egress);
     },
     plain, 1, 5},
    {Drop::egress_spanning_tree,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.chip.spanning_trees.set_state(1, 2, static_cast<int>(chip::StpState::block));
     },
     plain, 1, 2},
    {Drop::egress_port_down,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.chip.port_macs.set_partner(2, false);
     },
     plain, 1, 2},
    {Drop::egress_field_rule,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.rule(FieldProcessor::egress_stage, FieldAction::drop);
     },
     plain, 1, 2},
    {Drop::egress_policer,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.rule(FieldProcessor::egress_stage, FieldAction::drop_red, true);
     },
     plain, 1, 2},
    {Drop::egress_too_long,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.chip.port_macs.set_frame_max(2, 64);
     },
     Frame(1, 2).tag(10).type(0x9000).length(100), 1, 2},
    {Drop::egress_rate,
     [](Scene& s) {
       s.mac_entry(2, Port{2});
       s.chip.port_rates.shape(2, {chip::RateUnit::packets, 1, 1});
     },
     plain, 1, 2, 1},
    {Drop::egress_no_exit,
     [](Scene& s) {
       s.trunk_of(3);
       s.chip.port_macs.set_partner(3, false);
     },
     broadcast, 1, 1, 0, true},
    {Drop::egress_loop,
     [](Scene& s) {
       s.rule(FieldProcessor::ingress_stage, FieldAction::redirect_port, false, 2);
       s.chip.port_macs.set_loopback(2, static_cast<int>(chip::Loopback::mac));
     },
     plain, 1, 2, 0, true},
};

TEST(Drops, EachHasAFrameThatIsLostForItAndCountedAtItsPort) {
  std::set<Drop> reached;
  for (const Case& one : cases) {
    Scene scene;
    one.prepare(scene);
    chip::Pipeline pipeline(scene.chip);
    Nowhere wire;
    for (int i = 0; i < one.earlier; ++i) EXPECT_EQ(pipeline.receive(one.port, one.frame, wire), Drop::none);
    EXPECT_STREQ(name(pipeline.receive(one.port, one.frame, wire)), name(one.passes ? Drop::none : one.reason))
        << name(one.reason);
    const auto count = [&](Port port, Drop reason) { return scene.chip.drops[port][static_cast<std::size_t>(reason)]; };
    EXPECT_EQ(count(one.counted_at, one.reason), 1U) << name(one.reason);
    uint64_t all = 0;
    for (const auto& [port, counts] : scene.chip.drops)
      for (const uint64_t number : counts) all += number;
    EXPECT_EQ(all, 1U) << name(one.reason) << ": other drops are counted";
    EXPECT_STRNE(remedy(one.reason), "");
    reached.insert(one.reason);
  }
  for (int reason = 1; reason < chip::drop_count; ++reason)
    EXPECT_TRUE(reached.contains(static_cast<Drop>(reason))) << name(static_cast<Drop>(reason)) << " has no frame";
}

/// How many copies a chip loses for a reason at a port while a frame passes that comes in at port 1.
uint64_t lost(Scene& scene, const Bytes& frame, Drop reason, Port at) {
  const uint64_t& count = scene.chip.drops[at][static_cast<std::size_t>(reason)];
  const uint64_t before = count;
  chip::Pipeline pipeline(scene.chip);
  Nowhere wire;
  pipeline.receive(1, frame, wire);
  return count - before;
}

TEST(Drops, TellOfMirrorsWithoutALink) {
  Scene scene;
  scene.mac_entry(2, Port{2});
  chip::MirrorId id;
  EXPECT_EQ(scene.chip.mirrors.set_mode(static_cast<int>(chip::Mirrors::Mode::l2)), Status::ok);
  EXPECT_EQ(scene.chip.mirrors.create(0, Port{9}, id), Status::ok);
  EXPECT_EQ(scene.chip.mirrors.add_source(1, chip::Mirrors::enable | chip::Mirrors::ingress, id), Status::ok);
  EXPECT_EQ(lost(scene, plain, Drop::egress_port_down, 9), 0U);
  scene.chip.port_macs.set_partner(9, false);
  EXPECT_EQ(lost(scene, plain, Drop::egress_port_down, 9), 1U);
}

TEST(Drops, TellOfTheTrunksThatAMulticastRouteDoesNotReach) {
  Scene scene;
  scene.multicast_route(false);
  scene.trunk_of(5);
  EXPECT_EQ(scene.chip.multicast_groups.add_member(5, {.port = 5, .encapsulation = scene.route()}), Status::ok);
  const Bytes packet = Frame(support::mac(1), {1, 0, 0x5E, 1, 1, 1}).tag(10).ip("10.0.0.1", "239.1.1.1").udp(5, 6);
  EXPECT_EQ(lost(scene, packet, Drop::egress_no_exit, 1), 0U);
  scene.chip.port_macs.set_partner(5, false);
  EXPECT_EQ(lost(scene, packet, Drop::egress_no_exit, 1), 1U);
}

TEST(Drops, OfTheCopyForTheCpuAreThoseOfATrappedFrame) {
  Scene scene;
  scene.rule(FieldProcessor::ingress_stage, FieldAction::redirect_port);
  scene.chip.port_rates.shape(chip::Ports::cpu, {chip::RateUnit::packets, 1, 1});
  chip::Pipeline pipeline(scene.chip);
  Nowhere wire;
  const Bytes frame = plain;
  EXPECT_EQ(pipeline.receive(1, frame, wire), Drop::trapped);
  EXPECT_EQ(pipeline.receive(1, frame, wire), Drop::egress_rate);
  EXPECT_EQ(scene.chip.drops[Port{1}][static_cast<std::size_t>(Drop::trapped)], 1U);
}

TEST(Drops, HaveNamesThatDiffer) {
  std::set<std::string> names;
  for (int reason = 0; reason < chip::drop_count; ++reason)
    EXPECT_TRUE(names.insert(name(static_cast<Drop>(reason))).second) << name(static_cast<Drop>(reason));
}

}  // namespace
