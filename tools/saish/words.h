// A command line as words.
#pragma once

#include <optional>
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

using Words = std::vector<std::string>;

/// The words of a line: separated by blanks; "quoted text" is one word, in which \" and \\ stand for themselves, and so
/// is a record, {in braces}. A word that begins with # begins a comment.
Words words(std::string_view line);

/// A text without the blanks around it.
std::string trimmed(std::string_view text);

/// What is between `open` and `close`, separated by commas, each without the blanks around it; nothing when `word` is
/// not enclosed so. Commas inside brackets and braces separate nothing.
std::optional<Words> enclosed(std::string_view word, char open, char close);

}  // namespace saish
