// The frames that leave the chip, kept until a command asks for them.
#pragma once

#include <swsdk/frames.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace saish {

/// A copy of a frame that left the chip.
struct Copy {
  int port;      ///< 0: for the CPU
  uint32_t cpu;  ///< why the CPU gets it
  std::vector<uint8_t> bytes;
  std::size_t frames = 1;  ///< more: it is the first of an aggregate
};

/// "2" or "cpu (protocol, destination)".
std::string place_text(int port, uint32_t cpu);

class Capture {
 public:
  /// Captures what leaves the unit from now on, until the chips are switched off.
  void watch(int unit);
  /// A second receiver of each frame, called before the frame is kept. It takes aggregates whole.
  void pass_to(std::function<void(const swsdk_out&)> other) { other_ = std::move(other); }

  /// Makes a frame arrive and returns what swsdk_frame_send() does. `copies` receives what left until then.
  int send(int unit, int port, std::span<const uint8_t> frame, std::vector<Copy>& copies);

  /// What left since the last time: a line per copy, the oldest first.
  std::vector<std::string> take();

 private:
  static void add(int unit, const swsdk_out* out, void* capture);

  std::mutex lock_;
  std::deque<Copy> kept_;              // the newest
  std::vector<Copy>* sent_ = nullptr;  // what leaves while a frame is sent
  std::function<void(const swsdk_out&)> other_;
};

}  // namespace saish
