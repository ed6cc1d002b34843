// Facts that a test finds and the documentation tells: kept in a file, so that a change of them is seen.
#pragma once

#include <string>

namespace support {

/// Fails unless the file has `text`. With UPDATE_RESULTS in the environment, it is written instead.
void compare_with_kept(const std::string& path, const std::string& text);

/// A line of a log with 0 in place of each number, some of which are addresses in memory, and only printable letters.
std::string without_values(const std::string& line);

}  // namespace support
