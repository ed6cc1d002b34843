// Frames of which parts are left open: "02:00:00:00:00:01 > * vlan 10".
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "frame_text.h"

namespace saish {

class FramePattern {
 public:
  /// The frame that these words describe, as frame_bytes() reads it, but with "*" for what may be anything. No words,
  /// and "*" alone, are any frame. Throws BadInput.
  explicit FramePattern(std::span<const std::string> words);

  bool matches(std::span<const uint8_t> frame) const;

 private:
  bool is_any_ = false;
  std::optional<std::vector<uint8_t>> whole_;  // of hexadecimal digits
  std::vector<NamedPart> parts_;               // one of them; two where IPv4 and IPv6 fit
};

}  // namespace saish
