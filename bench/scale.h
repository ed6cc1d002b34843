// Work on a table of the virtual chip at several sizes, through the library and by the SDK's calls directly, side by
// side in one run: the growth of the cost per entry and the ratio count.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace bench {

inline constexpr int unit = 0;

/// The range of entries that are in the table at the same time.
struct Range {
  std::size_t first;
  std::size_t count;
};

/// Work on each entry of a range; false when a call failed.
using Work = std::function<bool(Range range)>;

struct Step {
  const char* name;
  Work library;
  Work direct;
};

/// The work of calling `call` with each entry.
template <class Entry, class Call>
Work each(std::vector<Entry>& entries, Call call) {
  return [&entries, call](Range range) {
    return std::ranges::all_of(std::span(entries).subspan(range.first, range.count), call);
  };
}

/// Ends the program, with exit code 2, when a prerequisite fails.
void need(bool good, const char* what);

/// Starts a virtual chip, and a log that shows errors.
void start_chip();

/// Measures the steps at each size and prints a table of them. The steps of one side, run one after the other, begin
/// and end with an empty table. The sizes ascend and divide the last one, the number of all entries.
///
/// @return the program's exit code: 1 when the library's cost per entry grew by more than the bound in each of three
///         runs
int scale(const std::vector<std::size_t>& sizes, const std::vector<Step>& steps);

}  // namespace bench
