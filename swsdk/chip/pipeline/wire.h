// The receiver of frames that leave the chip.
#pragma once

#include <cstdint>
#include <span>

#include "chip/place.h"
#include "chip/segments.h"

namespace chip {

/// A frame for the CPU.
struct CpuFrame {
  std::span<const uint8_t> bytes;  // always tagged with its VLAN
  Port port;                       // ingress port
  uint32_t reasons;                // cpu_reason
};

class Wire {
 public:
  /// Called for a frame, without checksum, that leaves through an Ethernet port; the bytes are valid during the call.
  virtual void transmit(Port port, std::span<const uint8_t> frame) = 0;
  virtual void deliver(const CpuFrame& frame) = 0;

  /// The same for an aggregate, which need not be cut. Only who lets aggregates come in has to expect them.
  virtual void transmit_whole(Port port, std::span<const uint8_t> aggregate, const Segments& segments) {
    Cutter cutter;
    for (const std::span<const uint8_t> frame : cutter.cut(aggregate, segments)) transmit(port, frame);
  }

 protected:
  ~Wire() = default;
};

}  // namespace chip
