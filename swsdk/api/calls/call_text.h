// A call as text: one line for the journal, one for the recording, and what passes between a client and the chip.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "api/calls/arguments.h"
#include "api/calls/parse.h"
#include "api/calls/recording_format.h"

namespace api {

/// Where the text of a call goes. They differ in how pointers that nobody follows are told apart: not at all, by their
/// numbers in the recording, or by what they are in the process of the client.
enum class Form { journal, recording, wire };

/// Neither text nor a record, so that only its number can be told.
template <class T>
constexpr bool is_opaque = std::is_pointer_v<T> && !std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char>;

template <class T>
constexpr const char* pointer_kind = std::is_function_v<std::remove_pointer_t<T>> ? "callback" : "pointer";

/// An argument of a call that returned `rv`; but for the journal complete enough to repeat the call.
template <class T>
std::string shown_in(Form form, const T& argument, int rv) {
  std::string result = shown(argument, rv);
  if (form == Form::journal) return result;
  if constexpr (is_opaque<T>) {
    if (argument == nullptr) return result;
    const std::string number =
        form == Form::recording
            ? std::to_string(pointer_number(pointer_kind<T>, reinterpret_cast<const void*>(argument)))
            : std::to_string(reinterpret_cast<uintptr_t>(argument));
    result.insert(result.size() - 1, ' ' + number);
  } else if constexpr (requires { argument.capacity(); }) {
    if (argument.pointer != nullptr) result += " of " + std::to_string(argument.capacity());
  }
  return result;
}

/// Copies `text` as the control interface does: as much as fits, always ended by a zero byte. Returns the whole length.
std::size_t copy_out(std::string_view text, char* buffer, std::size_t size);

/// What a call wrote, from the text that shows it.
template <class T>
void read_output(std::string_view text, T& value) {
  T read{};
  parse_value(text, read);
  if constexpr (std::is_array_v<T>)
    std::memcpy(value, read, sizeof value);
  else
    value = read;
}

/// The list or the value of "&[7, 8] of 16"; nothing when the call wrote nothing.
std::string_view written(std::string_view text);

// Each of these writes what another process answered into an argument that the call writes.

template <class T>
void accept(const Out<T>& out, std::string_view text) {
  if (const std::string_view value = written(text); out.pointer != nullptr && !value.empty())
    read_output(value, *out.pointer);
}

template <class T>
void accept(const InOut<T>& inout, std::string_view text) {
  if (inout.pointer == nullptr) return;
  const std::string unchanged = value_text(inout.before) + " -> &";
  if (text.starts_with(unchanged)) read_output(text.substr(unchanged.size()), *inout.pointer);
}

template <class T>
void accept(const OutArray<T>& array, std::string_view text) {
  if (const std::string_view list = written(text); array.pointer != nullptr && !list.empty())
    parse_items(list, array.pointer, static_cast<std::size_t>(std::max(array.count, 0)));
}

void accept(const TextOut& out, std::string_view text);
void accept(const BytesOut& out, std::string_view text);

/// Whether a call writes to an argument of this type.
template <class T>
constexpr bool is_output = requires(const T& argument) {
  accept(argument, std::string_view());
};

/// An argument of any type, as the text of its call shows it.
class Argument {
 public:
  template <class T>
  Argument(const T& argument)  // NOLINT(google-explicit-constructor)
      : argument_(&argument), shown_(&shown_as<T>), accept_(is_output<T> ? &accept_as<T> : nullptr) {}

  std::string shown(Form form, int rv) const { return shown_(argument_, form, rv); }
  /// Whether the call writes to it.
  bool is_written() const { return accept_ != nullptr; }
  void accept(std::string_view text) const { accept_(argument_, text); }

 private:
  template <class T>
  static std::string shown_as(const void* argument, Form form, int rv) {
    return shown_in(form, *static_cast<const T*>(argument), rv);
  }
  template <class T>
  static void accept_as(const void* argument, std::string_view text) {
    if constexpr (is_output<T>) api::accept(*static_cast<const T*>(argument), text);
  }

  const void* argument_;
  std::string (*shown_)(const void* argument, Form form, int rv);
  void (*accept_)(const void* argument, std::string_view text);
};

using Arguments = std::initializer_list<Argument>;

/// "function(arguments)" of a call that returned `rv`.
std::string call_text(const char* function, Arguments arguments, Form form, int rv);

/// What a call that returned `rv` wrote: "&{port=3}, &[7, 8] of 16", of the arguments that it writes to.
std::string outputs_text(Arguments arguments, int rv);
/// Writes these outputs, which another process answered. Throws Unreadable.
void accept_outputs(Arguments arguments, std::string_view text);

}  // namespace api
