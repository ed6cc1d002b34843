// Pairs that are measured side by side, because only their ratio counts.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// Does some work the given number of times.
using Repeat = std::function<void(int times)>;

/// The nanoseconds that one run of each work takes. All are measured in turn, in rounds of microseconds, and the
/// fastest round of each counts: on a shared machine, that round was not disturbed.
std::vector<double> nanoseconds(const std::vector<Repeat>& works);

}  // namespace bench
