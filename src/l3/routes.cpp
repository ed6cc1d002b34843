#include <sai.h>

#include "core/convert.h"
#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"
#include "l3/addresses.h"
#include "l3/interfaces.h"

using sai::ErrorText;
using sai::failed;
using sai::Format;
using sai::Ip4Text;
using sai::MacText;
using sai::result;
using sai::trace;
using sai::vlan_id;

namespace {

/// Meant: not the SDK's flag of this name, which has the bit of BCM_L3_DEFIP_CPU in some releases.
constexpr uint32_t defip_local = 0x4000;

/// Meant: hit bits are read from unit 0, the only one.
constexpr int hit_unit = 0;

/// How a next hop is reached.
struct NextHop {
  const uint8_t* router_mac;
  const uint8_t* mac;
  int port;
  int vlan;
};

/// Finds the interface through which a next hop is reached, or creates it when the next hop is on a virtual port.
/// `not_found` is logged when the VLAN has none.
int32_t find_interface(int unit, const NextHop& hop, bool double_tagged, Format<int> not_found, bcm_if_t& intf_id) {
  bcm_l3_intf_t intf;
  if (double_tagged) {
    const int32_t code = sai_l3_intf_dtag_create(unit, hop.router_mac, hop.mac, hop.vlan, &intf);
    if (code < 0) return code;
    intf_id = intf.l3a_intf_id;
    return SAI_E_NONE;
  }

  bcm_l2_addr_t learned{};
  int rv = sai::find_learned(unit, hop.mac, hop.vlan, learned);
  if (failed(rv, "Failed to get l2 addr source port: %s")) return sdk_to_sai(rv);
  if (sai::is_on_virtual_port(learned)) {
    rv = sai_l3_intf_vport_create(unit, hop.router_mac, hop.mac, hop.vlan, &intf);
    if (rv < 0) {
      sai_err("can't add l3 interface out vlan %d", hop.vlan);
      return sdk_to_sai(rv);
    }
  } else {
    bcm_l3_intf_t_init(&intf);
    intf.l3a_vid = vlan_id(hop.vlan);
    rv = bcm_l3_intf_find_vlan(unit, &intf);
    if (rv < 0) {
      sai_err(not_found.text(), hop.vlan);
      return sdk_to_sai(rv);
    }
  }
  intf_id = intf.l3a_intf_id;
  return SAI_E_NONE;
}

/// Makes a host or route point at its egress object instead of its interface, if the chip is in L3 egress mode.
/// Meant: a host or route to the CPU always points at the interface.
int32_t use_egress_object(int unit, const NextHop& hop, bool to_cpu, bcm_if_t& intf_id) {
  if (to_cpu || !sai::l3_egress_mode(unit)) return SAI_E_NONE;
  int egress_id = 0;
  const int32_t code = sai_l3_egress_create(unit, hop.mac, hop.vlan, hop.port, intf_id, &egress_id);
  if (code < 0) return code;
  intf_id = egress_id;
  return SAI_E_NONE;
}

/// Deletes what a deleted host or route pointed at. Meant: one id stands for the egress object and for the interface;
/// other users of them are not considered, and the result shows no failure.
void delete_egress(int unit, bcm_if_t intf_id, bool double_tagged) {
  if (!sai::l3_egress_mode(unit)) return;
  sai_l3_egress_delete(unit, intf_id);
  if (double_tagged) sai_l3_intf_dtag_delete(unit, intf_id);
}

bcm_l3_host_t host_of(uint32_t ip) {
  bcm_l3_host_t host;
  bcm_l3_host_t_init(&host);
  host.l3a_ip_addr = ip;
  return host;
}

bcm_l3_route_t route_of(uint32_t subnet, uint32_t mask) {
  bcm_l3_route_t route;
  bcm_l3_route_t_init(&route);
  route.l3a_subnet = subnet;
  route.l3a_ip_mask = mask;
  return route;
}

/// Deletes an old route to the subnet; false when it equals the new one.
bool make_way(int unit, uint32_t subnet, uint32_t mask, const NextHop& hop, bcm_if_t intf_id) {
  bcm_l3_route_t existing = route_of(subnet, mask);
  if (bcm_l3_route_get(unit, &existing) != BCM_E_NONE) return true;
  trace("sai_l3_subnet_route_create find the subnet route %s", Ip4Text(subnet));
  // Meant: the interface is compared, so a route that points at an egress object is replaced.
  if (existing.l3a_port_tgid == hop.port && existing.l3a_intf == intf_id && (existing.l3a_flags & defip_local) == 0 &&
      sai::same_mac(existing.l3a_nexthop_mac, hop.mac)) {
    trace("subnet route already exist");
    return false;
  }
  trace("sai_l3_subnet_route_create delete the subnet route %s", Ip4Text(subnet));
  existing.l3a_flags = 0;
  // Meant: without the SDK's text, and a failure does not stop the new route.
  if (bcm_l3_route_delete(unit, &existing) < 0) sai_err("sai_l3_subnet_route_create delete subnet route failed");
  return true;
}

int32_t host_result(int rv) {
  // Meant: "beacuse" here, "because" with subnets.
  if (rv == BCM_E_FULL) return result(rv, "bcm_l3_host_add host route failed: %s, beacuse of hash conflict");
  return result(rv, "bcm_l3_host_add host route failed: %s");
}

int32_t route_result(int rv) {
  if (rv == BCM_E_FULL) return result(rv, "bcm_l3_route_add subnet route failed: %s, because of hash conflict");
  return result(rv, "bcm_l3_route_add subnet route failed: %s");
}

int32_t hit(uint32_t flags) { return (flags & BCM_L3_HIT) != 0 ? 1 : 0; }

}  // namespace

