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

  /// The readings of all sensors, and with them their number. A reset does not change them.
  void set(std::vector<Temperature> readings) { readings_ = std::move(readings); }
  const std::vector<Temperature>& all() const { return readings_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(readings_);
  }

 private:
  std::vector<Temperature> readings_{{405, 450}, {417, 470}};
};

}  // namespace chip
