#include "frame_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <optional>
#include <utility>

#include "values.h"

namespace saish {

const char frame_form[] =
    "FRAME is hexadecimal digits, or MAC > MAC, then what it has of: vlan ID[/PRIORITY] and svlan ID[/PRIORITY], tags\n"
    "  of the types 0x8100 and 0x88a8, the outer one first, type NUMBER, arp IP > IP, ip IP > IP, tos NUMBER,\n"
    "  ttl NUMBER, udp PORT > PORT, tcp PORT > PORT, icmp TYPE, igmp TYPE GROUP, protocol NUMBER, length BYTES";

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::size_t shortest = 60;  // Ethernet's minimum, without the checksum
constexpr std::size_t longest = 16384;
constexpr uint16_t vlan_tag = 0x8100;
constexpr uint16_t service_tag = 0x88A8;
constexpr uint16_t arp_type = 0x0806;
constexpr uint16_t ip4_type = 0x0800;
constexpr uint16_t ip6_type = 0x86DD;
constexpr std::size_t ip4_header = 20;
constexpr std::size_t ip6_header = 40;
constexpr std::size_t arp_packet = 28;

unsigned word(std::span<const uint8_t> bytes, std::size_t at) {
  return at + 2 <= bytes.size() ? static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]) : 0;
}

/// The sum of the words of an IPv4 header; 0xFFFF for a valid header, including its checksum.
unsigned header_sum(std::span<const uint8_t> header) {
  unsigned sum = 0;
  for (std::size_t at = 0; at + 1 < header.size(); at += 2) sum += word(header, at);
  while (sum >> 16 != 0) sum = (sum & 0xFFFF) + (sum >> 16);
  return sum;
}

/// Makes a frame of words, from front to back. In a pattern, "*" leaves a value open.
class Builder {
 public:
  explicit Builder(std::span<const std::string> words) : words_(words) {}
  Builder(std::span<const std::string> words, std::size_t open_ip)
      : words_(words), is_pattern_(true), open_ip_(open_ip) {}

  Bytes build() {
    add_all();
    frame_.resize(std::max({frame_.size(), std::min(length_.value_or(0), longest), shortest}));
    return frame_;
  }

  NamedPart named_part() {
    add_all();
    frame_.resize(named_end_);
    named_.resize(named_end_);
    return {frame_, named_, length_};
  }

 private:
  static Bytes mac(const std::string& text) {
    uint8_t bytes[6];
    read("frame", text, bytes);
    return {std::begin(bytes), std::end(bytes)};
  }

  static Bytes ip(const std::string& text) {
    if (text.find(':') != std::string::npos) {
      uint8_t bytes[16];
      read("frame", text, bytes);
      return {std::begin(bytes), std::end(bytes)};
    }
    const uint32_t address = read_ip4("frame", text);
    return {static_cast<uint8_t>(address >> 24), static_cast<uint8_t>(address >> 16),
            static_cast<uint8_t>(address >> 8), static_cast<uint8_t>(address)};
  }

  template <std::integral T>
  static T integer(const std::string& text) {
    T value;
    read("frame", text, value);
    return value;
  }

