// The one way to fail: a failed SDK call is logged once and converted once.
#pragma once

#include <sai.h>

#include <type_traits>

#include "core/format.h"

namespace sai {

/// Where the Chip SDK's table of error texts has that of `rv`; for codes that it does not have, its unknown-error slot.
[[gnu::cold]] int error_index(int rv);

/// The Chip SDK's text for the result `rv`; its unknown-error text for codes that it does not have. Cold, and so is
/// every path that asks for it: a successful call carries none of it.
[[gnu::cold]] const char* error_text(int rv);

/// True when `rv` is an SDK failure; then logs `format`, whose last conversion takes the SDK's text for `rv`.
template <class... Args>
bool failed(int rv, Format<std::type_identity_t<Args>..., const char*> format, Args... args) {
  if (rv >= 0) [[likely]]
    return false;
  sai_err(format.text(), args..., error_text(rv));
  return true;
}

/// The library code of `rv`, after failed(rv, ...).
template <class... Args>
[[nodiscard]] int32_t result(int rv, Format<std::type_identity_t<Args>..., const char*> format, Args... args) {
  if (rv == SAI_E_NONE) [[likely]]
    return SAI_E_NONE;
  failed<Args...>(rv, format, args...);
  return sdk_to_sai(rv);
}

}  // namespace sai
