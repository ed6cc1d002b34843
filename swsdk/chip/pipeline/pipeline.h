// The pipeline: forwards frames by the chip's tables.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "chip/pipeline/meters.h"
#include "chip/pipeline/observer.h"
#include "chip/pipeline/packet.h"
#include "chip/pipeline/wire.h"

namespace chip {

class Pipeline {
 public:
  explicit Pipeline(Chip& chip) : chip_(chip) {}

  /// Fills the buckets of all meters.
  void reset() { meters_.reset(); }

  /// Forwards a frame, without checksum, that was received at a port of the chip, which may be the CPU port. Returns
  /// why it was dropped, or none; the CPU may have got a copy in either case. A frame none of whose copies could leave
  /// is dropped for the reason of the first. All copies have left when it returns.
  Drop receive(Port port, std::span<const uint8_t> frame, Wire& wire, Observer* observer = nullptr);

  /// The same for a frame that only might come in: nothing of the chip is changed.
  Drop try_out(Port port, std::span<const uint8_t> frame, Wire& wire, Observer& observer);

 private:
  Drop pass(Port port, std::span<const uint8_t> frame, Wire& wire, Observer* observer);

  Chip& chip_;
  Meters meters_;
  std::vector<Looped> looped_;
  std::vector<Copy> copies_;  // of the current frame; kept, so that no frame allocates memory
};

}  // namespace chip
