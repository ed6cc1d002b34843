// The recording's store, and how its lines differ from the journal's; swsdk/recording.h is its interface to users.
#pragma once

#include <string>
#include <string_view>

#include "api/calls/recording_format.h"

namespace api {

bool is_recording();

void add_to_recording(Kind kind, std::string_view line);

/// Whether a file gets the lines: a replay captures them without one.
bool has_recording_file();

/// Notes that the chips were switched off; written only when another line follows.
void add_power_off_to_recording();

/// Keeps new lines until they are taken, in addition to writing them to the file if there is one.
void capture_recording(bool on);
std::string take_captured();

/// Gives a pointer of this process the number that pointer_number() answers for it.
void set_pointer_number(const char* what, const void* pointer, int number);
void forget_pointer_numbers();

}  // namespace api
