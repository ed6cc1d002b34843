#include <syslog.h>

#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr uint8_t mac[6] = {0x02, 0, 0, 0, 0, 0x01};
constexpr int32_t weights[8] = {1, 1, 1, 1, 1, 1, 1, 1};

void on_l2_event(uint16_t, int32_t, uint8_t*, int32_t) {}
void on_link_event(int, bcm_port_t, bcm_port_info_t*) {}

/// What a function without a result is given for one.
template <class Call>
auto no_result(Call call) {
  return [call] {
    call();
    return 0;
  };
}

char* shell_command() {
  static char command[] = "help";
  return command;
}

}  // namespace

Rows core() {
  return {
      // Logging and conversions meet no SDK.
      {"open_sai_log",
       [] {
         sai_log_handle* const log = open_sai_log("sweep", 0, 0, LOG_USER);
         const bool opened = log != nullptr;
         close_sai_log(log);
         return opened ? 0 : -1;
       }},
      {"close_sai_log", no_result([] { close_sai_log(open_sai_log("sweep", 0, 0, LOG_USER)); })},
      {"sai_log_set_level", no_result([] { sai_log_set_level(nullptr, SAI_LOG_CONSOLE, SAI_LOG_OFF); })},
      {"sai_level_match", [] { return sai_level_match("emergencies"); }},
      {"sai_err", no_result([] { sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_OFF), sai_err("unseen"); })},
      {"sai_warn", no_result([] { sai_warn("a warning"); })},
      {"sai_notice", no_result([] { sai_notice("a notice"); })},
      {"sai_info", no_result([] { sai_info("an information"); })},
      {"sai_debug", no_result([] { sai_debug("a trace"); })},
      {"sdk_to_sai", [] { return sdk_to_sai(0); }},
      {"sai_hash_to_sdk", [] { return sai_hash_to_sdk(20); }},
      {"sai_unit_get", [] { return sai_unit_get(); }},

      {"sai_sh_process_command",
       [] { return sai_sh_process_command(unit, shell_command()); },
       {{"sh_process_command", stops, no_line}},
       zero_or_fail},

      {"sai_bpdu_set", [] { return sai_bpdu_set(unit, mac, out<int32_t>()); }},
      {.name = "sai_bpdu_unset",
       .call = [] { return sai_bpdu_unset(unit, 0); },
       .scene =
           [] {
             int32_t index = 0;
             sai_bpdu_set(unit, mac, &index);
           }},
      {"sai_lldp_set", [] { return sai_lldp_set(unit); }},
      {.name = "sai_lldp_unset", .call = [] { return sai_lldp_unset(unit); }, .scene = [] { sai_lldp_set(unit); }},
      {"sai_cosq_sched_set", [] { return sai_cosq_sched_set(unit, SAI_COSQ_WEIGHTED_ROUND_ROBIN, weights, 0); }},

      {"sai_knet_netif_init", [] { return sai_knet_netif_init(unit, 1, "ethv0", mac); }},
      {.name = "sai_knet_ktag_set",
       .call = [] { return sai_knet_ktag_set(37009, 1); },
       .result = zero_or_fail_if_negative},
      {.name = "sai_knet_vlan_set",
       .call = [] { return sai_knet_vlan_set(37009, 1, 2); },
       .result = zero_or_fail_if_negative},

      // There is no program to load here; a processor that a fault says is loaded is armed, in vain.
      {"sai_serial_led_config",
       no_result([] { sai_serial_led_config(unit); }),
       {{"sh_process_command", goes_on, " ] error", non_zero}},
       always_0},

      {"sai_register_link_service",
       [] { return sai_register_link_service(on_link_event); },
       {{"bcm_linkscan_register", goes_on}},
       always_0},
      {"sai_register_l2_service", [] { return sai_register_l2_service(unit, on_l2_event); }},
      {.name = "sai_unregister_l2_service",
       .call = [] { return sai_unregister_l2_service(unit, on_l2_event); },
       .scene = [] { sai_register_l2_service(unit, on_l2_event); }},

      {.name = "sai_switch_chip_init",
       .call = [] { return sai_switch_chip_init(mac); },
       .failures =
           {
               {"sdk_main", goes_on, no_line},
               {"system_init", stops, " failed.\r", non_zero},
               {"sh_process_command", goes_on, " ] error", non_zero},
               {"bcm_knet_netif_create", goes_on},
               {"bcm_port_vlan_member_set", goes_on},
               {"bcm_l2_cache_delete_all", goes_on},
               {"bcm_multicast_init", goes_on},
               {"bcm_mcast_init", goes_on},
               {"bcm_ipmc_enable", goes_on},
               {"bcm_ipmc_init", goes_on},
               {"bcm_switch_control_set#3", goes_on, "%s."},  // for virtual ports
               {"bcm_switch_control_set", goes_on},
               {"bcm_vlan_control_set", goes_on},
               {"bcm_switch_control_port_set", goes_on},
               {"bcm_l2_cache_set", goes_on},
               {"bcm_port_flood_block_set", goes_on},
               {"bcm_switch_ipv6_reserved_multicast_addr_multi_set", goes_on},
               {"bcm_multicast_create", goes_on, "%s."},
               {"bcm_vlan_create", goes_on, "%s."},
               {"bcm_port_gport_get", goes_on, "%s."},
               {"bcm_vlan_control_port_set", goes_on, "%s."},
               {"bcm_vlan_port_add", goes_on, "%s."},
               {"bcm_policer_init", goes_on, no_line},
           },
       .result = "system_init bcm_switch_control_set#1",
       .ports = 3},
  };
}

}  // namespace sweep
