#include "chip/segments.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Bytes = std::vector<uint8_t>;
using chip::Segments;

/// A plain model of a sender: each header is written around what it carries, and each checksum is added up by words.
struct Sender {
  std::vector<std::string> layers;  // the outermost first, without Ethernet in front and transport at the end
  Segments::Kind kind = Segments::Kind::tcp_ip4;
  Bytes payload = {};
  std::size_t segment = 1000;
  uint8_t flags = 0x99;  // CWR, ACK, PSH, FIN
  uint32_t sequence = 0xFFFFFE00;

  static void put(Bytes& bytes, std::size_t at, std::size_t value, int size = 2) {
    for (int i = 0; i < size; ++i)
      bytes[at + static_cast<std::size_t>(i)] = static_cast<uint8_t>(value >> 8 * (size - 1 - i));
  }

  static unsigned sum(const Bytes& bytes, unsigned begin = 0) {
    unsigned total = begin;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      total += at % 2 == 0 ? bytes[at] * 256U : bytes[at];
      total = total % 65536 + total / 65536;
    }
    return total;
  }

  bool over_udp() const { return kind == Segments::Kind::udp; }
  Bytes transport_header() const {
    Bytes header(over_udp() ? 8 : 32);
    put(header, 0, 4000);
    put(header, 2, 5000);
    if (!over_udp()) {
      put(header, 12, 0x8000U | flags);
      put(header, 14, 512);
      put(header, 20, 0x0101080A, 4);
    }
    return header;
  }

  static bool is_ip6(const std::string& layer) { return layer.starts_with("ip6"); }

  /// The sum of the pseudo header of what an IP header of that kind carries.
  static unsigned pseudo_sum(const std::string& carrier, std::size_t length, unsigned protocol) {
    Bytes addresses = address(carrier, 1);
    const Bytes destination = address(carrier, 2);
    addresses.insert(addresses.end(), destination.begin(), destination.end());
    return sum(addresses, static_cast<unsigned>(length + protocol));
  }

  static Bytes address(const std::string& carrier, uint8_t host) {
    return is_ip6(carrier) ? Bytes{0x20, 1, 0xD, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xAB, host}
                           : Bytes{10, 0, 200, host};
  }

  static unsigned protocol_of(const std::string& layer) {
    if (layer == "ip4") return 4;
    if (is_ip6(layer)) return 41;
    if (layer.starts_with("gre")) return 47;
    return 17;  // vxlan and geneve
  }

  /// The frame with that part of the payload. Its TCP or UDP checksum is left out if it is `partial`.
  Bytes frame(std::size_t number, const Bytes& part, bool is_last, bool partial) const {
    Bytes inner = transport_header();
    inner.insert(inner.end(), part.begin(), part.end());
    if (over_udp()) {
      put(inner, 4, inner.size());
    } else {
      put(inner, 4, sequence + number * segment, 4);
      if (!partial && !is_last) inner[13] &= 0xF6;
      if (!partial && number > 0) inner[13] &= 0x7F;
    }
    const unsigned protocol = over_udp() ? 17 : 6;
    const unsigned pseudo = pseudo_sum(carrier_of_transport(), inner.size(), protocol);
    unsigned checksum = 0xFFFF - sum(inner, pseudo);
    if (over_udp() && checksum == 0) checksum = 0xFFFF;
    put(inner, over_udp() ? 6 : 16, partial ? pseudo : checksum);

    unsigned next = protocol;
    unsigned type = 0;
    for (std::size_t i = layers.size(); i-- > 0;) {
      inner = around(i, inner, next, type, number);
      next = protocol_of(layers[i]);
      type = layers[i] == "ip4" ? 0x0800 : is_ip6(layers[i]) ? 0x86DD : layers[i].starts_with("vlan") ? 0x8100 : type;
    }
    return in_ethernet(inner, type);
  }

  static Bytes in_ethernet(const Bytes& inner, unsigned type) {
    Bytes bytes{2, 0, 0, 0, 0, 2, 2, 0, 0, 0, 0, 1, static_cast<uint8_t>(type >> 8), static_cast<uint8_t>(type)};
    bytes.insert(bytes.end(), inner.begin(), inner.end());
    return bytes;
  }

  std::string carrier_of_transport() const { return layers.back(); }

  Bytes around(std::size_t i, const Bytes& inner, unsigned next, unsigned type, std::size_t number) const {
    const std::string& layer = layers[i];
    Bytes header;
    if (layer == "vlan") {
      header = {0x20, 0x64, static_cast<uint8_t>(type >> 8), static_cast<uint8_t>(type)};
    } else if (layer == "ip4") {
      header = {0x45, 0, 0, 0, 0xFF, 0xFE, 0x40, 0, 64, static_cast<uint8_t>(next), 0, 0};
      for (const uint8_t host : {uint8_t{1}, uint8_t{2}}) {
        const Bytes one = address(layer, host);
        header.insert(header.end(), one.begin(), one.end());
      }
      put(header, 2, header.size() + inner.size());
      put(header, 4, 0xFFFE + number);
      put(header, 10, 0xFFFF - sum(header));
    } else if (is_ip6(layer)) {
      header = {0x60, 0, 0, 0, 0, 0, static_cast<uint8_t>(next), 64};
      for (const uint8_t host : {uint8_t{1}, uint8_t{2}}) {
        const Bytes one = address(layer, host);
        header.insert(header.end(), one.begin(), one.end());
      }
      if (layer == "ip6 with options") {
        header[6] = 60;
        header.insert(header.end(), {static_cast<uint8_t>(next), 0, 1, 4, 0, 0, 0, 0});
      }
      put(header, 4, header.size() - 40 + inner.size());
    } else if (layer.starts_with("gre")) {
      const bool has_checksum = layer == "gre with checksum";
      header = {static_cast<uint8_t>(has_checksum ? 0xA0 : 0), 0, static_cast<uint8_t>(type >> 8),
                static_cast<uint8_t>(type)};
      if (has_checksum) header.insert(header.end(), {0, 0, 0, 0, 1, 2, 3, 4});
      Bytes all = header;
      all.insert(all.end(), inner.begin(), inner.end());
      if (has_checksum) put(header, 4, 0xFFFF - sum(all));
    } else {  // a UDP tunnel
      const bool is_geneve = layer == "geneve";
      header = {0x80, 1, 0x12, 0xB5, 0, 0, 0, 0, 8, 0, 0, 0, 0, 0, 42, 0};
      if (is_geneve) {
        put(header, 2, 6081);
        put(header, 8, 0x01006558, 4);
        header.insert(header.end(), {1, 2, 3, 0});
      }
      const Bytes carried = in_ethernet(inner, type);
      put(header, 4, header.size() + carried.size());
      header.insert(header.end(), carried.begin(), carried.end());
      if (layer == "vxlan with checksum")
        put(header, 6, 0xFFFF - sum(header, pseudo_sum(layers[i - 1], header.size(), 17)));
      return header;
    }
    header.insert(header.end(), inner.begin(), inner.end());
    return header;
  }

  Bytes aggregate() const { return frame(0, payload, true, true); }
  Segments segments() const {
    Segments result;
    result.kind = kind;
    result.payload = static_cast<uint16_t>(segment);
    result.headers = static_cast<uint16_t>(aggregate().size() - payload.size());
    result.checksum_start = static_cast<uint16_t>(result.headers - (over_udp() ? 8 : 32));
    result.checksum_at = static_cast<uint16_t>(result.checksum_start + (over_udp() ? 6 : 16));
    return result;
  }

  std::vector<Bytes> frames() const {
    std::vector<Bytes> all;
    for (std::size_t at = 0, number = 0; at < payload.size(); at += segment, ++number) {
      const bool is_last = at + segment >= payload.size();
      const Bytes part(payload.begin() + static_cast<std::ptrdiff_t>(at),
                       is_last ? payload.end() : payload.begin() + static_cast<std::ptrdiff_t>(at + segment));
      all.push_back(frame(number, part, is_last, false));
    }
    return all;
  }
};

