// What a chip answers now, and what it raises, beside a recording.
#pragma once

#include <swsdk/recording.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "api/recording_lines.h"

namespace api {

/// Repeats the lines of a recording on the chips, which it switches off first. An event that the chip does not raise by
/// itself, because what led to it came from outside, is raised.
class Comparison {
 public:
  using Differs = std::function<void(const swsdk_difference&)>;

  explicit Comparison(Differs differs);
  ~Comparison();
  Comparison(const Comparison&) = delete;
  Comparison& operator=(const Comparison&) = delete;

  /// Throws Unreadable.
  void repeat(const RecordedLine& line, int number, const Say& say);

  /// Reports the events that the recording does not have, if it has those of its chip. Returns how much was repeated.
  swsdk_replayed end();

  bool has_differences() const { return has_differences_; }

 private:
  using Texts = std::vector<std::string>;

  void compare_answer(const RecordedLine& line, int number);
  void compare_event(const RecordedLine& line, int number, const Say& say);
  /// Compares an event with those that came.
  void settle(Texts& came, int number, const std::string& text);
  void settle_frames();
  void take_events();
  void tell(int line, std::string_view function, const std::string& kind, const std::string& recorded,
            const std::string& now);

  const Differs differs_;
  Texts events_;                                     // of callbacks, that came and were not compared yet
  Texts sent_;                                       // the frames that came, apart from the events, which can be many
  std::vector<std::pair<int, std::string>> frames_;  // of the recording, with their lines, that did not come yet
  swsdk_replayed counts_{};
  bool has_events_ = false;
  bool has_frames_ = false;
  bool has_differences_ = false;
};

}  // namespace api
