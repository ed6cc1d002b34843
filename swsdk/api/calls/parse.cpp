#include "api/calls/parse.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>

namespace {

template <class T>
T number(std::string_view digits, int base, std::string_view whole) {
  T value{};
  const char* const end = digits.data() + digits.size();
  const auto [read_to, error] = std::from_chars(digits.data(), end, value, base);
  if (error != std::errc{} || read_to != end) throw api::Unreadable(whole, "number");
  return value;
}

/// The value of a hexadecimal digit, or -1.
int digit_of(char c) {
  return c >= '0' && c <= '9'   ? c - '0'
         : c >= 'a' && c <= 'f' ? c - 'a' + 10
         : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                : -1;
}

/// Bytes as pairs of hexadecimal digits. Not number by number: frames are long.
std::vector<uint8_t> byte_pairs(std::string_view text, char separator, std::string_view whole) {
  std::vector<uint8_t> result;
  result.reserve(text.size() / 3 + 1);
  for (std::size_t i = 0; i < text.size(); i += 3) {
    const int high = digit_of(text[i]);
    const int low = i + 1 < text.size() ? digit_of(text[i + 1]) : -1;
    if (high < 0 || low < 0 || (i + 2 < text.size() && text[i + 2] != separator))
      throw api::Unreadable(whole, "list of bytes");
    result.push_back(static_cast<uint8_t>(high << 4 | low));
  }
  return result;
}

}  // namespace

std::string_view api::enclosed(std::string_view text, char open, char close) {
  if (text.size() < 2 || text.front() != open || text.back() != close)
    throw Unreadable('"' + std::string(text) + "\" is not between " + open + " and " + close);
  return text.substr(1, text.size() - 2);
}

std::vector<std::string_view> api::items(std::string_view text, char open, char close) {
  std::vector<std::string_view> result;
  for_each_item(text, open, close, [&](std::string_view item) { result.push_back(item); });
  return result;
}

std::string_view api::value_after(std::string_view argument) {
  constexpr std::string_view arrow = " -> &";
  if (argument.starts_with('&')) return argument.substr(1);
  const std::size_t written = argument.starts_with('"') ? std::string_view::npos : argument.find(arrow);
  return written == std::string_view::npos ? argument : argument.substr(written + arrow.size());
}

std::string_view api::field_value(std::string_view record, std::string_view field) {
  for (std::size_t at = record.find(field); at != std::string_view::npos; at = record.find(field, at + 1)) {
    const std::string_view rest = record.substr(at + field.size());
    if (at > 0 && (record[at - 1] == '{' || record[at - 1] == ' ') && rest.starts_with('='))
      return rest.substr(1, rest.find_first_of(",}") - 1);
  }
  return {};
}

uint64_t api::parsed_number(std::string_view text) {
  if (text.starts_with("0x")) return number<uint64_t>(text.substr(2), 16, text);
  if (text.starts_with('-')) return static_cast<uint64_t>(number<int64_t>(text, 10, text));
  if (text.find('.') == std::string_view::npos) return number<uint64_t>(text, 10, text);
  in_addr address;
  if (inet_pton(AF_INET, std::string(text).c_str(), &address) != 1) throw Unreadable(text, "IPv4 address");
  return ntohl(address.s_addr);
}

std::vector<uint8_t> api::parsed_mac(std::string_view text) {
  constexpr std::size_t characters = 17;
  if (text.size() != characters) throw Unreadable(text, "MAC address");
  return byte_pairs(text, ':', text);
}

std::vector<uint8_t> api::parsed_ip6(std::string_view text) {
  std::vector<uint8_t> result(sizeof(bcm_ip6_t));
  if (inet_pton(AF_INET6, std::string(text).c_str(), result.data()) != 1) throw Unreadable(text, "IPv6 address");
  return result;
}

std::vector<uint8_t> api::parsed_bytes(std::string_view text) {
  return byte_pairs(enclosed(text, '[', ']'), ' ', text);
}

std::string api::parsed_quoted(std::string_view text) {
  const std::string_view inside = enclosed(text, '"', '"');
  std::string result;
  for (std::size_t i = 0; i < inside.size(); ++i) {
    const bool escaped = inside[i] == '\\' && i + 1 < inside.size();
    if (escaped) ++i;
    result += escaped && inside[i] == 'n' ? '\n' : inside[i];
  }
  return result;
}

chip::PortSet api::parsed_ports(std::string_view text) {
  chip::PortSet result;
  for (const std::string_view item : items(text, '{', '}')) {
    const std::size_t dash = item.find('-');
    const int first = number<int>(item.substr(0, dash), 10, text);
    const int last = dash == std::string_view::npos ? first : number<int>(item.substr(dash + 1), 10, text);
    if (first < 0 || last >= chip::PortSet::capacity) throw Unreadable(text, "set of ports");
    for (int port = first; port <= last; ++port) result.add(chip::Port::of(port));
  }
  return result;
}

void api::parse_record(std::string_view text, std::span<const Field> fields, void* record) {
  for (const std::string_view item : items(text, '{', '}')) {
    const std::size_t equals = item.find('=');
    if (equals == std::string_view::npos) throw Unreadable(item, "field with a value");
    const std::string_view name = item.substr(0, equals);
    const auto field = std::find_if(fields.begin(), fields.end(), [&](const Field& one) { return one.name == name; });
    if (field == fields.end()) throw Unreadable(name, "field of this record");
    field->type->parse(item.substr(equals + 1), field->in(record));
  }
}