Bytes some_payload(std::size_t size) {
  Bytes result(size);
  for (std::size_t at = 0; at < size; ++at) result[at] = static_cast<uint8_t>(at * 7 + at / 251);
  return result;
}

std::vector<Bytes> cut(const Bytes& aggregate, const Segments& segments) {
  chip::Cutter cutter;
  std::vector<Bytes> result;
  for (const auto frame : cutter.cut(aggregate, segments)) result.emplace_back(frame.begin(), frame.end());
  return result;
}

class Aggregates : public testing::TestWithParam<Sender> {};

TEST_P(Aggregates, AreCutIntoTheFramesThatTheirSenderMeant) {
  Sender sender = GetParam();
  for (const std::size_t size : {1U, 999U, 1000U, 1001U, 5000U, 40003U}) {
    SCOPED_TRACE(size);
    sender.payload = some_payload(size);
    EXPECT_EQ(cut(sender.aggregate(), sender.segments()), sender.frames());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Segments, Aggregates,
    testing::Values(Sender{{"ip4"}}, Sender{{"ip6"}, Segments::Kind::tcp_ip6}, Sender{{"vlan", "ip4"}},
                    Sender{{"vlan", "vlan", "ip6"}, Segments::Kind::tcp_ip6}, Sender{{"ip4"}, Segments::Kind::udp},
                    Sender{{"vlan", "ip6"}, Segments::Kind::udp}, Sender{{"ip6 with options"}, Segments::Kind::tcp_ip6},
                    Sender{{"ip4", "ip4"}}, Sender{{"ip6", "ip4"}}, Sender{{"ip4", "ip6"}, Segments::Kind::tcp_ip6},
                    Sender{{"ip6 with options", "ip6"}, Segments::Kind::tcp_ip6}, Sender{{"ip4", "vxlan", "ip4"}},
                    Sender{{"vlan", "ip4", "vxlan with checksum", "ip4"}},
                    Sender{{"ip6", "vxlan with checksum", "vlan", "ip6"}, Segments::Kind::tcp_ip6},
                    Sender{{"ip4", "vxlan", "ip4"}, Segments::Kind::udp}, Sender{{"ip4", "geneve", "ip4"}},
                    Sender{{"ip4", "gre", "ip4"}}, Sender{{"ip6", "gre with checksum", "ip4"}},
                    Sender{{"ip4", "gre with checksum", "ip6"}, Segments::Kind::tcp_ip6}));

TEST(Segments, AreCutOnlyWhereTheHeadersLeadToTheTransportHeader) {
  Sender sender{{"ip4"}};
  sender.payload = some_payload(3000);
  const Bytes aggregate = sender.aggregate();
  const Segments good = sender.segments();
  const auto is_cut = [](const Bytes& bytes, const Segments& segments) { return !cut(bytes, segments).empty(); };
  ASSERT_TRUE(is_cut(aggregate, good));

  Segments bad = good;
  bad.payload = 0;
  EXPECT_FALSE(is_cut(aggregate, bad));
  bad = good;
  bad.kind = Segments::Kind::udp;
  EXPECT_FALSE(is_cut(aggregate, bad));
  bad = good;
  bad.kind = Segments::Kind::tcp_ip6;
  EXPECT_FALSE(is_cut(aggregate, bad));
  for (const int other : {-34, -4, 4, 30}) {
    bad = good;
    bad.checksum_start = static_cast<uint16_t>(good.checksum_start + other);
    EXPECT_FALSE(is_cut(aggregate, bad)) << other;
  }
  bad = good;
  bad.checksum_at = bad.headers;
  EXPECT_FALSE(is_cut(aggregate, bad));
  for (std::size_t size = 0; size < good.headers; ++size)
    EXPECT_FALSE(is_cut(Bytes(aggregate.begin(), aggregate.begin() + static_cast<std::ptrdiff_t>(size)), good)) << size;
}

TEST(Segments, OfAFrameThatIsNoAggregateAreTheFrame) {
  EXPECT_EQ(cut({1, 2, 3}, {}), std::vector<Bytes>{Bytes({1, 2, 3})});
}

TEST(Segments, AreInATunnelWhereAnotherPacketCarriesTheirs) {
  Sender sender{{"vlan", "ip4"}};
  EXPECT_FALSE(chip::is_in_tunnel(sender.aggregate(), sender.segments()));
  sender.layers = {"ip4", "ip4"};
  EXPECT_TRUE(chip::is_in_tunnel(sender.aggregate(), sender.segments()));
  sender.layers = {"ip4", "vxlan", "ip4"};
  EXPECT_TRUE(chip::is_in_tunnel(sender.aggregate(), sender.segments()));
}

TEST(Checksums, AreOfAllFromTheirStartOn) {
  Bytes frame{0xAA, 0xBB, 0x12, 0x34, 0x00, 0x01, 0xF0};
  chip::complete_checksum(frame, 2, 4);
  // 0x1234 + 0x0001 + 0xF000 = 0x1'0235, with its carry 0x0236
  EXPECT_EQ(frame, (Bytes{0xAA, 0xBB, 0x12, 0x34, 0xFD, 0xC9, 0xF0}));

  // In UDP, 0 is no checksum.
  Bytes that_makes_zero{0xFF, 0xFE, 0x00, 0x01, 0, 0, 0, 0};
  chip::complete_checksum(that_makes_zero, 0, 2);
  EXPECT_EQ(that_makes_zero, (Bytes{0xFF, 0xFE, 0, 0, 0, 0, 0, 0}));
  that_makes_zero = {0xFF, 0xFE, 0, 0, 0, 0, 0x00, 0x01};
  chip::complete_checksum(that_makes_zero, 0, 6);
  EXPECT_EQ(that_makes_zero, (Bytes{0xFF, 0xFE, 0, 0, 0, 0, 0xFF, 0xFF}));

  const Bytes before = frame;
  chip::complete_checksum(frame, 2, 6);
  chip::complete_checksum(frame, 8, 8);
  chip::complete_checksum(frame, 4, 2);
  EXPECT_EQ(frame, before) << "places outside";
}

}  // namespace
