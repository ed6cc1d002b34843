// The shell's own commands, beside the library's functions.
#pragma once

#include <span>
#include <string_view>

#include "arguments.h"

namespace saish {

class Session;

struct BuiltIn {
  const char* name;
  const char* usage;
  const char* summary;
  std::size_t fewest_words;  // after the name
  std::size_t most_words;
  void (*run)(Session& session, const Words& arguments);
};

std::span<const BuiltIn> built_ins();
const BuiltIn* find_built_in(std::string_view name);

}  // namespace saish
