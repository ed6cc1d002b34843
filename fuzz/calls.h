// Calls of the library's functions, made from a fuzzer's bytes by their C types. It takes the table that the shell's
// commands are made from, so a function of sai.h is called as soon as it is declared.
#pragma once

#include <sai.h>

#include <concepts>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "input.h"

namespace fuzz {

/// Null pointers, where an object is asked for.
constexpr bool pass_null = true;

/// A parameter as sai.h declares it.
struct Declared {
  std::string_view name;
  std::size_t count = 0;  // of the items of an array, when it is known
  bool network_order = false;
  bool taken = false;
};
using Parameters = std::vector<Declared>;

enum class Result { none, number, code };

/// An enumerator of sai.h.
struct Name {
  std::string_view name;
  int32_t value;
};

/// A number for a parameter or field of that name, mostly one that means something there.
int number_for(std::string_view name, Input& input);

/// A line for the diagnostic shell, or a text.
std::string text_for(std::string_view name, Input& input);

/// How many entries the MAC table has.
std::size_t mac_entries();

struct Field {
  void (*fill)(std::string_view name, Input& input, void* record);
  std::string_view name;
};

/// The fields of a record of sai.h.
template <class Record>
std::span<const Field> fields() = delete;

template <std::integral T>
void fill(std::string_view name, Input& input, T& value) {
  value = static_cast<T>(number_for(name, input));
}

/// Few addresses, so that the same ones come again.
template <std::size_t size>
void fill(std::string_view /*name*/, Input& input, uint8_t (&bytes)[size]) {
  const auto kind = input.any<uint8_t>();
  std::fill_n(bytes, size, uint8_t{0});
  if (kind < 8) {
    for (uint8_t& byte : bytes) byte = input.any<uint8_t>();
  } else {
    bytes[0] = size == 6 ? (kind & 1) : (kind & 1) != 0 ? 0xFF : 0x20;
    bytes[size - 1] = static_cast<uint8_t>(kind >> 3);
  }
}

template <class T>
struct MemberOf;
template <class R, class T>
struct MemberOf<T R::*> {
  using Record = R;
};

enum class Form { number, ip4, network_ip4 };

template <auto member, Form = Form::number>
constexpr Field field(std::string_view name) {
  using Record = typename MemberOf<decltype(member)>::Record;
  return {[](std::string_view field_name, Input& input, void* record) {
            fill(field_name, input, static_cast<Record*>(record)->*member);
          },
          name};
}

template <class Record>
Record record_from(Input& input) {
  Record record{};
  for (const Field& field : fields<Record>()) field.fill(field.name, input, &record);
  return record;
}

/// One argument, and what it points to: as much as the function is promised, and not a byte more.
template <class T>
struct Argument;

template <std::integral T>
struct Argument<T> {
  Argument(const Declared& declared, Input& input) : value(static_cast<T>(number_for(declared.name, input))) {}
  T get() const { return value; }
  T value;
};

template <class T>
requires std::is_class_v<T>
struct Argument<T> {
  Argument(const Declared& /*declared*/, Input& input) : value(record_from<T>(input)) {}
  T get() const { return value; }
  T value;
};

template <class T>
struct Argument<T*> {
  using Item = std::remove_const_t<T>;

