// Completion at the cursor.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace saish {

/// The characters that words end with for completion: those of commands, and those inside a record.
constexpr const char* word_ends = " \t{,=";

struct Completion {
  std::vector<std::string> candidates;  // what the word at the cursor can become
  std::string hint;                     // what the word stands for, when the candidates are too many to list
  bool in_record = false;
};

/// How a line that ends at the cursor can continue.
Completion completion_of(std::string_view line);

}  // namespace saish
