// How a field of a record is described, by its name and place alone.
#pragma once

#include "api/calls/c_text.h"
#include "api/calls/parse.h"

namespace api {

template <class T>
constexpr ValueType type_of = {
    .text = [](const void* value, Show show) { return value_text(*static_cast<const T*>(value), show); },
    .parse = [](std::string_view text, void* value) { parse_value(text, *static_cast<T*>(value)); },
    .c_assignment = [](const std::string& place,
                       const void* value) { return c_assignment(place, *static_cast<const T*>(value)); }};

template <class Record, class T>
Field field(const char* name, T Record::*where, Show show = Show::plain) {
  static const Record record{};
  const auto* const begin = reinterpret_cast<const char*>(&record);
  const auto* const at = reinterpret_cast<const char*>(&(record.*where));
  return {name, static_cast<std::size_t>(at - begin), sizeof(T), &type_of<T>, show, true};
}

/// One that no table of the chip goes by: what it asks for is refused, since to accept it and do something else would
/// be worse.
template <class Record, class T>
Field unmodeled(const char* name, T Record::*where, Show show = Show::plain) {
  Field result = field(name, where, show);
  result.modeled = false;
  return result;
}

}  // namespace api