int32_t sai_l3_host_route_create(int32_t unit, uint32_t ip, const uint8_t* router_mac, const uint8_t* host_mac,
                                 int32_t port, int32_t vlan, uint8_t dtag) {
  if (router_mac == nullptr || host_mac == nullptr) return host_result(BCM_E_PARAM);
  trace("sai_l3_host_route_create:  host %s hostmac %s port %d vid %d", Ip4Text(ip), MacText(host_mac), port, vlan);
  int modid = 0;
  int rv = bcm_stk_my_modid_get(unit, &modid);
  if (failed(rv, "bcm_stk_my_modid_get module id fialed: %s")) return sdk_to_sai(rv);

  const NextHop hop{router_mac, host_mac, port, vlan};
  bcm_if_t intf_id = 0;
  int32_t code = find_interface(unit, hop, dtag != 0, "can't find l3 interface vlan %d", intf_id);
  if (code < 0) return code;
  trace("sai_l3_host_route_create vlan %d intf_id  %d", vlan, intf_id);

  bcm_l3_host_t host = host_of(ip);
  host.l3a_intf = intf_id;
  host.l3a_modid = modid;
  host.l3a_port_tgid = port;
  sai::copy_mac(host.l3a_nexthop_mac, host_mac);
  const bool to_cpu = port == sai::cpu_port(unit);
  if (to_cpu) host.l3a_flags |= BCM_L3_L2TOCPU;

  bcm_l3_host_t old = host_of(ip);
  if (bcm_l3_host_find(unit, &old) >= 0) {
    host.l3a_flags |= BCM_L3_REPLACE;
    trace("sai_l3_host_route_create replace host %s intf %d %d modid %d %d port %d %d mac %s %s", Ip4Text(ip),
          old.l3a_intf, host.l3a_intf, old.l3a_modid, host.l3a_modid, old.l3a_port_tgid, host.l3a_port_tgid,
          MacText(old.l3a_nexthop_mac), MacText(host.l3a_nexthop_mac));
  }

  code = use_egress_object(unit, hop, to_cpu, host.l3a_intf);
  if (code < 0) return code;
  return host_result(bcm_l3_host_add(unit, &host));
}

int32_t sai_l3_host_route_delete(int32_t unit, uint32_t ip, uint8_t dtag) {
  trace("sai_l3_host_route_delete host %s", Ip4Text(ip));
  bcm_l3_host_t host = host_of(ip);
  int rv = bcm_l3_host_find(unit, &host);
  if (rv < 0) {
    sai_err("can't find hostroute");
    return sdk_to_sai(rv);
  }
  const bcm_if_t intf_id = host.l3a_intf;
  rv = bcm_l3_host_delete(unit, &host);
  if (!failed(rv, "bcm_l3_host_delete host route failed: %s")) delete_egress(unit, intf_id, dtag != 0);
  return sdk_to_sai(rv);
}

