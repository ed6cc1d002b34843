// The injected faults; swsdk/fault.h is their interface to users.
#pragma once

#include <optional>

namespace api {

/// The code that this call of `function` returns instead of doing its work, if it hits a fault.
std::optional<int> next_fault(const char* function);

void clear_faults();

}  // namespace api
