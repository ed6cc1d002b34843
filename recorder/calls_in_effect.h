// The calls that made what is in a chip now, out of all that were made: together they make it again.
#pragma once

#include <cstddef>
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
  using Things = std::map<std::string, Kept, std::less<>>;
  struct Call;

  void follow(const Call& call, const Effect& effect, const Kept& line);
  void set(const std::string& thing, const Kept& line) { things_.insert_or_assign(thing, line); }
  /// Takes the things that the pattern names, and all that is part of them.
  std::vector<Things::node_type> taken(std::string_view pattern);
  /// The same of a field entry, as which it remains until the entry is installed.
  void withdraw(const std::string& thing);

  Things things_;
  uint64_t number_ = 0;
};

}  // namespace recorder
