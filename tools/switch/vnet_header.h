// What the kernel says of a frame's checksum and segments, in front of the frame: the header of virtio's network
// devices, which packet sockets and TAP interfaces have, too.
#pragma once

#include <cstdint>
#include <span>

#include "chip/segments.h"

namespace vswitch {

/// As `struct virtio_net_hdr`, whose header is not for C++.
struct VnetHeader {
  uint8_t flags;
  uint8_t kind;  // of the segments
  uint16_t headers;
  uint16_t segment_size;
  uint16_t checksum_start;
  uint16_t checksum_offset;  // from there

  /// How to cut the frame that came with this. The checksum of a frame that is no aggregate is completed.
  chip::Segments apply(std::span<uint8_t> frame) const;

  /// The header with which such a frame is sent.
  static VnetHeader of(std::span<const uint8_t> frame, const chip::Segments& segments);
};
static_assert(sizeof(VnetHeader) == 10);

}  // namespace vswitch
