// What is at the other end of the chip's ports.
#pragma once

#include <cstdint>
#include <span>

namespace chip {

/// A frame for the CPU.
struct CpuFrame {
  std::span<const uint8_t> bytes;  // always with the tag of its VLAN
  int port;                        // where it came in
  uint32_t reasons;                // cpu_reason
};

class Wire {
 public:
  /// A frame that leaves at an Ethernet port, without checksum.
  virtual void transmit(int port, std::span<const uint8_t> frame) = 0;
  virtual void deliver(const CpuFrame& frame) = 0;

 protected:
  ~Wire() = default;
};

}  // namespace chip
