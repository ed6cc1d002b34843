// Routes to single hosts as frames see them.
#include "router_fixture.h"

namespace {

using support::Frame;
using support::ip4;
using support::mac;

using HostRoutes = support::RouterTest;

constexpr char unknown[] = "cpu 0x4: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n";

TEST_F(HostRoutes, LeadToTheirHostUntilTheyAreDeleted) {
  EXPECT_EQ(send(1, packet("20.0.0.3")), unknown);
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
  EXPECT_EQ(sai_l3_host_route_delete(0, ip4("20.0.0.3"), 0), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), unknown);
}

TEST_F(HostRoutes, AreReplacedWhenTheHostMoves) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(host("20.0.0.3", 4, 0x44), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "4: e0>44 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
}

TEST_F(HostRoutes, LeadToTheCpuFromEveryPort) {
  learn(0, 20, 0xC0);
  EXPECT_EQ(host("20.0.0.254", 0, 0xC0), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.254")), "cpu 0x80: 01>e0 [10] 10.0.0.1>20.0.0.254 ttl 64 udp 5>6\n");
  EXPECT_EQ(send(9, packet("20.0.0.254", 1)), "cpu 0x80: 01>e0 [10] 10.0.0.1>20.0.0.254 ttl 1 udp 5>6\n");
}

TEST_F(HostRoutes, TellWhetherFramesWentToTheirHostSinceLastAsked) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(sai_l3_host_route_hit_get(ip4("20.0.0.3")), 0);
  send(1, packet("20.0.0.4"));
  EXPECT_EQ(sai_l3_host_route_hit_get(ip4("20.0.0.3")), 0);
  send(1, packet("20.0.0.3"));
  EXPECT_EQ(sai_l3_host_route_hit_get(ip4("20.0.0.3")), 1);
  EXPECT_EQ(sai_l3_host_route_hit_get(ip4("20.0.0.3")), 0);
}

TEST_F(HostRoutes, TellWhetherFramesCameFromTheirHost) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  send(3, Frame(0x33, router).tag(20).ip("20.0.0.3", "10.0.0.1").udp(5, 6));
  EXPECT_EQ(sai_l3_host_route_hit_get(ip4("20.0.0.3")), 1);
}

TEST_F(HostRoutes, GiveBothTagsToAHostOnAVirtualPort) {
  vlan(30, {5});
  vlan(100, {5});
  sai_vport_t vport{
      .priority = 0, .match_vlan = 100, .match_inner_vlan = 30, .vlan = 0, .outer_vlan = 0, .vport_id = 0};
  EXPECT_EQ(sai_vport_create(0, 5, &vport), SAI_E_NONE);
  ASSERT_EQ(swsdk_l2_learn(0, 30, mac(0x55).data(), vport.vport_id, 0), 1);
  for (const bool double_tagged : {false, true}) {
    EXPECT_EQ(sai_l3_host_route_create(0, ip4("30.0.0.5"), router_mac.data(), mac(0x55).data(), 5, 30, double_tagged),
              SAI_E_NONE);
    EXPECT_EQ(send(1, packet("30.0.0.5")), "5: e0>55 [100 30] 10.0.0.1>30.0.0.5 ttl 63 udp 5>6\n");
  }
}

TEST_F(HostRoutes, LeadThroughAVirtualPortToo) {
  vlan(30, {5});
  sai_vport_t vport{
      .priority = 0, .match_vlan = 100, .match_inner_vlan = 30, .vlan = 0, .outer_vlan = 0, .vport_id = 0};
  EXPECT_EQ(sai_vport_create(0, 5, &vport), SAI_E_NONE);
  ASSERT_EQ(swsdk_l2_learn(0, 30, mac(0x55).data(), vport.vport_id, 0), 1);
  EXPECT_EQ(host("30.0.0.5", vport.vport_id, 0x55, 30), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("30.0.0.5")).substr(0, 8), "5: e0>55");
}

}  // namespace
