// A chip of 12 ports by itself, with all links up, and what leaves it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "chip/chip.h"
#include "chip/pipeline/pipeline.h"
#include "support/frames.h"

namespace support {

class PipelineTest : public testing::Test, private chip::Wire {
 protected:
  using Drop = chip::Drop;
  using Status = chip::Status;

  static constexpr uint64_t second = 1'000'000'000;  // of the chip's clock
  static constexpr int router = 0xE0;                // the last byte of the router's address

  PipelineTest() {
    for (const chip::Port port : chip.ports.ethernet()) chip.port_macs.set_partner(port, true);
  }

  /// Makes a VLAN with its members, some of them untagged.
  void vlan(int id, const chip::PortSet& members, const chip::PortSet& untagged = {}) {
    chip.vlans.create(id);
    EXPECT_EQ(chip.vlans.add_ports(id, members, untagged), Status::ok);
  }

  /// support::mac() as the chip's tables have it.
  static chip::Mac mac(int last) {
    chip::Mac result;
    std::ranges::copy(support::mac(last), result.begin());
    return result;
  }

  /// Lets a frame come in and tells the copies that leave, a line each: "3: 01>02 [10] ...", "cpu 0x2: ..."; why it is
  /// dropped stands last: "dropped: storm control".
  std::string send(chip::Port port, const Bytes& frame) {
    out_.clear();
    const Drop drop = pipeline.receive(port, frame, *this);
    if (drop != Drop::none) out_ += std::string("dropped: ") + name(drop) + '\n';
    return out_;
  }

  /// How many frames and copies all ports have lost for a reason.
  uint64_t drops(Drop reason) const {
    uint64_t sum = 0;
    for (const auto& [port, counts] : chip.drops) sum += counts[static_cast<std::size_t>(reason)];
    return sum;
  }

  chip::Chip chip{12};
  chip::Pipeline pipeline{chip};

 private:
  void transmit(chip::Port port, std::span<const uint8_t> frame) override {
    out_ += std::to_string(port.number()) + ": " + told(frame) + '\n';
  }
  void deliver(const chip::CpuFrame& frame) override {
    char reasons[16];
    std::snprintf(reasons, sizeof reasons, "cpu 0x%x: ", frame.reasons);
    out_ += reasons + told(frame.bytes) + '\n';
  }

  std::string out_;
};

}  // namespace support
