// What a reset of the chip puts back, member by member, and what it leaves alone; and that a saved state has it all.
#include <gtest/gtest.h>

#include <span>
#include <sstream>
#include <string>

#include "chip/chip.h"
#include "chip/state.h"

namespace {

using chip::Chip;
using chip::Status;

/// A part of the chip: something that changes it, and a number that tells.
struct Part {
  const char* name;
  Status (*change)(Chip&);
  int64_t (*told)(Chip&);
};

Status made_true(bool& value) {
  value = true;
  return Status::ok;
}

template <class Table>
int64_t size(const Table& table) {
  return static_cast<int64_t>(table.all().size());
}

/// In the order of the members of Chip.
const Part put_back[] = {
    {"vlans", [](Chip& c) { return c.vlans.create(10); }, [](Chip& c) { return size(c.vlans); }},
    {"vlan_controls", [](Chip& c) { return c.vlan_controls.set(5, 1); },
     [](Chip& c) { return int64_t{c.vlan_controls.translate()}; }},
    {"vlan_translations",
     [](Chip& c) {
       return c.vlan_translations.add(1, 10, {20, 0});
     },
     [](Chip& c) { return static_cast<int64_t>(c.vlan_translations.ingress().size()); }},
    {"egress_actions",
     [](Chip& c) {
       return c.egress_actions.set({chip::Port{1}, 10, 0}, {});
     },
     [](Chip& c) { return size(c.egress_actions); }},
    {"port_filters", [](Chip& c) { return c.port_filters.set_membership_checks(1, chip::PortFilters::check_ingress); },
     [](Chip& c) { return int64_t{c.port_filters.membership_checks(1)}; }},
    {"port_forwarding", [](Chip& c) { return c.port_forwarding.set_untagged_vlan(1, 10); },
     [](Chip& c) { return int64_t{c.port_forwarding.of(1).untagged_vlan}; }},
    {"port_macs", [](Chip& c) { return c.port_macs.set_frame_max(1, 1518); },
     [](Chip& c) { return int64_t{c.port_macs.find(1)->frame_max}; }},
    {"link_scan", [](Chip& c) { return c.link_scan.set_interval(7); },
     [](Chip& c) { return int64_t{c.link_scan.interval()}; }},
    {"phy_registers",
     [](Chip& c) {
       return c.phy_registers.write({1, chip::PhyRegisters::clause22, 4}, 5);
     },
     [](Chip& c) { return size(c.phy_registers); }},
    {"phy_controls", [](Chip& c) { return c.phy_controls.set(1, static_cast<int>(chip::PhyControl::dfe), 1); },
     [](Chip& c) { return size(c.phy_controls); }},
    {"port_rates", [](Chip& c) { return c.port_rates.police(1, {.rate = 64}); },
     [](Chip& c) { return int64_t{c.port_rates.ingress()[1].rate}; }},
    {"storm_rates",
     [](Chip& c) {
       return c.storm_rates.set({1, chip::StormRates::broadcast}, chip::StormRates::broadcast, 100);
     },
     [](Chip& c) {
       return int64_t{c.storm_rates.find({1, chip::StormRates::broadcast}) != nullptr};
     }},
    {"counters", [](Chip& c) { return c.counters.set(1, 0, 64); },
     [](Chip& c) { return static_cast<int64_t>(*c.counters.find(1, 0)); }},
    {"drops",
     [](Chip& c) {
       c.drops[1][1] = 1;
       return Status::ok;
     },
     [](Chip& c) { return static_cast<int64_t>(c.drops[1][1]); }},
    {"meters",
     [](Chip& c) {
       c.meters.take(chip::Meters::Kind::storm_broadcast, 1, c.now, 1, 1, 1);
       return Status::ok;
     },
     [](Chip& c) {
       chip::Meters meters = c.meters;
       return int64_t{meters.take(chip::Meters::Kind::storm_broadcast, 1, c.now, 1, 1, 1)};
     }},
    {"protocol_vlans",
     [](Chip& c) {
       return c.protocol_vlans.add({1, chip::ProtocolVlans::ethernet2, 0x0800}, 10);
     },
     [](Chip& c) { return size(c.protocol_vlans); }},
    {"switch_controls",
     [](Chip& c) { return c.switch_controls.set(static_cast<int>(chip::SwitchControlOfChip::l3_egress_mode), 1); },
     [](Chip& c) {
       return int64_t{*c.switch_controls.get(static_cast<int>(chip::SwitchControlOfChip::l3_egress_mode))};
     }},
    {"switch_controls of ports",
     [](Chip& c) { return c.switch_controls.set_port(1, static_cast<int>(chip::SwitchControlOfPort::dhcp_drop), 1); },
     [](Chip& c) { return int64_t{c.switch_controls.is_on(chip::SwitchControlOfPort::dhcp_drop, 1)}; }},
    {"mac_table",
     [](Chip& c) {
       return c.mac_table.add({.mac = {2, 0, 0, 0, 0, 1}, .vlan = 1, .place = chip::Port{1}});
     },
     [](Chip& c) { return int64_t{c.mac_table.size()}; }},
    {"trunks",
     [](Chip& c) {
       chip::TrunkId id;
       return c.trunks.create(0, id);
     },
     [](Chip& c) { return size(c.trunks); }},
    {"learn_limits", [](Chip& c) { return c.learn_limits.set({chip::Port{1}}, {.limit = 4}); },
     [](Chip& c) { return size(c.learn_limits); }},
    {"mirrors", [](Chip& c) { return c.mirrors.set_mode(static_cast<int>(chip::Mirrors::Mode::l2)); },
     [](Chip& c) { return static_cast<int64_t>(c.mirrors.mode()); }},
    {"mac_vlans",
     [](Chip& c) {
       return c.mac_vlans.add({2, 0, 0, 0, 0, 1}, {10, 0});
     },
     [](Chip& c) { return size(c.mac_vlans); }},
    {"subnet_vlans",
     [](Chip& c) {
       return c.subnet_vlans.add(*chip::subnet_of_ip4(0x0A000000, 0xFF000000), {10, 0});
     },
     [](Chip& c) { return size(c.subnet_vlans); }},
    {"spanning_trees", [](Chip& c) { return c.spanning_trees.create(2); },
     [](Chip& c) { return size(c.spanning_trees); }},
    {"l2_cache",
     [](Chip& c) {
       int index = 0;
       return c.l2_cache.set(chip::L2Cache::any_index, {}, index);
     },
     [](Chip& c) { return size(c.l2_cache); }},
    {"multicast_groups",
     [](Chip& c) {
       chip::GroupId id;
       return c.multicast_groups.create(chip::MulticastGroups::l2, id);
     },
     [](Chip& c) { return size(c.multicast_groups); }},
    {"multicast_routing", [](Chip& c) { return made_true(c.multicast_routing.value); },
     [](Chip& c) { return int64_t{c.multicast_routing.value}; }},
    {"multicast_routes", [](Chip& c) { return c.multicast_routes.add({.vlan = 1, .address = {0xE1}}, {}); },
     [](Chip& c) { return size(c.multicast_routes); }},
    {"unicast_routing", [](Chip& c) { return made_true(c.unicast_routing.value); },
     [](Chip& c) { return int64_t{c.unicast_routing.value}; }},
    {"l3_interfaces",
     [](Chip& c) {
       int id = 0;
       return c.l3_interfaces.create({.vlan = 1}, id);
     },
     [](Chip& c) { return size(c.l3_interfaces); }},
    {"egress_objects",
     [](Chip& c) {
       int id = 0;
       return c.egress_objects.create({}, id);
     },
     [](Chip& c) { return size(c.egress_objects); }},
    {"hosts",
     [](Chip& c) {
       return c.hosts.add({0, 0x0A000001}, {}, false);
     },
     [](Chip& c) { return size(c.hosts); }},
    {"routes",
     [](Chip& c) {
       return c.routes.add({0, 0x0A000000, 8}, {}, false);
     },
     [](Chip& c) { return size(c.routes); }},
    {"virtual_ports",
     [](Chip& c) {
       chip::VirtualPortId id;
       return c.virtual_ports.create({.criteria = chip::VirtualPort::match_port_vlan, .port = 1, .match_vlan = 10}, id);
     },
     [](Chip& c) { return size(c.virtual_ports); }},
    {"network_groups", [](Chip& c) { return c.network_groups.set(1, chip::NetworkGroups::prune_ingress); },
     [](Chip& c) { return int64_t{*c.network_groups.find(1)}; }},
    {"reserved_multicast", [](Chip& c) { return c.reserved_multicast.set(0, {{}}); },
     [](Chip& c) { return static_cast<int64_t>(c.reserved_multicast.of_outer_header().size()); }},
    {"queues",
     [](Chip& c) {
       const int weights[chip::Queues::count] = {};
       return c.queues.schedule(2, weights, 0);
     },
     [](Chip& c) { return int64_t{c.queues.mode()}; }},
    {"network_interfaces",
     [](Chip& c) {
       int id = 0;
       return c.network_interfaces.create({}, id);
     },
     [](Chip& c) { return size(c.network_interfaces); }},
    {"led_processors",
     [](Chip& c) {
       std::istringstream program(":00000001FF\n");
       return c.led_processors.load(0, program);
     },
     [](Chip& c) { return int64_t{c.led_processors[0].loaded}; }},
    {"policers",
     [](Chip& c) {
       int id = 0;
       return c.policers.create({}, id);
     },
     [](Chip& c) { return size(c.policers); }},
    {"field_processor",
     [](Chip& c) {
       int id = 0;
       return c.field_processor.create_group({chip::FieldProcessor::ingress_stage}, 0, id);
     },
     [](Chip& c) { return static_cast<int64_t>(c.field_processor.groups().size()); }},
};

const Part kept[] = {
    {"the clock",
     [](Chip& c) {
       c.now += 7;
       return Status::ok;
     },
     [](Chip& c) { return static_cast<int64_t>(c.now); }},
    {"cables", [](Chip& c) { return c.port_macs.set_partner(1, true); },
     [](Chip& c) { return int64_t{c.port_macs.find(1)->link()}; }},
    {"temperature sensors",
     [](Chip& c) {
       c.temperature_sensors.set({{100, 200}});
       return Status::ok;
     },
     [](Chip& c) { return size(c.temperature_sensors); }},
};

TEST(ChipReset, PutsEveryTableAndSettingBack) {
  for (const Part& part : put_back) {
    Chip chip(12);
    const int64_t fresh = part.told(chip);
    ASSERT_EQ(part.change(chip), Status::ok) << part.name;
    ASSERT_NE(part.told(chip), fresh) << part.name;
    chip.reset();
    EXPECT_EQ(part.told(chip), fresh) << part.name;
  }
}

TEST(ChipReset, LeavesWhatIsOutsideTheChipAlone) {
  for (const Part& part : kept) {
    Chip chip(12);
    const int64_t fresh = part.told(chip);
    ASSERT_EQ(part.change(chip), Status::ok) << part.name;
    const int64_t changed = part.told(chip);
    ASSERT_NE(changed, fresh) << part.name;
    chip.reset();
    EXPECT_EQ(part.told(chip), changed) << part.name;
  }
}

TEST(ChipReset, LeavesTheObserverOfTheMacTableInPlace) {
  Chip chip(12);
  int changes = 0;
  chip.mac_table.observe([&](chip::MacTable::Change, const chip::MacEntry&) { ++changes; });
  chip.reset();
  EXPECT_EQ(changes, 0);
  chip.mac_table.add({.mac = {2, 0, 0, 0, 0, 1}, .vlan = 1, .place = chip::Port{1}});
  EXPECT_EQ(changes, 1);
}

TEST(ChipState, HasEveryTableAndSetting) {
  for (const std::span<const Part> parts : {std::span<const Part>(put_back), std::span<const Part>(kept)})
    for (const Part& part : parts) {
      Chip chip(12);
      ASSERT_EQ(part.change(chip), Status::ok) << part.name;
      Chip other(12);
      chip::load_state(chip::state_of(chip), other);
      EXPECT_EQ(part.told(other), part.told(chip)) << part.name;
    }
}

TEST(ChipState, IsTheSameForTheSameContents) {
  Chip chip(12);
  for (const std::span<const Part> parts : {std::span<const Part>(put_back), std::span<const Part>(kept)})
    for (const Part& part : parts) ASSERT_EQ(part.change(chip), Status::ok) << part.name;
  const std::string state = chip::state_of(chip);
  Chip other(12);
  chip::load_state(state, other);
  EXPECT_EQ(chip::state_of(other), state);
}

TEST(ChipState, IsNotReadWithoutItsEnd) {
  const std::string state = chip::state_of(Chip(1));
  for (std::size_t length = 0; length < state.size(); length += 1 + state.size() / 100) {
    Chip chip(1);
    EXPECT_THROW(chip::load_state(state.substr(0, length), chip), std::exception) << length;
  }
}

}  // namespace
