// In what an answer differs from the recorded one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace api {

/// What differs between two texts of a call with the same arguments: "result"; or, if that is the same, "output mac"
/// for each field of a record that the call wrote, and "output 3" for another argument, counted from 1. Throws
/// Unreadable.
std::vector<std::string> differences(std::string_view recorded, std::string_view now);

}  // namespace api
