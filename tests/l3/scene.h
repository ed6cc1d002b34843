// A scene for layer 3: every SDK call of a step answers what the test says, so that each step is seen by itself.
#pragma once

#include <bcm/error.h>
#include <swsdk/fault.h>

#include <map>
#include <stdexcept>
#include <string>

#include "support/scene.h"

extern "C" uint32_t* l3_module_data[];

namespace l3 {

/// What SDK functions answer, by name.
using Answers = std::map<std::string, int>;

/// The same answers, but for some functions.
inline Answers but(const Answers& changes, Answers answers) {
  for (const auto& [function, code] : changes) answers[function] = code;
  return answers;
}

/// A journal line of a call.
inline std::string line(const std::string& call, int rv) { return call + " = " + std::to_string(rv) + '\n'; }

class Scene : public support::Scene {
 protected:
  std::string observe_with(const Answers& answers, const std::function<int32_t()>& call) {
    for (const auto& [function, code] : answers)
      if (swsdk_fault_inject(function.c_str(), code, SWSDK_FAULT_EVERY_CALL) != 0)
        throw std::invalid_argument(function);
    const std::string result = observe(call);
    swsdk_fault_clear();
    return result;
  }

  /// Hosts and routes point at egress objects, or at interfaces.
  static void use_egress_objects(bool on) { l3_module_data[unit][0] = on ? 1 : 0; }

  static constexpr uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};
  static constexpr uint8_t neighbor[6] = {0x02, 0, 0, 0xAB, 0, 0x2A};
  static constexpr uint8_t no_mac[6] = {};
};

}  // namespace l3
