// What the program prints, and the buffers for it while no process reads.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace vswitch {

/// Prints a line of the program's own on standard error, after what was printed before.
void tell(const std::string& line);

class Writer;

/// Takes over standard output and standard error. What is printed there waits in memory, so that a slow or missing
/// reader cannot block the caller. Beyond a limit it is left out, and a line says how much.
class Console {
 public:
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// Waits until all is read; once `signals` is readable, for at most a second. False when standard output could not be
  /// written, which is then reported on standard error.
  bool finish(int signals);

 private:
  std::FILE* const output_;
  std::FILE* const errors_;
  const std::shared_ptr<Writer> output_writer_;
  const std::shared_ptr<Writer>
      errors_writer_;  // the same writer when both have the same target, so that they stay in order
};

}  // namespace vswitch
