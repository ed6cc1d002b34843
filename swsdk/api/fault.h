// The injected faults; swsdk/fault.h is their interface to users.
#pragma once

#include <optional>

namespace api {

/// The code that this call of `function` answers in place of doing its work, if a fault meets it.
std::optional<int> next_fault(const char* function);

}  // namespace api
