// The class-of-service queues and how they are scheduled.
#pragma once

#include <algorithm>
#include <array>

#include "chip/status.h"

namespace chip {

class Queues {
 public:
  static constexpr int count = 8;

  // The lowest and the highest mode.
  static constexpr int strict = 1;
  static constexpr int deficit_round_robin = 5;

  Status schedule(int mode, const int* weights, int delay) {
    if (mode < strict || mode > deficit_round_robin) return Status::bad_parameter;
    if (std::any_of(weights, weights + count, [](int weight) { return weight < 0; })) return Status::bad_parameter;
    mode_ = mode;
    std::copy_n(weights, count, weights_.begin());
    delay_ = delay;
    return Status::ok;
  }
  void reset() { *this = {}; }

  int mode() const { return mode_; }
  const std::array<int, count>& weights() const { return weights_; }
  int delay() const { return delay_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(mode_, weights_, delay_);
  }

 private:
  int mode_ = strict;
  std::array<int, count> weights_{};
  int delay_ = 0;
};

}  // namespace chip
