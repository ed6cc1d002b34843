// The bytes of a frame on its way out: tags, addresses and all.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "chip/pipeline/packet.h"
#include "chip/port_macs.h"

namespace chip {

/// What stands in front of the payload of a copy.
struct EgressHeader {
  Mac destination{};
  Mac source{};
  std::optional<uint16_t> outer_tag;  // until the tags for the wire are made, always there
  std::optional<uint16_t> inner_tag;
  bool routed = false;  // its time to live is one less

  int vlan() const { return outer_tag.value_or(0) & vlan_mask; }
};

/// Room for one frame that leaves.
class EgressFrame {
 public:
  /// How long a frame has to be, without its checksum.
  static constexpr std::size_t shortest = 60;

  /// Writes a header and what stands behind the packet's own tags; the bytes stay until the next call.
  std::span<uint8_t> write(const EgressHeader& header, const Packet& packet);

 private:
  static constexpr std::size_t tags = 8;
  std::array<uint8_t, PortMacs::highest_frame_max + tags> bytes_;
};

}  // namespace chip
