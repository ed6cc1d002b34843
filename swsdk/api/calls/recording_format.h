// What the lines of a recording begin with. Who writes one defines pointer_number().
#pragma once

#include <optional>
#include <string_view>

namespace api {

/// The kinds of lines of a recording, and the word that begins each. Questions change nothing and are not recorded, but
/// the answers to clients begin with one of these words, too.
enum class Kind { call, fault, action, question };
constexpr const char* kind_names[] = {"call", "fault", "action", "question"};

/// Nothing when it is none of these words.
std::optional<Kind> kind_of(std::string_view word);

constexpr std::string_view recording_header = "swsdk recording ";
constexpr int recording_version = 2;
constexpr int oldest_recording_version = 1;

/// The last line of a recording that was closed; version 1 had none.
constexpr std::string_view recording_end = "end";
constexpr int first_version_with_end = 2;

/// The number that stands for a pointer in a recording: "callback" and "pointer" are counted on their own, from 1 on. A
/// pointer of another process is not the same as one of this process with the same value.
int pointer_number(const char* what, const void* pointer);

}  // namespace api
