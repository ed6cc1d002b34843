// Values as C: statements that make them, for the programs that recordings become.
#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "api/calls/arguments.h"

namespace api {

/// A string literal of these bytes.
std::string c_string(std::string_view bytes);

/// The compiler's own name of a type: the interface gives its records the same tags in C.
template <class T>
constexpr std::string_view compiler_name() {
  constexpr std::string_view function = __PRETTY_FUNCTION__;
  constexpr std::size_t begin = function.find("T = ") + 4;
  return function.substr(begin, function.find_first_of(";]", begin) - begin);
}

template <class T>
std::string c_type() {
  if constexpr (std::is_pointer_v<T>)
    return c_type<std::remove_const_t<std::remove_pointer_t<T>>>() + '*';
  else if constexpr (std::is_same_v<T, bcm_ip6_t>)
    return "bcm_ip6_t";
  else
    return (std::is_enum_v<T>    ? "enum "
            : std::is_union_v<T> ? "union "
            : std::is_class_v<T> ? "struct "
                                 : "") +
           std::string(compiler_name<T>());
}

/// "  place = value;" for each part of a value that is not zero.
template <class T>
std::string c_assignment(const std::string& place, const T& value) {
  std::string result;
  if constexpr (std::is_array_v<T> && sizeof(std::remove_extent_t<T>) == 1) {
    const std::string_view bytes(reinterpret_cast<const char*>(value), sizeof value);
    if (bytes.find_first_not_of('\0') != std::string_view::npos)
      result = "  memcpy(" + place + ", " + c_string(bytes) + ", " + std::to_string(bytes.size()) + ");\n";
  } else if constexpr (std::is_array_v<T>) {
    for (std::size_t i = 0; i < std::extent_v<T>; ++i)
      result += c_assignment(place + '[' + std::to_string(i) + ']', value[i]);
  } else if constexpr (std::is_same_v<T, bcm_pbmp_t>) {
    for (int port = 0; port < BCM_PBMP_PORT_MAX; ++port)
      if (BCM_PBMP_MEMBER(value, port)) result += "  BCM_PBMP_PORT_ADD(" + place + ", " + std::to_string(port) + ");\n";
  } else if constexpr (requires { fields(&value); }) {
    for (const Field& field : fields(&value))
      result += field.type->c_assignment(place + '.' + field.name, field.in(&value));
  } else if (value != T{}) {
    result = "  " + place + " = " + text(value) + (std::is_unsigned_v<T> ? "U;\n" : ";\n");
  }
  return result;
}

}  // namespace api
