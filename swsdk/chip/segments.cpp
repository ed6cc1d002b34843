#include "chip/segments.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

namespace chip {

namespace {

constexpr uint8_t tcp_protocol = 6;
constexpr uint8_t udp_protocol = 17;
constexpr std::size_t udp_checksum_at = 6;  // in its header

unsigned word(std::span<const uint8_t> bytes, std::size_t at) {
  return static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]);
}

void put_word(std::span<uint8_t> bytes, std::size_t at, std::size_t value) {
  bytes[at] = static_cast<uint8_t>(value >> 8);
  bytes[at + 1] = static_cast<uint8_t>(value);
}

/// A sum of words as the internet checksum has it, in which carries are added again.
class Sum {
 public:
  Sum& add(std::size_t number) {
    total_ += number;
    return *this;
  }

  Sum& add(std::span<const uint8_t> bytes) {
    // The order of the bytes in a word matters only for the result, so they are added as the machine has them.
    uint64_t total = 0;
    std::size_t at = 0;
    for (; at + 4 <= bytes.size(); at += 4) {
      uint32_t number = 0;
      std::memcpy(&number, &bytes[at], sizeof number);
      total += number;
    }
    if (at < bytes.size()) {
      uint32_t number = 0;
      std::memcpy(&number, &bytes[at], bytes.size() - at);
      total += number;
    }
    const unsigned folded = fold(total);
    total_ += std::endian::native == std::endian::big ? folded : (folded & 0xFF) << 8 | folded >> 8;
    return *this;
  }

  unsigned checksum() const { return 0xFFFF - fold(total_); }

  /// The same where 0 would mean that there is none.
  unsigned checksum_of_udp() const { return checksum() == 0 ? 0xFFFF : checksum(); }

 private:
  static unsigned fold(uint64_t total) {
    while (total >> 16 != 0) total = (total & 0xFFFF) + (total >> 16);
    return static_cast<unsigned>(total);
  }

  uint64_t total_ = 0;
};

/// A header in front of the transport header, of which something is another in each segment.
struct Front {
  enum class Kind { ip4, ip6, udp, gre };
  Kind kind;
  std::size_t at;
};

/// Reads the headers from the Ethernet header to the transport header.
class FrontReader {
 public:
  /// The headers, the outermost first; none when they do not lead to the transport header.
  static std::optional<std::vector<Front>> fronts(std::span<const uint8_t> headers, const Segments& segments) {
    FrontReader reader(headers, segments);
    return reader.read_ethernet(0) ? std::optional(std::move(reader.fronts_)) : std::nullopt;
  }

 private:
  FrontReader(std::span<const uint8_t> headers, const Segments& segments)
      : bytes_(headers.first(segments.checksum_start)),
        protocol_(segments.kind == Segments::Kind::udp ? udp_protocol : tcp_protocol),
        is_ip4_(segments.kind == Segments::Kind::tcp_ip4),
        is_ip6_(segments.kind == Segments::Kind::tcp_ip6) {}

  bool has(std::size_t at, std::size_t count) const { return at + count <= bytes_.size(); }

  bool read_ethernet(std::size_t at) {
    at += 12;
    while (has(at, 6) && (word(bytes_, at) == 0x8100 || word(bytes_, at) == 0x88A8)) at += 4;
    return has(at, 2) && read_network(word(bytes_, at), at + 2);
  }

  bool read_network(unsigned type, std::size_t at) {
    constexpr unsigned ethernet = 0x6558;
    switch (type) {
      case 0x0800:
        return read_ip4(at);
      case 0x86DD:
        return read_ip6(at);
      case ethernet:
        return read_ethernet(at);
      default:
        return false;
    }
  }

  bool read_ip4(std::size_t at) {
    if (!has(at, 20) || bytes_[at] >> 4 != 4) return false;
    fronts_.push_back({Front::Kind::ip4, at});
    const std::size_t length = (bytes_[at] & 0xFU) * 4U;
    return length >= 20 && read_transport(bytes_[at + 9], at + length);
  }

