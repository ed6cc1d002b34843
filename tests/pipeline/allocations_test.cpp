// Frames on their way allocate nothing: counted in the second round of each, when everything that is kept is there.
#include <cstdlib>
#include <new>

#include "pipeline_fixture.h"

namespace {

int allocations = 0;

}  // namespace

// They take the place of the C++ library's in this program.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using support::Bytes;
using support::Frame;

class Allocations : public support::PipelineTest {
 protected:
  Allocations() {
    vlan(10, {0, 1, 2, 3, 4}, {2});
    vlan(20, {1, 5});
    for (const chip::Port station : chip::PortSet{1, 2}) {
      EXPECT_EQ(chip.mac_table.add({.mac = mac(station.number()), .vlan = 10, .place = station}), Status::ok);
    }
  }

  /// How many it takes to pass on a frame that came in at port 1, when others like it have been before.
  int of(const Bytes& frame) {
    Sink sink;
    pipeline.receive(1, frame, sink);
    const int before = allocations;
    for (int i = 0; i < 8; ++i) pipeline.receive(1, frame, sink);
    EXPECT_GT(sink.copies, 0);
    return allocations - before;
  }

  const Bytes known = Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(5, 6);
  const Bytes flooded = Frame(1, 0xFF).tag(10).type(0x9000);

 private:
  struct Sink final : chip::Wire {
    void transmit(chip::Port, std::span<const uint8_t>) override { ++copies; }
    void deliver(const chip::CpuFrame&) override { ++copies; }
    int copies = 0;
  };
};

TEST_F(Allocations, AreCounted) {
  const int before = allocations;
  const std::vector<int> vector(1);
  EXPECT_EQ(allocations, before + 1);
}

TEST_F(Allocations, BridgedFramesHaveNone) {
  EXPECT_EQ(of(known), 0);
  EXPECT_EQ(of(flooded), 0);
}

TEST_F(Allocations, FramesForTheCpuHaveNone) {
  const int arp = static_cast<int>(chip::SwitchControlOfPort::arp_request_to_cpu);
  EXPECT_EQ(chip.switch_controls.set_port(1, arp, 1), Status::ok);
  EXPECT_EQ(of(Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2")), 0);
}

TEST_F(Allocations, RoutedFramesHaveNone) {
  chip.unicast_routing = true;
  int interface = 0;
  for (const uint16_t id : {uint16_t{10}, uint16_t{20}}) {
    const chip::L3Interface wanted{.flags = chip::L3Interface::in_mac_table, .mac = mac(router), .vlan = id};
    EXPECT_EQ(chip.l3_interfaces.create(wanted, interface), Status::ok);
  }
  int next_hop = 0;
  EXPECT_EQ(
      chip.egress_objects.create({.interface = interface, .mac = mac(5), .vlan = 20, .place = chip::Port{5}}, next_hop),
      Status::ok);
  EXPECT_EQ(chip.hosts.add({0, support::ip4("10.0.20.5")}, {.interface = next_hop}, false), Status::ok);
  EXPECT_EQ(chip.routes.add({0, support::ip4("10.0.30.0"), 24}, {.interface = next_hop}, false), Status::ok);
  EXPECT_EQ(of(Frame(1, router).tag(10).ip("10.0.10.1", "10.0.20.5").udp(5, 6)), 0);
  EXPECT_EQ(of(Frame(1, router).tag(10).ip("10.0.10.1", "10.0.30.7").udp(5, 6)), 0);
}

TEST_F(Allocations, RoutedMulticastHasNone) {
  chip.multicast_routing = true;
  chip::GroupId group;
  int interface = 0;
  EXPECT_EQ(chip.multicast_groups.create(chip::MulticastGroups::l3, group), Status::ok);
  EXPECT_EQ(chip.l3_interfaces.create({.mac = mac(0xE0), .vlan = 20}, interface), Status::ok);
  EXPECT_EQ(chip.multicast_groups.add_member(group, {5, interface}), Status::ok);
  EXPECT_EQ(chip.multicast_routes.add({.vlan = 10, .address = {225, 1, 1, 1}},
                                      {.flags = chip::MulticastRoute::from_any_port, .group = group, .valid = 1}),
            Status::ok);
  EXPECT_EQ(of(Frame(support::mac(1), {0x01, 0, 0x5E, 1, 1, 1}).tag(10).ip("10.0.0.1", "225.1.1.1").udp(5, 6)), 0);
}

TEST_F(Allocations, FramesThatMeetRulesHaveNone) {
  chip::FieldProcessor& rules = chip.field_processor;
  for (const int stage : {chip::FieldProcessor::ingress_stage, chip::FieldProcessor::egress_stage}) {
    int group = 0;
    int entry = 0;
    EXPECT_EQ(rules.create_group({stage, static_cast<int>(chip::FieldQualifier::outer_vlan)}, 0, group), Status::ok);
    EXPECT_EQ(rules.enable_group(group, true), Status::ok);
    EXPECT_EQ(rules.create_entry(group, entry), Status::ok);
    EXPECT_EQ(rules.add_action(entry, static_cast<int>(chip::FieldAction::drop_red), 0, 0), Status::ok);
    int policer = 0;
    EXPECT_EQ(chip.policers.create({.mode = 3, .committed = {8, 1, 8}, .peak = {8, 1, 8}}, policer), Status::ok);
    EXPECT_EQ(rules.attach_policer(entry, 0, policer), Status::ok);
    EXPECT_EQ(rules.install(entry), Status::ok);
  }
  EXPECT_EQ(of(known), 0);
}

TEST_F(Allocations, MirroredAndLimitedFramesHaveNone) {
  chip.mirrors.set_mode(1);
  chip::MirrorId mirror;
  EXPECT_EQ(chip.mirrors.create(0, chip::Port{4}, mirror), Status::ok);
  EXPECT_EQ(chip.mirrors.add_source(1, chip::Mirrors::enable | chip::Mirrors::ingress, mirror), Status::ok);
  EXPECT_EQ(chip.mirrors.add_source(2, chip::Mirrors::enable | chip::Mirrors::egress, mirror), Status::ok);
  chip.port_rates.police(1, {chip::RateUnit::kilobits, 1000, 1000});
  chip.port_rates.shape(2, {chip::RateUnit::kilobits, 1, 2});
  EXPECT_EQ(chip.storm_rates.set({1, chip::StormRates::broadcast}, chip::StormRates::broadcast, 3), Status::ok);
  EXPECT_EQ(of(known), 0);
  EXPECT_EQ(of(flooded), 0);
}

TEST_F(Allocations, FramesOfTrunksHaveNone) {
  chip::TrunkId trunk;
  EXPECT_EQ(chip.trunks.create(0, trunk), Status::ok);
  EXPECT_EQ(chip.trunks.set(trunk, 3, {3, 4}), Status::ok);
  EXPECT_EQ(chip.mac_table.add({.mac = mac(3), .vlan = 10, .place = trunk}), Status::ok);
  EXPECT_EQ(of(Frame(1, 3).tag(10).type(0x9000)), 0);
  EXPECT_EQ(of(flooded), 0);
}

}  // namespace
