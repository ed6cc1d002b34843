// The multicast groups by id, with their members. The type of a group says which kinds of members it accepts.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <set>

#include "chip/encapsulations.h"
#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/slots.h"

namespace chip {

/// A port can be a member several times, with one copy for each encapsulation.
struct MulticastMember {
  Port port{};
  int encapsulation = 0;
  auto operator<=>(const MulticastMember&) const = default;
};

struct MulticastGroup {
  uint32_t type = 0;
  std::set<MulticastMember> members{};
  Origin origin{};
};

class MulticastGroups {
 public:
  static constexpr int capacity = 4096;

  /// The type of a group is one of these.
  static constexpr uint32_t l2 = 0x10000;
  static constexpr uint32_t l3 = 0x20000;
  static constexpr uint32_t vlan = 0x400000;

  static constexpr uint32_t with_id = 0x1;  // a flag of create()

  explicit MulticastGroups(const Ports& ports) : ports_(ports) {}

  /// Creates a group; with the flag `with_id` under the id in `id`, otherwise `id` is set.
  Status create(uint32_t flags, GroupId& id) {
    const uint32_t type = flags & (l2 | l3 | vlan);
    if ((flags & ~(l2 | l3 | vlan | with_id)) != 0 || (type != l2 && type != l3 && type != vlan))
      return Status::bad_parameter;
    return flags & with_id ? groups_.add_with_id({type}, id) : groups_.add({type}, id);
  }
  Status destroy(GroupId id) { return groups_.remove(id); }
  void clear() { groups_.clear(); }

  const MulticastGroup* find(GroupId id) const { return groups_.find(id); }
  /// Why there is no group of that id.
  Status absent(GroupId id) const { return groups_.absent(id); }

  /// Whether a port can be a member of the group, which has to be of one of the types.
  Status check(GroupId id, uint32_t types, Port port) const {
    const MulticastGroup* const group = groups_.find(id);
    if (group == nullptr) return groups_.absent(id);
    if ((group->type & types) == 0) return Status::bad_parameter;
    return ports_.has(port) ? Status::ok : Status::bad_port;
  }

  Status add_member(GroupId id, const MulticastMember& member) {
    const Status status = check(id, types_of(member.encapsulation), member.port);
    if (status != Status::ok) return status;
    MulticastGroup& group = *groups_.find(id);
    if (!group.members.insert(member).second) return Status::exists;
    group.origin = {};
    return Status::ok;
  }

  Status remove_member(GroupId id, const MulticastMember& member) {
    const Status status = check(id, types_of(member.encapsulation), member.port);
    if (status != Status::ok) return status;
    MulticastGroup& group = *groups_.find(id);
    if (group.members.erase(member) == 0) return Status::not_found;
    group.origin = {};
    return Status::ok;
  }

  const std::map<GroupId, MulticastGroup>& all() const { return groups_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(groups_);
  }

 private:
  /// The types of the groups that take members with that encapsulation.
  static uint32_t types_of(int id) {
    if (id == encapsulation::as_it_is) return l2 | vlan;
    return encapsulation::is_interface(id) ? l3 : encapsulation::is_virtual_port(id) ? vlan : 0;
  }

  const Ports& ports_;
  Slots<MulticastGroup, GroupId> groups_{1, capacity};
};

}  // namespace chip
