#include "api/calls/arguments.h"

#include <arpa/inet.h>

#include <cstdio>

namespace {

template <class... Args>
std::string formatted(const char* format, Args... args) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, args...);
  return buffer;
}

/// Each byte as two digits. Not by a format: addresses are in most calls, and frames are long.
std::string pairs(const uint8_t* bytes, std::size_t count, char separator) {
  constexpr char digits[] = "0123456789abcdef";
  if (count == 0) return {};
  std::string result(count * 3 - 1, separator);
  char* at = result.data();
  for (std::size_t i = 0; i < count; ++i, at += 3) {
    at[0] = digits[bytes[i] >> 4];
    at[1] = digits[bytes[i] & 0xF];
  }
  return result;
}

}  // namespace

chip::PortSet api::ports(const bcm_pbmp_t& bitmap) {
  chip::PortSet result;
  for (int port = 0; port < BCM_PBMP_PORT_MAX; ++port)
    if (BCM_PBMP_MEMBER(bitmap, port)) result.add(chip::Port::of(port));
  return result;
}

bcm_pbmp_t api::bitmap(const chip::PortSet& ports) {
  bcm_pbmp_t result;
  BCM_PBMP_CLEAR(result);
  for (const chip::Port port : ports) BCM_PBMP_PORT_ADD(result, port.number());
  return result;
}

std::string api::text(Mac mac) { return mac.pointer == nullptr ? "NULL" : pairs(mac.pointer, 6, ':'); }

std::string api::text(Ip4 ip4) {
  const uint32_t a = ip4.address;
  return formatted("%u.%u.%u.%u", a >> 24, a >> 16 & 0xFF, a >> 8 & 0xFF, a & 0xFF);
}

std::string api::text(Ip6 ip6) {
  if (ip6.pointer == nullptr) return "NULL";
  char buffer[INET6_ADDRSTRLEN];
  return inet_ntop(AF_INET6, ip6.pointer, buffer, sizeof buffer);
}

std::string api::text(Hex hex) { return formatted("0x%x", hex.value); }

std::string api::text(Bytes bytes) {
  return bytes.pointer == nullptr ? "NULL" : '[' + pairs(bytes.pointer, bytes.count, ' ') + ']';
}

std::string api::text(const char* string) { return string == nullptr ? "NULL" : quoted(string); }

std::string api::quoted(std::string_view string) {
  std::string result = "\"";
  for (const char c : string) {
    if (c == '"' || c == '\\') result += '\\';
    if (c == '\n')
      result += "\\n";
    else
      result += c;
  }
  return result + '"';
}

std::string api::record_text(std::span<const Field> fields, const void* record) {
  std::string result = "{";
  for (const Field& field : fields) {
    if (field.is_zero_in(record)) continue;
    if (result.size() > 1) result += ", ";
    result += field.name;
    result += '=';
    result += field.type->text(field.in(record), field.show);
  }
  return result + '}';
}
