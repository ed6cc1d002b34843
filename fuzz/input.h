// What a fuzzer's bytes are read as, and how a target says that something is wrong.
#pragma once

#include <algorithm>
#include <climits>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

/// Ends the run with the place and what did not hold; the fuzzer keeps the input.
inline void require(bool holds, const char* what, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%d: %s\n", file, line, what);
  std::abort();
}

/// Takes values off the front of the input; when it is used up, all are 0.
class Input {
 public:
  Input(const uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  bool is_empty() const { return at_ == end_; }

  /// Any number of the type.
  template <std::integral T>
  T any() {
    T value = 0;
    for (std::size_t i = 0; i < sizeof value && at_ != end_; ++i)
      value = static_cast<T>(value | static_cast<T>(static_cast<T>(*at_++) << 8 * i));
    return value;
  }

  bool flag() { return (any<uint8_t>() & 1) != 0; }

  /// A number from `low` to `high`.
  int from(int low, int high) {
    const unsigned span = static_cast<unsigned>(high) - static_cast<unsigned>(low) + 1;
    const unsigned number = span <= 256 ? any<uint8_t>() : any<uint32_t>();
    return static_cast<int>(static_cast<unsigned>(low) + number % span);
  }

  /// Mostly a number from `low` to `high`, which lie below 200 numbers apart; sometimes one beside them, or any.
  int near(int low, int high) {
    constexpr int usual = 240;
    constexpr int extremes[] = {-1, 0, INT_MAX, INT_MIN};
    const int byte = any<uint8_t>();
    if (byte < usual) return low + byte % (high - low + 1);
    if (byte < usual + 4) return extremes[byte - usual];
    if (byte < usual + 6) return byte % 2 == 0 ? low - 1 : high + 1;
    return any<int>();
  }

  std::string text(std::size_t most) {
    const std::size_t wanted = std::min<std::size_t>(any<uint8_t>(), most);
    const std::size_t length = std::min(wanted, static_cast<std::size_t>(end_ - at_));
    const std::string result(reinterpret_cast<const char*>(at_), length);
    at_ += length;
    return result;
  }

 private:
  const uint8_t* at_;
  const uint8_t* end_;
};

}  // namespace fuzz
