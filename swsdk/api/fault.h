// The injected faults; swsdk/fault.h is their interface to users.
#pragma once

#include <optional>

namespace api {

/// The code that this call of `function` returns instead of doing its work, if it hits a fault.
std::optional<int> next_fault(const char* function);

/// Writes into the file that the environment names which function of the library met a fault.
void log_fault(const char* function);

void clear_faults();

}  // namespace api
