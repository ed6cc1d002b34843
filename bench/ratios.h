// Pairs that are measured side by side, of which the ratio is what counts.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// Does some work so many times.
using Repeat = std::function<void(int times)>;

/// The nanoseconds that each work takes once. All are measured in turn, in rounds of microseconds, and the quickest
/// round of each counts: on a machine that others use too, that one was not disturbed.
std::vector<double> nanoseconds(const std::vector<Repeat>& works);

}  // namespace bench
