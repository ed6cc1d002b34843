#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr uint8_t mac[6] = {0x02, 0, 0, 0, 0, 0x01};
constexpr bcm_ip6_t ip6 = {0x20, 0x01};

void vlan_10() { sai_vlan_create(unit, 10); }
void group_2() { sai_stg_create(unit, 2); }
void group_2_with_vlan() {
  vlan_10();
  group_2();
  sai_stg_vlan_add(unit, 2, 10);
}

}  // namespace

Rows vlan() {
  return {
      {"sai_vlan_init", [] { return sai_vlan_init(unit); }},
      {"sai_vlan_create",
       [] { return sai_vlan_create(unit, 10); },
       {{"bcm_vlan_create", goes_on, no_line, BCM_E_EXISTS}}},
      {.name = "sai_vlan_create, of one that is there",
       .call = [] { return sai_vlan_create(unit, 10); },
       .failures = {{"bcm_vlan_create", goes_on, no_line, BCM_E_EXISTS}},
       .scene = vlan_10},
      {.name = "sai_vlan_destroy", .call = [] { return sai_vlan_destroy(unit, 10); }, .scene = vlan_10},
      {"sai_vlan_destroy_all", [] { return sai_vlan_destroy_all(unit); }},
      {.name = "sai_vlan_port_add", .call = [] { return sai_vlan_port_add(unit, 10, 1, 0); }, .scene = vlan_10},
      {.name = "sai_vlan_port_remove",
       .call = [] { return sai_vlan_port_remove(unit, 10, 1); },
       .scene =
           [] {
             vlan_10();
             sai_vlan_port_add(unit, 10, 1, 0);
           }},
      {.name = "sai_vlan_l2_learn_set", .call = [] { return sai_vlan_l2_learn_set(unit, 10, 0); }, .scene = vlan_10},
      {.name = "sai_vlan_l2_lookup_set", .call = [] { return sai_vlan_l2_lookup_set(unit, 10, 1); }, .scene = vlan_10},

      {"sai_port_vlan_translate_init", [] { return sai_port_vlan_translate_init(unit); }},
      {"sai_vlan_translate_add", [] { return sai_vlan_translate_add(unit, 1, 10, 0, 20, 0); }},
      // A rule whose VLAN is not read is not the rule that is meant.
      {.name = "sai_vlan_translate_delete",
       .call = [] { return sai_vlan_translate_delete(unit, 1, 10, 20); },
       .failures = {{"bcm_vlan_translate_get", "- *", no_line, positive},
                    {"bcm_vlan_translate_egress_get", stops, no_line, positive}},
       .scene = [] { sai_vlan_translate_add(unit, 1, 10, 0, 20, 0); }},
      {"sai_vlan_dtag_add", [] { return sai_vlan_dtag_add(unit, 1, 10, 0, 20, 0); }},
      {.name = "sai_vlan_dtag_delete",
       .call = [] { return sai_vlan_dtag_delete(unit, 1, 10, 20); },
       .scene = [] { sai_vlan_dtag_add(unit, 1, 10, 0, 20, 0); }},
      {"sai_vlan_dtag_range_add", [] { return sai_vlan_dtag_range_add(unit, 1, 10, 12, 0, 20, 0); }},
      {.name = "sai_vlan_dtag_range_delete",
       .call = [] { return sai_vlan_dtag_range_delete(unit, 1, 10, 12, 20); },
       .scene = [] { sai_vlan_dtag_range_add(unit, 1, 10, 12, 0, 20, 0); }},

      {"sai_vlan_mac_add", [] { return sai_vlan_mac_add(unit, mac, 10, 0); }},
      {.name = "sai_vlan_mac_del",
       .call = [] { return sai_vlan_mac_del(unit, mac); },
       .scene = [] { sai_vlan_mac_add(unit, mac, 10, 0); }},
      {"sai_vlan_mac_clear", [] { return sai_vlan_mac_clear(unit); }},
      {"sai_vlan_ip_subnet_add", [] { return sai_vlan_ip_subnet_add(unit, 0xA, 0xFF, 10, 0); }},
      {.name = "sai_vlan_ip_subnet_del",
       .call = [] { return sai_vlan_ip_subnet_del(unit, 0xA, 0xFF); },
       .scene = [] { sai_vlan_ip_subnet_add(unit, 0xA, 0xFF, 10, 0); }},
      {"sai_vlan_ipv6_subnet_add", [] { return sai_vlan_ipv6_subnet_add(unit, &ip6, 16, 10, 0); }},
      {.name = "sai_vlan_ipv6_subnet_del",
       .call = [] { return sai_vlan_ipv6_subnet_del(unit, &ip6, 16); },
       .scene = [] { sai_vlan_ipv6_subnet_add(unit, &ip6, 16, 10, 0); }},
      {"sai_vlan_subnet_clear", [] { return sai_vlan_subnet_clear(unit); }},

      {"sai_stg_init", [] { return sai_stg_init(unit); }},
      {.name = "sai_stg_default_set", .call = [] { return sai_stg_default_set(unit, 2); }, .scene = group_2},
      {"sai_stg_default_get", [] { return sai_stg_default_get(unit, out<int32_t>()); }},
      {"sai_stg_create", [] { return sai_stg_create(unit, 2); }},
      {.name = "sai_stg_destroy", .call = [] { return sai_stg_destroy(unit, 2); }, .scene = group_2},
      {.name = "sai_stg_vlan_add",
       .call = [] { return sai_stg_vlan_add(unit, 2, 10); },
       .scene =
           [] {
             vlan_10();
             group_2();
           }},
      {.name = "sai_stg_vlan_del", .call = [] { return sai_stg_vlan_del(unit, 2, 10); }, .scene = group_2_with_vlan},
      {.name = "sai_stg_vlan_del_all",
       .call = [] { return sai_stg_vlan_del_all(unit, 2); },
       .scene = group_2_with_vlan},
      {.name = "sai_port_stg_stp_set",
       .call =
           [] {
             return sai_port_stg_stp_set(unit, 2, {1, 4});
           },
       .scene = group_2},
      {.name = "sai_port_stg_stp_get",
       .call =
           [] {
             return sai_port_stg_stp_get(unit, out(sai_port_stg_t{2, 0, 1, 77}));
           },
       .scene = group_2},
      {"sai_stg_count_get", [] { return sai_stg_count_get(unit, out<int32_t>()); }},
      {"sai_stg_clear", [] { return sai_stg_clear(unit); }},
  };
}

}  // namespace sweep
