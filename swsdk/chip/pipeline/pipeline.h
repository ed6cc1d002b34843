// The pipeline: forwards frames by the chip's tables.
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

  /// Clears drop counts and meters.
  void reset() {
    meters_.reset();
    drops_ = {};
  }

  /// Forwards a frame, without checksum, that was received at a port of the chip, which may be the CPU port. Returns
  /// why it was dropped, or none; the CPU may have got a copy in either case. All copies have left when it returns.
  Drop receive(Port port, std::span<const uint8_t> frame, Wire& wire);

  /// Frames dropped, by reason.
  uint64_t drops(Drop reason) const { return drops_[static_cast<std::size_t>(reason)]; }

 private:
  Drop pass(Port port, std::span<const uint8_t> frame, Wire& wire);

  Chip& chip_;
  Meters meters_;
  std::vector<Looped> looped_;
  std::vector<Copy> copies_;  // of the current frame; kept, so that no frame allocates memory
  std::array<uint64_t, drop_count> drops_{};
};

}  // namespace chip
