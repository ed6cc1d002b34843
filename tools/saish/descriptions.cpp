#include "descriptions.h"

#include "library.h"

namespace saish {

namespace {

/// A name and the name that belongs to it, or that it belongs to.
struct Of {
  const char* one;
  const char* other;
};

}  // namespace

#include "descriptions.inc"

const Note& note(std::string_view of, std::string_view name) {
  static constexpr Note nothing = {"", "", "", "", ""};
  for (const Note& one : notes)
    if (of == one.of && name == one.name) return one;
  return nothing;
}

std::string_view family_of(std::string_view function) {
  for (const Of& one : families_of_functions)
    if (function == one.one) return one.other;
  return "";
}

std::vector<std::string_view> families() {
  std::vector<std::string_view> result;
  for (const Of& one : families_of_functions)
    if (result.empty() || result.back() != one.other) result.emplace_back(one.other);
  return result;
}

std::vector<std::string_view> constants_of(std::string_view enumeration) {
  std::vector<std::string_view> result;
  if (enumeration == sdk_result_enumeration)
    for (const Name& name : sdk_results()) result.emplace_back(name.name);
  for (const Of& one : constants_of_enumerations)
    if (enumeration == one.one) result.emplace_back(one.other);
  return result;
}

}  // namespace saish
