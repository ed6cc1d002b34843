// The calls that made what is in a chip now, out of all that were made: together they make it again.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "effects.h"

namespace recorder {

class CallsInEffect {
 public:
  /// Takes a call "function(arguments) = result", or an event "callback(arguments)", and its line in the recording.
  void add(std::string_view text, std::string_view line);

  /// Their lines, in the order in which the calls were made.
  std::vector<std::string_view> lines() const;

 private:
  struct Line {
    uint64_t number;
    std::string text;
  };
  /// A line is kept for as long as something is as it says.
  using Kept = std::shared_ptr<const Line>;

  void follow(Verb verb, const std::string& thing, const Kept& line);
  /// Calls `act` with each thing that the pattern names, and each that is part of one.
  template <class Act>
  void for_each(std::string_view pattern, Act act);
  /// Leaves a field entry's thing to what is there until the entry is installed.
  void withdraw(const std::string& thing);

  std::map<std::string, Kept, std::less<>> things_;
  uint64_t number_ = 0;
};

}  // namespace recorder
