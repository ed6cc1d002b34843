// Frames for tests: built from what matters in them, and told as one line of text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace support {

using Bytes = std::vector<uint8_t>;

/// The MAC address 02:00:00:00:00:<last>; 0xFF is broadcast.
Bytes mac(int last);
/// "10.0.0.1" as a number.
uint32_t ip4(std::string_view text);

/// Builds a frame from front to back: Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(5, 6). It is as long as an
/// Ethernet frame has to be, without its checksum.
class Frame {
 public:
  /// From one address to another, as for mac().
  Frame(int source, int destination) : Frame(mac(source), mac(destination)) {}
  Frame(const Bytes& source, const Bytes& destination);

  Frame& tag(int vlan, int priority = 0, uint16_t tpid = 0x8100);
  /// Ends the header with an ether type; what follows is the payload.
  Frame& type(uint16_t ether_type);
  Frame& bytes(const Bytes& payload);
  Frame& arp(bool reply, std::string_view sender, std::string_view target);
  /// An IPv4 or IPv6 header, as the addresses are; its lengths and checksum are filled in at the end.
  Frame& ip(std::string_view source, std::string_view destination, int ttl = 64, int tos = 0);
  Frame& udp(int source, int destination);
  Frame& tcp(int source, int destination);
  Frame& icmp(int type, int code = 0);
  Frame& igmp(int type, std::string_view group);
  /// Hop-by-hop options, for what stands behind them.
  Frame& hop_by_hop();
  Frame& protocol(int number, const Bytes& payload);
  /// Makes the frame that long, checksum not counted.
  Frame& length(std::size_t bytes);

  Bytes done() const;
  operator Bytes() const { return done(); }  // NOLINT(google-explicit-constructor): it is one

 private:
  void put(uint32_t value, int bytes);

  Bytes frame_;
  std::size_t ip_at_ = 0;        // 0: there is no IP header
  std::size_t protocol_at_ = 0;  // where the number of what follows goes
  std::size_t length_ = 60;
};

/// A frame in one line: "01>02 [10p3 20] 10.0.0.1>10.0.0.2 ttl 64 udp 5>6". Addresses that mac() makes show their last
/// byte; 's' marks a service tag, 'c' a tag with its CFI bit; a wrong checksum of an IPv4 header is told.
std::string told(std::span<const uint8_t> frame);

}  // namespace support
