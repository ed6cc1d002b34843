#include "chip/multicast_groups.h"

#include <gtest/gtest.h>

namespace {

using chip::GroupId;
using chip::MulticastMember;
using chip::Port;
using chip::Status;
namespace encapsulation = chip::encapsulation;
using Groups = chip::MulticastGroups;

class MulticastMembers : public testing::Test {
 protected:
  GroupId create(uint32_t type) {
    GroupId id;
    EXPECT_EQ(groups.create(type, id), Status::ok);
    return id;
  }

  chip::Ports ports{12};
  Groups groups{ports};
};

TEST_F(MulticastMembers, AreInTheirGroupOnce) {
  const GroupId group = create(Groups::l3);
  EXPECT_EQ(groups.add_member(group, {3, encapsulation::of_interface(1)}), Status::ok);
  EXPECT_EQ(groups.add_member(group, {3, encapsulation::of_interface(1)}), Status::exists);
  EXPECT_EQ(groups.add_member(group, {3, encapsulation::of_interface(2)}), Status::ok);
  EXPECT_EQ(groups.find(group)->members.size(), 2U);
  EXPECT_EQ(groups.remove_member(group, {3, encapsulation::of_interface(1)}), Status::ok);
  EXPECT_EQ(groups.remove_member(group, {3, encapsulation::of_interface(1)}), Status::not_found);
  EXPECT_EQ(*groups.find(group)->members.begin(), (MulticastMember{3, encapsulation::of_interface(2)}));
}

TEST_F(MulticastMembers, FitTheTypeOfTheirGroup) {
  const struct {
    uint32_t type;
    int encapsulation;
    Status answer;
  } cases[] = {
      {Groups::l2, encapsulation::as_it_is, Status::ok},
      {Groups::l2, encapsulation::of_interface(1), Status::bad_parameter},
      {Groups::l2, encapsulation::of_virtual_port(1), Status::bad_parameter},
      {Groups::l3, encapsulation::as_it_is, Status::bad_parameter},
      {Groups::l3, encapsulation::of_interface(8192), Status::ok},
      {Groups::l3, encapsulation::of_virtual_port(1), Status::bad_parameter},
      {Groups::vlan, encapsulation::as_it_is, Status::ok},
      {Groups::vlan, encapsulation::of_interface(1), Status::bad_parameter},
      {Groups::vlan, encapsulation::of_virtual_port(4096), Status::ok},
      {Groups::l3, 0, Status::bad_parameter},
      {Groups::vlan, -2, Status::bad_parameter},
  };
  for (const auto& [type, id, answer] : cases)
    EXPECT_EQ(groups.add_member(create(type), {3, id}), answer) << type << ' ' << id;
}

TEST_F(MulticastMembers, RefusePortsAndGroupsThatThereAreNone) {
  const GroupId group = create(Groups::l2);
  const GroupId other = GroupId::of(group.number() + 1);
  for (const Port port : {Port{-1}, Port{13}, Port{256}})
    EXPECT_EQ(groups.add_member(group, {port, encapsulation::as_it_is}), Status::bad_port) << port.number();
  EXPECT_EQ(groups.add_member(other, {3, encapsulation::as_it_is}), Status::not_found);
  EXPECT_EQ(groups.remove_member(other, {3, encapsulation::as_it_is}), Status::not_found);
  EXPECT_EQ(groups.add_member(0, {3, encapsulation::as_it_is}), Status::bad_parameter);
  EXPECT_EQ(groups.destroy(other), Status::not_found);
}

TEST_F(MulticastMembers, AreForgottenWithTheirGroup) {
  const GroupId group = create(Groups::l2);
  groups.add_member(group, {3, encapsulation::as_it_is});
  EXPECT_EQ(groups.destroy(group), Status::ok);
  EXPECT_EQ(create(Groups::l2), group);
  EXPECT_TRUE(groups.find(group)->members.empty());
}

}  // namespace
