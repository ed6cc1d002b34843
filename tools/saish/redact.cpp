#include "redact.h"

#include <arpa/inet.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <vector>

#include "words.h"

namespace saish {

namespace {

using Bytes = std::vector<uint8_t>;

/// SipHash-2-4: without the key, nobody can tell which input an output is of.
class KeyedHash {
 public:
  KeyedHash() {
    if (getrandom(key_.data(), sizeof key_, 0) != static_cast<ssize_t>(sizeof key_))
      throw BadInput("this machine has no random numbers to hide addresses with");
  }

  uint64_t operator()(std::span<const uint8_t> bytes) const {
    std::array<uint64_t, 4> v{key_[0] ^ 0x736f6d6570736575, key_[1] ^ 0x646f72616e646f6d, key_[0] ^ 0x6c7967656e657261,
                              key_[1] ^ 0x7465646279746573};
    const auto take = [&](uint64_t word) {
      v[3] ^= word;
      for (int i = 0; i < 2; ++i) round(v);
      v[0] ^= word;
    };
    uint64_t word = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      word |= uint64_t{bytes[i]} << i % 8 * 8;
      if (i % 8 != 7) continue;
      take(word);
      word = 0;
    }
    take(word | uint64_t{bytes.size()} << 56);
    v[2] ^= 0xFF;
    for (int i = 0; i < 4; ++i) round(v);
    return v[0] ^ v[1] ^ v[2] ^ v[3];
  }

 private:
  static void round(std::array<uint64_t, 4>& v) {
    v[0] += v[1];
    v[1] = std::rotl(v[1], 13) ^ v[0];
    v[0] = std::rotl(v[0], 32);
    v[2] += v[3];
    v[3] = std::rotl(v[3], 16) ^ v[2];
    v[0] += v[3];
    v[3] = std::rotl(v[3], 21) ^ v[0];
    v[2] += v[1];
    v[1] = std::rotl(v[1], 17) ^ v[2];
    v[2] = std::rotl(v[2], 32);
  }

  std::array<uint64_t, 2> key_{};
};

constexpr std::size_t mac_size = 6;
constexpr std::size_t ip4_size = 4;
constexpr std::size_t ip6_size = 16;

/// How many leading bits are 1, if all others are 0 and there is one; that is a mask.
std::optional<std::size_t> mask_length(const Bytes& address) {
  std::size_t length = 0;
  while (length < address.size() * 8 && (address[length / 8] >> (7 - length % 8) & 1) != 0) ++length;
  for (std::size_t i = length; i < address.size() * 8; ++i)
    if ((address[i / 8] >> (7 - i % 8) & 1) != 0) return std::nullopt;
  // 128.0.0.0 and the like are more often addresses than masks.
  return length >= 8 ? std::optional(length) : std::nullopt;
}

/// Replaces addresses and texts, the same by the same.
class Substitutes {
 public:
  /// Group addresses, and all zeros, mean something to the chip, and nothing of whose they are.
  void replace_mac(std::span<uint8_t> mac) const {
    const bool is_zero = std::all_of(mac.begin(), mac.end(), [](uint8_t byte) { return byte == 0; });
    if ((mac[0] & 1) != 0 || is_zero) return;
    const uint64_t hash = hash_(mac);
    for (std::size_t i = 0; i < mac.size(); ++i) mac[i] = static_cast<uint8_t>(hash >> 8 * i);
    mac[0] = static_cast<uint8_t>((mac[0] & 0xFC) | 0x02);  // of a host, and locally administered
  }

  /// Each bit depends on those before it, so that addresses of one subnet get addresses of one subnet. What is left are
  /// the first 8 bits, by which chips tell groups, loopback and link-local addresses.
  void replace_ip(std::span<uint8_t> address) const {
    constexpr std::size_t kept = 8;
    const uint8_t first = address[0];
    const bool is_group = address.size() == ip4_size ? first >= 224 : first == 0xFF;
    if (is_group || first == 0) return;
    const Bytes original(address.begin(), address.end());
    Bytes prefix(address.size() + 1);
    for (std::size_t i = 0; i < address.size() * 8; ++i) {
      const auto bit = static_cast<uint8_t>(0x80U >> i % 8);
      if (i >= kept) {
        prefix.back() = static_cast<uint8_t>(i);
        if ((hash_(prefix) & 1) != 0) address[i / 8] ^= bit;
      }
      prefix[i / 8] = static_cast<uint8_t>(prefix[i / 8] | (original[i / 8] & bit));
    }
  }

