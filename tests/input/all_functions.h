// A scene in which every function of sai.h succeeds with its good arguments, and all that can be bad in a call.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "input/arguments.h"
#include "support/scene.h"

namespace input {

/// Each argument of a function bad in turn, but for those with which it trusts its caller.
std::vector<Bad> all_bad(const Function& function);

/// "sai_l2_mac_entry_add entry.port".
std::string name_of(const Function& function, const Bad& bad);

std::string value_of(const Bad& bad);

/// Calls the function, and lets it print nothing.
Outcome quietly(const Function& function, const Bad& bad = {});

class AllFunctions : public support::Scene {
 protected:
  /// What every function needs to succeed with good arguments.
  void set_scene();

  /// With good arguments.
  static int32_t call(std::string_view function);
};

}  // namespace input
