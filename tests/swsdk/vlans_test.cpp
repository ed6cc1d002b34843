#include "chip/vlans.h"

#include <gtest/gtest.h>

namespace {

using chip::PortSet;
using chip::Status;
using chip::VirtualPortId;
using chip::Vlan;

class Vlans : public testing::Test {
 protected:
  const Vlan& vlan(int id) { return vlans.all().at(id); }

  chip::Ports ports{12};
  chip::Vlans vlans{ports};
};

TEST_F(Vlans, StartWithTheDefaultVlanOfEveryPort) {
  ASSERT_EQ(vlans.all().size(), 1U);
  EXPECT_EQ(text(vlan(1).members), "{0-12}");
  EXPECT_EQ(text(vlan(1).untagged), "{1-12}");
}

TEST_F(Vlans, TakeIdsFrom1To4095) {
  for (const int id : {-1, 0, 4096, 65535}) {
    EXPECT_EQ(vlans.create(id), Status::bad_parameter) << id;
    EXPECT_EQ(vlans.destroy(id), Status::bad_parameter) << id;
    EXPECT_EQ(vlans.add_ports(id, {1}, {}), Status::bad_parameter) << id;
    EXPECT_EQ(vlans.remove_ports(id, {1}), Status::bad_parameter) << id;
    EXPECT_EQ(vlans.set_control(id, {}), Status::bad_parameter) << id;
    EXPECT_EQ(vlans.find(id), nullptr) << id;
    EXPECT_EQ(vlans.absent(id), Status::bad_parameter) << id;
  }
  EXPECT_EQ(vlans.create(2), Status::ok);
  EXPECT_EQ(vlans.create(4095), Status::ok);
}

TEST_F(Vlans, AreFoundWhileTheyAreThere) {
  EXPECT_EQ(vlans.find(1), &vlan(1));
  for (const int id : {-1, 0, 10, 4096}) EXPECT_EQ(vlans.find(id), nullptr) << id;
  vlans.create(10);
  vlans.create(20);
  EXPECT_EQ(vlans.find(10), &vlan(10));
  vlans.destroy(10);
  EXPECT_EQ(vlans.find(10), nullptr);
  vlans.destroy_all();
  EXPECT_EQ(vlans.find(20), nullptr);
  EXPECT_EQ(vlans.find(1), &vlan(1));
  vlans.create(20);
  vlans.reset();
  EXPECT_EQ(vlans.find(20), nullptr);
  EXPECT_EQ(vlans.find(1), &vlan(1));
}

TEST_F(Vlans, HoldEveryIdAtOnce) {
  for (int id = 2; id <= 4095; ++id) ASSERT_EQ(vlans.create(id), Status::ok);
  EXPECT_EQ(vlans.all().size(), 4095U);
}

TEST_F(Vlans, AreCreatedEmptyAndOnce) {
  EXPECT_EQ(vlans.create(1), Status::exists);
  EXPECT_EQ(vlans.create(10), Status::ok);
  EXPECT_TRUE(vlan(10).members.empty());
  vlans.add_ports(10, {3}, {});
  EXPECT_EQ(vlans.create(10), Status::exists);
  EXPECT_EQ(text(vlan(10).members), "{3}");
}

TEST_F(Vlans, ThatAreAbsentAnswerNotFound) {
  EXPECT_EQ(vlans.destroy(10), Status::not_found);
  EXPECT_EQ(vlans.add_ports(10, {1}, {}), Status::not_found);
  EXPECT_EQ(vlans.remove_ports(10, {1}), Status::not_found);
  EXPECT_EQ(vlans.set_control(10, {}), Status::not_found);
  EXPECT_EQ(vlans.find(10), nullptr);
  EXPECT_EQ(vlans.absent(10), Status::not_found);
  EXPECT_EQ(vlans.all().size(), 1U);
}

TEST_F(Vlans, KeepTheDefaultVlan) {
  EXPECT_EQ(vlans.destroy(1), Status::bad_id);
  vlans.create(10);
  EXPECT_EQ(vlans.destroy_all(), Status::ok);
  EXPECT_EQ(vlans.all().size(), 1U);
  EXPECT_TRUE(vlans.all().contains(1));
}

TEST_F(Vlans, ForgetEverythingOfADestroyedVlan) {
  vlans.create(10);
  vlans.add_ports(10, {1}, {1});
  vlans.set_control(10, {.flags = 1});
  EXPECT_EQ(vlans.destroy(10), Status::ok);
  vlans.create(10);
  EXPECT_TRUE(vlan(10).members.empty());
  EXPECT_TRUE(vlan(10).untagged.empty());
  EXPECT_EQ(vlan(10).control, chip::VlanControl{});
}

TEST_F(Vlans, TakeTheLastWordOnHowAPortIsTagged) {
  vlans.create(10);
  EXPECT_EQ(vlans.add_ports(10, {1, 2, 3}, {2}), Status::ok);
  EXPECT_EQ(text(vlan(10).untagged), "{2}");
  EXPECT_EQ(vlans.add_ports(10, {2, 3}, {3}), Status::ok);
  EXPECT_EQ(text(vlan(10).members), "{1-3}");
  EXPECT_EQ(text(vlan(10).untagged), "{3}");
}

TEST_F(Vlans, TakeNoUntaggedPortThatIsNoMember) {
  vlans.create(10);
  EXPECT_EQ(vlans.add_ports(10, {1}, {1, 2}), Status::ok);
  EXPECT_EQ(text(vlan(10).members), "{1}");
  EXPECT_EQ(text(vlan(10).untagged), "{1}");
}

TEST_F(Vlans, RefusePortsThatTheChipDoesNotHaveWhole) {
  vlans.create(10);
  EXPECT_EQ(vlans.add_ports(10, {1, 13}, {}), Status::bad_port);
  EXPECT_TRUE(vlan(10).members.empty());
  vlans.add_ports(10, {1}, {});
  EXPECT_EQ(vlans.remove_ports(10, {1, 13}), Status::bad_port);
  EXPECT_EQ(text(vlan(10).members), "{1}");
}

TEST_F(Vlans, LoseRemovedPortsAndLeaveOthersAlone) {
  vlans.create(10);
  vlans.add_ports(10, {1, 2, 3}, {1, 2});
  EXPECT_EQ(vlans.remove_ports(10, {2, 5}), Status::ok);
  EXPECT_EQ(text(vlan(10).members), "{1,3}");
  EXPECT_EQ(text(vlan(10).untagged), "{1}");
}

TEST_F(Vlans, KeepTheirControlRecord) {
  vlans.create(10);
  const chip::VlanControl wanted{.flags = 0x80001, .unknown_unicast_group = chip::GroupId{7}};
  EXPECT_EQ(vlans.set_control(10, wanted), Status::ok);
  EXPECT_EQ(vlan(10).control, wanted);
}

TEST_F(Vlans, KeepVirtualPortsBesideTheirPorts) {
  constexpr VirtualPortId virtual_port = 1;
  vlans.create(10);
  EXPECT_EQ(vlans.add_virtual_port(10, virtual_port), Status::ok);
  EXPECT_EQ(vlans.add_virtual_port(10, virtual_port), Status::ok);
  EXPECT_EQ(vlan(10).virtual_members, std::set<VirtualPortId>{virtual_port});
  EXPECT_TRUE(vlan(10).members.empty());
  EXPECT_EQ(vlans.remove_virtual_port(10, virtual_port), Status::ok);
  EXPECT_EQ(vlans.remove_virtual_port(10, virtual_port), Status::not_found);
  EXPECT_EQ(vlans.add_virtual_port(11, virtual_port), Status::not_found);
  EXPECT_EQ(vlans.remove_virtual_port(0, virtual_port), Status::bad_parameter);
}

TEST_F(Vlans, FloodEachKindOfMulticastInAModeOfItsOwn) {
  using Control = chip::VlanControl;
  vlans.create(10);
  EXPECT_EQ(vlans.set_multicast_flood(10, {&Control::ip4_multicast_flood_mode}, 2), Status::ok);
  EXPECT_EQ(vlan(10).control, Control{.ip4_multicast_flood_mode = 2});
  EXPECT_EQ(vlans.set_multicast_flood(10, {&Control::l2_multicast_flood_mode, &Control::ip4_multicast_flood_mode}, 1),
            Status::ok);
  EXPECT_EQ(vlan(10).control, (Control{.ip4_multicast_flood_mode = 1, .l2_multicast_flood_mode = 1}));
  for (const int mode : {-1, 3})
    EXPECT_EQ(vlans.set_multicast_flood(10, {&Control::l2_multicast_flood_mode}, mode), Status::bad_parameter) << mode;
  EXPECT_EQ(vlans.set_multicast_flood(11, {&Control::l2_multicast_flood_mode}, 1), Status::not_found);
}

TEST_F(Vlans, ResetGoesBackToTheDefaultVlan) {
  vlans.create(10);
  vlans.remove_ports(1, {1});
  vlans.reset();
  EXPECT_EQ(vlans.all().size(), 1U);
  EXPECT_EQ(text(vlan(1).members), "{0-12}");
}

}  // namespace
