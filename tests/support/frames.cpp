#include "support/frames.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

namespace support {

namespace {

constexpr int udp_protocol = 17;
constexpr int tcp_protocol = 6;

unsigned word(std::span<const uint8_t> bytes, std::size_t at) {
  return at + 2 <= bytes.size() ? static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]) : 0;
}

/// The sum of a header's words; that of a whole header with its checksum is 0xFFFF.
unsigned header_sum(std::span<const uint8_t> header) {
  unsigned sum = 0;
  for (std::size_t at = 0; at + 1 < header.size(); at += 2) sum += word(header, at);
  while (sum >> 16 != 0) sum = (sum & 0xFFFF) + (sum >> 16);
  return sum;
}

std::string mac_text(std::span<const uint8_t> mac) {
  const auto print = [](const char* format, auto... values) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return std::string(text.data());
  };
  if (std::all_of(mac.begin(), mac.end(), [](uint8_t byte) { return byte == 0xFF; })) return "all";
  if (word(mac, 0) == 0x0200 && word(mac, 2) == 0 && mac[4] == 0) return print("%02x", mac[5]);
  return print("%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}

std::string ip_text(int family, const uint8_t* address) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  return inet_ntop(family, address, text.data(), text.size());
}

std::string l4_text(int protocol, std::span<const uint8_t> l4) {
  const std::string ports = std::to_string(word(l4, 0)) + '>' + std::to_string(word(l4, 2));
  if (protocol == udp_protocol) return " udp " + ports;
  if (protocol == tcp_protocol) return " tcp " + ports;
  const std::string type = l4.empty() ? "" : ' ' + std::to_string(l4[0]);
  if (protocol == 1 || protocol == 58) return " icmp" + type;
  if (protocol == 2) return " igmp" + type;
  return " protocol " + std::to_string(protocol);
}

std::string ip4_text(std::span<const uint8_t> packet) {
  if (packet.size() < 20) return " short ip";
  std::string text = ' ' + ip_text(AF_INET, &packet[12]) + '>' + ip_text(AF_INET, &packet[16]);
  text += " ttl " + std::to_string(packet[8]);
  if (packet[1] != 0) text += " tos " + std::to_string(packet[1]);
  const std::size_t header = (packet[0] & 0xFU) * 4U;
  if (header_sum(packet.first(std::min(header, packet.size()))) != 0xFFFF) text += " BAD CHECKSUM";
  return text + l4_text(packet[9], packet.subspan(std::min(header, packet.size())));
}

std::string ip6_text(std::span<const uint8_t> packet) {
  if (packet.size() < 40) return " short ip";
  std::string text = ' ' + ip_text(AF_INET6, &packet[8]) + '>' + ip_text(AF_INET6, &packet[24]);
  text += " ttl " + std::to_string(packet[7]);
  int protocol = packet[6];
  std::size_t at = 40;
  if (protocol == 0 && packet.size() > 48) {
    protocol = packet[40];
    at += (packet[41] + 1U) * 8U;
  }
  return text + l4_text(protocol, packet.subspan(std::min(at, packet.size())));
}

}  // namespace

Bytes mac(int last) {
  if (last == 0xFF) return Bytes(6, 0xFF);
  return {0x02, 0, 0, 0, 0, static_cast<uint8_t>(last)};
}

uint32_t ip4(std::string_view text) {
  in_addr address{};
  if (inet_pton(AF_INET, std::string(text).c_str(), &address) != 1) throw std::invalid_argument("not an IPv4 address");
  return ntohl(address.s_addr);
}

Frame::Frame(const Bytes& source, const Bytes& destination) {
  bytes(destination);
  bytes(source);
}

void Frame::put(uint32_t value, int bytes) {
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) frame_.push_back(static_cast<uint8_t>(value >> shift));
}

Frame& Frame::tag(int vlan, int priority, uint16_t tpid) {
  put(tpid, 2);
  put(static_cast<uint32_t>(priority << 13 | vlan), 2);
  return *this;
}

Frame& Frame::type(uint16_t ether_type) {
  put(ether_type, 2);
  return *this;
}

Frame& Frame::bytes(const Bytes& payload) {
  frame_.insert(frame_.end(), payload.begin(), payload.end());
  return *this;
}

Frame& Frame::arp(bool reply, std::string_view sender, std::string_view target) {
  const Bytes source(frame_.begin() + 6, frame_.begin() + 12);
  type(0x0806);
  bytes({0, 1, 8, 0, 6, 4, 0, static_cast<uint8_t>(reply ? 2 : 1)});
  bytes(source);
  put(ip4(sender), 4);
  bytes(Bytes(6));
  put(ip4(target), 4);
  return *this;
}