  static Bytes bytes_of(unsigned value) { return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}; }
  static Bytes short_number(const std::string& text) { return {integer<uint8_t>(text)}; }
  static Bytes long_number(const std::string& text) { return bytes_of(integer<uint16_t>(text)); }

  std::string next(const char* wanted) {
    if (words_.empty()) throw BadInput("frame: it ends where a " + std::string(wanted) + " should be");
    const std::string result = words_.front();
    words_ = words_.subspan(1);
    return result;
  }

  /// What a word says; nothing when it leaves the value open.
  template <class T>
  std::optional<T> value_of(const std::string& word, T (*read_one)(const std::string& word)) const {
    if (is_pattern_ && word == "*") return std::nullopt;
    return read_one(word);
  }

  template <class T>
  std::optional<T> value(const char* wanted, T (*read_one)(const std::string& word)) {
    return value_of(next(wanted), read_one);
  }

  /// "A > B".
  using Pair = std::pair<std::optional<Bytes>, std::optional<Bytes>>;
  Pair pair(const char* wanted, Bytes (*read_one)(const std::string& word)) {
    std::optional<Bytes> first = value(wanted, read_one);
    if (const std::string arrow = next(">"); arrow != ">") throw BadInput("frame: \"" + arrow + "\" is not >");
    return {std::move(first), value(wanted, read_one)};
  }

  /// Bytes that no word names.
  void fill(const Bytes& bytes) {
    frame_.insert(frame_.end(), bytes.begin(), bytes.end());
    named_.resize(frame_.size());
  }

  void put(const Bytes& bytes, const Bytes& named) {
    fill(bytes);
    std::copy(named.begin(), named.end(), named_.end() - static_cast<std::ptrdiff_t>(named.size()));
    named_end_ = frame_.size();
  }
  void put(const Bytes& bytes) { put(bytes, Bytes(bytes.size(), 0xFF)); }
  void put(const std::optional<Bytes>& bytes, std::size_t size) {
    if (bytes)
      put(*bytes);
    else
      put(Bytes(size), Bytes(size));
  }

  void set(std::size_t at, unsigned value, unsigned named = 0xFF) {
    frame_[at] = static_cast<uint8_t>(value);
    named_[at] = static_cast<uint8_t>(named_[at] | named);
  }
  void set_word(std::size_t at, unsigned value) {
    frame_[at] = static_cast<uint8_t>(value >> 8);
    frame_[at + 1] = static_cast<uint8_t>(value);
  }

  void add_all() {
    const auto [source, destination] = pair("MAC address", mac);
    put(destination, 6);
    put(source, 6);
    while (!words_.empty()) add(next("field"));
  }

  void add(const std::string& name) {
    if (name == "length")
      length_ = value("number", &integer<std::size_t>);
    else if (name == "vlan" || name == "svlan")
      add_tag(name == "vlan" ? vlan_tag : service_tag, next("VLAN"));
    else if (name == "type")
      put(value("number", long_number), 2);
    else if (name == "arp")
      add_arp();
    else if (name == "ip")
      add_ip();
    else if (ip_at_ == 0)
      throw BadInput("frame: \"" + name + "\" is no field, or comes before ip");
    else
      add_to_ip(name);
    if (ip_at_ != 0) complete_ip();
  }

  void add_tag(uint16_t tpid, const std::string& text) {
    const std::size_t slash = std::min(text.find('/'), text.size());
    const std::optional<uint16_t> vlan = value_of(text.substr(0, slash), &integer<uint16_t>);
    // "*" alone leaves the priority open too; otherwise a tag without one has the priority 0.
    const std::optional<uint16_t> priority = slash == text.size()
                                                 ? (vlan ? std::optional(uint16_t{0}) : std::nullopt)
                                                 : value_of(text.substr(slash + 1), &integer<uint16_t>);
    if (vlan > 4095 || priority > 7) throw BadInput("frame: a tag has a VLAN up to 4095 and a priority up to 7");
    put(bytes_of(tpid));
    put(bytes_of(static_cast<unsigned>(priority.value_or(0) << 13 | vlan.value_or(0))),
        bytes_of((priority ? 0xE000U : 0) | (vlan ? 0x0FFFU : 0)));
  }

  void add_arp() {
    const Bytes source(frame_.begin() + 6, frame_.begin() + 12);
    const auto [sender, target] = pair("IPv4 address", ip);
    if ((sender && sender->size() != 4) || (target && target->size() != 4))
      throw BadInput("frame: ARP is of IPv4 addresses");
    put(bytes_of(arp_type));
    fill({0, 1, 8, 0, 6, 4, 0, 1});  // a request
    fill(source);
    put(sender, 4);
    fill(Bytes(6));
    put(target, 4);
  }

  void add_ip() {
    const auto [source, destination] = pair("IP address", ip);
    if (source && destination && source->size() != destination->size())
      throw BadInput("frame: an IPv4 address does not go with an IPv6 one");
    const std::size_t size = source ? source->size() : destination ? destination->size() : open_ip_;
    is_ip4_ = size == 4;
    put(bytes_of(is_ip4_ ? ip4_type : ip6_type));
    ip_at_ = frame_.size();
    fill(is_ip4_ ? Bytes{0x45, 0, 0, 0, 0, 0, 0, 0, 64, 253, 0, 0} : Bytes{0x60, 0, 0, 0, 0, 0, 59, 64});
    put(source, size);
    put(destination, size);
  }

  void add_to_ip(const std::string& name) {
    const std::size_t protocol_at = ip_at_ + (is_ip4_ ? 9 : 6);
    if (name == "ttl") {
      if (const auto ttl = value("number", &integer<uint8_t>)) set(ip_at_ + (is_ip4_ ? 8 : 7), *ttl);
    } else if (name == "tos") {
      if (const auto tos = value("number", &integer<uint8_t>)) set_tos(*tos);
    } else if (name == "protocol") {
      if (const auto protocol = value("number", &integer<uint8_t>)) set(protocol_at, *protocol);
    } else if (name == "udp" || name == "tcp") {
      set(protocol_at, name == "udp" ? 17 : 6);
      const auto [source, destination] = pair("port", long_number);
      put(source, 2);
      put(destination, 2);
      fill(name == "udp" ? Bytes{0, 8, 0, 0} : Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0x50, 2, 0, 0, 0, 0, 0, 0});
    } else if (name == "icmp") {
      set(protocol_at, is_ip4_ ? 1 : 58);
      put(value("number", short_number), 1);
      fill(Bytes(7));
    } else if (name == "igmp") {
      set(protocol_at, 2);
      put(value("number", short_number), 1);
      fill(Bytes(3));
      put(value("group", ip), 4);
    } else {
      throw BadInput("frame: there is no field \"" + name + '"');
    }
  }

  /// It fills a byte of IPv4, and parts of two bytes of IPv6.
  void set_tos(unsigned tos) {
    if (is_ip4_) return set(ip_at_ + 1, tos);
    set(ip_at_, 0x60 | tos >> 4, 0x0F);
    set(ip_at_ + 1, tos << 4, 0xF0);
  }

  void complete_ip() {
    const std::size_t length = frame_.size() - ip_at_;
    if (!is_ip4_) return set_word(ip_at_ + 4, static_cast<unsigned>(length - ip6_header));
    set_word(ip_at_ + 2, static_cast<unsigned>(length));
    set_word(ip_at_ + 10, 0);
    set_word(ip_at_ + 10, 0xFFFF - header_sum(std::span(frame_).subspan(ip_at_, ip4_header)));
  }

  std::span<const std::string> words_;
  const bool is_pattern_ = false;
  const std::size_t open_ip_ = 4;  // the size of IP addresses that are both open
  Bytes frame_;
  Bytes named_;  // the bits of the frame that words name
  std::size_t named_end_ = 0;
  std::optional<std::size_t> length_;
  std::size_t ip_at_ = 0;  // 0: there is no IP header
  bool is_ip4_ = false;
};

