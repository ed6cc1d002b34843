// A command line as words.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace saish {

/// `text` with control characters written out, as \n or \x1b: in a message it stays on its line and moves no cursor.
std::string printable(std::string_view text);

/// What is wrong with what the user typed: one line for a person.
struct BadInput : std::runtime_error {
  explicit BadInput(std::string_view text) : runtime_error(printable(text)) {}
};

/// The words of a line: separated by blanks; "quoted text" is one word, in which \" and \\ stand for themselves. A word
/// that begins with # begins a comment.
std::vector<std::string> words(std::string_view line);

}  // namespace saish
