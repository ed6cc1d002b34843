// Work on a table of the virtual chip at several sizes, through the library and by the SDK's calls directly, side by
// side in one run: what counts is how the cost per entry grows, and the ratio.
#pragma once

#include <functional>
#include <vector>

namespace bench {

inline constexpr int unit = 0;

/// A part of the work, done with the first `count` entries of the table; false when a call failed.
struct Step {
  const char* name;
  std::function<bool(int count)> library;
  std::function<bool(int count)> direct;
};

/// Ends the program, with exit code 2, unless what it needs went well.
void need(bool good, const char* what);

/// Starts a virtual chip, and a log that shows errors.
void start_chip();

/// Measures the steps at each size and prints a table of them. The steps of one side, run one after the other, begin
/// and end with an empty table. The sizes ascend.
///
/// @return the program's exit code: 1 when the library's cost per entry grew by more than the bound in each of three
///         runs
int scale(const std::vector<int>& sizes, const std::vector<Step>& steps);

}  // namespace bench