/// The N bytes there as the array that text() takes.
template <std::size_t N>
std::string address_text(const uint8_t* at) {
  uint8_t bytes[N];
  std::copy_n(at, N, bytes);
  return text(bytes);
}

std::string ip4_at(const uint8_t* at) {
  return ip4_text(static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
                  static_cast<uint32_t>(at[2]) << 8 | at[3]);
}

std::string in_ip_text(int protocol, std::span<const uint8_t> inside) {
  const std::string ports = std::to_string(word(inside, 0)) + " > " + std::to_string(word(inside, 2));
  const std::string type = inside.empty() ? "" : ' ' + std::to_string(inside[0]);
  if (protocol == 17 && inside.size() >= 4) return " udp " + ports;
  if (protocol == 6 && inside.size() >= 4) return " tcp " + ports;
  if ((protocol == 1 || protocol == 58) && !inside.empty()) return " icmp" + type;
  if (protocol == 2 && inside.size() >= 8) return " igmp" + type + ' ' + ip4_at(&inside[4]);
  return " protocol " + std::to_string(protocol);
}

/// What is inside an IP packet: behind the options of its header, and without the padding that may follow.
std::span<const uint8_t> inside(std::span<const uint8_t> packet, bool is_ip4) {
  const std::size_t header = is_ip4 ? std::size_t{4} * (packet[0] & 0xFU) : ip6_header;
  const std::size_t begin = std::min(header, packet.size());
  const std::size_t length = is_ip4 ? word(packet, 2) : ip6_header + word(packet, 4);
  return packet.subspan(begin, std::clamp(length, begin, packet.size()) - begin);
}

