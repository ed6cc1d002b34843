#include <arpa/inet.h>

#include "support/one_call.h"

namespace {

using VlanAssignment = support::OneCall;

constexpr uint8_t mac[6] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
constexpr bcm_ip6_t ip6 = {0x20, 0x01, 0x0d, 0xb8, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x7F};

/// As a caller has it who takes an address as it came off the wire.
uint32_t network_order(const char* address) { return inet_addr(address); }

TEST_F(VlanAssignment, ByMacAddress) {
  expect({
      {[] { return sai_vlan_mac_add(unit, mac, 10, 5); }, "bcm_vlan_mac_add(0, 00:11:22:33:44:55, 10, 5)",
       "Failed to add mac base-vlan [10]"},
      {[] { return sai_vlan_mac_del(unit, mac); }, "bcm_vlan_mac_delete(0, 00:11:22:33:44:55)",
       "Failed to delete mac base-vlan"},
      {[] { return sai_vlan_mac_clear(unit); }, "bcm_vlan_mac_delete_all(0)", "Failed to clear mac base-vlan"},
  });
}

TEST_F(VlanAssignment, ByIp4SubnetInTheHostsByteOrder) {
  const uint32_t ip = network_order("10.1.0.0");
  const uint32_t mask = network_order("255.255.0.0");
  expect({
      {[&] { return sai_vlan_ip_subnet_add(unit, ip, mask, 10, 5); },
       "bcm_vlan_ip_add(0, {ip4=10.1.0.0, mask=255.255.0.0, vid=10, prio=5})",
       "Failed to add ip subnet base-vlan [10]"},
      {[&] { return sai_vlan_ip_subnet_del(unit, ip, mask); },
       "bcm_vlan_ip_delete(0, {ip4=10.1.0.0, mask=255.255.0.0})", "Failed to delete ip subnet base-vlan"},
  });
}

TEST_F(VlanAssignment, ByIp6Subnet) {
  expect({
      {[] { return sai_vlan_ipv6_subnet_add(unit, &ip6, 48, 10, 5); },
       "bcm_vlan_ip_add(0, {flags=0x4000, ip6=2001:db8:1::7f, prefix=48, vid=10, prio=5})",
       "Failed to add ipv6 subnet base-vlan [10]"},
      {[] { return sai_vlan_ipv6_subnet_del(unit, &ip6, 48); },
       "bcm_vlan_ip_delete(0, {flags=0x4000, ip6=2001:db8:1::7f, prefix=48})",
       "Failed to delete ipv6 subnet base-vlan"},
  });
}

TEST_F(VlanAssignment, ClearTakesBothKindsOfSubnets) {
  expect(
      {{[] { return sai_vlan_subnet_clear(unit); }, "bcm_vlan_ip_delete_all(0)", "Failed to clear subnet base-vlan"}});
}

TEST_F(VlanAssignment, AnotherUnitIsHandedOn) {
  EXPECT_EQ(observe([] { return sai_vlan_mac_clear(5); }),
            "bcm_vlan_mac_delete_all(5) = -3\n"
            "log: errors: NONE: Failed to clear mac base-vlan: No such unit\n"
            "returned -1\n");
}

}  // namespace
