// The lines of a script.
#pragma once

#include <cstdio>
#include <string>

#include "words.h"

namespace saish {

class Script {
 public:
  /// Opens a file, or standard input for "-". Throws BadInput, with the reason, when it cannot be read.
  explicit Script(const std::string& path);
  ~Script();

  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;

  /// Reads the next line into `line`, without newline; false at the end of the script. Throws as the constructor does.
  bool next(std::string& line);

 private:
  BadInput unreadable() const;

  const std::string path_;
  std::FILE* const file_;
  char* buffer_ = nullptr;
  std::size_t size_ = 0;
  bool at_start_ = true;
};

}  // namespace saish
