// An aggregate: a row of TCP segments or UDP datagrams as one frame, which its sender leaves to its interface to cut.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace chip {

/// How an aggregate is cut. Where that is `none`, it is one frame and the rest means nothing.
struct Segments {
  enum class Kind : uint8_t { none, tcp_ip4, tcp_ip6, udp, unknown };  // what is unknown cannot be cut

  Kind kind = Kind::none;
  uint16_t payload = 0;         // bytes of it in each segment; the last can have fewer
  uint16_t headers = 0;         // bytes that each segment begins with: those at the front of the aggregate
  uint16_t checksum_start = 0;  // offset of the transport header, up to whose end of frame the checksum counts
  uint16_t checksum_at = 0;     // offset of the checksum, where the sum of the pseudo header is until it is filled in

  bool is_aggregate() const { return kind != Kind::none; }
  /// For an aggregate with so many more bytes in front, such as a tag; fewer if negative.
  void move(int bytes) {
    headers = static_cast<uint16_t>(headers + bytes);
    checksum_start = static_cast<uint16_t>(checksum_start + bytes);
    checksum_at = static_cast<uint16_t>(checksum_at + bytes);
  }
  /// Bytes of the longest frame.
  std::size_t frame_size() const { return std::size_t{headers} + payload; }
  /// How many frames so many bytes are.
  std::size_t count(std::size_t length) const {
    return !is_aggregate() || length <= frame_size() ? 1 : (length - headers + payload - 1) / payload;
  }
};

/// Calls `take(bytes, frames)` for each length of the frames that so many bytes are: how many have it.
template <class Take>
void for_each_length(const Segments& segments, std::size_t length, Take take) {
  if (!segments.is_aggregate()) [[likely]]
    return take(length, std::size_t{1});
  const std::size_t others = segments.count(length) - 1;
  if (others > 0) take(segments.frame_size(), others);
  take(length - others * segments.payload, std::size_t{1});
}

/// Fills in a checksum: of all bytes from `start` on, among which is the sum of the pseudo header at `at`.
void complete_checksum(std::span<uint8_t> frame, std::size_t start, std::size_t at);

/// Cuts aggregates into frames.
class Cutter {
 public:
  /// The frames of an aggregate as they are on the wire, valid until the next call: with lengths, IP identifications,
  /// TCP sequence numbers and flags, and checksums of their own in all headers, those of tunnels too. None when the
  /// headers do not agree with `segments`. What is no aggregate is its only frame.
  std::span<const std::span<const uint8_t>> cut(std::span<const uint8_t> frame, const Segments& segments);

 private:
  void cut_up(std::span<const uint8_t> aggregate, const Segments& segments);

  std::vector<uint8_t> bytes_;
  std::vector<std::span<const uint8_t>> frames_;
};

/// Whether an aggregate's IP packets are in other packets, or cannot be found.
bool is_in_tunnel(std::span<const uint8_t> aggregate, const Segments& segments);

}  // namespace chip
