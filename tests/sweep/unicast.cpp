#include <bcm/switch.h>

#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};
constexpr uint8_t other_router[6] = {0x02, 0, 0, 0, 0, 0x02};
constexpr uint8_t neighbor[6] = {0x02, 0, 0, 0, 0, 0x2A};
constexpr uint32_t host = 0x0A000001;
constexpr uint32_t subnet = 0x0A010000;
constexpr uint32_t mask = 0xFFFF0000;

void interface() {
  sai_vlan_create(unit, 10);
  sai_l3_intf_create(unit, router, 10);
}

void neighbor_on(int32_t port) {
  sai_l2_mac_entry_t address{};
  std::copy_n(neighbor, sizeof neighbor, address.mac);
  address.vlan = 10;
  address.port = port;
  sai_l2_mac_entry_add(unit, &address);
}

void use_egress_objects() { bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1); }

void neighbor_on_port() {
  interface();
  neighbor_on(3);
}

void neighbor_on_virtual_port() {
  sai_vlan_vport_init(unit);
  sai_vlan_create(unit, 10);
  sai_vport_t vport{3, 10, 20, 10, 0, -1};
  sai_vport_create(unit, 3, &vport);
  neighbor_on(vport.vport_id);
}

int32_t add_host(uint8_t dtag) { return sai_l3_host_route_create(unit, host, router, neighbor, 3, 10, dtag); }

int32_t add_subnet(uint8_t dtag) {
  return sai_l3_subnet_route_create(unit, subnet, mask, host, router, neighbor, 3, 10, dtag);
}

using Scene = std::function<void()>;

Scene both(const Scene& first, const Scene& second) {
  return [=] {
    first();
    second();
  };
}

// What is common to hosts and subnets. The traces of a lookup are no lines here.

const std::vector<Failure> known_egress_object{
    {"bcm_l3_egress_find", "bcm_l3_egress_create", no_line, BCM_E_NOT_FOUND}};

const std::vector<Failure> egress_object{{"bcm_l3_egress_find", goes_on, no_line, BCM_E_NOT_FOUND},
                                         {"bcm_l3_egress_find", stops, no_line, non_zero}};

std::vector<Failure> over_virtual_port() {
  return {{"bcm_l2_addr_get#1", "bcm_l3_intf_find_vlan", no_line, positive},
          {"bcm_l2_addr_get#1", stops},
          {"bcm_l2_addr_get bcm_vlan_port_find", stops, "can't add l3 interface out vlan 10"},
          {"bcm_l3_intf_find", goes_on, no_line},
          {"bcm_l3_intf_find", "- *", no_line, positive},
          {"bcm_l3_intf_create", stops, "%s\ncan't add l3 interface out vlan 10"}};
}

const std::vector<Failure> double_tagged{{"bcm_l2_addr_get bcm_vlan_port_find", stops, no_line, non_zero},
                                         {"bcm_l3_intf_find", goes_on, no_line, BCM_E_NOT_FOUND},
                                         {"bcm_l3_intf_find", stops, no_line, non_zero},
                                         {"bcm_l3_intf_create", stops, no_line, positive}};

const std::vector<Failure> host_lookup{{"bcm_l3_host_find", goes_on, no_line},
                                       {"bcm_l3_host_add", stops, "%s, beacuse of hash conflict", BCM_E_FULL},
                                       {"bcm_l3_intf_find_vlan", stops, "can't find l3 interface vlan 10"}};

const std::vector<Failure> subnet_lookup{{"bcm_stk_my_modid_get", stops, no_line},
                                         {"bcm_l3_route_get", goes_on, no_line},
                                         {"bcm_l3_route_add", stops, "%s, because of hash conflict", BCM_E_FULL},
                                         {"bcm_l3_intf_find_vlan", stops, "can't find vlan 10 l3 interface"}};

// What a deleted host or route pointed at goes too, and nothing of that shows in the result.

