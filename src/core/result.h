// The only error path: a failed SDK call is logged once and converted once.
#pragma once

#include <sai.h>

#include <type_traits>

#include "core/format.h"

namespace sai {

/// Index of the text for `rv` in the Chip SDK's table of error texts; its unknown-error slot for unknown codes.
[[gnu::cold]] int error_index(int rv);

/// The Chip SDK's text for the result `rv`; its unknown-error text for unknown codes. Cold, and so is every path
/// that calls it: a successful call has none of that code.
[[gnu::cold]] const char* error_text(int rv);

/// The rest of the work for a failed call, out of line: a successful call only keeps the arguments for it.
template <class... Args>
[[gnu::cold, gnu::noinline]] void log_failure(int rv, const char* format, Args... args) {
  sai_err(format, args..., error_text(rv));
}

/// Returns the library code of `rv`, which is not 0, and logs a failure. A single call, with which result() ends.
template <class... Args>
[[gnu::cold, gnu::noinline]] int32_t code_of(int rv, const char* format, Args... args) {
  if (rv < 0) log_failure(rv, format, args...);
  return sdk_to_sai(rv);
}

/// Logs `format`, whose last conversion takes the SDK's text for `rv`, when `rv` is an SDK failure. For steps whose
/// failure does not end the sequence.
template <class... Args>
void log_if_failed(int rv, Format<std::type_identity_t<Args>..., const char*> format, Args... args) {
  if (rv < 0) [[unlikely]]
    log_failure(rv, format.text(), args...);
}

/// Whether `rv` is an SDK failure, which is logged as log_if_failed() does.
template <class... Args>
[[nodiscard]] bool failed(int rv, Format<std::type_identity_t<Args>..., const char*> format, Args... args) {
  if (rv >= 0) [[likely]]
    return false;
  log_failure(rv, format.text(), args...);
  return true;
}

/// The library code of `rv`, after failed(rv, ...).
template <class... Args>
[[nodiscard]] int32_t result(int rv, Format<std::type_identity_t<Args>..., const char*> format, Args... args) {
  if (rv == SAI_E_NONE) [[likely]]
    return SAI_E_NONE;
  return code_of(rv, format.text(), args...);
}

}  // namespace sai
