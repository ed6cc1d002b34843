// Arguments of the library's functions, parsed from words by their C types.
#pragma once

#include <sai.h>

#include <algorithm>
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
#include <type_traits>
#include <utility>
#include <vector>

#include "values.h"

namespace saish {

/// A parameter as sai.h declares it.
struct Declared {
  const char* name;
  std::size_t count = 0;       // of the items of an array, when it is known
  bool network_order = false;  // of an IPv4 address
  bool taken = false;          // what it points to is also read
};

/// A parameter of a function, whether the user gives a word for it, and the fields if it is a record.
struct Parameter : Declared {
  bool given = true;
  std::span<const Field> fields = {};
};
using Parameters = std::vector<Parameter>;

/// The log that `word` names.
sai_log_handle* log_handle(std::string_view parameter, std::string_view word);

/// Capacities for a text and for a table that a function returns.
constexpr int8_t buffer_size = 64;
constexpr std::size_t table_size = 65536;

/// Makes an argument of type T from a word. It owns what the argument points to until the call is over. An output
/// argument takes no word and shows afterwards what the function wrote.
template <class T>
struct Argument;

template <std::integral T>
struct Argument<T> {
  Argument(const Parameter& parameter, const std::string& word) {
    if constexpr (std::same_as<T, uint32_t>)
      if (word.find('.') != std::string::npos) {
        value = read_ip4(parameter.name, word);
        if (parameter.network_order) value = other_order(value);
        return;
      }
    read(std::string(parameter.name), word, value);
  }
  /// The length of the buffer before it.
  explicit Argument(const Parameter& /*parameter*/) : value(buffer_size) {}
  T get() const { return value; }
  T value;
};

/// A text may be kept by the library, as a log's identity is, so it lives as long as the shell.
template <>
struct Argument<const char*> {
  Argument(const Parameter& /*parameter*/, const std::string& word);
  const char* get() const { return kept; }
  const char* kept;
};

/// A text that the function may change, or, without a word, a buffer for the text that it returns.
template <>
struct Argument<char*> {
  Argument(const Parameter& /*parameter*/, const std::string& word) : characters(word) {}
  explicit Argument(const Parameter& parameter) : name(parameter.name), characters(buffer_size, '\0') {}
  char* get() { return characters.data(); }
  std::string answer() const { return name.empty() ? "" : name + " = \"" + printable(characters.c_str()) + '"'; }
  std::string name;
  std::string characters;
};

template <>
struct Argument<sai_log_handle*> {
  Argument(const Parameter& parameter, const std::string& word) : handle(log_handle(parameter.name, word)) {}
  sai_log_handle* get() const { return handle; }
  sai_log_handle* handle;
};

/// An IPv6 address where the function takes 16 bytes, otherwise a MAC address.
template <>
struct Argument<const uint8_t*> {
  Argument(const Parameter& parameter, const std::string& word) {
    if (parameter.count == sizeof ip6)
      read(parameter.name, word, ip6);
    else
      read(parameter.name, word, mac);
  }
  const uint8_t* get() const { return mac; }
  union {
    uint8_t mac[6];
    uint8_t ip6[16];
  };
};

/// An IPv6 address, where the parameter has the Chip SDK's type for it.
template <>
struct Argument<const bcm_ip6_t*> {
  Argument(const Parameter& parameter, const std::string& word) { read(parameter.name, word, address); }
  const bcm_ip6_t* get() const { return &address; }
  bcm_ip6_t address;
};

/// A list, "1,2,3". If the function reads more items, they are 0.
template <std::integral T>
struct Argument<const T*> {
  Argument(const Parameter& parameter, const std::string& word) {
    std::size_t begin = 0;
    std::size_t end = 0;
    for (std::size_t count = 0; end != std::string::npos; begin = end + 1, ++count) {
      end = word.find(',', begin);
      if (count == items.size())
        throw BadInput(std::string(parameter.name) + ": more than " + std::to_string(items.size()) + " numbers");
      items[count] = Argument<T>(parameter, word.substr(begin, end == std::string::npos ? end : end - begin)).get();
    }
  }
  const T* get() const { return items.data(); }
  std::array<T, 64> items{};
};

/// One or more numbers that the function returns. If it also reads a number, the user gives it.
template <std::integral T>
struct Argument<T*> {
  static constexpr bool is_given_when_taken = true;
  Argument(const Parameter& parameter, const std::string& word)
      : name(parameter.name), values{Argument<T>(parameter, word).get()} {}
  explicit Argument(const Parameter& parameter)
      : name(parameter.name), values(std::max<std::size_t>(parameter.count, 1)) {}
  T* get() { return values.data(); }
  std::string answer() const {
    std::string list;
    for (const T& value : values) list += (list.empty() ? "" : ", ") + std::to_string(value);
    return name + " = " + (values.size() == 1 ? list : '[' + list + ']');
  }
  std::string name;
  std::vector<T> values;
};

/// A record, by value or by pointer.
template <class T>
requires std::is_class_v<T>
struct Argument<T> {
  Argument(const Parameter& parameter, const std::string& word) { read(std::string(parameter.name), word, value); }
  const T& get() const { return value; }
  T value;
};

template <class T>
requires std::is_class_v<T>
struct Argument<const T*> {
  Argument(const Parameter& parameter, const std::string& word) { read(std::string(parameter.name), word, value); }
  const T* get() const { return &value; }
  T value;
};

/// A record that the function reads, writes or both: the user gives it, and it is shown afterwards. Without a word,
/// a table that the function fills; items that stay empty are not shown.
template <class T>
requires std::is_class_v<T>
struct Argument<T*> {
  Argument(const Parameter& parameter, const std::string& word) : name(parameter.name), records(1) {
    read(name, word, records[0]);
  }
  explicit Argument(const Parameter& parameter) : name(parameter.name), records(table_size) {}
  T* get() { return records.data(); }
  std::string answer() const {
    if (records.size() == 1) return name + " = " + text(records[0]);
    const std::string empty = text(T{});
    std::string lines = name + " =";
    for (const T& record : records)
      if (const std::string line = text(record); line != empty) lines += "\n    " + line;
    return lines;
  }
  std::string name;
  std::vector<T> records;
};

/// A callback: "print" is the shell's, which prints its arguments; "null" is none.
template <class Returned, class... Args>
struct Argument<Returned (*)(Args...)> {
  using Function = Returned (*)(Args...);
  Argument(const Parameter& parameter, const std::string& word) : function(word == "print" ? &print : nullptr) {
    if (word != "print" && word != "null")
      throw BadInput(std::string(parameter.name) + ": \"" + word + "\" is neither \"print\" nor \"null\"");
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

template <class T>
constexpr bool takes_word = std::is_constructible_v<Argument<T>, const Parameter&, const std::string&>;

template <class T>
constexpr bool is_given(const Declared& declared) {
  if constexpr (requires { Argument<T>::is_given_when_taken; })
    return declared.taken;
  else
    return takes_word<T>;
}

/// What a call returned: the function's result if it has one, and its output arguments.
struct Outcome {
  std::optional<int32_t> result;
  std::vector<std::string> answers = {};
};

/// The next argument, from its word if it takes one.
template <class T>
Argument<T> parsed(const Parameters& parameters, std::size_t index, const Words& words, std::size_t& word) {
  const Parameter& parameter = parameters[index];
  if constexpr (!takes_word<T>)
    return Argument<T>(parameter);
  else if constexpr (std::is_constructible_v<Argument<T>, const Parameter&>)
    return parameter.given ? Argument<T>(parameter, words[word++]) : Argument<T>(parameter);
  else
    return Argument<T>(parameter, words[word++]);
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
      if constexpr (is_answer<T>)
        if (const std::string answer_text = argument.answer(); !answer_text.empty())
          outcome.answers.push_back(answer_text);
    };
    if (outcome.result >= 0) (answer(std::get<I>(arguments)), ...);
    return outcome;
  }
}

template <class Returned, class... Args>
Outcome run(Returned (*function)(Args...), const Parameters& parameters, const Words& words) {
  return call(function, parameters, words, std::index_sequence_for<Args...>{});
}

/// The user's message is logged unchanged, even if it has percent signs.
inline Outcome run(void (*function)(const char*, ...), const Parameters& /*parameters*/, const Words& words) {
  function("%s", words[0].c_str());
  return {};
}

/// Runs one function of the library. `words` are as many as its parameters take.
template <auto function>
Outcome run(const Parameters& parameters, const Words& words) {
  return run(function, parameters, words);
}

template <class T>
std::span<const Field> fields_of() {
  using Record = std::remove_const_t<std::remove_pointer_t<T>>;
  if constexpr (requires { fields<Record>(); })
    return fields<Record>();
  else
    return {};
}

/// Whether the shell provides what the function fills: a buffer for a text and its length, or a table.
bool is_provided(std::string_view name);

/// The parameters of a function as sai.h declares them.
template <class Returned, class... Args>
Parameters parameters(Returned (*)(Args...), std::initializer_list<Declared> declared) {
  auto next = declared.begin();
  [[maybe_unused]] const auto made = [&]<class T>(T*) {
    const Declared& one = *next++;
    return Parameter{one, is_given<T>(one), fields_of<T>()};
  };
  Parameters result{made(static_cast<std::add_pointer_t<Args>>(nullptr))...};
  for (Parameter& parameter : result) parameter.given = parameter.given && !is_provided(parameter.name);
  return result;
}

inline Parameters parameters(void (*)(const char*, ...), std::initializer_list<Declared> declared) {
  return {Parameter{*declared.begin()}};
}

/// The shell has one log at a time and owns it for the library as an application does. These three functions check no
/// arguments, so the shell does.
template <>
Outcome run<&open_sai_log>(const Parameters& parameters, const Words& words);
template <>
Outcome run<&close_sai_log>(const Parameters& parameters, const Words& words);
template <>
Outcome run<&sai_log_set_level>(const Parameters& parameters, const Words& words);

}  // namespace saish
