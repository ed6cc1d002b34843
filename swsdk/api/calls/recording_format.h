// What the lines of a recording begin with. Who writes one defines pointer_number().
#pragma once

#include <optional>
#include <string_view>

namespace api {

/// The kinds of lines of a recording, and the word that begins each. Questions change nothing and are not recorded, but
/// the answers to clients begin with one of these words, too.
enum class Kind { call, fault, action, event, question };
constexpr const char* kind_names[] = {"call", "fault", "action", "event", "question"};

/// Nothing when it is none of these words.
std::optional<Kind> kind_of(std::string_view word);

constexpr std::string_view recording_header = "swsdk recording ";
constexpr int recording_version = 3;
constexpr int oldest_recording_version = 1;

/// The last line of a recording that was closed; version 1 had none. Behind it stands what a child of the process has
/// called since; before version 3, nothing did.
constexpr std::string_view recording_end = "end";
constexpr int first_version_with_end = 2;
constexpr int first_version_with_children = 3;

/// "state 42": the next 42 lines are from before this file: calls and events whose effect was still there when it
/// began.
constexpr std::string_view state_mark = "state";

/// The names of events: the types of the callbacks, whose arguments follow the callback itself.
constexpr const char* link_callback = "bcm_linkscan_handler_t";
constexpr const char* l2_callback = "bcm_l2_addr_callback_t";
/// A frame has left the virtual chip: unit, port, SWSDK_CPU_ reasons, bytes. It comes before the line that led to it.
constexpr const char* frame_callback = "swsdk_frame_handler";

/// Before the time of a line, in seconds since the recording began, and the number of its thread: " @0.000123 1". Lines
/// of the virtual chip's own recordings have neither, so that the same calls give the same recording.
constexpr std::string_view stamp_mark = " @";

/// The number that stands for a pointer in a recording: "callback" and "pointer" are counted on their own, from 1 on. A
/// pointer of another process is not the same as one of this process with the same value.
int pointer_number(const char* what, const void* pointer);

}  // namespace api
