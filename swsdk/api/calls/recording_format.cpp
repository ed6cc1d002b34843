#include "api/calls/recording_format.h"

#include <algorithm>
#include <iterator>

std::optional<api::Kind> api::kind_of(std::string_view word) {
  const auto* const found = std::find(std::begin(kind_names), std::end(kind_names), word);
  if (found == std::end(kind_names)) return std::nullopt;
  return static_cast<Kind>(found - std::begin(kind_names));
}
