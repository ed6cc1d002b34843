#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/field.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>
#include <swsdk/state.h>
#include <swsdk/watch.h>

#include <array>
#include <map>

#include "api/replay.h"

namespace {

template <class T>
std::unique_ptr<api::AnyGiven> given(std::string_view text) {
  return std::make_unique<api::Given<T>>(text);
}

template <class... Args>
constexpr std::array<api::Parameter, sizeof...(Args)> parameters = {&given<Args>...};

template <class Returned, class... Args>
long long call(void (*function)(), const api::AllGiven& arguments) {
  return [&]<std::size_t... i>(std::index_sequence<i...>) {
    const auto run = [&] {
      return reinterpret_cast<Returned (*)(Args...)>(function)(static_cast<api::Given<Args>&>(*arguments[i]).get()...);
    };
    if constexpr (std::is_void_v<Returned>)
      return run(), 0LL;
    else
      return static_cast<long long>(run());
  }
  (std::index_sequence_for<Args...>());
}

/// With the type of its buffer, which it has not in C.
size_t kernel_command(int index, kcom_msg_t* message) { return swsdk_kernel_command(index, message, sizeof *message); }

template <class Returned, class... Args>
api::Replayable replayable(const char* name, Returned (*function)(Args...)) {
  return {name, reinterpret_cast<void (*)()>(function), parameters<Args...>, &call<Returned, Args...>,
          std::is_void_v<Returned>};
}

const api::Replayable functions[] = {
#include "replay_functions.inc"
    // Without a public header.
    replayable("sdk_main", &sdk_main),
    replayable("bcm_esw_vlan_ip4_mcast_flood_set", &bcm_esw_vlan_ip4_mcast_flood_set),
    replayable("bcm_esw_vlan_ip6_mcast_flood_set", &bcm_esw_vlan_ip6_mcast_flood_set),
    // Actions.
    replayable("swsdk_board_set", &swsdk_board_set),
    replayable("swsdk_clock_advance", &swsdk_clock_advance),
    replayable("swsdk_clock_step", &swsdk_clock_step),
    replayable("swsdk_counter_set", &swsdk_counter_set),
    replayable("swsdk_field_classify", &swsdk_field_classify),
    replayable("swsdk_frame_send", &swsdk_frame_send),
    replayable("swsdk_l2_event", &swsdk_l2_event),
    replayable("swsdk_l2_learn", &swsdk_l2_learn),
    replayable("swsdk_l2_lookup", &swsdk_l2_lookup),
    replayable("swsdk_l3_host_hit", &swsdk_l3_host_hit),
    replayable("swsdk_l3_route_hit", &swsdk_l3_route_hit),
    replayable("swsdk_link_event", &swsdk_link_event),
    replayable("swsdk_phy_register_set", &swsdk_phy_register_set),
    replayable("swsdk_power_off", &swsdk_power_off),
    replayable("swsdk_state_restore", &swsdk_state_restore),
    replayable("swsdk_temperatures_set", &swsdk_temperatures_set),
    // Questions, which only clients of a chip's process ask by their names.
    replayable("swsdk_board_get", &swsdk_board_get),
    replayable("swsdk_check", &swsdk_check),
    replayable("swsdk_drops", &swsdk_drops),
    replayable("swsdk_events_drain", &swsdk_events_drain),
    replayable("swsdk_fault_clear", &swsdk_fault_clear),
    replayable("swsdk_fault_get", &swsdk_fault_get),
    replayable("swsdk_fault_inject", &swsdk_fault_inject),
    replayable("swsdk_fault_remove", &swsdk_fault_remove),
    replayable("swsdk_field_hits", &swsdk_field_hits),
    replayable("swsdk_frame_handle", &swsdk_frame_handle),
    replayable("swsdk_frame_trace", &swsdk_frame_trace),
    replayable("swsdk_port_drops", &swsdk_port_drops),
    replayable("swsdk_watch_begin", &swsdk_watch_begin),
    replayable("swsdk_watch_end", &swsdk_watch_end),
    replayable("swsdk_watch_take", &swsdk_watch_take),
    replayable("swsdk_journal_clear", &swsdk_journal_clear),
    replayable("swsdk_journal_read_from", &swsdk_journal_read_from),
    replayable("swsdk_journal_record", &swsdk_journal_record),
    replayable("swsdk_journal_recording", &swsdk_journal_recording),
    replayable("swsdk_journal_take", &swsdk_journal_take),
    replayable("swsdk_kernel_command", &kernel_command),
    replayable("swsdk_netif_get", &swsdk_netif_get),
    replayable("swsdk_phy_register_get", &swsdk_phy_register_get),
    replayable("swsdk_show", &swsdk_show),
    replayable("swsdk_starts", &swsdk_starts),
    replayable("swsdk_state_save", &swsdk_state_save),
};

}  // namespace

std::span<const api::Replayable> api::replayables() { return functions; }

const api::Replayable* api::find_replayable(std::string_view name) {
  static const auto by_name = [] {
    std::map<std::string_view, const Replayable*> result;
    for (const Replayable& one : functions) result.emplace(one.name, &one);
    return result;
  }();
  const auto found = by_name.find(name);
  return found == by_name.end() ? nullptr : found->second;
}
