// The shell's own commands, in addition to the library's functions.
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
  std::span<const Field> fields = {};       // of the record among its words, if there is one
  std::span<const char* const> notes = {};  // what else help says
  bool has_code = false;                    // Expectations::outcome() is what it returned
};

std::span<const BuiltIn> built_ins();
const BuiltIn* find_built_in(std::string_view name);

/// The names of these commands and of the library's functions.
std::vector<std::string> command_names();

/// The unit that a word at the end names, 0 when it is left out. Throws BadInput when it is not initialized.
int initialized_unit_at(const Words& arguments, std::size_t index);
BadInput no_port(int unit, int port);

/// The message for a name that is none of them: it suggests the nearest name, if one is near.
BadInput unknown_command(std::string_view name);

}  // namespace saish
