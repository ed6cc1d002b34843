// The bytes of a frame on its way out: tags, addresses and all.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "chip/pipeline/packet.h"
#include "chip/port_macs.h"

namespace chip {

/// The header of a copy.
struct EgressHeader {
  Mac destination{};
  Mac source{};
  std::optional<uint16_t> outer_tag;  // always present until make_egress_tags()
  std::optional<uint16_t> inner_tag;
  bool routed = false;  // its TTL is decremented

  int vlan() const { return outer_tag.value_or(0) & vlan_mask; }
};

/// The buffer of one frame that leaves.
class EgressFrame {
 public:
  /// Minimum frame size in bytes, without checksum.
  static constexpr std::size_t min_size = 60;
  /// Bytes of the longest frame or aggregate.
  static constexpr std::size_t max_size = 65536 + 64;

  /// Writes a header, then what follows the packet's own tags. The bytes are valid until the next call, and as long as
  /// those of the packet: a copy that leaves as the frame came in is not written.
  std::span<const uint8_t> write(const EgressHeader& header, const Packet& packet);

 private:
  static constexpr std::size_t tags = 8;
  static_assert(max_size > PortMacs::max_frame_max);
  std::array<uint8_t, max_size + tags> bytes_;
};

}  // namespace chip