std::string ip_packet_text(std::span<const uint8_t> packet, bool is_ip4) {
  if (packet.size() < (is_ip4 ? ip4_header : ip6_header)) return " ip cut short";
  const unsigned tos = is_ip4 ? packet[1] : word(packet, 0) >> 4 & 0xFF;
  std::string result = " ip " + (is_ip4 ? ip4_at(&packet[12]) + " > " + ip4_at(&packet[16])
                                        : address_text<16>(&packet[8]) + " > " + address_text<16>(&packet[24]));
  if (tos != 0) result += " tos " + std::to_string(tos);
  result += " ttl " + std::to_string(packet[is_ip4 ? 8 : 7]);
  const std::span<const uint8_t> content = inside(packet, is_ip4);
  result += in_ip_text(packet[is_ip4 ? 9 : 6], content);
  const auto header = packet.first(static_cast<std::size_t>(content.data() - packet.data()));
  return is_ip4 && header_sum(header) != 0xFFFF ? result + " (bad checksum)" : result;
}

}  // namespace

std::vector<uint8_t> frame_bytes(std::span<const std::string> words) {
  if (words.size() != 1) return Builder(words).build();
  const std::string& digits = words[0];
  const auto is_digit = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
  if (digits.size() % 2 != 0 || !std::all_of(digits.begin(), digits.end(), is_digit))
    throw BadInput("frame: \"" + digits + "\" is not pairs of hexadecimal digits");
  Bytes frame;
  for (std::size_t at = 0; at < digits.size(); at += 2)
    frame.push_back(number<uint8_t>("0x" + digits.substr(at, 2)).value_or(0));
  return frame;
}

NamedPart named_part(std::span<const std::string> words, std::size_t open_ip) {
  return Builder(words, open_ip).named_part();
}

std::size_t end_of_tags(std::span<const uint8_t> frame) {
  std::size_t at = 12;
  while (word(frame, at) == vlan_tag || word(frame, at) == service_tag) at += 4;
  return at;
}

std::vector<uint8_t> without_options(std::span<const uint8_t> frame) {
  const std::size_t type_at = end_of_tags(frame);
  const unsigned type = word(frame, type_at);
  const std::size_t inside_at = type_at + 2 + (type == ip4_type ? ip4_header : ip6_header);
  if ((type != ip4_type && type != ip6_type) || frame.size() < inside_at) return {frame.begin(), frame.end()};
  const std::span<const uint8_t> content = inside(frame.subspan(type_at + 2), type == ip4_type);
  Bytes result(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(inside_at));
  result.insert(result.end(), content.begin(), content.end());
  return result;
}

std::string frame_text(std::span<const uint8_t> frame) {
  if (frame.size() < 14) return std::to_string(frame.size()) + " bytes";
  std::string result = address_text<6>(&frame[6]) + " > " + address_text<6>(frame.data());
  const std::size_t end = end_of_tags(frame);
  for (std::size_t at = 12; at < end; at += 4) {
    const unsigned tag = word(frame, at + 2);
    result += (word(frame, at) == vlan_tag ? " vlan " : " svlan ") + std::to_string(tag & 0xFFF);
    if (tag >> 13 != 0) result += '/' + std::to_string(tag >> 13);
  }
  const unsigned type = word(frame, end);
  const std::span<const uint8_t> payload = frame.subspan(std::min(end + 2, frame.size()));
  if (type == ip4_type || type == ip6_type) return result + ip_packet_text(payload, type == ip4_type);
  if (type == arp_type)
    return result + (payload.size() < arp_packet ? " arp cut short"
                                                 : " arp " + ip4_at(&payload[14]) + " > " + ip4_at(&payload[24]));
  char shown[16];
  std::snprintf(shown, sizeof shown, " type 0x%04x", type);
  return result + shown;
}

std::string with_frame_text(std::string_view line) {
  const bool has_frame = line.starts_with("in ") || line.starts_with("out ") || line.starts_with("cpu ");
  const std::size_t colon = line.rfind(": ");
  // A frame can be empty, and a copy that is looped back has none here.
  if (!has_frame || colon == std::string_view::npos || colon + 2 == line.size()) return std::string(line);
  const Words bytes{std::string(line.substr(colon + 2))};
  return std::string(line.substr(0, colon + 2)) + frame_text(frame_bytes(bytes));
}

}  // namespace saish
