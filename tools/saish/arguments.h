// Arguments of the library's functions, parsed from words by their C types.
#pragma once

#include <sai.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "words.h"

namespace saish {

/// The number that `word` is, decimal, hexadecimal after 0x, or the name of one of sai.h's enumerators.
std::optional<int64_t> number(std::string_view word);

/// The log that `word` names.
sai_log_handle* log_handle(std::string_view parameter, std::string_view word);

/// How one argument of type T comes from a word. It holds what the argument points to until the call is over.
template <class T>
struct Argument;

template <std::integral T>
struct Argument<T> {
  Argument(std::string_view parameter, const std::string& word) {
    const std::optional<int64_t> given = number(word);
    constexpr auto lowest = static_cast<int64_t>(std::numeric_limits<T>::min());
    constexpr auto highest = static_cast<int64_t>(std::numeric_limits<T>::max());
    if (!given || *given < lowest || *given > highest)
      throw BadInput(std::string(parameter) + ": \"" + word + "\" is not a number from " + std::to_string(lowest) +
                     " to " + std::to_string(highest));
    value = static_cast<T>(*given);
  }
  T get() const { return value; }
  T value;
};

/// A text may be kept by the library, as a log's identity is, so it lives as long as the shell.
template <>
struct Argument<const char*> {
  Argument(std::string_view /*parameter*/, const std::string& word);
  const char* get() const { return kept; }
  const char* kept;
};

template <>
struct Argument<char*> {
  Argument(std::string_view /*parameter*/, const std::string& word) : text(word) {}
  char* get() { return text.data(); }
  std::string text;
};

template <>
struct Argument<sai_log_handle*> {
  Argument(std::string_view parameter, const std::string& word) : handle(log_handle(parameter, word)) {}
  sai_log_handle* get() const { return handle; }
  sai_log_handle* handle;
};

using Words = std::vector<std::string>;

/// What a call gave: a result where the function has one.
using Result = std::optional<int32_t>;

/// Parses every word before the call is made, so that bad input changes nothing.
template <class Returned, class... Args, std::size_t... I>
Result call(Returned (*function)(Args...), const std::vector<const char*>& parameters, const Words& arguments,
            std::index_sequence<I...>) {
  std::tuple<Argument<Args>...> parsed{Argument<Args>(parameters[I], arguments[I])...};
  if constexpr (std::is_void_v<Returned>) {
    function(std::get<I>(parsed).get()...);
    return std::nullopt;
  } else {
    return function(std::get<I>(parsed).get()...);
  }
}

template <class Returned, class... Args>
Result run(Returned (*function)(Args...), const std::vector<const char*>& parameters, const Words& arguments) {
  return call(function, parameters, arguments, std::index_sequence_for<Args...>{});
}

/// A message of the user's is logged as it stands, whatever percent signs are in it.
inline Result run(void (*function)(const char*, ...), const std::vector<const char*>& /*parameters*/,
                  const Words& arguments) {
  function("%s", arguments[0].c_str());
  return std::nullopt;
}

/// Runs one function of the library. As many words as it has parameters are given.
template <auto function>
Result run(const std::vector<const char*>& parameters, const Words& arguments) {
  return run(function, parameters, arguments);
}

/// The shell has one log at a time and holds it for the library as an application does. These three functions check
/// nothing, so the shell does.
template <>
Result run<&open_sai_log>(const std::vector<const char*>& parameters, const Words& arguments);
template <>
Result run<&close_sai_log>(const std::vector<const char*>& parameters, const Words& arguments);
template <>
Result run<&sai_log_set_level>(const std::vector<const char*>& parameters, const Words& arguments);

}  // namespace saish
