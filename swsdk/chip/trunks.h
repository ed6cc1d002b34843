// Trunks: ports that carry traffic together, as one.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "chip/ports.h"
#include "chip/slots.h"

namespace chip {

struct Trunk {
  int criterion = 0;         // by what a frame picks its member
  std::vector<int> members;  // in the order in which they are picked; a port may have several turns
};

class Trunks {
 public:
  static constexpr int capacity = 128;
  static constexpr std::size_t most_members = 8;
  static constexpr int highest_criterion = 6;  // 0: the chip's own choice

  explicit Trunks(const Ports& ports) : ports_(ports) { trunk_of_.fill(none); }

  /// No trunks, but ready to have some.
  void reset();
  /// Until the next reset every operation answers that the trunks are not initialised.
  void detach();

  /// Makes a trunk without members; the flag `with_id` asks for the id that `id` holds.
  Status create(uint32_t flags, int& id);
  Status destroy(int id);

  /// Takes the place of what was set before. A port is in one trunk at most.
  Status set(int id, int criterion, const std::vector<int>& members);
  Status set_criterion(int id, int criterion);

  /// Whether the id is within the table and there is such a trunk.
  Status check(int id) const;
  /// The trunk that the port is in.
  std::optional<int> trunk_of(int port) const {
    const bool is_in_one = port >= 0 && port < PortSet::capacity && trunk_of_[static_cast<std::size_t>(port)] != none;
    return is_in_one ? std::optional(trunk_of_[static_cast<std::size_t>(port)]) : std::nullopt;
  }

  const std::map<int, Trunk>& all() const { return trunks_.all(); }

 private:
  static bool is_criterion(int criterion) { return criterion >= 0 && criterion <= highest_criterion; }

  static constexpr int none = -1;

  const Ports& ports_;
  Slots<Trunk> trunks_{0, capacity};
  std::array<int, PortSet::capacity> trunk_of_;  // by port
  bool attached_ = true;
};

}  // namespace chip
