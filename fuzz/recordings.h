// Recordings of the virtual chip in memory, and how a target repeats them.
#pragma once

#include <string>

namespace fuzz {

/// A file for a recording. It lives as long as the process.
class RecordingFile {
 public:
  explicit RecordingFile(const char* name);

  const char* path() const { return path_.c_str(); }
  void write(const std::string& text) const;
  std::string text() const;

 private:
  std::string path_;
};

struct Replayed {
  int outcome = 0;   // one of the SWSDK_REPLAY_ values
  int line = 0;      // that the last of the messages is about; 0: there is none
  std::string told;  // the messages
};

Replayed replayed(const RecordingFile& file);

/// Whether it can become a C program.
bool becomes_c(const RecordingFile& file);

}  // namespace fuzz
