// printf formats that are checked against their arguments when the library is compiled.
#pragma once

#include <cstdint>
#include <type_traits>

namespace sai {

namespace format_check {

enum class Length { none, l, ll, z };

/// Whether a conversion such as 'd', with its length modifier, takes an argument of type T.
template <class T>
constexpr bool takes(char conversion, Length length) {
  using Plain = std::decay_t<T>;
  switch (conversion) {
    case 's':
      return std::is_same_v<Plain, char*> || std::is_same_v<Plain, const char*>;
    case 'p':
      return std::is_pointer_v<Plain>;
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
      if constexpr (std::is_integral_v<Plain> || std::is_enum_v<Plain>) {
        switch (length) {
          case Length::none:
            return sizeof(Plain) <= sizeof(int);
          case Length::l:
            return sizeof(Plain) == sizeof(long);
          case Length::ll:
            return sizeof(Plain) == sizeof(long long);
          case Length::z:
            return sizeof(Plain) == sizeof(decltype(sizeof 0));
        }
      }
      return false;
    default:
      return false;
  }
}

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Moves `at` to the next conversion character, or to the end of the text; "%%" is not a conversion.
constexpr const char* next_conversion(const char* at, Length& length) {
  for (; *at != '\0'; ++at) {
    if (*at != '%') continue;
    ++at;
    if (*at == '%') continue;
    while (*at == '-' || *at == '+' || *at == ' ' || *at == '#' || is_digit(*at) || *at == '.') ++at;
    length = Length::none;
    if (*at == 'z') {
      length = Length::z;
      ++at;
    } else if (*at == 'l') {
      length = Length::l;
      if (*++at == 'l') {
        length = Length::ll;
        ++at;
      }
    }
    return at;
  }
  return at;
}

/// Whether the conversions of `text` take exactly arguments of the types Args, in that order.
template <class... Args>
consteval bool matches(const char* text) {
  const char* at = text;
  Length length = Length::none;
  const bool each_fits = ((at = next_conversion(at, length), *at != '\0' && takes<Args>(*at++, length)) && ...);
  return each_fits && *next_conversion(at, length) == '\0';
}

/// Not constexpr: calling it in a constant expression is the compile error.
void format_does_not_fit_its_arguments();

}  // namespace format_check

/// A printf format for arguments of the types Args; a string literal that does not fit them does not compile.
template <class... Args>
class Format {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): a literal at the call is the whole point
  consteval Format(const char* text) : text_(text) {
    if (!format_check::matches<Args...>(text)) format_check::format_does_not_fit_its_arguments();
  }

  const char* text() const { return text_; }

 private:
  const char* text_;
};

/// The value that "%d" prints for a pointer.
inline int low_word(const void* pointer) { return static_cast<int>(reinterpret_cast<uintptr_t>(pointer)); }

}  // namespace sai
