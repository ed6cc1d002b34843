// Routes to subnets as frames see them.
#include "router_fixture.h"

namespace {

using support::ip4;

using SubnetRoutes = support::RouterTest;

constexpr char unknown[] = "cpu 0x4: 01>e0 [10] 10.0.0.1>40.1.2.3 ttl 64 udp 5>6\n";
constexpr char by_port_3[] = "3: e0>33 [20] 10.0.0.1>40.1.2.3 ttl 63 udp 5>6\n";
constexpr char by_port_4[] = "4: e0>44 [20] 10.0.0.1>40.1.2.3 ttl 63 udp 5>6\n";

TEST_F(SubnetRoutes, LeadToTheirNextHopUntilTheyAreDeleted) {
  EXPECT_EQ(send(1, packet("40.1.2.3")), unknown);
  EXPECT_EQ(sai_l3_subnet_route_create(0, ip4("40.1.0.0"), ip4("255.255.0.0"), ip4("20.0.0.254"), router_mac.data(),
                                       support::mac(0x33).data(), 3, 20, 0),
            SAI_E_NONE);
  EXPECT_EQ(send(1, packet("40.1.2.3")), by_port_3);
  EXPECT_EQ(sai_l3_subnet_route_delete(0, ip4("40.1.0.0"), ip4("255.255.0.0"), 0), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("40.1.2.3")), unknown);
}

TEST_F(SubnetRoutes, WithTheLongestPrefixGoesBefore) {
  EXPECT_EQ(subnet("0.0.0.0", "0.0.0.0", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(subnet("40.1.2.0", "255.255.255.0", 4, 0x44), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("40.1.2.3")), by_port_4);
  EXPECT_EQ(host("40.1.2.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("40.1.2.3")), by_port_3);
}

TEST_F(SubnetRoutes, AreReplacedWhenTheNextHopChanges) {
  EXPECT_EQ(subnet("40.1.0.0", "255.255.0.0", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(subnet("40.1.0.0", "255.255.0.0", 4, 0x44), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("40.1.2.3")), by_port_4);
}

TEST_F(SubnetRoutes, LeadToTheCpuFromEveryPort) {
  learn(0, 20, 0xC0);
  EXPECT_EQ(subnet("40.1.0.0", "255.255.0.0", 0, 0xC0), SAI_E_NONE);
  EXPECT_EQ(send(9, packet("40.1.2.3")), "cpu 0x80: 01>e0 [10] 10.0.0.1>40.1.2.3 ttl 64 udp 5>6\n");
}

TEST_F(SubnetRoutes, TellWhetherFramesTookThemSinceLastAsked) {
  const auto hit = [] { return sai_l3_subnet_route_hit_get(ip4("40.1.0.0"), ip4("255.255.0.0")); };
  EXPECT_EQ(subnet("40.1.0.0", "255.255.0.0", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(hit(), 0);
  send(1, packet("40.1.2.3"));
  EXPECT_EQ(hit(), 1);
  EXPECT_EQ(hit(), 0);
  EXPECT_EQ(host("40.1.2.3", 3, 0x33), SAI_E_NONE);
  send(1, packet("40.1.2.3"));  // takes the host's
  EXPECT_EQ(hit(), 0);
}

}  // namespace
