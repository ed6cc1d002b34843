// Calls of functions with made-up arguments, of the library and of the Chip SDK alike.
#pragma once

#include <sai.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace bench {

// Not static: the compiler must not know their values.

/// The source of numbers.
extern int number;

/// The source of records; each word is 1.
extern std::array<int, 1024> words;

/// What every pointer points to. Zeros are a good record, address, name and bitmap to an SDK that does nothing.
extern std::array<char, 65536> memory;

template <class T>
T argument() {
  if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>) {
    return nullptr;
  } else if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(memory.data());
  } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
    return static_cast<T>(number);
  } else {
    T record;
    static_assert(sizeof record <= sizeof words && std::is_trivially_copyable_v<T>);
    std::memcpy(&record, words.data(), sizeof record);
    return record;
  }
}

template <class Result, class... Args>
[[gnu::always_inline]] inline Result invoke(Result (*function)(Args...)) {
  return function(argument<Args>()...);
}

struct Function {
  const char* name;
  void (*call)();
};

/// Every function of sai.h except those of the log.
constexpr Function functions[] = {
#include "functions.inc"
};

}  // namespace bench
