// Virtual ports: a customer's frames are taken out of a port by their tags, and the answers leave with those tags.
#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

/// What a test says of a virtual port.
struct Given {
  int32_t priority = 0;
  uint16_t match_vlan = 10;
  uint16_t match_inner_vlan = 0;
  uint16_t vlan = 0;
  uint16_t outer_vlan = 0;
};

class VirtualPortFrames : public support::ForwardingTest {
 protected:
  static constexpr uint16_t customers = 1;
  static constexpr uint16_t network = 9;

  VirtualPortFrames() {
    for (const uint16_t id : std::initializer_list<uint16_t>{7, 100, 200, 300}) vlan(id, {network});
    EXPECT_EQ(sai_port_untagged_vlan_set(0, customers, 300), 0);
  }

  static sai_vport_t create(const Given& given, uint16_t port = customers) {
    sai_vport_t vport{given.priority, given.match_vlan, given.match_inner_vlan, given.vlan, given.outer_vlan, 0};
    EXPECT_EQ(sai_vport_create(0, port, &vport), SAI_E_NONE);
    return vport;
  }
  static Frame customer() { return {1, 2}; }
  static Frame answer() { return {2, 1}; }
  /// What becomes of a customer's frame, and then of the answer.
  std::string round_trip(const Frame& frame, const Frame& back) {
    return send(customers, Frame(frame).type(0x9000)) + send(network, Frame(back).type(0x9000));
  }

  static constexpr const char* unknown = "dropped: no such vlan\n";
};

