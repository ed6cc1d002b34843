// A command line as words.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace saish {

/// `text` with control characters escaped, as \n or \x1b: in a message it stays on one line and moves no cursor.
std::string printable(std::string_view text);

/// An error in what the user typed: a message of one line.
struct BadInput : std::runtime_error {
  explicit BadInput(std::string_view text) : runtime_error(printable(text)) {}
};

using Words = std::vector<std::string>;

/// The words of a line, separated by spaces; "quoted text" is one word, with \" for a quote and \\ for a backslash;
/// so is a record, {in braces}. A word that begins with # begins a comment.
Words words(std::string_view line);

/// A text without the spaces around it.
std::string trimmed(std::string_view text);

/// What is between `open` and `close`, separated by commas, each without the spaces around it; nothing when `word` is
/// not enclosed by them. Commas inside brackets and braces do not separate.
std::optional<Words> enclosed(std::string_view word, char open, char close);

}  // namespace saish
