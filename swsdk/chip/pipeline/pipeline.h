// The pipeline: what the chip makes of a frame.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "chip/pipeline/meters.h"
#include "chip/pipeline/packet.h"
#include "chip/pipeline/wire.h"

namespace chip {

class Pipeline {
 public:
  explicit Pipeline(Chip& chip) : chip_(chip) {}

  /// Forgets what it counted and metered.
  void reset() {
    meters_.reset();
    drops_ = {};
  }

  /// Passes on a frame that came in at a port, the CPU port among them; it has no checksum. Tells why it went no
  /// further, if it did not; the CPU may have got it all the same.
  Drop receive(int port, std::span<const uint8_t> frame, Wire& wire);

  /// Frames dropped, by reason.
  uint64_t drops(Drop reason) const { return drops_[static_cast<std::size_t>(reason)]; }

 private:
  Chip& chip_;
  Meters meters_;
  Drop pass(int port, std::span<const uint8_t> frame, Wire& wire);

  std::vector<Looped> looped_;
  std::vector<Copy> copies_;  // of the frame that is on its way; kept, so that frames allocate nothing
  std::array<uint64_t, drop_count> drops_{};
};

}  // namespace chip
