// Values as people write them: numbers, addresses, lists and records, from words and as text.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "words.h"

namespace saish {

/// Wide enough for every integer type of C.
using Wide = __int128;
std::optional<Wide> wide_number(std::string_view word);
std::optional<Wide> wide_named_number(std::string_view word, std::string_view prefix);

template <std::integral T>
std::optional<T> narrowed(std::optional<Wide> value) {
  if (!value || *value < std::numeric_limits<T>::min() || *value > std::numeric_limits<T>::max()) return std::nullopt;
  return static_cast<T>(*value);
}

/// The number of type T that `word` is: decimal, or hexadecimal after 0x.
template <std::integral T>
std::optional<T> number(std::string_view word) {
  return narrowed<T>(wide_number(word));
}

/// The same; `word` may also be the name, with this prefix, of an enumerator of sai.h or of a code of the Chip SDK.
template <std::integral T>
std::optional<T> named_number(std::string_view word, std::string_view prefix = "") {
  return narrowed<T>(wide_named_number(word, prefix));
}

/// A field of a record, and how its value is written.
struct Field {
  const char* name;
  void (*read)(const std::string& where, const std::string& word, void* record);
  std::string (*text)(const void* record);
  const char* type;  // for people
};

/// The fields of a record of sai.h, which commands.cmake finds. A record with a field that is not a number, a list of
/// numbers or a record has none.
template <class Record>
std::span<const Field> fields() = delete;

void read_fields(std::span<const Field> fields, const std::string& where, const std::string& word, void* record);
std::string fields_text(std::span<const Field> fields, const void* record);
std::string names_text(std::span<const Field> fields);

// read() puts what `word` says into a value, or throws BadInput; `where` names the value to the user.

template <std::integral T>
void read(const std::string& where, const std::string& word, T& value) {
  const std::optional<T> given = named_number<T>(word);
  if (!given)
    throw BadInput(where + ": \"" + word + "\" is not a number from " + std::to_string(std::numeric_limits<T>::min()) +
                   " to " + std::to_string(std::numeric_limits<T>::max()));
  value = *given;
}

/// A MAC address, 00:11:22:33:44:55.
void read(const std::string& where, const std::string& word, uint8_t (&mac)[6]);

/// An IPv6 address, ff02::1.
void read(const std::string& where, const std::string& word, uint8_t (&ip6)[16]);

/// A list, [1, 2, 3]; what is not given is 0.
template <std::integral T, std::size_t size>
void read(const std::string& where, const std::string& word, T (&list)[size]) {
  const std::optional<Words> items = enclosed(word, '[', ']');
  if (!items || items->size() > size)
    throw BadInput(where + ": \"" + word + "\" is not a list of up to " + std::to_string(size) +
                   " numbers such as [1, 2]");
  for (std::size_t i = 0; i < size; ++i)
    if (i < items->size())
      read(where, (*items)[i], list[i]);
    else
      list[i] = 0;
}

/// A record, {field=value, field=value}; what is not given is 0.
template <class Record>
requires std::is_class_v<Record>
void read(const std::string& where, const std::string& word, Record& record) {
  record = {};
  read_fields(fields<Record>(), where, word, &record);
}

/// An IPv4 address, 10.0.0.1, in host byte order; a number is one too.
uint32_t read_ip4(const std::string& where, const std::string& word);

// text() writes a value as read() takes it.

template <std::integral T>
std::string text(const T& value) {
  return std::to_string(value);
}

std::string text(const uint8_t (&mac)[6]);
std::string text(const uint8_t (&ip6)[16]);

template <std::integral T, std::size_t size>
std::string text(const T (&list)[size]) {
  std::string result;
  for (const T& item : list) result += (result.empty() ? "[" : ", ") + text(item);
  return result + "]";
}

template <class Record>
requires std::is_class_v<Record> std::string text(const Record& record) {
  return fields_text(fields<Record>(), &record);
}

std::string ip4_text(uint32_t address);

/// What a 32-bit field holds, according to its comment in sai.h.
enum class Form { number, ip4, network_ip4 };

/// The address in the other of host and network byte order.
uint32_t other_order(uint32_t address);

template <class T>
struct MemberOf;
template <class R, class T>
struct MemberOf<T R::*> {
  using Record = R;
};

/// The name of a type's values in messages.
template <class T>
constexpr const char* type_name() {
  if constexpr (std::same_as<T, uint8_t[6]>)
    return "MAC address";
  else if constexpr (std::same_as<T, uint8_t[16]>)
    return "IPv6 address";
  else if constexpr (std::is_array_v<T>)
    return "[list]";
  else if constexpr (std::is_class_v<T>)
    return "{record}";
  else if constexpr (std::is_signed_v<T>)
    return sizeof(T) == 1 ? "int8_t" : sizeof(T) == 2 ? "int16_t" : sizeof(T) == 4 ? "int32_t" : "int64_t";
  else
    return sizeof(T) == 1 ? "uint8_t" : sizeof(T) == 2 ? "uint16_t" : sizeof(T) == 4 ? "uint32_t" : "uint64_t";
}

template <auto member, Form form = Form::number>
constexpr Field field(const char* name) {
  using Record = typename MemberOf<decltype(member)>::Record;
  using Type = std::remove_reference_t<decltype(std::declval<Record&>().*member)>;
  const auto read_one = [](const std::string& where, const std::string& word, void* record) {
    auto& value = static_cast<Record*>(record)->*member;
    if constexpr (form == Form::number)
      read(where, word, value);
    else if constexpr (form == Form::ip4)
      value = read_ip4(where, word);
    else
      value = other_order(read_ip4(where, word));
  };
  const auto text_of_one = [](const void* record) {
    const auto& value = static_cast<const Record*>(record)->*member;
    if constexpr (form == Form::number)
      return text(value);
    else if constexpr (form == Form::ip4)
      return ip4_text(value);
    else
      return ip4_text(other_order(value));
  };
  return {name, read_one, text_of_one, form == Form::number ? type_name<Type>() : "IPv4 address"};
}

}  // namespace saish
