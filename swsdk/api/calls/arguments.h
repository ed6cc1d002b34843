// What a call's arguments are, for the call itself and for its journal line: a wrapper says how a pointer is used.
#pragma once

#include <bcm/types.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "api/calls/records.h"
#include "chip/addresses.h"
#include "chip/port_set.h"

namespace api {

// ---------------------------------------------------------------------------------------------- the wrappers ----

/// Points to what the call reads: a whole record, or only the fields that are the key of a lookup.
template <class T>
struct In {
  const T* pointer;
  bool whole = true;
  const T& operator*() const { return *pointer; }
};

/// Points to where the call writes.
template <class T>
struct Out {
  T* pointer;
  T& operator*() const { return *pointer; }
};

/// Points to what the call first reads and then writes.
template <class T>
struct InOut {
  T* pointer;
  bool whole = true;
  T before{};
  T& operator*() const { return *pointer; }
};

/// Points to `count` items that the call reads.
template <class T>
struct Array {
  const T* pointer;
  int count;
};

/// Points to `count` items that the call writes, or to space for so many when the call returns how many it wrote.
template <class T>
struct OutArray {
  T* pointer;
  int count;
  const int* written = nullptr;
  int capacity() const { return count; }
};

/// Points to `size` bytes for a text, which is cut if it does not fit.
struct TextOut {
  char* pointer;
  std::size_t size;
  std::size_t capacity() const { return size; }
};

/// Points to space for `room` bytes without a structure; the call returns how many it wrote.
struct BytesOut {
  uint8_t* pointer;
  std::size_t room;
  const std::size_t* written;
  std::size_t capacity() const { return room; }
};

/// The longest text that a call can write.
constexpr std::size_t max_text = std::size_t{16} << 20;

struct Mac {
  const uint8_t* pointer;
};
struct Ip4 {
  uint32_t address;
};
struct Ip6 {
  const uint8_t* pointer;
};
struct Hex {
  uint32_t value;
};
/// Bytes without a structure.
struct Bytes {
  const uint8_t* pointer;
  unsigned count;
};

template <class T>
In<T> in(const T* pointer) {
  return {pointer};
}
template <class T>
In<T> key(const T* pointer) {
  return {pointer, false};
}
template <class T>
Out<T> out(T* pointer) {
  return {pointer};
}
template <class T>
InOut<T> inout(T* pointer) {
  return pointer == nullptr ? InOut<T>{pointer} : InOut<T>{pointer, true, *pointer};
}
/// A record with the key of a lookup, into which the call writes what it finds.
template <class T>
InOut<T> found_by(T* pointer) {
  return pointer == nullptr ? InOut<T>{pointer} : InOut<T>{pointer, false, *pointer};
}
template <class T>
Array<T> array(const T* pointer, int count) {
  return {pointer, count};
}
template <class T>
OutArray<T> out_array(T* pointer, int count, const int* written = nullptr) {
  return {pointer, count, written};
}
inline TextOut text_out(char* pointer, std::size_t size) { return {pointer, size}; }
inline BytesOut bytes_out(uint8_t* pointer, std::size_t room, const std::size_t* written) {
  return {pointer, room, written};
}
inline Mac mac(const uint8_t* address) { return {address}; }
inline Ip4 ip4(uint32_t address) { return {address}; }
inline Ip6 ip6(const uint8_t* address) { return {address}; }
inline Hex hex(uint32_t value) { return {value}; }
inline Bytes bytes(const uint8_t* pointer, unsigned count) { return {pointer, count}; }

/// The chip's set of the ports in an SDK bitmap.
chip::PortSet ports(const bcm_pbmp_t& bitmap);
/// The SDK bitmap of a set of the chip's ports.
bcm_pbmp_t bitmap(const chip::PortSet& ports);

/// The SDK's array of `Size` bytes as the chip's.
template <std::size_t Size>
std::array<uint8_t, Size> address(const uint8_t (&bytes)[Size]) {
  std::array<uint8_t, Size> result;
  std::memcpy(result.data(), bytes, Size);
  return result;
}

/// The six bytes of an SDK's MAC address as the chip's.
inline chip::Mac mac_at(const uint8_t* bytes) {
  chip::Mac result;
  std::memcpy(result.data(), bytes, result.size());
  return result;
}

/// Whether the caller gave a null pointer where the call needs a valid one.
template <class T>
bool is_missing(const T& argument) {
  if constexpr (requires { argument.count; })
    return argument.pointer == nullptr && argument.count > 0;
  else if constexpr (requires { argument.pointer; })
    return argument.pointer == nullptr;
  else
    return false;
}

/// Whether the caller gave a record that asks for something that the chip does not model.
template <class T>
bool exceeds_model(const T& argument) {
  if constexpr (requires { fields(&argument); })
    return exceeds_model(fields(&argument), &argument);
  else
    return false;
}
template <class T>
bool exceeds_model(const In<T>& in) {
  return in.whole && exceeds_model(*in);
}
template <class T>
bool exceeds_model(const InOut<T>& inout) {
  return inout.whole && exceeds_model(*inout);
}
template <class T>
bool exceeds_model(const Array<T>& array) {
  return std::any_of(array.pointer, array.pointer + std::max(array.count, 0),
                     [](const T& item) { return exceeds_model(item); });
}

// -------------------------------------------------------------------------------------------------- as text ----

std::string text(Mac mac);
std::string text(Ip4 ip4);
std::string text(Ip6 ip6);
std::string text(Hex hex);
std::string text(Bytes bytes);
std::string text(const char* string);
std::string quoted(std::string_view string);

template <class T>
requires std::is_integral_v<T> || std::is_enum_v<T> std::string text(T value) {
  if constexpr (std::is_enum_v<T>)
    return std::to_string(static_cast<int>(value));
  else
    return std::to_string(value);
}

template <class T>
requires std::is_pointer_v<T> std::string text(T pointer) {
  if (pointer == nullptr) return "NULL";
  return std::is_function_v<std::remove_pointer_t<T>> ? "<callback>" : "<pointer>";
}

inline std::string text(char* string) { return text(static_cast<const char*>(string)); }

template <class T>
std::string items_text(const T* items, int count);

/// The fields of a record that are not 0: "{vid=10, flags=0x1}".
std::string record_text(std::span<const Field> fields, const void* record);

/// A value behind a pointer or in a record: an address, a name, a bitmap, a list, a record, or a plain value.
template <class T>
std::string value_text(const T& value, Show show = Show::plain) {
  if constexpr (std::is_same_v<T, bcm_mac_t>)
    return text(Mac{value});
  else if constexpr (std::is_same_v<T, bcm_ip6_t>)
    return text(Ip6{value});
  else if constexpr (std::is_array_v<T> && std::is_same_v<std::remove_extent_t<T>, char>)
    return quoted({value, strnlen(value, sizeof value)});  // one that fills its array has no zero byte
  else if constexpr (std::is_array_v<T>)
    return items_text(value, static_cast<int>(std::extent_v<T>));
  else if constexpr (std::is_same_v<T, bcm_pbmp_t>)
    return chip::text(ports(value));
  else if constexpr (requires { fields(&value); })
    return record_text(fields(&value), &value);
  else if constexpr (std::is_integral_v<T>)
    return show == Show::hex   ? text(hex(static_cast<uint32_t>(value)))
           : show == Show::ip4 ? text(ip4(static_cast<uint32_t>(value)))
                               : text(value);
  else
    return text(value);
}

template <class T>
std::string items_text(const T* items, int count) {
  std::string result = "[";
  for (int i = 0; i < count; ++i) {
    if (i > 0) result += ", ";
    result += value_text(items[i]);
  }
  return result + ']';
}

// After the call: how each argument shows in the journal line of a call that returned `rv`.

template <class T>
std::string shown(const T& argument, int) {
  return value_text(argument);
}

template <class T>
std::string shown(const In<T>& in, int) {
  return in.pointer == nullptr ? "NULL" : value_text(*in);
}

template <class T>
std::string shown(const Out<T>& out, int rv) {
  if (out.pointer == nullptr) return "NULL";
  return rv < 0 ? "&?" : '&' + (value_text(*out));
}

template <class T>
std::string shown(const InOut<T>& inout, int rv) {
  if (inout.pointer == nullptr) return "NULL";
  const std::string before = value_text(inout.before);
  const std::string after = rv < 0 ? before : value_text(*inout);
  return after == before ? before : before + " -> &" + after;
}

template <class T>
std::string shown(const Array<T>& array, int) {
  return array.pointer == nullptr ? "NULL" : items_text(array.pointer, array.count);
}

template <class T>
std::string shown(const OutArray<T>& array, int rv) {
  if (array.pointer == nullptr) return "NULL";
  const int count = array.written == nullptr ? array.count : std::clamp(*array.written, 0, std::max(array.count, 0));
  return rv < 0 ? "&?" : '&' + (items_text(array.pointer, count));
}

inline std::string shown(const TextOut& out, int rv) {
  if (out.pointer == nullptr) return "NULL";
  return rv < 0 ? "&?" : '&' + quoted({out.pointer, strnlen(out.pointer, out.size)});
}

inline std::string shown(const BytesOut& out, int rv) {
  if (out.pointer == nullptr) return "NULL";
  return rv < 0 ? "&?" : '&' + text(bytes(out.pointer, static_cast<unsigned>(std::min(*out.written, out.room))));
}

}  // namespace api
