#include <arpa/inet.h>

#include "support/one_call.h"

namespace {

using VlanAssignmentOfTheChip = support::OneCall;

TEST_F(VlanAssignmentOfTheChip, MacAddressesComeAndGo) {
  constexpr uint8_t mac[6] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
  EXPECT_EQ(sai_vlan_mac_add(unit, mac, 10, 5), 0);
  EXPECT_EQ(sai_vlan_mac_del(unit, mac), 0);
  EXPECT_EQ(sai_vlan_mac_del(unit, mac), SAI_E_NOT_FOUND);
  EXPECT_EQ(sai_vlan_mac_add(unit, mac, 10, 5), 0);
  EXPECT_EQ(sai_vlan_mac_clear(unit), 0);
  EXPECT_EQ(sai_vlan_mac_del(unit, mac), SAI_E_NOT_FOUND);
}

TEST_F(VlanAssignmentOfTheChip, SubnetsAreFoundByTheirKeyAlone) {
  const uint32_t ip = htonl(0x0A000000);
  const uint32_t mask = htonl(0xFF000000);
  constexpr bcm_ip6_t ip6 = {0x20, 0x01, 0x0d, 0xb8};
  EXPECT_EQ(sai_vlan_ip_subnet_add(unit, ip, mask, 10, 5), 0);
  EXPECT_EQ(sai_vlan_ipv6_subnet_add(unit, &ip6, 32, 20, 6), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_del(unit, ip, mask), 0);
  EXPECT_EQ(sai_vlan_ipv6_subnet_del(unit, &ip6, 32), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_del(unit, ip, mask), SAI_E_NOT_FOUND);
  EXPECT_EQ(sai_vlan_ipv6_subnet_del(unit, &ip6, 32), SAI_E_NOT_FOUND);
}

TEST_F(VlanAssignmentOfTheChip, ClearTakesBothKindsOfSubnets) {
  const uint32_t ip = htonl(0x0A000000);
  const uint32_t mask = htonl(0xFF000000);
  constexpr bcm_ip6_t ip6 = {0x20, 0x01, 0x0d, 0xb8};
  ASSERT_EQ(sai_vlan_ip_subnet_add(unit, ip, mask, 10, 5), 0);
  ASSERT_EQ(sai_vlan_ipv6_subnet_add(unit, &ip6, 32, 20, 6), 0);
  EXPECT_EQ(sai_vlan_subnet_clear(unit), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_del(unit, ip, mask), SAI_E_NOT_FOUND);
  EXPECT_EQ(sai_vlan_ipv6_subnet_del(unit, &ip6, 32), SAI_E_NOT_FOUND);
}

}  // namespace
