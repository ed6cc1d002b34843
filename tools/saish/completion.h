// What can stand where the cursor is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace saish {

/// The characters that words end with for completion: those of commands, and those inside a record.
constexpr const char* word_ends = " \t{,=";

struct Completion {
  std::vector<std::string> candidates;  // what the word at the cursor can become
  std::string hint;                     // what it is, where it can become too much to be listed
  bool in_record = false;
};

/// How a line can go on that ends at the cursor.
Completion completion_of(std::string_view line);

}  // namespace saish
