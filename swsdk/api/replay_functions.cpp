#include <appl/diag/shell.h>
#include <appl/diag/system.h>
#include <bcm/cosq.h>
#include <bcm/link.h>
#include <bcm/mcast.h>
#include <bcm/multicast.h>
#include <bcm/rate.h>
#include <bcm/stack.h>
#include <bcm/stat.h>
#include <bcm/stg.h>
#include <soc/cmic.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>

#include <map>
#include <string>
#include <tuple>

#include "api/replay.h"

// Exported without a public header.
extern "C" {
int sdk_main(int argc, char** argv);
int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
}

namespace {

using api::CCall;
using api::Given;
using api::Texts;

template <class T>
Given<T> given(const Texts& texts, std::size_t index) {
  try {
    return Given<T>(texts[index]);
  } catch (const api::Unreadable& error) {
    throw api::Unreadable("argument " + std::to_string(index + 1) + ": " + error.what());
  }
}

template <class... Args>
std::tuple<Given<Args>...> all_given(const Texts& texts) {
  if (texts.size() != sizeof...(Args))
    throw api::Unreadable(std::to_string(texts.size()) + " arguments in place of " + std::to_string(sizeof...(Args)));
  return [&]<std::size_t... i>(std::index_sequence<i...>) {
    return std::tuple<Given<Args>...>{given<Args>(texts, i)...};
  }
  (std::index_sequence_for<Args...>());
}

template <class Returned, class... Args>
void repeat(void (*function)(), const Texts& texts) {
  auto arguments = all_given<Args...>(texts);
  std::apply([&](auto&... argument) { reinterpret_cast<Returned (*)(Args...)>(function)(argument.get()...); },
             arguments);
}

template <class Returned, class... Args>
CCall as_c(const char* name, const Texts& texts) {
  const auto arguments = all_given<Args...>(texts);
  CCall call;
  std::string list;
  int index = 0;
  const auto add = [&](const auto& argument) {
    list += (index > 0 ? ", " : "") + argument.c("a" + std::to_string(index), call);
    ++index;
  };
  std::apply([&](const auto&... argument) { (add(argument), ...); }, arguments);
  const std::string made = name + ('(' + list + ");\n");
  call.statements += std::is_void_v<Returned> ? "  " + made + "  return 0;\n" : "  return " + made;
  return call;
}

template <class Returned, class... Args>
api::Replayable replayable(const char* name, Returned (*function)(Args...)) {
  return {name, reinterpret_cast<void (*)()>(function), &repeat<Returned, Args...>, &as_c<Returned, Args...>};
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
    replayable("swsdk_frame_send", &swsdk_frame_send),
    replayable("swsdk_l2_event", &swsdk_l2_event),
    replayable("swsdk_l2_learn", &swsdk_l2_learn),
    replayable("swsdk_l2_lookup", &swsdk_l2_lookup),
    replayable("swsdk_l3_host_hit", &swsdk_l3_host_hit),
    replayable("swsdk_l3_route_hit", &swsdk_l3_route_hit),
    replayable("swsdk_link_event", &swsdk_link_event),
    replayable("swsdk_phy_register_set", &swsdk_phy_register_set),
    replayable("swsdk_power_off", &swsdk_power_off),
    replayable("swsdk_temperatures_set", &swsdk_temperatures_set),
};

}  // namespace

const api::Replayable* api::find_replayable(std::string_view name) {
  static const auto by_name = [] {
    std::map<std::string_view, const Replayable*> result;
    for (const Replayable& one : functions) result.emplace(one.name, &one);
    return result;
  }();
  const auto found = by_name.find(name);
  return found == by_name.end() ? nullptr : found->second;
}
