#include "chip/virtual_ports.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;
using chip::VirtualPort;

constexpr int gport_of_3 = chip::gport::of(chip::gport::local, 3);

VirtualPort single(int port, uint16_t vlan) {
  VirtualPort result;
  result.criteria = VirtualPort::match_port_vlan;
  result.port = port;
  result.match_vlan = vlan;
  return result;
}

VirtualPort of_both_tags(int port, uint16_t outer, uint16_t inner) {
  VirtualPort result = single(port, outer);
  result.criteria = VirtualPort::match_port_vlan_stacked;
  result.match_inner_vlan = inner;
  return result;
}

class VirtualPorts : public testing::Test {
 protected:
  int create(const VirtualPort& virtual_port) {
    int made = 0;
    EXPECT_EQ(virtual_ports.create(virtual_port, made), Status::ok);
    return made;
  }

  chip::Ports ports{12};
  chip::VirtualPorts virtual_ports{ports};
  int gport = 0;
};

TEST_F(VirtualPorts, HaveGportsOfTheirOwnKind) {
  VirtualPort wanted = single(gport_of_3, 100);
  wanted.flags = 0x180;
  wanted.egress_vlan = 10;
  const int made = create(wanted);
  EXPECT_EQ(made >> 26, 17);
  EXPECT_EQ(made & 0x3FFFFFF, 1);
  const VirtualPort* const found = virtual_ports.find(made);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->flags, 0x180U);
  EXPECT_EQ(found->egress_vlan, 10);
  EXPECT_EQ(found->port, gport_of_3);
}

TEST_F(VirtualPorts, AreFoundByWhatTheyMatch) {
  const int by_outer = create(single(3, 100));
  const int by_both = create(of_both_tags(3, 100, 5));
  EXPECT_EQ(virtual_ports.find_match(single(gport_of_3, 100), gport), Status::ok);
  EXPECT_EQ(gport, by_outer);
  EXPECT_EQ(virtual_ports.find_match(of_both_tags(gport_of_3, 100, 5), gport), Status::ok);
  EXPECT_EQ(gport, by_both);
  EXPECT_EQ(virtual_ports.find_match(of_both_tags(3, 100, 6), gport), Status::not_found);
  EXPECT_EQ(virtual_ports.find_match(single(4, 100), gport), Status::not_found);
}

TEST_F(VirtualPorts, DoNotMatchTheSameFramesTwice) {
  create(single(3, 100));
  create(of_both_tags(3, 100, 5));
  EXPECT_EQ(virtual_ports.create(single(gport_of_3, 100), gport), Status::exists);
  EXPECT_EQ(virtual_ports.create(of_both_tags(3, 100, 5), gport), Status::exists);
  create(single(4, 100));
  create(of_both_tags(3, 100, 6));
}

TEST_F(VirtualPorts, RefuseAMatchThatThereIsNot) {
  VirtualPort without_criteria = single(3, 100);
  without_criteria.criteria = 0;
  VirtualPort to_nowhere = single(3, 100);
  to_nowhere.egress_vlan = 4096;
  for (const VirtualPort& bad : {without_criteria, single(3, 0), single(3, 4096), of_both_tags(3, 100, 0),
                                 of_both_tags(3, 100, 4096), of_both_tags(3, 0, 5), to_nowhere})
    EXPECT_EQ(virtual_ports.create(bad, gport), Status::bad_parameter);
  EXPECT_EQ(virtual_ports.create(single(13, 100), gport), Status::bad_port);
  EXPECT_EQ(virtual_ports.find_match(without_criteria, gport), Status::bad_parameter);
  EXPECT_TRUE(virtual_ports.all().empty());
}

TEST_F(VirtualPorts, AreDestroyedOnce) {
  const int made = create(single(3, 100));
  EXPECT_EQ(virtual_ports.destroy(made), Status::ok);
  EXPECT_EQ(virtual_ports.destroy(made), Status::not_found);
  EXPECT_EQ(virtual_ports.absent(made), Status::not_found);
  EXPECT_EQ(virtual_ports.find_match(single(3, 100), gport), Status::not_found);
  EXPECT_EQ(create(single(3, 100)), made);
}

TEST_F(VirtualPorts, AreNotThePortsOfOtherKinds) {
  create(single(3, 100));
  for (const int other : {1, gport_of_3, chip::gport::of_port(1)}) {
    EXPECT_EQ(virtual_ports.find(other), nullptr) << other;
    EXPECT_EQ(virtual_ports.absent(other), Status::bad_port) << other;
    EXPECT_EQ(virtual_ports.destroy(other), Status::bad_port) << other;
  }
}

TEST_F(VirtualPorts, AreFullAtTheirCapacity) {
  for (int i = 0; i < chip::VirtualPorts::capacity; ++i)
    create(of_both_tags(1 + i / 4000, static_cast<uint16_t>(1 + i % 4000), 1));
  EXPECT_EQ(virtual_ports.create(single(3, 100), gport), Status::full);
  virtual_ports.clear();
  create(single(3, 100));
}

}  // namespace
