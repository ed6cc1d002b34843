// The frames that pass through the chip, as they pass.
#pragma once

#include <swsdk/watch.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace saish {

/// A frame that has passed.
struct Passage {
  long long seconds = 0;  // since 1970
  long nanoseconds = 0;
  int unit = 0;
  std::vector<std::string> lines;  // as swsdk_frame_trace() has them
};

/// What is recorded of frames during its lifetime.
class Watch {
 public:
  /// @param detail  SWSDK_WATCH_ENDS or SWSDK_WATCH_WAYS
  /// @param filter  an expression of libpcap; empty: every frame
  /// Throws BadInput, with libpcap's message when it refuses the filter.
  Watch(int detail, const std::string& filter);
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  /// Passes on what has been recorded since the last time, the oldest first. Returns how many older frames are lost.
  long long take(const std::function<void(const Passage&)>& take_one);

 private:
  const int number_;
  std::string rest_;  // a block whose end is still to come
};

/// A frame that has passed, in a line: "12:00:01.250 1: 02:... > 02:... -> 2, cpu (protocol)".
std::string line_of(const Passage& passage);

/// The ways that frames took: the stages and entries, without what differs from frame to frame.
class Paths {
 public:
  void add(const Passage& passage);
  /// Each way with its frames, the most frequent first.
  std::string summary() const;

 private:
  std::map<std::string, long long> counts_;
};

}  // namespace saish