std::vector<Failure> clean_up(const char* after_egress_object) {
  return {{"bcm_l3_egress_get", "- *", no_line, positive},  // without a neighbor
          {"bcm_l3_egress_get", after_egress_object, no_line},
          {"bcm_l2_addr_get bcm_l3_egress_destroy", after_egress_object}};
}

/// The interface, whose number is not that of the egress object, is looked for in vain.
const std::vector<Failure> clean_up_double_tagged =
    clean_up(">bcm_l3_intf_find") + std::vector<Failure>{{"bcm_l3_intf_find", goes_on, no_line},
                                                         {"bcm_l3_intf_find", "bcm_l3_intf_delete", no_line, positive}};

const std::vector<Failure> clean_up_over_virtual_port =
    std::vector<Failure>{{"bcm_l3_egress_get", "bcm_l3_egress_destroy", no_line, positive},
                         {"bcm_l2_addr_get", "bcm_l3_egress_destroy", no_line, positive},
                         {"bcm_l3_intf_find", stops, "%s\ncan't delete l3 interface out vlan 10"},
                         {"bcm_l3_intf_find", "bcm_l3_intf_delete", no_line, positive},
                         {"bcm_l3_intf_delete", stops, "%s\ncan't delete l3 interface out vlan 10"}} +
    clean_up(stops);

Row host_creation(const std::string& name, std::vector<Failure> failures, const Scene& scene, uint8_t dtag = 0) {
  return {.name = "sai_l3_host_route_create, " + name,
          .call = [dtag] { return add_host(dtag); },
          .failures = std::move(failures),
          .scene = scene};
}

Row subnet_creation(const std::string& name, std::vector<Failure> failures, const Scene& scene, uint8_t dtag = 0) {
  return {.name = "sai_l3_subnet_route_create, " + name,
          .call = [dtag] { return add_subnet(dtag); },
          .failures = std::move(failures),
          .scene = scene};
}

Row host_deletion(const std::string& name, std::vector<Failure> failures, const Scene& scene, uint8_t dtag = 0) {
  return {.name = "sai_l3_host_route_delete, " + name,
          .call = [dtag] { return sai_l3_host_route_delete(unit, host, dtag); },
          .failures = failures + std::vector<Failure>{{"bcm_l3_host_find", stops, "can't find hostroute"}},
          .result = "bcm_l3_host_find bcm_l3_host_delete",
          .scene = both(scene, [dtag] { add_host(dtag); })};
}

Row subnet_deletion(const std::string& name, std::vector<Failure> failures, const Scene& scene, uint8_t dtag = 0) {
  return {.name = "sai_l3_subnet_route_delete, " + name,
          .call = [dtag] { return sai_l3_subnet_route_delete(unit, subnet, mask, dtag); },
          .failures = failures + std::vector<Failure>{{"bcm_l3_route_get", stops, "can't not find subnet route"}},
          .result = "bcm_l3_route_get bcm_l3_route_delete",
          .scene = both(scene, [dtag] { add_subnet(dtag); })};
}

/// The neighbor has moved to a port since.
Row moved(Row row) {
  row.scene = both(row.scene, [] { neighbor_on(3); });
  return row;
}

}  // namespace

