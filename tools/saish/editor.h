// Lines typed by a person: editing, history, completion.
#pragma once

#include <optional>
#include <string>

namespace saish {

class Editor {
 public:
  /// Reads the history of earlier sessions. From here on an interrupt, Ctrl-C, drops the line that is being typed or
  /// ends the scripts that are running, but not the process.
  Editor();

  /// The next line, or nothing at the end of input. It is added to the history at once, if that can be written.
  std::optional<std::string> read_line();

 private:
  void remember(const std::string& line);

  std::string history_file_;
  std::string last_line_;
};

}  // namespace saish
