// Groups of IP multicast as frames see them.
#include "router_fixture.h"

namespace {

using support::Bytes;
using support::Frame;
using support::ip4;
using support::mac;

class Groups : public support::RouterTest {
 protected:
  std::string from_source(int ttl = 64) {
    return send(1,
                Frame(mac(1), {0x01, 0x00, 0x5E, 0x01, 0x01, 0x01}).tag(10).ip("10.0.0.1", "225.1.1.1", ttl).udp(5, 6));
  }
  std::string from_source6(std::string_view source = "2001::1") {
    return send(1, Frame(mac(1), {0x33, 0x33, 0, 0, 0, 1}).tag(10).ip(source, "ff05::1").udp(5, 6));
  }

  static int add(int port, int report_vid) {
    return sai_multicast_egress_add(0, 10, group, router_mac.data(), port, report_vid);
  }
  static int remove(int port, int user_vid) {
    return sai_multicast_egress_del(0, 10, group, router_mac.data(), port, user_vid);
  }
  static int add6(uint8_t port, uint16_t user_vlan, const Bytes& source = source6) {
    return sai_ipv6_ipmc_add(0, 10, user_vlan, port, group6.data(), source.data(), router_mac.data());
  }
  static int remove6(uint8_t port, int user_vlan) {
    return sai_ipv6_multicast_egress_del(0, 10, group6.data(), source6.data(), router_mac.data(), port, user_vlan);
  }

