// Frames as people write them: "02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10 ip 10.0.0.1 > 10.0.0.2 udp 5 > 6".
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "words.h"

namespace saish {

/// What a frame is made of, for people.
extern const char frame_form[];

/// The frame that these words describe: its bytes as one word of hexadecimal digits, or its fields. Throws BadInput.
std::vector<uint8_t> frame_bytes(std::span<const std::string> words);

/// A line of swsdk_frame_trace() with its frame as frame_text() has it.
std::string with_frame_text(std::string_view line);

/// A frame by its fields; bytes after the last named field are left out.
std::string frame_text(std::span<const uint8_t> frame);

}  // namespace saish
