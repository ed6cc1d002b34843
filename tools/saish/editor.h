// Lines typed by a person: editing, history, completion.
#pragma once

#include <optional>
#include <string>

namespace saish {

class Editor {
 public:
  /// Reads the history of earlier sessions.
  Editor();
  /// Writes it, where that can be done.
  ~Editor();

  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  /// The next line, or nothing at the end of input.
  std::optional<std::string> read_line();

 private:
  std::string history_file_;
};

}  // namespace saish
