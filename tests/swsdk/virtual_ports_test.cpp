#include "chip/virtual_ports.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::Status;
using chip::VirtualPort;
using chip::VirtualPortId;

VirtualPort single(Port port, uint16_t vlan) {
  VirtualPort result;
  result.criteria = VirtualPort::match_port_vlan;
  result.port = port;
  result.match_vlan = vlan;
  return result;
}

VirtualPort of_both_tags(Port port, uint16_t outer, uint16_t inner) {
  VirtualPort result = single(port, outer);
  result.criteria = VirtualPort::match_port_vlan_stacked;
  result.match_inner_vlan = inner;
  return result;
}

class VirtualPorts : public testing::Test {
 protected:
  VirtualPortId create(const VirtualPort& virtual_port) {
    VirtualPortId made;
    EXPECT_EQ(virtual_ports.create(virtual_port, made), Status::ok);
    return made;
  }

  chip::Ports ports{12};
  chip::VirtualPorts virtual_ports{ports};
  VirtualPortId id;
};

TEST_F(VirtualPorts, KeepWhatTheyWereMadeOf) {
  VirtualPort wanted = single(3, 100);
  wanted.flags = 0x180;
  wanted.egress_vlan = 10;
  const VirtualPortId made = create(wanted);
  EXPECT_EQ(made, VirtualPortId{1});
  const VirtualPort* const found = virtual_ports.find(made);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->flags, 0x180U);
  EXPECT_EQ(found->egress_vlan, 10);
  EXPECT_EQ(found->port, Port{3});
}

TEST_F(VirtualPorts, AreFoundByWhatTheyMatch) {
  const VirtualPortId by_outer = create(single(3, 100));
  const VirtualPortId by_both = create(of_both_tags(3, 100, 5));
  EXPECT_EQ(virtual_ports.find_match(single(3, 100)), by_outer);
  EXPECT_EQ(virtual_ports.find_match(of_both_tags(3, 100, 5)), by_both);
  for (const VirtualPort& none : {of_both_tags(3, 100, 6), single(4, 100)}) {
    EXPECT_EQ(virtual_ports.find_match(none), std::nullopt);
    EXPECT_EQ(virtual_ports.absent_match(none), Status::not_found);
  }
}

TEST_F(VirtualPorts, TakeTheTagsThatTheyMatch) {
  const VirtualPortId by_outer = create(single(3, 100));
  const VirtualPortId by_both = create(of_both_tags(3, 100, 5));
  EXPECT_EQ(virtual_ports.matching(3, 100), by_outer);
  EXPECT_EQ(virtual_ports.matching(3, 100, 5), by_both);
  EXPECT_EQ(virtual_ports.matching(3, 101), std::nullopt);
  EXPECT_EQ(virtual_ports.matching(3, 100, 6), std::nullopt);
  EXPECT_EQ(virtual_ports.matching(4, 100), std::nullopt);
}

TEST_F(VirtualPorts, DoNotMatchTheSameFramesTwice) {
  create(single(3, 100));
  create(of_both_tags(3, 100, 5));
  EXPECT_EQ(virtual_ports.create(single(3, 100), id), Status::exists);
  EXPECT_EQ(virtual_ports.create(of_both_tags(3, 100, 5), id), Status::exists);
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
    EXPECT_EQ(virtual_ports.create(bad, id), Status::bad_parameter);
  EXPECT_EQ(virtual_ports.create(single(13, 100), id), Status::bad_port);
  EXPECT_EQ(virtual_ports.find_match(without_criteria), std::nullopt);
  EXPECT_EQ(virtual_ports.absent_match(without_criteria), Status::bad_parameter);
  EXPECT_EQ(virtual_ports.find_match(single(13, 100)), std::nullopt);
  EXPECT_EQ(virtual_ports.absent_match(single(13, 100)), Status::bad_port);
  EXPECT_TRUE(virtual_ports.all().empty());
}

TEST_F(VirtualPorts, AreDestroyedOnce) {
  const VirtualPortId made = create(single(3, 100));
  EXPECT_EQ(virtual_ports.destroy(made), Status::ok);
  EXPECT_EQ(virtual_ports.destroy(made), Status::not_found);
  EXPECT_EQ(virtual_ports.absent(made), Status::not_found);
  EXPECT_EQ(virtual_ports.find(made), nullptr);
  EXPECT_EQ(virtual_ports.find_match(single(3, 100)), std::nullopt);
  EXPECT_EQ(create(single(3, 100)), made);
}

TEST_F(VirtualPorts, HaveIdsFrom1To4096) {
  create(single(3, 100));
  for (const VirtualPortId bad : {VirtualPortId{-1}, VirtualPortId{0}, VirtualPortId{4097}}) {
    EXPECT_EQ(virtual_ports.find(bad), nullptr) << bad.number();
    EXPECT_EQ(virtual_ports.absent(bad), Status::bad_parameter) << bad.number();
    EXPECT_EQ(virtual_ports.destroy(bad), Status::bad_parameter) << bad.number();
  }
  EXPECT_EQ(virtual_ports.absent(4096), Status::not_found);
}

TEST_F(VirtualPorts, AreFullAtTheirCapacity) {
  for (int i = 0; i < chip::VirtualPorts::capacity; ++i)
    create(of_both_tags(Port::of(1 + i / 4000), static_cast<uint16_t>(1 + i % 4000), 1));
  EXPECT_EQ(virtual_ports.create(single(3, 100), id), Status::full);
  virtual_ports.clear();
  create(single(3, 100));
}

}  // namespace