  const std::string& text(const std::string& original) {
    return texts_.try_emplace(original, "text-" + std::to_string(texts_.size() + 1)).first->second;
  }

 private:
  const KeyedHash hash_;
  std::map<std::string, std::string> texts_;
};

uint16_t word_at(std::span<const uint8_t> bytes, std::size_t at) {
  return static_cast<uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

/// Replaces the addresses of a frame; of what is behind the ports of TCP and UDP, nothing is left.
void redact_frame(Bytes& frame, const Substitutes& substitutes) {
  constexpr std::size_t type_at = 12;
  const auto part = [&](std::size_t at, std::size_t size) { return std::span(frame).subspan(at, size); };
  const auto blank_from = [&](std::size_t at) {
    if (at < frame.size()) std::fill(frame.begin() + static_cast<std::ptrdiff_t>(at), frame.end(), uint8_t{0});
  };
  if (frame.size() < type_at + 2) return blank_from(0);
  substitutes.replace_mac(part(0, mac_size));
  substitutes.replace_mac(part(mac_size, mac_size));
  std::size_t at = type_at;
  while (at + 6 <= frame.size() && (word_at(frame, at) == 0x8100 || word_at(frame, at) == 0x88A8)) at += 4;
  const uint16_t type = word_at(frame, at);
  at += 2;
  const auto has = [&](std::size_t size) { return at + size <= frame.size(); };
  constexpr std::size_t ports = 4;
  if (type == 0x0806 && has(28)) {
    for (const std::size_t hardware : {at + 8, at + 18}) substitutes.replace_mac(part(hardware, mac_size));
    for (const std::size_t protocol : {at + 14, at + 24}) substitutes.replace_ip(part(protocol, ip4_size));
    blank_from(at + 28);
  } else if (type == 0x0800 && has(20)) {
    const std::size_t header = std::size_t{frame[at]} % 16 * 4;
    for (const std::size_t address : {at + 12, at + 16}) substitutes.replace_ip(part(address, ip4_size));
    if (header >= 20 && has(header)) {
      std::fill_n(frame.begin() + static_cast<std::ptrdiff_t>(at) + 10, 2, uint8_t{0});
      uint32_t sum = 0;
      for (std::size_t i = 0; i < header; i += 2) sum += word_at(frame, at + i);
      while (sum > 0xFFFF) sum = (sum & 0xFFFF) + (sum >> 16);
      frame[at + 10] = static_cast<uint8_t>(~sum >> 8);
      frame[at + 11] = static_cast<uint8_t>(~sum);
    }
    blank_from(at + std::max<std::size_t>(header, 20) + ports);
  } else if (type == 0x86DD && has(40)) {
    for (const std::size_t address : {at + 8, at + 24}) substitutes.replace_ip(part(address, ip6_size));
    blank_from(at + 40 + ports);
  } else {
    blank_from(at);
  }
}

bool is_hex(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

std::string hex_pairs(std::span<const uint8_t> bytes, char separator) {
  std::string result;
  char pair[4];
  for (const uint8_t byte : bytes) {
    std::snprintf(pair, sizeof pair, "%02x", byte);
    result += (result.empty() ? std::string() : std::string(1, separator)) + pair;
  }
  return result;
}

/// The bytes of hexadecimal pairs; nothing when the text is none.
std::optional<Bytes> bytes_of(std::string_view text, char separator) {
  if (text.size() % 3 != 2) return std::nullopt;
  Bytes result;
  for (std::size_t i = 0; i < text.size(); i += 3) {
    if (!is_hex(text[i]) || !is_hex(text[i + 1]) || (i + 2 < text.size() && text[i + 2] != separator))
      return std::nullopt;
    result.push_back(static_cast<uint8_t>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
  }
  return result;
}

/// An IP address in a line.
struct Ip {
  std::size_t at;
  std::size_t size;  // of its text
  Bytes bytes;
};

/// One line of a recording, redacted.
class Line {
 public:
  Line(const std::string& text, Substitutes& substitutes) : text_(text), substitutes_(substitutes) {}

  std::string redacted() {
    while (at_ < text_.size()) {
      if (text_[at_] == '"')
        take_text();
      else if (text_[at_] == '[' && take_frame())
        continue;
      else if (is_hex(text_[at_]) || text_[at_] == ':')
        take_word();
      else
        result_ += text_[at_++];
    }
    replace_ips();
    return result_;
  }

 private:
  void take_text() {
    const std::size_t begin = at_ + 1;
    std::size_t end = begin;
    while (end < text_.size() && text_[end] != '"') end += text_[end] == '\\' ? 2 : 1;
    end = std::min(end, text_.size());
    const std::string text = text_.substr(begin, end - begin);
    const bool is_command = text_.find("sh_process_command(") != std::string::npos;
    result_ += '"' + (is_command ? command(text) : substitutes_.text(text)) + '"';
    at_ = std::min(end + 1, text_.size());
  }

  /// What a command of the SDK's shell does is in its first words; what follows are files, names and values.
  std::string command(const std::string& text) const {
    constexpr int words_that_tell = 3;
    std::string result;
    std::istringstream words(text);
    std::string word;
    for (int number = 0; words >> word; ++number)
      result += (number > 0 ? " " : "") + (number < words_that_tell ? word : substitutes_.text(word));
    return result;
  }

  /// Bytes without a structure are frames, or what is as telling.
  bool take_frame() {
    const std::size_t end = text_.find(']', at_);
    if (end == std::string::npos) return false;
    std::optional<Bytes> bytes = bytes_of(std::string_view(text_).substr(at_ + 1, end - at_ - 1), ' ');
    if (!bytes || bytes->size() < 2) return false;
    redact_frame(*bytes, substitutes_);
    result_ += '[' + hex_pairs(*bytes, ' ') + ']';
    at_ = end + 1;
    return true;
  }

  /// A number, a name or an address: what letters, digits, colons and points make.
  void take_word() {
    std::size_t end = at_;
    while (end < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[end])) != 0 || text_[end] == ':' ||
                                  text_[end] == '.' || text_[end] == '_'))
      ++end;
    const std::string word = text_.substr(at_, end - at_);
    at_ = end;
    Bytes address(ip6_size);
    if (std::optional<Bytes> mac = bytes_of(word, ':'); mac && mac->size() == mac_size) {
      substitutes_.replace_mac(*mac);
      result_ += hex_pairs(*mac, ':');
      return;
    }
    const int family = word.find(':') == std::string::npos ? AF_INET : AF_INET6;
    if (inet_pton(family, word.c_str(), address.data()) == 1) {
      address.resize(family == AF_INET ? ip4_size : ip6_size);
      ips_.push_back({result_.size(), word.size(), address});
    }
    result_ += word;
  }

  /// From the last to the first, so that places stay. A network is followed by its mask, or its prefix length.
  void replace_ips() {
    for (std::size_t i = ips_.size(); i-- > 0;) {
      const auto& [at, size, original] = ips_[i];
      if (mask_length(original)) continue;
      Bytes address = original;
      substitutes_.replace_ip(address);
      std::optional<std::size_t> length = prefix_behind(at + size);
      if (i + 1 < ips_.size() && ips_[i + 1].bytes.size() == original.size()) length = mask_length(ips_[i + 1].bytes);
      for (std::size_t bit = length.value_or(address.size() * 8); bit < address.size() * 8; ++bit)
        address[bit / 8] &= static_cast<uint8_t>(~(0x80U >> bit % 8));
      char text[INET6_ADDRSTRLEN];
      inet_ntop(address.size() == ip4_size ? AF_INET : AF_INET6, address.data(), text, sizeof text);
      result_.replace(at, size, text);
    }
  }

  std::optional<std::size_t> prefix_behind(std::size_t at) const {
    constexpr std::string_view field = ", prefix=";
    if (result_.compare(at, field.size(), field) != 0) return std::nullopt;
    return static_cast<std::size_t>(std::atoi(result_.c_str() + at + field.size()));
  }

  const std::string& text_;
  Substitutes& substitutes_;
  std::size_t at_ = 0;
  std::string result_;
  std::vector<Ip> ips_;
};

}  // namespace

void redact(const std::string& recording) {
  std::ifstream file(recording);
  std::string line;
  if (!std::getline(file, line)) throw BadInput(recording + ": cannot be read, or is empty");
  if (!line.starts_with("swsdk recording ")) throw BadInput(recording + ":1: not a recording");
  Substitutes substitutes;
  do {
    const bool is_cut = file.eof();  // in this line, which stays so
    std::printf("%s%s", Line(line, substitutes).redacted().c_str(), is_cut ? "" : "\n");
  } while (std::getline(file, line));
}

}  // namespace saish