  Argument(const Declared& declared, Input& input) : is_null(pass_null && input.any<uint8_t>() == 0) {
    constexpr std::size_t queues = 8;
    constexpr std::size_t mac_bytes = 6;
    const bool is_address = std::is_same_v<T, const uint8_t>;
    count = std::max<std::size_t>(declared.count, is_address ? mac_bytes : 1);
    if (declared.name == "weights") count = queues;
    if (declared.name == "entries") count = mac_entries();
    items.reset(new Item[count]());
    if constexpr (std::is_same_v<Item, uint8_t>) {
      if (count == mac_bytes) fill(declared.name, input, *reinterpret_cast<uint8_t(*)[mac_bytes]>(items.get()));
      if (count == sizeof(bcm_ip6_t)) fill(declared.name, input, *reinterpret_cast<bcm_ip6_t*>(items.get()));
    } else if constexpr (std::is_class_v<Item>) {
      if (declared.name != "entries") items[0] = record_from<Item>(input);
    } else if constexpr (std::is_integral_v<Item>) {
      for (std::size_t i = 0; i < count; ++i) items[i] = static_cast<Item>(number_for(declared.name, input));
    } else {  // bcm_ip6_t
      fill(declared.name, input, items[0]);
    }
  }
  T* get() const { return is_null ? nullptr : items.get(); }
  bool is_null;
  std::size_t count = 0;
  std::unique_ptr<Item[]> items;
};

/// A text that ends with its block, or a buffer of the size that the next parameter tells.
template <class T>
requires std::same_as < std::remove_const_t<T>,
char > struct Argument<T*> {
  Argument(const Declared& declared, Input& input) : is_null(pass_null && input.any<uint8_t>() == 0) {
    if (declared.name.ends_with("_buf")) {
      size = input.from(0, 20);
      characters.reset(new char[static_cast<std::size_t>(size)]);
      return;
    }
    const std::string text = text_for(declared.name, input);
    characters.reset(new char[text.size() + 1]);
    std::copy_n(text.c_str(), text.size() + 1, characters.get());
  }
  T* get() const { return is_null ? nullptr : characters.get(); }
  bool is_null;
  int32_t size = 0;
  std::unique_ptr<char[]> characters;
};

/// A function of the caller's that does nothing.
template <class Returned, class... Args>
struct Argument<Returned (*)(Args...)> {
  Argument(const Declared& declared, Input& input)
      : is_null((pass_null || declared.name == "callback") && input.any<uint8_t>() == 0) {}
  auto get() const {
    return is_null ? nullptr : +[](Args...) {};
  }
  bool is_null;
};

using Made = std::optional<int32_t>;  // what a function returned, if it returns something

/// Faults are set up once the arguments are made and before the call.
using Prepare = void (*)(Input& input);

template <class Tuple, std::size_t... I>
void tell_sizes(Tuple& arguments, const Parameters& parameters, std::index_sequence<I...>) {
  [[maybe_unused]] int32_t size = 0;
  [[maybe_unused]] const auto tell = [&]<class T>(Argument<T>& argument, std::string_view name) {
    if constexpr (std::is_same_v<T, char*>) size = argument.size;
    if constexpr (std::is_same_v<T, int32_t>)
      if (name.ends_with("_len")) argument.value = std::min(size, std::max(argument.value, size - 3));
  };
  (tell(std::get<I>(arguments), parameters[I].name), ...);
}

template <class Returned, class... Args>
Made call(Returned (*function)(Args...), const Parameters& parameters, Input& input, Prepare prepare) {
  return [&]<std::size_t... I>(std::index_sequence<I...> all)->Made {
    std::tuple<Argument<Args>...> arguments{Argument<Args>(parameters[I], input)...};
    tell_sizes(arguments, parameters, all);
    prepare(input);
    if constexpr (std::is_void_v<Returned>) {
      function(std::get<I>(arguments).get()...);
      return {};
    } else {
      return function(std::get<I>(arguments).get()...);
    }
  }
  (std::index_sequence_for<Args...>{});
}

inline Made call(void (*function)(const char*, ...), const Parameters& parameters, Input& input, Prepare prepare) {
  const Argument<const char*> text(parameters[0], input);
  prepare(input);
  function("%s", text.get() != nullptr ? text.get() : "");
  return {};
}

/// The log is opened and closed around the calls, so these three work on it, or on one of their own.
Made call(sai_log_handle* (*function)(const char*, int32_t, int32_t, int32_t), const Parameters& parameters,
          Input& input, Prepare prepare);
Made call(void (*function)(sai_log_handle*), const Parameters& parameters, Input& input, Prepare prepare);
Made call(void (*function)(sai_log_handle*, int32_t, int32_t), const Parameters& parameters, Input& input,
          Prepare prepare);

template <auto function>
Made run(const Parameters& parameters, Input& input, Prepare prepare) {
  return call(function, parameters, input, prepare);
}

template <class Returned, class... Args>
Parameters parameters(Returned (*)(Args...), std::initializer_list<Declared> declared) {
  return declared;
}
inline Parameters parameters(void (*)(const char*, ...), std::initializer_list<Declared> declared) { return declared; }

struct Function {
  const char* name;
  const char* prototype;
  const char* summary;
  Result result;
  Parameters parameters;
  Made (*run)(const Parameters& parameters, Input& input, Prepare prepare);
};

/// All functions of sai.h.
std::span<const Function> functions();
const Function& any_function(Input& input);

/// Whether sai.h has an error code of that value.
bool is_code(int32_t result);

}  // namespace fuzz
