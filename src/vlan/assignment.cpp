#include <arpa/inet.h>
#include <sai.h>

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::result;
using sai::sdk_address;

namespace {

/// The key of an IPv4 subnet, given in network byte order.
bcm_vlan_ip_t subnet(uint32_t ip, uint32_t mask) {
  bcm_vlan_ip_t entry;
  bcm_vlan_ip_t_init(&entry);
  entry.ip4 = ntohl(ip);
  entry.mask = ntohl(mask);
  return entry;
}

/// The key of an IPv6 subnet.
bcm_vlan_ip_t subnet(const bcm_ip6_t& ip6, int prefix) {
  bcm_vlan_ip_t entry;
  bcm_vlan_ip_t_init(&entry);
  entry.flags = BCM_VLAN_SUBNET_IP6;
  __builtin_memcpy(entry.ip6, ip6, sizeof entry.ip6);
  entry.prefix = prefix;
  return entry;
}

/// Adds the subnet with the VLAN and the priority of its frames.
int add(int unit, bcm_vlan_ip_t&& entry, bcm_vlan_t vid, int prio) {
  entry.vid = vid;
  entry.prio = prio;
  return bcm_vlan_ip_add(unit, &entry);
}

int remove(int unit, bcm_vlan_ip_t&& entry) { return bcm_vlan_ip_delete(unit, &entry); }

}  // namespace

int32_t sai_vlan_mac_add(int32_t unit, const uint8_t* mac, uint16_t vid, int32_t prio) {
  return result(bcm_vlan_mac_add(unit, sdk_address(mac), vid, prio), "Failed to add mac base-vlan [%d]: %s", vid);
}

int32_t sai_vlan_mac_del(int32_t unit, const uint8_t* mac) {
  return result(bcm_vlan_mac_delete(unit, sdk_address(mac)), "Failed to delete mac base-vlan: %s");
}

int32_t sai_vlan_mac_clear(int32_t unit) {
  return result(bcm_vlan_mac_delete_all(unit), "Failed to clear mac base-vlan: %s");
}

int32_t sai_vlan_ip_subnet_add(int32_t unit, uint32_t ip, uint32_t mask, uint16_t vid, int32_t prio) {
  return result(add(unit, subnet(ip, mask), vid, prio), "Failed to add ip subnet base-vlan [%d]: %s", vid);
}

int32_t sai_vlan_ip_subnet_del(int32_t unit, uint32_t ip, uint32_t mask) {
  return result(remove(unit, subnet(ip, mask)), "Failed to delete ip subnet base-vlan: %s");
}

int32_t sai_vlan_ipv6_subnet_add(int32_t unit, const bcm_ip6_t* ip6, int32_t prefix, uint16_t vid, int32_t prio) {
  return result(ip6 == nullptr ? BCM_E_PARAM : add(unit, subnet(*ip6, prefix), vid, prio),
                "Failed to add ipv6 subnet base-vlan [%d]: %s", vid);
}

int32_t sai_vlan_ipv6_subnet_del(int32_t unit, const bcm_ip6_t* ip6, int32_t prefix) {
  return result(ip6 == nullptr ? BCM_E_PARAM : remove(unit, subnet(*ip6, prefix)),
                "Failed to delete ipv6 subnet base-vlan: %s");
}

int32_t sai_vlan_subnet_clear(int32_t unit) {
  return result(bcm_vlan_ip_delete_all(unit), "Failed to clear subnet base-vlan: %s");
}