int32_t sai_l3_subnet_route_create(int32_t unit, uint32_t subnet, uint32_t mask, uint32_t nexthop_ip,
                                   const uint8_t* router_mac, const uint8_t* nexthop_mac, int32_t port, int32_t vlan,
                                   uint8_t dtag) {
  if (router_mac == nullptr || nexthop_mac == nullptr) return route_result(BCM_E_PARAM);
  trace("sai_l3_subnet_route_create subnet %s nexthop_ip %s nexthop_mac %s port %d vlan %d", Ip4Text(subnet),
        Ip4Text(nexthop_ip), MacText(nexthop_mac), port, vlan);
  int modid = 0;
  const int rv = bcm_stk_my_modid_get(unit, &modid);
  if (rv < 0) {
    trace("bcm_stk_my_modid_get fialed: %s", ErrorText{rv});  // Meant: at this level, unlike for hosts.
    return sdk_to_sai(rv);
  }

  const NextHop hop{router_mac, nexthop_mac, port, vlan};
  bcm_if_t intf_id = 0;
  int32_t code = find_interface(unit, hop, dtag != 0, "can't find vlan %d l3 interface", intf_id);
  if (code < 0) return code;
  trace("sai_l3_subnet_route_create vlan %d intf_id %d", vlan, intf_id);
  if (!make_way(unit, subnet, mask, hop, intf_id)) return SAI_E_NONE;

  bcm_l3_route_t route = route_of(subnet, mask);
  route.l3a_nexthop_ip = nexthop_ip;
  sai::copy_mac(route.l3a_nexthop_mac, nexthop_mac);
  route.l3a_vid = vlan_id(vlan);
  route.l3a_intf = intf_id;
  route.l3a_port_tgid = port;
  const bool to_cpu = port == sai::cpu_port(unit);
  if (to_cpu) route.l3a_flags |= BCM_L3_DEFIP_CPU;
  route.l3a_modid = to_cpu ? 0 : modid;

  code = use_egress_object(unit, hop, to_cpu, route.l3a_intf);
  if (code < 0) return code;
  trace("sai_l3_subnet_route_create subnet route %s", Ip4Text(subnet));
  return route_result(bcm_l3_route_add(unit, &route));
}

int32_t sai_l3_subnet_route_delete(int32_t unit, uint32_t subnet, uint32_t mask, uint8_t dtag) {
  trace("sai_l3_subnet_route_delete subnet %s", Ip4Text(subnet));
  bcm_l3_route_t route = route_of(subnet, mask);
  int rv = bcm_l3_route_get(unit, &route);
  if (rv < 0) {
    sai_err("sai_l3_subnet_route_delete can't not find subnet route");  // Meant: "can't not".
    return sdk_to_sai(rv);
  }
  const bcm_if_t intf_id = route.l3a_intf;
  rv = bcm_l3_route_delete(unit, &route);
  if (!failed(rv, "bcm_l3_route_delete subnet route failed: %s")) delete_egress(unit, intf_id, dtag != 0);
  return sdk_to_sai(rv);
}

int32_t sai_l3_host_route_hit_get(uint32_t ip) {
  bcm_l3_host_t host = host_of(ip);
  host.l3a_flags = BCM_L3_HIT_CLEAR;
  const int rv = bcm_l3_host_find(hit_unit, &host);
  return rv == BCM_E_NONE ? hit(host.l3a_flags) : result(rv, "bcm_l3_host_find failed: %s");
}

int32_t sai_l3_subnet_route_hit_get(uint32_t subnet, uint32_t mask) {
  bcm_l3_route_t route = route_of(subnet, mask);
  route.l3a_flags = BCM_L3_HIT_CLEAR;
  const int rv = bcm_l3_route_get(hit_unit, &route);
  return rv == BCM_E_NONE ? hit(route.l3a_flags) : result(rv, "bcm_l3_route_get failed: %s");
}
