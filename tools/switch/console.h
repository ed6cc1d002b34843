// What the program prints, and where it waits when nobody reads.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace vswitch {

/// Prints a line of the program's own on standard error, after what was printed before.
void tell(const std::string& line);

class Writer;

/// Takes over standard output and standard error. What is printed there waits in memory for its reader, so that no
/// reader, or none, can keep the caller from its work. Beyond a limit it is left out, and a line tells how much.
class Console {
 public:
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// Waits until all is read; once `signals` is readable, for a second at most. False when standard output could not be
  /// written, which standard error tells then.
  bool finish(int signals);

 private:
  std::FILE* const output_;
  std::FILE* const errors_;
  const std::shared_ptr<Writer> output_writer_;
  const std::shared_ptr<Writer>
      errors_writer_;  // the same one when both go to the same place, so that they stay in order
};

}  // namespace vswitch
