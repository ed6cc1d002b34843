#include <string>

#include "api/replay.h"

using api::Unreadable;

namespace {

/// Arguments that are arrays, from the first to the last, and the argument with their number of items.
struct CountedArrays {
  std::string_view function;
  std::size_t count;
  std::size_t first;
  std::size_t last;
};

constexpr CountedArrays all_counted_arrays[] = {
    {"bcm_multicast_egress_get", 2, 3, 4},
    {"bcm_stat_multi_get", 2, 3, 4},
    {"bcm_switch_ipv6_reserved_multicast_addr_multi_set", 2, 3, 4},
    {"bcm_switch_object_count_multi_get", 1, 2, 3},
    {"bcm_switch_temperature_monitor_get", 1, 2, 2},
    {"bcm_trunk_set", 3, 4, 4},
    {"swsdk_check", 2, 1, 1},
    {"swsdk_frame_send", 3, 2, 2},
    {"swsdk_journal_read_from", 2, 1, 1},
    {"swsdk_journal_take", 1, 0, 0},
    {"swsdk_show", 3, 2, 2},
    {"swsdk_temperatures_set", 2, 1, 1},
};

/// The call trusts the count; a recording may be damaged.
void check_counts(std::string_view function, const api::AllGiven& arguments) {
  for (const CountedArrays& arrays : all_counted_arrays) {
    if (arrays.function != function) continue;
    const std::size_t count = arguments[arrays.count]->asked_items();
    for (std::size_t i = arrays.first; i <= arrays.last; ++i) {
      const std::size_t there = arguments[i]->items_there().value_or(count);
      if (there != count)
        throw Unreadable("argument " + std::to_string(i + 1) + ": " + std::to_string(there) + " items in place of " +
                         std::to_string(count));
    }
  }
}

}  // namespace

api::AllGiven api::all_given(const Replayable& function, const Texts& texts) {
  const auto& parameters = function.parameters;
  if (texts.size() != parameters.size())
    throw Unreadable(std::to_string(texts.size()) + " arguments in place of " + std::to_string(parameters.size()));
  api::AllGiven arguments;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    try {
      arguments.push_back(parameters[i](texts[i]));
    } catch (const Unreadable& error) {
      throw Unreadable("argument " + std::to_string(i + 1) + ": " + error.what());
    }
  }
  check_counts(function.name, arguments);
  return arguments;
}

long long api::call_with(const Replayable& function, const Texts& arguments) {
  return function.call(function.function, all_given(function, arguments));
}
