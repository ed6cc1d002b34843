// Trunks: ports that are aggregated into one link.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "chip/origin.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/slots.h"

namespace chip {

/// The fields that select the member of a frame.
enum class TrunkCriterion : int {
  own_choice,  // of the chip
  source_mac,
  destination_mac,
  both_macs,
  source_ip,
  destination_ip,
  both_ips,
};

struct Trunk {
  TrunkCriterion criterion{};
  std::vector<Port> members;  // in order; a port may be listed several times, for a larger share
  Origin origin{};
};

class Trunks {
 public:
  static constexpr int capacity = 128;
  static constexpr std::size_t max_members = 8;
  static constexpr uint32_t with_id = 0x10;  // a flag of create()

  explicit Trunks(const Ports& ports) : trunk_of_(ports.all()) {}

  /// No trunks.
  void reset();
  /// Until the next reset every operation answers not_initialized.
  void detach();

  /// Creates a trunk without members; with the flag `with_id` under the id in `id`, otherwise `id` is set.
  Status create(uint32_t flags, TrunkId& id);
  Status destroy(TrunkId id);

  /// Replaces criterion and members. A port is in at most one trunk.
  Status set(TrunkId id, int criterion, const std::vector<Port>& members);
  Status set_criterion(TrunkId id, int criterion);

  const Trunk* find(TrunkId id) const { return trunks_.find(id); }
  /// Why there is no trunk of that id.
  Status absent(TrunkId id) const { return attached_ ? trunks_.absent(id) : Status::not_initialized; }
  /// The trunk that a port of the chip is in.
  std::optional<TrunkId> trunk_of(Port port) const { return trunk_of_[port]; }

  const std::map<TrunkId, Trunk>& all() const { return trunks_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(trunks_, trunk_of_, attached_);
  }

 private:
  static bool is_criterion(int number) {
    return number >= static_cast<int>(TrunkCriterion::own_choice) &&
           number <= static_cast<int>(TrunkCriterion::both_ips);
  }
  /// Takes all ports out of the trunk.
  void release_members(TrunkId id);

  Slots<Trunk, TrunkId> trunks_{0, capacity};
  PortTable<std::optional<TrunkId>> trunk_of_;
  bool attached_ = true;
};

}  // namespace chip
