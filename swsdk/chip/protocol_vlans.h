// Protocol-based VLANs: the VLAN of untagged frames by protocol, for each port.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/status.h"
#include "chip/vlan_id.h"

namespace chip {

class ProtocolVlans {
 public:
  static constexpr std::size_t capacity = 16;  // protocols, which all ports share

  /// How the frame carries the protocol.
  static constexpr int ethernet2 = 1;
  static constexpr int snap = 2;
  static constexpr int llc = 4;

  struct Key {
    Port port;
    int frame;
    uint16_t ethertype;
    auto operator<=>(const Key&) const = default;
  };

  explicit ProtocolVlans(const Ports& ports) : ports_(ports) {}

  void clear() { vlans_.clear(); }

  /// Replaces the VLAN with the same key, if there is one.
  Status add(const Key& key, int vlan) {
    if (const Status status = check(key); status != Status::ok) return status;
    if (!is_vlan(vlan)) return Status::bad_parameter;
    std::set<std::pair<int, uint16_t>> protocols;
    for (const auto& [present, ignored] : vlans_) protocols.emplace(present.frame, present.ethertype);
    protocols.emplace(key.frame, key.ethertype);
    if (protocols.size() > capacity) return Status::full;
    vlans_[key] = vlan;
    return Status::ok;
  }
  Status remove(const Key& key) {
    if (const Status status = check(key); status != Status::ok) return status;
    return vlans_.erase(key) == 1 ? Status::ok : Status::not_found;
  }
  Status remove_all(Port port) {
    if (!ports_.has(port)) return Status::bad_port;
    std::erase_if(vlans_, [&](const auto& entry) { return entry.first.port == port; });
    return Status::ok;
  }

  /// The VLAN of a protocol, or null.
  const Setting<int>* find(const Key& key) const {
    if (vlans_.empty()) return nullptr;
    const auto found = vlans_.find(key);
    return found == vlans_.end() ? nullptr : &found->second;
  }
  const std::map<Key, Setting<int>>& all() const { return vlans_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(vlans_);
  }

 private:
  Status check(const Key& key) const {
    if (!ports_.has(key.port)) return Status::bad_port;
    const bool known = key.frame == ethernet2 || key.frame == snap || key.frame == llc;
    return known ? Status::ok : Status::bad_parameter;
  }

  const Ports& ports_;
  std::map<Key, Setting<int>> vlans_;
};

}  // namespace chip
