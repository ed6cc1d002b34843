#include "frame_pattern.h"

#include <algorithm>

namespace saish {

namespace {

constexpr std::size_t ip4_size = 4;
constexpr std::size_t ip6_size = 16;

/// Whether a frame without options begins with what is named.
bool begins_with(std::span<const uint8_t> frame, const NamedPart& part) {
  if (frame.size() < part.bytes.size()) return false;
  for (std::size_t i = 0; i < part.bytes.size(); ++i)
    if (((frame[i] ^ part.bytes[i]) & part.named[i]) != 0) return false;
  return true;
}

}  // namespace

FramePattern::FramePattern(std::span<const std::string> words) {
  is_any_ = words.empty() || (words.size() == 1 && words[0] == "*");
  if (is_any_) return;
  if (words.size() == 1) {
    whole_ = frame_bytes(words);
    return;
  }
  // Where both IP addresses are open, the packet may be of either version.
  parts_ = {named_part(words, ip4_size), named_part(words, ip6_size)};
}

bool FramePattern::matches(std::span<const uint8_t> frame) const {
  if (is_any_) return true;
  if (whole_) return std::equal(frame.begin(), frame.end(), whole_->begin(), whole_->end());
  const std::vector<uint8_t> plain = without_options(frame);
  return std::any_of(parts_.begin(), parts_.end(), [&](const NamedPart& part) {
    return end_of_tags(part.bytes) == end_of_tags(frame) && begins_with(plain, part) &&
           part.length.value_or(frame.size()) == frame.size();
  });
}

}  // namespace saish
