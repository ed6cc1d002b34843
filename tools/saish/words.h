// A command line as words.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace saish {

/// What is wrong with what the user typed: one line for a person.
struct BadInput : std::runtime_error {
  using runtime_error::runtime_error;
};

/// The words of a line: separated by blanks; "quoted text" is one word, in which \" and \\ stand for themselves. A word
/// that begins with # begins a comment.
std::vector<std::string> words(std::string_view line);

}  // namespace saish
