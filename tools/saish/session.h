// A session of the shell: runs lines and scripts, and prints their results.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "capture.h"
#include "expectation.h"
#include "library.h"
#include "watch.h"

namespace saish {

struct BuiltIn;

/// What a session does to the chip at its beginning and its end.
enum class Power {
  on,    ///< it starts the chip, and switches it off
  cold,  ///< its commands start the chip, and it switches that off
  left,  ///< the chip is another process's: it is left as it is
};

class Session {
 public:
  explicit Session(Power power);
  ~Session();

  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Runs one line and prints its result. Throws BadInput when the line is not a command, before any change; Unexpected
  /// when the result is not what `expect` says.
  void run(std::string_view line);

  /// The same; throws Unexpected also when a function failed.
  void run_well(std::string_view line);

  /// Runs a script line by line, each echoed first. Throws Unexpected, with file and line, at the first line without
  /// the expected result.
  void run_script(const std::string& path);

  /// Ends the scripts that are running before their next line, until the next run(). A signal handler may call it.
  static void interrupt();

  /// Whether every command prints the SDK calls that it made.
  void follow_journal(bool on);
  void clear_journal();

  /// Prints the SDK calls of all processes on the chip as they happen, for so long or until the session is interrupted.
  static void print_calls_of_all(std::optional<int> seconds);

  /// Whether interrupt() has been called since the last run().
  static bool is_interrupted();

  /// Begun by `path start`, and by `capture start`.
  std::optional<Watch> path_watch;
  Paths paths;
  std::optional<Watch> capture_watch;

  /// Tables of the program around the shell, by name, which `show` shows beside the chip's.
  std::map<std::string, std::function<std::string()>> more_tables;

  /// What leaves the units to which frames were sent.
  Capture& capture() { return capture_; }

  /// What is expected of the frame that was sent last.
  Expectations& expectations() { return expectations_; }

  /// The line that is being run; in a script, with its file and number.
  const std::string& here() const { return here_; }

  /// Whether its tables are for a comparison. Then it makes none itself: comparisons would start each other forever.
  void set_compared() { compared_ = true; }
  bool is_compared() const { return compared_; }

  void end() { ended_ = true; }
  bool ended() const { return ended_; }

 private:
  void execute(std::string_view line, bool well);
  void run_built_in(const BuiltIn& built_in, const Words& arguments, std::optional<int32_t> expected);
  std::optional<int32_t> call(const Function& function, const Words& arguments);
  void print_news();

  const Power power_;
  Capture capture_;
  Expectations expectations_;
  std::string here_;
  bool ended_ = false;
  bool compared_ = false;
  bool following_ = false;
  std::size_t journal_shown_ = 0;
  int scripts_ = 0;  // nested, that are running
};

/// What the virtual chip's journal holds from a position on.
std::string journal_text(std::size_t position = 0);

}  // namespace saish
