#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr int32_t id_unset = -1;

constexpr sai_vport_t stacked{3, 10, 20, 30, 0, id_unset};
constexpr sai_vport_t stacked_with_outer{3, 10, 20, 30, 40, id_unset};
constexpr sai_vport_t single{3, 10, 0, 0, 0, id_unset};
constexpr sai_vport_t single_with_outer{3, 10, 0, 30, 40, id_unset};

sai_vport_t made;
int32_t entry;
int32_t policer;

void ready() {
  sai_vlan_vport_init(unit);
  for (const uint16_t vlan : std::initializer_list<uint16_t>{20, 30, 40}) sai_vlan_create(unit, vlan);
}

std::function<void()> ready_with(const sai_vport_t& vport) {
  return [&vport] {
    ready();
    made = vport;
    sai_vport_create(unit, 1, &made);
  };
}

void entry_made() {
  int32_t group = 0;
  sai_system_ipv4_fp_create(unit, &group);
  sai_fp_ospf_ttl1_set(unit, 1, group, &entry);
}

void policer_made() {
  entry_made();
  sai_vport_fp_policer_set(unit, entry, &policer, 1000, 2000, 1500, 1500);
}

/// Only one failure ends the work, and only those of one call show in the result.
Row creation(const char* name, const sai_vport_t& vport) {
  return {.name = std::string("sai_vport_create, ") + name,
          .call = [&vport] { return sai_vport_create(unit, 1, out(vport)); },
          .failures = {{"bcm_port_untagged_vlan_get", stops},
                       {"bcm_port_gport_get bcm_vlan_port_create bcm_vlan_gport_add bcm_multicast_vlan_encap_get "
                        "bcm_multicast_l2_encap_get bcm_multicast_egress_add bcm_vlan_translate_egress_action_delete "
                        "bcm_vlan_translate_egress_action_add",
                        goes_on},
                       {"bcm_vlan_control_vlan_get bcm_vlan_control_vlan_set", goes_on, "%s."}},
          .result = "bcm_port_untagged_vlan_get bcm_vlan_translate_egress_action_add",
          .outputs = "bcm_port_untagged_vlan_get",
          .scene = ready,
          .ports = 2};
}

Row destruction(const char* name, const sai_vport_t& vport) {
  return {.name = std::string("sai_vport_destroy, ") + name,
          .call = [] { return sai_vport_destroy(unit, 1, &made); },
          .failures = {{"bcm_vlan_translate_egress_action_delete bcm_vlan_translate_egress_action_add "
                        "bcm_vlan_gport_delete bcm_l2_addr_delete_by_port",
                        goes_on}},
          .result = "bcm_vlan_port_destroy",
          .scene = ready_with(vport),
          .ports = 2};
}

}  // namespace

Rows vport() {
  Row again = creation("again into its VLAN", stacked);
  again.failures.insert(again.failures.begin(),
                        {{"bcm_vlan_control_vlan_get", "bcm_vlan_control_vlan_set", "%s."},
                         {"bcm_vlan_control_vlan_get", "bcm_vlan_control_vlan_set", no_line, positive}});
  again.scene = [] {
    ready();
    sai_vport_t other{3, 11, 21, 30, 0, id_unset};
    sai_vport_create(unit, 1, &other);
  };
  return {
      {.name = "sai_vlan_vport_init",
       .call = [] { return sai_vlan_vport_init(unit); },
       .failures = {{"bcm_switch_control_set bcm_multicast_create bcm_vlan_create bcm_port_gport_get "
                     "bcm_vlan_control_port_set bcm_vlan_port_add",
                     goes_on, "%s."},
                    {"bcm_policer_init", goes_on, no_line}},
       .result = "bcm_vlan_create bcm_vlan_port_add",
       .ports = 2},

      creation("stacked", stacked),
      creation("stacked with an outer VLAN", stacked_with_outer),
      creation("single", single),
      creation("single with an outer VLAN", single_with_outer),
      std::move(again),
      destruction("stacked", stacked),
      destruction("stacked with an outer VLAN", stacked_with_outer),
      destruction("single with an outer VLAN", single_with_outer),

      {"sai_vport_split_horizon_set", [] { return sai_vport_split_horizon_set(unit, 1, 1); }},
      {"sai_vport_split_horizon_get", [] { return sai_vport_split_horizon_get(unit, 1, out<uint32_t>()); }},
      {.name = "sai_vport_fp_policer_set",
       .call = [] { return sai_vport_fp_policer_set(unit, entry, out<int32_t>(), 1000, 2000, 1500, 1500); },
       .scene = entry_made},
      {.name = "sai_vport_fp_policer_get",
       .call =
           [] {
             return sai_vport_fp_policer_get(unit, entry, out<int32_t>(), out<uint32_t>(), out<uint32_t>(),
                                             out<uint32_t>(), out<uint32_t>());
           },
       .scene = policer_made},
      {.name = "sai_vport_fp_policer_destroy",
       .call = [] { return sai_vport_fp_policer_destroy(unit, policer); },
       .scene =
           [] {
             policer_made();
             sai_fp_entry_policer_detach(unit, entry);
           }},
  };
}

}  // namespace sweep