TEST_F(VirtualPortFrames, OfOneTagAreInTheUntaggedVlanOfThePort) {
  EXPECT_EQ(send(customers, customer().tag(10).type(0x9000)), unknown);
  create({});
  EXPECT_EQ(round_trip(customer().tag(10, 3), answer().tag(300, 2)),
            "9: 01>02 [300p3] 9000\n"
            "1: 02>01 [10p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfOneTagAreInTheVlanGiven) {
  create({.vlan = 100});
  EXPECT_EQ(round_trip(customer().tag(10, 3), answer().tag(100, 2)),
            "9: 01>02 [100p3] 9000\n"
            "1: 02>01 [10p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfOneTagGainASecondOneBehindTheOuterVlanGiven) {
  create({.outer_vlan = 200});
  EXPECT_EQ(round_trip(customer().tag(10, 3), answer().tag(200, 2).tag(300, 1)),
            "9: 01>02 [200p3 300p3] 9000\n"
            "1: 02>01 [10p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfOneTagGainTheVlanGivenBehindTheOuterOne) {
  create({.vlan = 100, .outer_vlan = 200});
  EXPECT_EQ(round_trip(customer().tag(10, 3), answer().tag(200, 2).tag(100, 1)),
            "9: 01>02 [200p3 100p3] 9000\n"
            "1: 02>01 [10p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfTwoTagsAreInTheVlanOfTheInnerOne) {
  create({.match_inner_vlan = 7});
  EXPECT_EQ(round_trip(customer().tag(10, 3).tag(7, 1), answer().tag(7, 2)),
            "9: 01>02 [7p3] 9000\n"
            "1: 02>01 [10p2 7p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfTwoTagsAreInTheVlanGiven) {
  create({.match_inner_vlan = 7, .vlan = 100});
  EXPECT_EQ(round_trip(customer().tag(10, 3).tag(7, 1), answer().tag(100, 2)),
            "9: 01>02 [100p3] 9000\n"
            "1: 02>01 [10p2 7p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfTwoTagsKeepTheInnerOneBehindTheOuterVlanGiven) {
  create({.match_inner_vlan = 7, .outer_vlan = 200});
  EXPECT_EQ(round_trip(customer().tag(10, 3).tag(7, 1), answer().tag(200, 2).tag(7, 1)),
            "9: 01>02 [200p3 7p1] 9000\n"
            "1: 02>01 [10p2 7p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfTwoTagsHaveBothReplaced) {
  create({.match_inner_vlan = 7, .vlan = 100, .outer_vlan = 200});
  EXPECT_EQ(round_trip(customer().tag(10, 3).tag(7, 1), answer().tag(200, 2).tag(100, 1)),
            "9: 01>02 [200p3 100p1] 9000\n"
            "1: 02>01 [10p2 7p2] 9000\n");
}

TEST_F(VirtualPortFrames, OfTwoCustomersOnOnePortAreKeptApartByTheirTags) {
  create({.match_vlan = 10, .vlan = 100});
  create({.match_vlan = 11, .vlan = 100});
  EXPECT_EQ(send(customers, Frame(1, 5).tag(10).type(0x9000)),
            "9: 01>05 [100] 9000\n"
            "1: 01>05 [11] 9000\n");
  EXPECT_EQ(send(customers, Frame(2, 1).tag(11).type(0x9000)), "1: 02>01 [10] 9000\n");
}

TEST_F(VirtualPortFrames, AreFloodedToEveryVirtualPortOfTheirVlan) {
  create({.match_vlan = 10, .vlan = 100});
  create({.match_vlan = 20, .vlan = 100}, 2);
  create({.match_vlan = 30, .vlan = 200}, 3);
  EXPECT_EQ(send(network, Frame(1, 2).tag(100).type(0x9000)),
            "1: 01>02 [10] 9000\n"
            "2: 01>02 [20] 9000\n");
}

TEST_F(VirtualPortFrames, AreTheNetworksNoMoreOnceTheVirtualPortIsDestroyed) {
  for (const Given& given : {Given{.vlan = 100}, Given{.vlan = 7, .outer_vlan = 100}, Given{.match_inner_vlan = 100}}) {
    sai_vport_t vport = create(given);
    Frame frame = customer().tag(10);
    if (given.match_inner_vlan != 0) frame.tag(given.match_inner_vlan);
    EXPECT_NE(send(customers, Frame(frame).type(0x9000)), unknown);
    EXPECT_EQ(send(network, answer().tag(100).type(0x9000)).substr(0, 8), "1: 02>01");
    EXPECT_EQ(sai_vport_destroy(0, customers, &vport), 0);
    EXPECT_EQ(send(customers, Frame(frame).type(0x9000)), unknown);
    EXPECT_EQ(send(network, answer().tag(100).type(0x9000)).find("02>01"), std::string::npos);
  }
}

TEST_F(VirtualPortFrames, OfAnIsolatedGroupLeaveThroughNoOther) {
  create({.priority = 1, .match_vlan = 10, .vlan = 100}, 1);
  create({.priority = 1, .match_vlan = 10, .vlan = 100}, 2);
  create({.priority = 2, .match_vlan = 10, .vlan = 100}, 3);
  const auto places = [&](int port) {
    const std::string out = send(port, Frame(port, 0x99).tag(port == network ? 100 : 10).type(0x9000));
    std::string result;
    for (std::size_t line = 0; line < out.size(); line = out.find('\n', line) + 1) result += out[line];
    return result;
  };
  EXPECT_EQ(places(1) + ' ' + places(3) + ' ' + places(network), "923 912 123");
  EXPECT_EQ(sai_vport_split_horizon_set(0, 1, 1), 0);
  EXPECT_EQ(places(1) + ' ' + places(3) + ' ' + places(network), "92 912 123");
  EXPECT_EQ(sai_vport_split_horizon_set(0, 2, 1), 0);
  EXPECT_EQ(places(1) + ' ' + places(3) + ' ' + places(network), "92 9 123");
  EXPECT_EQ(sai_vport_split_horizon_set(0, 1, 0), 0);
  EXPECT_EQ(sai_vport_split_horizon_set(0, 2, 0), 0);
  EXPECT_EQ(places(1) + ' ' + places(3) + ' ' + places(network), "923 912 123");
}

}  // namespace
