// Arguments of the library's functions, parsed from words by their C types.
#pragma once

#include <sai.h>

#include <array>
#include <concepts>

#include <cstdint>
#include <initializer_list>
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

/// How one argument of type T comes from a word. It holds what the argument points to until the call is over. An
/// argument through which the function answers takes no word and tells afterwards what came.
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

/// A MAC address, "00:11:22:33:44:55".
template <>
struct Argument<const uint8_t*> {
  Argument(std::string_view parameter, const std::string& word);
  const uint8_t* get() const { return address.data(); }
  std::array<uint8_t, 6> address;
};

/// A list, "1,2,3". What the function reads beyond it is 0.
template <std::integral T>
struct Argument<const T*> {
  Argument(std::string_view parameter, const std::string& word) {
    std::size_t begin = 0;
    std::size_t end = 0;
    for (std::size_t count = 0; end != std::string::npos; begin = end + 1, ++count) {
      end = word.find(',', begin);
      if (count == items.size())
        throw BadInput(std::string(parameter) + ": more than " + std::to_string(items.size()) + " numbers");
      items[count] = Argument<T>(parameter, word.substr(begin, end == std::string::npos ? end : end - begin)).get();
    }
  }
  const T* get() const { return items.data(); }
  std::array<T, 64> items{};
};

/// A number that the function answers.
template <std::integral T>
struct Argument<T*> {
  explicit Argument(std::string_view parameter) : name(parameter) {}
  T* get() { return &value; }
  std::string answer() const { return name + " = " + std::to_string(value); }
  std::string name;
  T value = 0;
};

/// A function to be called: "print" is the shell's, which prints what it is called with; "null" is none.
template <class Returned, class... Args>
struct Argument<Returned (*)(Args...)> {
  using Function = Returned (*)(Args...);
  Argument(std::string_view parameter, const std::string& word) : function(word == "print" ? &print : nullptr) {
    if (word != "print" && word != "null")
      throw BadInput(std::string(parameter) + ": \"" + word + "\" is neither \"print\" nor \"null\"");
  }
  Function get() const { return function; }
  Function function;

 private:
  static Returned print(Args... args);
};
template <>
void Argument<bcm_linkscan_handler_t>::print(int unit, int port, bcm_port_info_t* info);
template <>
void Argument<sai_l2_event_cb>::print(uint16_t vid, int32_t port, uint8_t* mac, int32_t operation);

template <class T>
constexpr bool is_answer = requires(Argument<T> argument) {
  argument.answer();
};

using Words = std::vector<std::string>;

/// A parameter of a function, and whether the user gives a word for it.
struct Parameter {
  const char* name;
  bool given = true;
};
using Parameters = std::vector<Parameter>;

/// What a call gave: a result where the function has one, and what it answered through its arguments.
struct Outcome {
  std::optional<int32_t> result;
  std::vector<std::string> answers = {};
};

/// The next argument, from its word where it takes one.
template <class T>
Argument<T> parsed(const Parameters& parameters, std::size_t index, const Words& words, std::size_t& word) {
  if constexpr (is_answer<T>)
    return Argument<T>(parameters[index].name);
  else
    return Argument<T>(parameters[index].name, words[word++]);
}

/// Parses every word before the call is made, so that bad input changes nothing.
template <class Returned, class... Args, std::size_t... I>
Outcome call(Returned (*function)(Args...), const Parameters& parameters, const Words& words,
             std::index_sequence<I...>) {
  [[maybe_unused]] std::size_t word = 0;
  std::tuple<Argument<Args>...> arguments{parsed<Args>(parameters, I, words, word)...};
  if constexpr (std::is_void_v<Returned>) {
    function(std::get<I>(arguments).get()...);
    return {};
  } else {
    Outcome outcome{function(std::get<I>(arguments).get()...)};
    const auto answer = [&]<class T>(const Argument<T>& argument) {
      if constexpr (is_answer<T>) outcome.answers.push_back(argument.answer());
    };
    if (outcome.result >= 0) (answer(std::get<I>(arguments)), ...);
    return outcome;
  }
}

template <class Returned, class... Args>
Outcome run(Returned (*function)(Args...), const Parameters& parameters, const Words& words) {
  return call(function, parameters, words, std::index_sequence_for<Args...>{});
}

/// A message of the user's is logged as it stands, whatever percent signs are in it.
inline Outcome run(void (*function)(const char*, ...), const Parameters& /*parameters*/, const Words& words) {
  function("%s", words[0].c_str());
  return {};
}

/// Runs one function of the library. As many words as its parameters take are given.
template <auto function>
Outcome run(const Parameters& parameters, const Words& words) {
  return run(function, parameters, words);
}

/// The parameters of a function with these names.
template <class Returned, class... Args>
Parameters parameters(Returned (*)(Args...), std::initializer_list<const char*> names) {
  Parameters result;
  auto name = names.begin();
  (result.push_back({*name++, !is_answer<Args>}), ...);
  return result;
}

inline Parameters parameters(void (*)(const char*, ...), std::initializer_list<const char*> names) {
  return {{*names.begin()}};
}

/// The shell has one log at a time and holds it for the library as an application does. These three functions check
/// nothing, so the shell does.
template <>
Outcome run<&open_sai_log>(const Parameters& parameters, const Words& words);
template <>
Outcome run<&close_sai_log>(const Parameters& parameters, const Words& words);
template <>
Outcome run<&sai_log_set_level>(const Parameters& parameters, const Words& words);

}  // namespace saish