  static inline const uint32_t group = ip4("225.1.1.1");
  static inline const Bytes group6 = {0xFF, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  static inline const Bytes source6 = {0x20, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
};

constexpr char flooded[] =
    "2: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 64 udp 5>6\n"
    "9: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 64 udp 5>6\n";
constexpr char flooded6[] =
    "2: 01>33:33:00:00:00:01 [10] 2001::1>ff05::1 ttl 64 udp 5>6\n"
    "9: 01>33:33:00:00:00:01 [10] 2001::1>ff05::1 ttl 64 udp 5>6\n";

TEST_F(Groups, ReachTheirMembersInTheVlansInWhichTheyReported) {
  EXPECT_EQ(from_source(), flooded);
  EXPECT_EQ(add(2, 10), SAI_E_NONE);
  EXPECT_EQ(from_source(), "2: e0>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
  EXPECT_EQ(add(4, 20), SAI_E_NONE);
  EXPECT_EQ(add(9, 30), SAI_E_NONE);
  EXPECT_EQ(from_source(),
            "2: e0>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n"
            "4: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n"
            "9: e0>01:00:5e:01:01:01 [4095 30] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
}

TEST_F(Groups, LeaveOutAMemberThatLeftAndEndWithTheLast) {
  EXPECT_EQ(add(2, 10), SAI_E_NONE);
  EXPECT_EQ(add(4, 20), SAI_E_NONE);
  EXPECT_EQ(from_source().substr(0, 2), "2:");
  EXPECT_EQ(remove(2, 10), SAI_E_NONE);
  EXPECT_EQ(from_source(), "4: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
  EXPECT_EQ(remove(4, 20), SAI_E_NONE);
  EXPECT_EQ(from_source(), flooded);
}

TEST_F(Groups, EndWhenTheyAreDestroyed) {
  EXPECT_EQ(add(2, 10), SAI_E_NONE);
  EXPECT_NE(from_source(), flooded);
  EXPECT_EQ(sai_multicast_destroy(0, 10, group), SAI_E_NONE);
  EXPECT_EQ(from_source(), flooded);
}

TEST_F(Groups, HaveTwoTagsAtPort8WhereTheyAreAddedAsRoutes) {
  EXPECT_EQ(from_source(), flooded);
  EXPECT_EQ(sai_ipmc_add(0, 10, 20, 4, group, router_mac.data()), SAI_E_NONE);
  EXPECT_EQ(sai_ipmc_add(0, 10, 30, 8, group, router_mac.data()), SAI_E_NONE);
  EXPECT_EQ(from_source(2),
            "4: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 1 udp 5>6\n"
            "8: e0>01:00:5e:01:01:01 [4095 30] 10.0.0.1>225.1.1.1 ttl 1 udp 5>6\n");
  EXPECT_EQ(from_source(1), "cpu 0x8: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 1 udp 5>6\n");
}

TEST_F(Groups, OfIp6ReachTheirMembersOfOneSource) {
  EXPECT_EQ(from_source6(), flooded6);
  EXPECT_EQ(add6(2, 10), SAI_E_NONE);
  EXPECT_EQ(add6(9, 30), SAI_E_NONE);
  EXPECT_EQ(from_source6(),
            "2: e0>33:33:00:00:00:01 [10] 2001::1>ff05::1 ttl 63 udp 5>6\n"
            "9: e0>33:33:00:00:00:01 [4095 30] 2001::1>ff05::1 ttl 63 udp 5>6\n");
  EXPECT_EQ(from_source6("2001::2"),
            "2: 01>33:33:00:00:00:01 [10] 2001::2>ff05::1 ttl 64 udp 5>6\n"
            "9: 01>33:33:00:00:00:01 [10] 2001::2>ff05::1 ttl 64 udp 5>6\n");
  EXPECT_EQ(add6(4, 20, Bytes(16)), SAI_E_NONE);  // of any source
  EXPECT_EQ(from_source6("2001::2"), "4: e0>33:33:00:00:00:01 [20] 2001::2>ff05::1 ttl 63 udp 5>6\n");
}

TEST_F(Groups, OfIp6LeaveOutAMemberThatLeftAndEndWithTheLast) {
  EXPECT_EQ(add6(2, 10), SAI_E_NONE);
  EXPECT_EQ(add6(4, 20), SAI_E_NONE);
  EXPECT_NE(from_source6().find("\n4:"), std::string::npos);
  EXPECT_EQ(remove6(4, 20), SAI_E_NONE);
  EXPECT_EQ(from_source6(), "2: e0>33:33:00:00:00:01 [10] 2001::1>ff05::1 ttl 63 udp 5>6\n");
  EXPECT_EQ(remove6(2, 10), SAI_E_NONE);
  EXPECT_EQ(from_source6(), flooded6);
}

TEST_F(Groups, OfIp6EndWhenTheyAreDestroyed) {
  EXPECT_EQ(add6(2, 10), SAI_E_NONE);
  EXPECT_NE(from_source6(), flooded6);
  EXPECT_EQ(sai_ipv6_multicast_destroy(0, 10, group6.data(), source6.data()), SAI_E_NONE);
  EXPECT_EQ(from_source6(), flooded6);
}

TEST_F(Groups, ThatNobodyKnowsAreFloodedAsTheirVlanSays) {
  constexpr char nowhere[] = "dropped: multicast flood\n";
  for (const auto set : {sai_vlan_mcast_flood_set, sai_ipv6_vlan_mcast_flood_set}) {
    EXPECT_EQ(set(0, 3, 10), SAI_E_NONE);
    EXPECT_EQ(from_source(), nowhere);
    EXPECT_EQ(from_source6(), nowhere);
    for (const int mode : {2, 3, 1}) {
      EXPECT_EQ(set(0, mode, 10), SAI_E_NONE);
      EXPECT_EQ(from_source(), mode == 3 ? nowhere : flooded);
      EXPECT_EQ(from_source6(), mode == 3 ? nowhere : flooded6);
    }
  }
}

TEST_F(Groups, ThatNobodyKnowsCanBeFloodedWithIp4OrWithIp6Alone) {
  constexpr char nowhere[] = "dropped: multicast flood\n";
  EXPECT_EQ(sai_esw_vlan_mcast_flood_set(0, 1, 10), SAI_E_NONE);
  EXPECT_EQ(from_source(), nowhere);
  EXPECT_EQ(from_source6(), flooded6);
  EXPECT_EQ(sai_ipv6_esw_vlan_mcast_flood_set(0, 10, 1), SAI_E_NONE);
  EXPECT_EQ(sai_esw_vlan_mcast_flood_set(0, 0, 10), SAI_E_NONE);
  EXPECT_EQ(from_source(), flooded);
  EXPECT_EQ(from_source6(), nowhere);
  EXPECT_EQ(sai_ipv6_esw_vlan_mcast_flood_set(0, 10, 0), SAI_E_NONE);
  EXPECT_EQ(from_source6(), flooded6);
}

TEST_F(Groups, ReachTheirMembersInAVlanThatFloodsNothing) {
  EXPECT_EQ(add(2, 10), SAI_E_NONE);
  EXPECT_EQ(sai_vlan_mcast_flood_set(0, 3, 10), SAI_E_NONE);
  EXPECT_EQ(from_source(), "2: e0>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
}

}  // namespace