Frame& Frame::ip(std::string_view source, std::string_view destination, int ttl, int tos) {
  std::array<uint8_t, 16> from{};
  std::array<uint8_t, 16> to{};
  if (source.find(':') == std::string_view::npos) {
    type(0x0800);
    ip_at_ = frame_.size();
    bytes({0x45, static_cast<uint8_t>(tos), 0, 0, 0, 0, 0, 0, static_cast<uint8_t>(ttl), 0, 0, 0});
    put(ip4(source), 4);
    put(ip4(destination), 4);
    protocol_at_ = ip_at_ + 9;
    return *this;
  }
  if (inet_pton(AF_INET6, std::string(source).c_str(), from.data()) != 1 ||
      inet_pton(AF_INET6, std::string(destination).c_str(), to.data()) != 1)
    throw std::invalid_argument("not an IPv6 address");
  type(0x86DD);
  ip_at_ = frame_.size();
  put(0x60000000U | static_cast<uint32_t>(tos) << 20, 4);
  bytes({0, 0, 59, static_cast<uint8_t>(ttl)});
  bytes(Bytes(from.begin(), from.end()));
  bytes(Bytes(to.begin(), to.end()));
  protocol_at_ = ip_at_ + 6;
  return *this;
}

Frame& Frame::protocol(int number, const Bytes& payload) {
  frame_.at(protocol_at_) = static_cast<uint8_t>(number);
  protocol_at_ = frame_.size();  // extension headers begin with the number of the next one
  return bytes(payload);
}

Frame& Frame::udp(int source, int destination) {
  protocol(udp_protocol, {});
  put(static_cast<uint32_t>(source), 2);
  put(static_cast<uint32_t>(destination), 2);
  return bytes({0, 8, 0, 0});
}

Frame& Frame::tcp(int source, int destination) {
  protocol(tcp_protocol, {});
  put(static_cast<uint32_t>(source), 2);
  put(static_cast<uint32_t>(destination), 2);
  return bytes({0, 0, 0, 0, 0, 0, 0, 0, 0x50, 2, 0, 0, 0, 0, 0, 0});
}

Frame& Frame::icmp(int type, int code) {
  const bool is_ip6 = frame_.at(ip_at_) >> 4 == 6;
  return protocol(is_ip6 ? 58 : 1, {static_cast<uint8_t>(type), static_cast<uint8_t>(code), 0, 0, 0, 0, 0, 0});
}

Frame& Frame::igmp(int type, std::string_view group) {
  protocol(2, {static_cast<uint8_t>(type), 0, 0, 0});
  put(ip4(group), 4);
  return *this;
}

Frame& Frame::hop_by_hop() { return protocol(0, {59, 0, 5, 2, 0, 0, 1, 0}); }

Frame& Frame::length(std::size_t bytes) {
  length_ = bytes;
  return *this;
}

Bytes Frame::done() const {
  Bytes frame = frame_;
  if (ip_at_ != 0) {
    const bool is_ip6 = frame[ip_at_] >> 4 == 6;
    const std::size_t length = frame.size() - ip_at_ - (is_ip6 ? 40 : 0);
    const std::size_t length_at = ip_at_ + (is_ip6 ? 4 : 2);
    frame[length_at] = static_cast<uint8_t>(length >> 8);
    frame[length_at + 1] = static_cast<uint8_t>(length);
    if (!is_ip6) {
      const unsigned checksum = 0xFFFF - header_sum(std::span(frame).subspan(ip_at_, 20));
      frame[ip_at_ + 10] = static_cast<uint8_t>(checksum >> 8);
      frame[ip_at_ + 11] = static_cast<uint8_t>(checksum);
    }
  }
  frame.resize(std::max(frame.size(), length_));
  return frame;
}

std::string told(std::span<const uint8_t> frame) {
  if (frame.size() < 14) return "short";
  std::string text = mac_text(frame.subspan(6, 6)) + '>' + mac_text(frame.first(6));
  std::size_t at = 12;
  std::string tags;
  while (word(frame, at) == 0x8100 || word(frame, at) == 0x88A8) {
    const unsigned tag = word(frame, at + 2);
    tags += tags.empty() ? "" : " ";
    if (word(frame, at) == 0x88A8) tags += 's';
    tags += std::to_string(tag & 0xFFF);
    if (tag >> 13 != 0) tags += 'p' + std::to_string(tag >> 13);
    if ((tag & 0x1000) != 0) tags += 'c';
    at += 4;
  }
  if (!tags.empty()) text += " [" + tags + ']';
  const unsigned type = word(frame, at);
  const std::span<const uint8_t> payload = frame.subspan(std::min(at + 2, frame.size()));
  if (type == 0x0800) return text + ip4_text(payload);
  if (type == 0x86DD) return text + ip6_text(payload);
  if (type == 0x0806 && payload.size() >= 28)
    return text + " arp " + ip_text(AF_INET, &payload[14]) + '>' + ip_text(AF_INET, &payload[24]);
  std::array<char, 16> shown{};
  std::snprintf(shown.data(), shown.size(), " %04x", type);
  return text + shown.data();
}

}  // namespace support
