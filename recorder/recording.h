// The file that the environment names. Nothing that goes wrong with it reaches the application.
#pragma once

#include <string_view>

#include "api/calls/recording_format.h"

namespace recorder {

/// Whether lines are wanted.
bool is_on();

/// Writes "kind text @time thread" as one line: all of it, or none and no further ones.
void add(api::Kind kind, std::string_view text);

/// Ends the recording, and tells the system log why.
void give_up(const char* why);

}  // namespace recorder
