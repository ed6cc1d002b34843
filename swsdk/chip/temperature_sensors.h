// The temperature sensors on the die.
#pragma once

#include <utility>
#include <vector>

namespace chip {

/// In tenths of a degree Celsius.
struct Temperature {
  int current = 0;
  int peak = 0;
};

class TemperatureSensors {
 public:
  static constexpr int capacity = 256;

  /// The readings of all sensors; their number is that of the readings. A reset leaves them alone: it cools nothing.
  void set(std::vector<Temperature> readings) { readings_ = std::move(readings); }
  const std::vector<Temperature>& all() const { return readings_; }

 private:
  std::vector<Temperature> readings_{{405, 450}, {417, 470}};
};

}  // namespace chip
