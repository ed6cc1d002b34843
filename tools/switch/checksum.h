// Checksums that a sender left to its interface.
#pragma once

#include <cstdint>
#include <span>

namespace vswitch {

/// Fills in the checksum of a TCP or UDP frame. A virtual interface has no hardware for it, and the chip forwards
/// frames unchanged.
void complete_checksum(std::span<uint8_t> frame);

}  // namespace vswitch
