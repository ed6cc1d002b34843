// Frames as people write them: "02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10 ip 10.0.0.1 > 10.0.0.2 udp 5 > 6".
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

/// The part of a frame that words name, from the front of the frame on. What follows it is open.
struct NamedPart {
  std::vector<uint8_t> bytes;
  std::vector<uint8_t> named;         ///< the bits of `bytes` that are named; the others are open
  std::optional<std::size_t> length;  ///< of the whole frame, where it is named
};

/// The fields that these words name; the value "*" leaves one open. IP addresses that are both open have `open_ip`
/// bytes each. Throws BadInput.
NamedPart named_part(std::span<const std::string> words, std::size_t open_ip);

/// Where the type of a frame is: behind its tags.
std::size_t end_of_tags(std::span<const uint8_t> frame);

/// A frame without the options of its IPv4 header and the padding behind its packet, so that the same fields are at the
/// same places as in a NamedPart. Of other frames, all of it.
std::vector<uint8_t> without_options(std::span<const uint8_t> frame);

/// A frame by its fields; bytes after the last named field are left out.
std::string frame_text(std::span<const uint8_t> frame);

}  // namespace saish