Rows unicast() {
  const Scene with_egress_objects = both(neighbor_on_port, use_egress_objects);
  return {
      {"sai_l3_enable_set", [] { return sai_l3_enable_set(unit, 1); }},
      // Whatever fails in the lookup leads to creation.
      {.name = "sai_l3_intf_create",
       .call = [] { return sai_l3_intf_create(unit, router, 10); },
       .failures = {{"bcm_l3_intf_find_vlan", goes_on, no_line},
                    {"bcm_l3_intf_find_vlan", "bcm_l3_intf_delete *", no_line, positive}},
       .scene = [] { sai_vlan_create(unit, 10); }},
      {.name = "sai_l3_intf_create, of one that is there",
       .call = [] { return sai_l3_intf_create(unit, router, 10); },
       .failures = {{"bcm_l3_intf_find_vlan", "bcm_l3_intf_create", no_line},
                    {"bcm_l3_intf_find_vlan", "bcm_l3_intf_delete", no_line, positive}},
       .scene = interface},
      {.name = "sai_l3_intf_create, in place of one",
       .call = [] { return sai_l3_intf_create(unit, other_router, 10); },
       .failures = {{"bcm_l3_intf_find_vlan", "- *", no_line}},
       .scene = interface},
      {.name = "sai_l3_intf_delete", .call = [] { return sai_l3_intf_delete(unit, 10); }, .scene = interface},
      {.name = "sai_l3_intf_delete_all", .call = [] { return sai_l3_intf_delete_all(unit); }, .scene = interface},

      host_creation("to an interface", host_lookup, neighbor_on_port),
      host_creation("to an egress object", host_lookup + egress_object, with_egress_objects),
      host_creation(
          "to an egress object that is there",
          std::vector<Failure>{{"bcm_l3_intf_find_vlan", "bcm_l3_host_find bcm_l3_egress_find bcm_l3_egress_create",
                                no_line, positive}} +
              known_egress_object + host_lookup + egress_object,
          both(with_egress_objects, [] { add_subnet(0); })),
      host_creation("over another", host_lookup, both(neighbor_on_port, [] { add_host(0); })),
      host_creation("over a virtual port", host_lookup + egress_object + over_virtual_port(), neighbor_on_virtual_port),
      host_creation("double-tagged", host_lookup + egress_object + double_tagged, neighbor_on_virtual_port, 1),
      host_deletion("from an interface", {}, neighbor_on_port),
      host_deletion("from an egress object", clean_up(stops), with_egress_objects),
      host_deletion("over a virtual port", clean_up_over_virtual_port, neighbor_on_virtual_port),
      moved(host_deletion("double-tagged", clean_up_double_tagged, neighbor_on_virtual_port, 1)),

      subnet_creation("to an interface", subnet_lookup, neighbor_on_port),
      subnet_creation("to an egress object", subnet_lookup + egress_object, with_egress_objects),
      subnet_creation(
          "that is there",
          std::vector<Failure>{
              {"bcm_l3_route_get", "bcm_l3_route_add", no_line, non_zero},
              {"bcm_l3_intf_find_vlan", "bcm_l3_route_get bcm_l3_route_delete bcm_l3_route_add", no_line, positive}} +
              subnet_lookup,
          both(neighbor_on_port, [] { add_subnet(0); })),
      subnet_creation("in place of one",
                      std::vector<Failure>{{"bcm_l3_intf_find_vlan",
                                            "bcm_l3_route_get bcm_l3_route_delete "
                                            "bcm_l3_egress_find bcm_l3_egress_create",
                                            no_line, positive},
                                           {"bcm_l3_route_get", "- *", no_line, non_zero},
                                           {"bcm_l3_route_delete", goes_on, "delete subnet route failed"}} +
                          known_egress_object + subnet_lookup + egress_object,
                      both(with_egress_objects, [] { add_subnet(0); })),
      subnet_creation("over a virtual port", subnet_lookup + egress_object + over_virtual_port(),
                      neighbor_on_virtual_port),
      subnet_creation("double-tagged", subnet_lookup + egress_object + double_tagged, neighbor_on_virtual_port, 1),
      subnet_deletion("from an interface", {}, neighbor_on_port),
      subnet_deletion("from an egress object", clean_up(stops), with_egress_objects),
      subnet_deletion("over a virtual port", clean_up_over_virtual_port, neighbor_on_virtual_port),
      moved(subnet_deletion("double-tagged", clean_up_double_tagged, neighbor_on_virtual_port, 1)),

      {.name = "sai_l3_host_route_hit_get",
       .call = [] { return sai_l3_host_route_hit_get(host); },
       .result = failure_or_value,
       .scene = both(neighbor_on_port, [] { add_host(0); })},
      {.name = "sai_l3_subnet_route_hit_get",
       .call = [] { return sai_l3_subnet_route_hit_get(subnet, mask); },
       .result = failure_or_value,
       .scene = both(neighbor_on_port, [] { add_subnet(0); })},
  };
}

}  // namespace sweep