  bool read_ip6(std::size_t at) {
    if (!has(at, 40) || bytes_[at] >> 4 != 6) return false;
    fronts_.push_back({Front::Kind::ip6, at});
    uint8_t protocol = bytes_[at + 6];
    at += 40;
    constexpr uint8_t extensions[] = {0, 43, 60};  // hop by hop, routing, destination options
    while (std::find(std::begin(extensions), std::end(extensions), protocol) != std::end(extensions) && has(at, 8)) {
      protocol = bytes_[at];
      at += (bytes_[at + 1] + 1U) * 8U;
    }
    return read_transport(protocol, at);
  }

  bool read_transport(uint8_t protocol, std::size_t at) {
    if (at == bytes_.size()) {
      const Front::Kind carrier = fronts_.back().kind;
      return protocol == protocol_ && !(is_ip4_ && carrier != Front::Kind::ip4) &&
             !(is_ip6_ && carrier != Front::Kind::ip6);
    }
    switch (protocol) {
      case 4:
        return read_ip4(at);
      case 41:
        return read_ip6(at);
      case 47:
        return read_gre(at);
      case udp_protocol:
        return read_tunnel_over_udp(at);
      default:
        return false;
    }
  }

  bool read_gre(std::size_t at) {
    constexpr unsigned has_checksum = 0x8000;
    constexpr unsigned has_key = 0x2000;
    if (!has(at, 4)) return false;
    const unsigned flags = word(bytes_, at);
    if ((flags & ~(has_checksum | has_key)) != 0) return false;  // numbered packets are not left to an interface
    fronts_.push_back({Front::Kind::gre, at});
    const std::size_t length = 4U + ((flags & has_checksum) != 0 ? 4U : 0U) + ((flags & has_key) != 0 ? 4U : 0U);
    return read_network(word(bytes_, at + 2), at + length);
  }

  /// VXLAN, or Geneve with its options.
  bool read_tunnel_over_udp(std::size_t at) {
    constexpr unsigned geneve = 6081;
    if (!has(at, 16)) return false;
    fronts_.push_back({Front::Kind::udp, at});
    const std::size_t options = word(bytes_, at + 2) == geneve ? (bytes_[at + 8] & 0x3FU) * 4U : 0;
    return read_ethernet(at + 16 + options);
  }

  const std::span<const uint8_t> bytes_;
  const uint8_t protocol_;
  const bool is_ip4_;
  const bool is_ip6_;
  std::vector<Front> fronts_;
};

/// Makes the headers of a segment what they are on the wire.
class HeaderUpdate {
 public:
  HeaderUpdate(std::span<uint8_t> frame, const std::vector<Front>& fronts) : frame_(frame), fronts_(fronts) {}

  void transport(const Segments& segments, std::size_t number, bool is_last, std::size_t aggregate_length) {
    const std::size_t at = segments.checksum_start;
    const std::size_t length = frame_.size() - at;
    if (segments.kind == Segments::Kind::udp)
      put_word(frame_, at + 4, length);
    else
      update_tcp(at, number * segments.payload, number == 0, is_last);
    // The sum that is there has the length of the whole aggregate in it.
    Sum sum;
    sum.add(frame_.subspan(at)).add(length).add(0xFFFF - (aggregate_length - at));
    put_word(frame_, segments.checksum_at,
             segments.kind == Segments::Kind::udp ? sum.checksum_of_udp() : sum.checksum());
  }

  /// From the inside out, because a checksum is over what is inside.
  void fronts(std::size_t number) {
    for (std::size_t i = fronts_.size(); i-- > 0;) {
      const std::size_t at = fronts_[i].at;
      switch (fronts_[i].kind) {
        case Front::Kind::ip4:
          update_ip4(at, number);
          break;
        case Front::Kind::ip6:
          put_word(frame_, at + 4, frame_.size() - at - 40);
          break;
        case Front::Kind::udp:
          update_udp(at, fronts_[i - 1]);
          break;
        case Front::Kind::gre:
          if ((frame_[at] & 0x80U) != 0) put_checksum(at + 4, at, frame_.size() - at);
          break;
      }
    }
  }

 private:
  void put_checksum(std::size_t place, std::size_t at, std::size_t length) {
    put_word(frame_, place, 0);
    put_word(frame_, place, Sum().add(frame_.subspan(at, length)).checksum());
  }

