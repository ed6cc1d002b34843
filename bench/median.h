#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace bench {

/// The median; 0 if there are no values.
inline double median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace bench
