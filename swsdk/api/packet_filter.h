// Classic packet filters, as libpcap compiles them: which frames a watcher wants.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace api {

class PacketFilter {
 public:
  /// An instruction, as in libpcap's `struct bpf_insn`.
  struct Step {
    uint16_t code;
    uint8_t jump_true;
    uint8_t jump_false;
    uint32_t k;
  };

  /// Takes every frame.
  PacketFilter() = default;

  /// Nothing when the program could jump out of itself, divide by zero, use what it has no room for, or does not end.
  static std::optional<PacketFilter> of(std::span<const uint8_t> program);

  bool takes(std::span<const uint8_t> frame) const;

 private:
  explicit PacketFilter(std::vector<Step> steps) : steps_(std::move(steps)) {}

  std::vector<Step> steps_;
};

}  // namespace api