  void update_tcp(std::size_t at, std::size_t offset, bool is_first, bool is_last) {
    constexpr uint8_t only_in_last = 0x08 | 0x01;  // PSH, FIN
    constexpr uint8_t only_in_first = 0x80;        // CWR
    const std::size_t sequence = (word(frame_, at + 4) << 16 | word(frame_, at + 6)) + offset;
    put_word(frame_, at + 4, sequence >> 16);
    put_word(frame_, at + 6, sequence);
    if (!is_last) frame_[at + 13] &= static_cast<uint8_t>(~only_in_last);
    if (!is_first) frame_[at + 13] &= static_cast<uint8_t>(~only_in_first);
  }

  void update_ip4(std::size_t at, std::size_t number) {
    put_word(frame_, at + 2, frame_.size() - at);
    put_word(frame_, at + 4, word(frame_, at + 4) + number);
    put_checksum(at + 10, at, (frame_[at] & 0xFU) * 4U);
  }

  /// The UDP header of a tunnel, in which 0 says that there is no checksum.
  void update_udp(std::size_t at, const Front& carrier) {
    const std::size_t length = frame_.size() - at;
    put_word(frame_, at + 4, length);
    if (word(frame_, at + udp_checksum_at) == 0) return;
    put_word(frame_, at + udp_checksum_at, 0);
    const auto addresses =
        carrier.kind == Front::Kind::ip4 ? frame_.subspan(carrier.at + 12, 8) : frame_.subspan(carrier.at + 8, 32);
    put_word(frame_, at + 6,
             Sum().add(addresses).add(udp_protocol).add(length).add(frame_.subspan(at)).checksum_of_udp());
  }

  const std::span<uint8_t> frame_;
  const std::vector<Front>& fronts_;
};

}  // namespace

void complete_checksum(std::span<uint8_t> frame, std::size_t start, std::size_t at) {
  if (start > frame.size() || at < start || at + 2 > frame.size()) return;
  const Sum sum = Sum().add(frame.subspan(start));
  put_word(frame, at, at - start == udp_checksum_at ? sum.checksum_of_udp() : sum.checksum());
}

std::span<const std::span<const uint8_t>> Cutter::cut(std::span<const uint8_t> frame, const Segments& segments) {
  frames_.clear();
  if (segments.is_aggregate())
    cut_up(frame, segments);
  else
    frames_.push_back(frame);
  return frames_;
}

void Cutter::cut_up(std::span<const uint8_t> aggregate, const Segments& segments) {
  const std::size_t headers = segments.headers;
  const std::size_t least = segments.kind == Segments::Kind::udp ? 8 : 20;  // of the transport header
  if (segments.kind == Segments::Kind::unknown || segments.payload == 0 || aggregate.size() < headers ||
      segments.checksum_start + least > headers || segments.checksum_at + 2U > headers ||
      aggregate.size() - segments.checksum_start > 0xFFFF)
    return;
  const auto fronts = FrontReader::fronts(aggregate.first(headers), segments);
  if (!fronts) return;

  const std::size_t payload = aggregate.size() - headers;
  const std::size_t count = std::max<std::size_t>((payload + segments.payload - 1) / segments.payload, 1);
  bytes_.resize(count * headers + payload);
  for (std::size_t number = 0; number < count; ++number) {
    const std::size_t begin = number * segments.payload;
    const auto part = aggregate.subspan(headers + begin, std::min<std::size_t>(segments.payload, payload - begin));
    const std::span frame(&bytes_[number * segments.frame_size()], headers + part.size());
    std::copy_n(aggregate.begin(), headers, frame.begin());
    std::copy(part.begin(), part.end(), frame.begin() + static_cast<std::ptrdiff_t>(headers));
    HeaderUpdate update(frame, *fronts);
    update.transport(segments, number, number + 1 == count, aggregate.size());
    update.fronts(number);
    frames_.emplace_back(frame);
  }
}

bool is_in_tunnel(std::span<const uint8_t> aggregate, const Segments& segments) {
  if (segments.kind == Segments::Kind::unknown) return true;
  const auto fronts = FrontReader::fronts(aggregate.first(segments.headers), segments);
  return !fronts || fronts->size() > 1;
}

}  // namespace chip
