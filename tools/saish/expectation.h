// What a script says of the frame that it sent: which copies left, or why the frame was not passed on.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "capture.h"
#include "frame_pattern.h"
#include "words.h"

namespace saish {

/// A command of a script, or one after `expect`, did not have the expected result.
struct Unexpected : std::runtime_error {
  explicit Unexpected(std::string_view text) : runtime_error(printable(text)) {}
};

/// The words after `expect` that say something of a frame, and what else help says of them.
extern const char* const frame_expectations[4];
extern const char* const expectation_notes[9];
bool is_frame_expectation(std::string_view word);

/// What swsdk_frame_send() returned: "0" or "1 (malformed)".
std::string outcome_text(int outcome);

/// The names of reasons as `expect` takes them: words joined by hyphens.
std::vector<std::string> cpu_reason_words();
std::vector<std::string> drop_reason_words();

class Expectations {
 public:
  /// A frame was sent: where in which script, what swsdk_frame_send() returned, and the copies that left. Nothing is
  /// expected of it yet.
  void begin(std::string where, int outcome, std::vector<Copy> copies);

  /// States an expectation of the last frame, by the words after `expect`. Throws BadInput, and Unexpected when it is
  /// not met, having printed what came instead.
  void state(const Words& words);

  /// The last frame is done with: when anything was expected of it, all its copies must have been. Prints the others
  /// and throws Unexpected, once.
  void settle();

  /// How many frames were sent.
  int sent() const { return sent_; }
  /// What swsdk_frame_send() returned for the last one.
  int outcome() const { return outcome_; }

 private:
  /// A copy that has to be among those that left. Without a port, any Ethernet port; without reasons, any reasons.
  struct Wanted {
    std::string text;
    bool for_cpu;
    std::optional<int> port;
    std::optional<uint32_t> cpu;
    FramePattern frame;

    bool matches(const Copy& copy) const;
  };

  static Wanted wanted_copy(const Words& words);
  static int wanted_drop(const Words& words);

  bool assign(std::size_t wanted, std::vector<bool>& tried);
  std::vector<std::string> others() const;
  const char* nothing() const;
  [[noreturn]] void fail(const std::string& wanted, std::vector<std::string> came);

  int sent_ = 0;
  std::string where_;
  int outcome_ = 0;
  bool is_strict_ = false;  // something was expected of the last frame
  std::vector<Copy> copies_;
  std::vector<std::optional<std::size_t>> takers_;  // of each copy: which of wanted_ has it
  std::vector<Wanted> wanted_;
};

}  // namespace saish
