// The two processors that drive the front panel's LEDs.
#pragma once

#include <array>
#include <cstdint>
#include <istream>

#include "chip/status.h"

namespace chip {

struct LedProcessor {
  static constexpr std::size_t memory_size = 1024;

  std::array<uint8_t, memory_size> memory{};
  bool loaded = false;
  bool automatic = false;  // follows the link status of the ports
  bool running = false;
};

class LedProcessors {
 public:
  static constexpr int count = 2;

  void reset() { processors_ = {}; }

  bool has(int led) const { return led >= 0 && led < count; }
  const LedProcessor& operator[](int led) const { return processors_[static_cast<std::size_t>(led)]; }

  /// Loads a program from Intel hex records. Anything else in the stream is refused, and the processor keeps its
  /// program.
  Status load(int led, std::istream& program);
  void set_automatic(int led, bool on) { at(led).automatic = on; }
  /// A processor without a program does not start.
  Status start(int led) {
    at(led).running = at(led).loaded;
    return at(led).loaded ? Status::ok : Status::failed;
  }
  void stop(int led) { at(led).running = false; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(processors_);
  }

 private:
  LedProcessor& at(int led) { return processors_[static_cast<std::size_t>(led)]; }

  std::array<LedProcessor, count> processors_;
};

}  // namespace chip
