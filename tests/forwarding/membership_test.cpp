// The VLAN table as frames see it.
#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class Membership : public support::ForwardingTest {
 protected:
  const Bytes in_10 = Frame(1, 2).tag(10).type(0x9000);
  const Bytes untagged = Frame(1, 2).type(0x9000);
  static constexpr const char* unknown = "dropped: no such vlan\n";
  static constexpr const char* stranger = "dropped: not a member of the vlan\n";
};

TEST_F(Membership, AVlanIsThereOnceItIsCreatedAndHasTheCpuForAMember) {
  const Bytes broadcast = Frame(1, 0xFF).tag(10).type(0x9000);
  EXPECT_EQ(send(1, broadcast), unknown);
  EXPECT_EQ(sai_vlan_create(0, 10), 0);
  EXPECT_EQ(send(1, broadcast), stranger);
  EXPECT_EQ(sai_vlan_port_add(0, 10, 1, 1), 0);
  EXPECT_EQ(send(1, broadcast), "cpu 0x80: 01>all [10] 9000\n");
}

TEST_F(Membership, AVlanIsGoneOnceItIsDestroyed) {
  vlan(10, {1, 2});
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
  EXPECT_EQ(sai_vlan_destroy(0, 10), 0);
  EXPECT_EQ(send(1, in_10), unknown);
}

TEST_F(Membership, AllVlansButTheDefaultOneAreDestroyedAtOnce) {
  vlan(10, {1, 2});
  vlan(20, {1, 2});
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
  EXPECT_EQ(sai_vlan_destroy_all(0), 0);
  EXPECT_EQ(send(1, in_10), unknown);
  EXPECT_EQ(send(1, Frame(1, 2).tag(20).type(0x9000)), unknown);
  EXPECT_EQ(send(1, untagged).substr(0, 14), "2: 01>02 9000\n");
}

TEST_F(Membership, TheTableIsAtItsBeginningOnceItIsInitialized) {
  vlan(10, {1, 2});
  EXPECT_EQ(sai_vlan_port_remove(0, 1, 2), 0);
  EXPECT_EQ(send(1, untagged).substr(0, 14), "3: 01>02 9000\n");
  EXPECT_EQ(sai_vlan_init(0), 0);
  EXPECT_EQ(send(1, in_10), unknown);
  EXPECT_EQ(send(1, untagged).substr(0, 14), "2: 01>02 9000\n");
}

TEST_F(Membership, MembersGetFramesWithATagOrWithoutAsTheyWereAdded) {
  vlan(10, {1, 2});
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
  EXPECT_EQ(sai_vlan_port_add(0, 10, 2, 0), 0);
  EXPECT_EQ(send(1, in_10), "2: 01>02 9000\n");
  EXPECT_EQ(sai_vlan_port_add(0, 10, 2, 1), 0);
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
}

TEST_F(Membership, OfUntaggedMembersOneTagIsTaken) {
  vlan(10, {1}, {2});
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).tag(7).type(0x9000)), "2: 01>02 [7] 9000\n");
}

TEST_F(Membership, APortThatIsRemovedNeitherGetsNorGivesFrames) {
  vlan(10, {1, 2, 3});
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n3: 01>02 [10] 9000\n");
  EXPECT_EQ(sai_vlan_port_remove(0, 10, 2), 0);
  EXPECT_EQ(send(1, in_10), "3: 01>02 [10] 9000\n");
  EXPECT_EQ(send(2, in_10), stranger);
}

TEST_F(Membership, AVlanThatDoesNotLearnFloodsOn) {
  vlan(10, {1, 2, 3});
  const Bytes from_2 = Frame(2, 1).tag(10).type(0x9000);
  const std::string flooded = "2: 01>02 [10] 9000\n3: 01>02 [10] 9000\n";
  EXPECT_EQ(sai_vlan_l2_learn_set(0, 10, 0), 0);
  send(2, from_2);
  EXPECT_EQ(send(1, in_10), flooded);
  EXPECT_EQ(sai_vlan_l2_learn_set(0, 10, 1), 0);
  send(2, from_2);
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
}

TEST_F(Membership, AVlanWhoseLookupIsDisabledFloodsToKnownDestinationsToo) {
  vlan(10, {1, 2, 3});
  send(2, Frame(2, 1).tag(10).type(0x9000));
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
  EXPECT_EQ(sai_vlan_l2_lookup_set(0, 10, 1), 0);
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n3: 01>02 [10] 9000\n");
  EXPECT_EQ(sai_vlan_l2_lookup_set(0, 10, 0), 0);
  EXPECT_EQ(send(1, in_10), "2: 01>02 [10] 9000\n");
}

}  // namespace
