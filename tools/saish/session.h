// A session of the shell: runs lines and scripts, and says what came of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "capture.h"
#include "library.h"

namespace saish {

/// A command of a script, or one after `expect`, did not give what it should.
struct Unexpected : std::runtime_error {
  explicit Unexpected(std::string_view text) : runtime_error(printable(text)) {}
};

class Session {
 public:
  /// Starts the chip, unless `cold`.
  explicit Session(bool cold);
  ~Session();

  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Runs one line and prints what came of it. Throws BadInput when the line is no command, and nothing was changed;
  /// Unexpected when `expect` was not met.
  void run(std::string_view line);

  /// The same; throws Unexpected also when a function failed.
  void run_well(std::string_view line);

  /// Runs a script line by line, each echoed first. Throws Unexpected, with file and line, at the first line that does
  /// not give what it should.
  void run_script(const std::string& path);

  /// Ends the scripts that are running before their next line, until the next run(). A signal handler may call it.
  static void interrupt();

  /// Whether every command prints the SDK calls that it made.
  void follow_journal(bool on);
  void clear_journal();

  /// What leaves the units that frames were sent into.
  Capture& capture() { return capture_; }

  /// Whether its tables are for a comparison, so that it makes none itself: comparisons would start each other forever.
  void set_compared() { compared_ = true; }
  bool is_compared() const { return compared_; }

  void end() { ended_ = true; }
  bool ended() const { return ended_; }

 private:
  void execute(std::string_view line, bool well);
  std::optional<int32_t> call(const Function& function, const Words& arguments);
  void print_news();

  Capture capture_;
  bool ended_ = false;
  bool compared_ = false;
  bool following_ = false;
  std::size_t journal_shown_ = 0;
  int scripts_ = 0;  // that are running each other
};

/// What the virtual chip's journal holds from a position on.
std::string journal_text(std::size_t position = 0);

}  // namespace saish
