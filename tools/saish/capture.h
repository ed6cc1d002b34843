// The frames that leave the chip, kept until a command asks for them.
#pragma once

#include <swsdk/frames.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace saish {

class Capture {
 public:
  /// Captures what leaves the unit from now on, until the chips are switched off.
  void watch(int unit);
  /// A second receiver of each frame, called before the frame is kept.
  void pass_to(std::function<void(const swsdk_out&)> other) { other_ = std::move(other); }

  /// What left since the last time: a line per copy, the oldest first.
  std::vector<std::string> take();

 private:
  struct Kept {
    int port;
    uint32_t cpu;
    std::vector<uint8_t> bytes;
  };

  static void add(int unit, const swsdk_out* out, void* capture);

  std::mutex lock_;
  std::deque<Kept> kept_;  // the newest
  std::function<void(const swsdk_out&)> other_;
};

}  // namespace saish
