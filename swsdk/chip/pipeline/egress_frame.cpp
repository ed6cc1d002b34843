#include "chip/pipeline/egress_frame.h"

#include <algorithm>

namespace chip {

namespace {

constexpr uint16_t tpid = 0x8100;

class Writer {
 public:
  explicit Writer(std::span<uint8_t> room) : room_(room) {}

  void put(std::span<const uint8_t> bytes) {
    const std::size_t count = std::min(bytes.size(), room_.size() - at_);
    std::copy_n(bytes.begin(), count, room_.begin() + static_cast<std::ptrdiff_t>(at_));
    at_ += count;
  }
  void put(uint16_t word) {
    const std::array<uint8_t, 2> bytes{static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word)};
    put(bytes);
  }
  void put_tag(std::optional<uint16_t> tag) {
    if (!tag) return;
    put(tpid);
    put(*tag);
  }
  std::span<uint8_t> written() const { return room_.first(at_); }

 private:
  std::span<uint8_t> room_;
  std::size_t at_ = 0;
};

}  // namespace

std::span<uint8_t> EgressFrame::write(const EgressHeader& header, const Packet& packet) {
  Writer writer(bytes_);
  writer.put(header.destination);
  writer.put(header.source);
  writer.put_tag(header.outer_tag);
  writer.put_tag(header.inner_tag);
  writer.put(packet.bytes.subspan(packet.ether_type_at));
  return writer.written();
}

}  // namespace chip
