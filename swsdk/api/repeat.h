// Repeating the lines of a recording on the chips of this process, or those that it is connected to.
#pragma once

#include <string>

#include "api/recording_lines.h"

namespace api {

/// Switches the chips off. From now on lines are captured, until capture_recording(false).
void begin_replay();

/// Repeats the call of a line that is no event, and returns the line that it has in a new recording. Throws Unreadable.
std::string repeated(const RecordedLine& line);

}  // namespace api
