// The pipeline: forwards frames by the chip's tables.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "chip/pipeline/observer.h"
#include "chip/pipeline/packet.h"
#include "chip/pipeline/wire.h"

namespace chip {

class Pipeline {
 public:
  explicit Pipeline(Chip& chip) : chip_(chip) {}

  /// Forwards a frame, without checksum, that was received at a port of the chip, which may be the CPU port. Returns
  /// why it was dropped, or none; the CPU may have got a copy in either case. A frame none of whose copies could leave
  /// is dropped for the reason of the first. All copies have left when it returns.
  Drop receive(Port port, std::span<const uint8_t> frame, Wire& wire, Observer* observer = nullptr);

  /// The same for an aggregate. It goes through the chip and leaves as one, unless something in the chip has to see
  /// each of its frames. Returns whether one of those was not dropped.
  bool receive_whole(Port port, std::span<const uint8_t> aggregate, const Segments& segments, Wire& wire);

  /// The same for a frame that only might come in: nothing of the chip is changed.
  Drop try_out(Port port, std::span<const uint8_t> frame, Wire& wire, Observer& observer);

 private:
  /// Nothing, and nothing has changed, when it is an aggregate that has to be cut.
  std::optional<Drop> pass(Port port, std::span<const uint8_t> frame, const Segments& segments, Wire& wire,
                           Observer* observer);
  void follow_loops(Wire& wire, Observer* observer);

  Chip& chip_;
  std::vector<Looped> looped_;
  std::vector<Copy> copies_;  // of the current frame; kept, so that no frame allocates memory
  Cutter cutter_;
};

}  // namespace chip
