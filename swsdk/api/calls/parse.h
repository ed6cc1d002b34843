// Parses values from the text that arguments.h writes, by the same descriptions of records.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "api/calls/arguments.h"

namespace api {

/// Reports that a text is not what was expected there.
struct Unreadable : std::runtime_error {
  using runtime_error::runtime_error;
  Unreadable(std::string_view text, const char* wanted)
      : runtime_error('"' + std::string(text) + "\" is no " + wanted) {}
};

/// What is between the first and the last character, which have to be these.
std::string_view enclosed(std::string_view text, char open, char close);

/// Visits what is between `open` and `close`, split at commas outside brackets, braces and quotes.
template <class Visit>
void for_each_item(std::string_view text, char open, char close, Visit visit) {
  const std::string_view inside = enclosed(text, open, close);
  if (inside.empty()) return;
  constexpr std::array<bool, 256> has_meaning = [] {
    std::array<bool, 256> result{};
    for (const char c : {',', '"', '\\', '(', ')', '[', ']', '{', '}'}) result[static_cast<unsigned char>(c)] = true;
    return result;
  }();
  int depth = 0;
  bool quoted = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < inside.size(); ++i) {
    const char c = inside[i];
    if (!has_meaning[static_cast<unsigned char>(c)]) continue;  // most of it, in frames
    if (quoted) {
      if (c == '\\') ++i;
      quoted = c != '"';
      continue;
    }
    quoted = c == '"';
    depth += c == '{' || c == '[' || c == '(' ? 1 : c == '}' || c == ']' || c == ')' ? -1 : 0;
    if (c != ',' || depth > 0) continue;
    visit(inside.substr(begin, i - begin));
    begin = i + 1 < inside.size() && inside[i + 1] == ' ' ? i + 2 : i + 1;
  }
  if (quoted || depth != 0) throw Unreadable(text, "text with all its brackets and quotes");
  visit(inside.substr(begin));
}

/// The same items as a list.
std::vector<std::string_view> items(std::string_view text, char open, char close);

/// What an argument is after the call: "{vid=1, port=3}" of "{vid=1} -> &{vid=1, port=3}", "7" of "&7", or itself.
std::string_view value_after(std::string_view argument);

/// The value of a field that is a number or an address, from the text of its record; nothing when the record does not
/// show it, because it is 0.
std::string_view field_value(std::string_view record, std::string_view field);

/// The two's complement of an integer as the journal writes it: decimal, hexadecimal or as an IPv4 address.
uint64_t parsed_number(std::string_view text);
std::vector<uint8_t> parsed_mac(std::string_view text);
std::vector<uint8_t> parsed_ip6(std::string_view text);
std::vector<uint8_t> parsed_bytes(std::string_view text);
std::string parsed_quoted(std::string_view text);
chip::PortSet parsed_ports(std::string_view text);

template <class T>
void parse_items(std::string_view text, T* values, std::size_t room);

/// Writes the fields that the text names.
void parse_record(std::string_view text, std::span<const Field> fields, void* record);

template <class T>
void parse_value(std::string_view text, T& value) {
  if constexpr (std::is_same_v<T, bcm_mac_t>) {
    std::memcpy(value, parsed_mac(text).data(), sizeof value);
  } else if constexpr (std::is_same_v<T, bcm_ip6_t>) {
    std::memcpy(value, parsed_ip6(text).data(), sizeof value);
  } else if constexpr (std::is_array_v<T> && std::is_same_v<std::remove_extent_t<T>, char>) {
    const std::string characters = parsed_quoted(text);
    if (characters.size() > sizeof value) throw Unreadable(text, "text that fits");
    std::memcpy(value, characters.data(), characters.size());
  } else if constexpr (std::is_array_v<T>) {
    parse_items(text, value, std::extent_v<T>);
  } else if constexpr (std::is_same_v<T, bcm_pbmp_t>) {
    value = bitmap(parsed_ports(text));
  } else if constexpr (requires { fields(&value); }) {
    parse_record(text, fields(&value), &value);
  } else {
    const uint64_t number = parsed_number(text);
    value = static_cast<T>(number);
    // Signed flags are shown as unsigned ones.
    const bool same_bits = text.starts_with("0x") && sizeof value == 4 && number <= UINT32_MAX;
    if (!same_bits && static_cast<uint64_t>(value) != number) throw Unreadable(text, "number that fits");
  }
}

template <class T>
void parse_items(std::string_view text, T* values, std::size_t room) {
  const std::vector<std::string_view> found = items(text, '[', ']');
  if (found.size() > room) throw Unreadable(text, "list that fits");
  for (std::size_t i = 0; i < found.size(); ++i) parse_value(found[i], values[i]);
}

}  // namespace api
