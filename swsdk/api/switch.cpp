#include <bcm/switch.h>

#include <algorithm>
#include <vector>

#include "api/call.h"
#include "api/convert.h"
#include "api/gports.h"
#include "api/system.h"

using api::array;
using api::Call;
using api::in;
using api::inout;
using api::out;
using api::out_array;
using chip::Chip;
using chip::Status;

int bcm_switch_control_get(int unit, bcm_switch_control_t type, int* arg) {
  return Call(calls::bcm_switch_control_get(unit, type, arg)).answer([&](Chip& chip) {
    return api::tell(chip.switch_controls.get(type), Status::unavailable, *arg);
  });
}

int bcm_switch_control_port_set(int unit, bcm_port_t port, bcm_switch_control_t type, int arg) {
  return Call(calls::bcm_switch_control_port_set(unit, port, type, arg)).answer([&](Chip& chip) {
    return chip.switch_controls.set_port(api::port_of(port), type, arg);
  });
}

int bcm_switch_control_set(int unit, bcm_switch_control_t type, int arg) {
  return Call(calls::bcm_switch_control_set(unit, type, arg)).answer([&](Chip& chip) {
    const chip::Status status = chip.switch_controls.set(type, arg);
    api::publish_egress_mode(unit);
    return status;
  });
}

int bcm_switch_ipv6_reserved_multicast_addr_multi_set(int unit, int inner, int num, bcm_ip6_t* ip6_addr,
                                                      bcm_ip6_t* ip6_mask) {
  return Call(calls::bcm_switch_ipv6_reserved_multicast_addr_multi_set(unit, inner, num, ip6_addr, ip6_mask))
      .answer([&](Chip& chip) {
        if (num < 0) return chip::Status::bad_parameter;
        std::vector<chip::Ip6Match> matches;
        for (int i = 0; i < num; ++i) matches.push_back({api::address(ip6_addr[i]), api::address(ip6_mask[i])});
        return chip.reserved_multicast.set(inner, matches);
      });
}

int bcm_switch_network_group_config_get(int unit, bcm_switch_network_group_t source_network_group_id,
                                        bcm_switch_network_group_config_t* config) {
  return Call(calls::bcm_switch_network_group_config_get(unit, source_network_group_id, config))
      .answer([&](const Chip& chip) {
        if (!chip::NetworkGroups::is_valid(config->dest_network_group_id)) return chip::Status::bad_parameter;
        return api::tell(chip.network_groups.find(source_network_group_id), Status::bad_parameter,
                         config->config_flags);
      });
}

int bcm_switch_network_group_config_set(int unit, bcm_switch_network_group_t source_network_group_id,
                                        bcm_switch_network_group_config_t* config) {
  return Call(calls::bcm_switch_network_group_config_set(unit, source_network_group_id, config))
      .answer([&](Chip& chip) {
        if (!chip::NetworkGroups::is_valid(config->dest_network_group_id)) return chip::Status::bad_parameter;
        return chip.network_groups.set(source_network_group_id, config->config_flags);
      });
}

int bcm_switch_object_count_multi_get(int unit, int object_size, bcm_switch_object_t* object_array, int* entries) {
  return Call(calls::bcm_switch_object_count_multi_get(unit, object_size, object_array, entries))
      .answer([&](const Chip& chip) {
        if (object_size <= 0) return Status::bad_parameter;
        std::vector<int> counts;
        for (int i = 0; i < object_size; ++i) {
          if (object_array[i] != bcmSwitchObjectL2EntryCurrent && object_array[i] != bcmSwitchObjectL2EntryMax)
            return Status::unavailable;
          counts.push_back(object_array[i] == bcmSwitchObjectL2EntryMax ? chip::MacTable::capacity
                                                                        : chip.mac_table.size());
        }
        std::copy(counts.begin(), counts.end(), entries);
        return Status::ok;
      });
}

int bcm_switch_temperature_monitor_get(int unit, int temperature_max,
                                       bcm_switch_temperature_monitor_t* temperature_array, int* temperature_count) {
  return Call(calls::bcm_switch_temperature_monitor_get(unit, temperature_max, temperature_array, temperature_count))
      .answer([&](Chip& chip) {
        if (temperature_max < 0) return chip::Status::bad_parameter;
        *temperature_count = 0;
        for (const chip::Temperature& reading : chip.temperature_sensors.all()) {
          if (*temperature_count == temperature_max) break;
          bcm_switch_temperature_monitor_t& monitor = temperature_array[(*temperature_count)++];
          bcm_switch_temperature_monitor_t_init(&monitor);
          monitor.curr = reading.current;
          monitor.peak = reading.peak;
        }
        return chip::Status::ok;
      });
}
