// The recording's store, and how its lines differ from the journal's; swsdk/recording.h is its interface to users.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "api/arguments.h"

namespace api {

/// The kinds of lines of a recording, and the word that begins each.
enum class Kind { call, fault, action };
constexpr const char* kind_names[] = {"call", "fault", "action"};

constexpr std::string_view recording_header = "swsdk recording ";
constexpr int recording_version = 2;
constexpr int oldest_recording_version = 1;

/// The last line of a recording that was closed; version 1 had none.
constexpr std::string_view recording_end = "end";
constexpr int first_version_with_end = 2;

bool is_recording();

void add_to_recording(Kind kind, std::string_view line);

/// Notes that the chips were switched off; written only when another line follows.
void add_power_off_to_recording();

/// Keeps new lines until they are taken, in addition to writing them to the file if there is one.
void capture_recording(bool on);
std::string take_captured();

/// The number that stands for a pointer in a recording: "callback" and "pointer" are counted on their own, from 1 on.
int pointer_number(const char* what, const void* pointer);
void set_pointer_number(const char* what, const void* pointer, int number);
void forget_pointer_numbers();

/// Neither text nor a record, so that only its number can be recorded.
template <class T>
constexpr bool is_opaque = std::is_pointer_v<T> && !std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char>;

template <class T>
constexpr const char* pointer_kind = std::is_function_v<std::remove_pointer_t<T>> ? "callback" : "pointer";

/// An argument as in the journal, but complete enough to repeat the call.
template <class T>
std::string shown_in_recording(const T& argument, int rv) {
  std::string result = shown(argument, rv);
  if constexpr (is_opaque<T>) {
    if (argument == nullptr) return result;
    const int number = pointer_number(pointer_kind<T>, reinterpret_cast<const void*>(argument));
    result.insert(result.size() - 1, ' ' + std::to_string(number));
  } else if constexpr (requires { argument.written; }) {
    if (argument.pointer != nullptr) result += " of " + std::to_string(argument.count);
  }
  return result;
}

}  // namespace api
