// The functions that a recording can call, by name, and what a call of each needs.
#pragma once

#include <string_view>
#include <vector>

#include "api/given.h"

namespace api {

using Texts = std::vector<std::string_view>;

/// A function of any signature, and what its signature makes of the arguments' texts. Both throw Unreadable.
struct Replayable {
  const char* name;
  void (*function)();
  void (*repeat)(void (*function)(), const Texts& arguments);
  CCall (*as_c)(const char* name, const Texts& arguments);
};

/// The function of that name, or null.
const Replayable* find_replayable(std::string_view name);

}  // namespace api
