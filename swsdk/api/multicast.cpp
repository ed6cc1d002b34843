#include <bcm/multicast.h>

#include <algorithm>
#include <optional>

#include "api/call.h"
#include "api/gports.h"

using api::Call;
using api::gport_of;
using api::hex;
using api::inout;
using api::out;
using api::out_array;
using api::port_of;
using chip::Chip;
using chip::GroupId;
using chip::MulticastGroups;
using chip::Status;
namespace encapsulation = chip::encapsulation;

int bcm_multicast_create(int unit, uint32 flags, bcm_multicast_t* group) {
  return Call(calls::bcm_multicast_create(unit, flags, group)).answer([&](Chip& chip) {
    GroupId id = GroupId::of(*group);
    const Status status = chip.multicast_groups.create(flags, id);
    if (status == Status::ok) *group = id.number();
    return status;
  });
}

int bcm_multicast_destroy(int unit, bcm_multicast_t group) {
  return Call(calls::bcm_multicast_destroy(unit, group)).answer([&](Chip& chip) {
    return chip.multicast_groups.destroy(GroupId::of(group));
  });
}

int bcm_multicast_egress_add(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id) {
  return Call(calls::bcm_multicast_egress_add(unit, group, port, encap_id)).answer([&](Chip& chip) {
    return chip.multicast_groups.add_member(GroupId::of(group), {port_of(port), encap_id});
  });
}

int bcm_multicast_egress_delete(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id) {
  return Call(calls::bcm_multicast_egress_delete(unit, group, port, encap_id)).answer([&](Chip& chip) {
    return chip.multicast_groups.remove_member(GroupId::of(group), {port_of(port), encap_id});
  });
}

int bcm_multicast_egress_get(int unit, bcm_multicast_t group, int port_max, bcm_gport_t* port_array,
                             bcm_if_t* encap_id_array, int* port_count) {
  return Call(calls::bcm_multicast_egress_get(unit, group, port_max, port_array, encap_id_array, port_count))
      .answer([&](const Chip& chip) {
        if (port_max < 0) return Status::bad_parameter;
        const chip::MulticastGroup* const found = chip.multicast_groups.find(GroupId::of(group));
        if (found == nullptr) return chip.multicast_groups.absent(GroupId::of(group));
        // A capacity of 0 asks how many members there are.
        const int members = static_cast<int>(found->members.size());
        *port_count = port_max == 0 ? members : std::min(members, port_max);
        auto member = found->members.begin();
        for (int i = 0; i < *port_count && i < port_max; ++i, ++member) {
          port_array[i] = gport_of(member->port);
          encap_id_array[i] = member->encapsulation;
        }
        return Status::ok;
      });
}

int bcm_multicast_init(int unit) {
  return Call(calls::bcm_multicast_init(unit)).answer([&](Chip& chip) {
    chip.multicast_groups.clear();
    return Status::ok;
  });
}

int bcm_multicast_l2_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_vlan_t vlan, bcm_if_t* encap_id) {
  return Call(calls::bcm_multicast_l2_encap_get(unit, group, port, vlan, encap_id)).answer([&](const Chip& chip) {
    constexpr bcm_vlan_t no_vlan = 0xFFFF;
    if (vlan > chip::max_vlan && vlan != no_vlan) return Status::bad_parameter;
    const Status status =
        chip.multicast_groups.check(GroupId::of(group), MulticastGroups::l2 | MulticastGroups::vlan, port_of(port));
    if (status == Status::ok) *encap_id = encapsulation::as_it_is;
    return status;
  });
}

int bcm_multicast_l3_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t intf, bcm_if_t* encap_id) {
  return Call(calls::bcm_multicast_l3_encap_get(unit, group, port, intf, encap_id)).answer([&](const Chip& chip) {
    if (chip.l3_interfaces.find(intf) == nullptr) return chip.l3_interfaces.absent(intf);
    const Status status = chip.multicast_groups.check(GroupId::of(group), MulticastGroups::l3, port_of(port));
    if (status == Status::ok) *encap_id = encapsulation::of_interface(intf);
    return status;
  });
}

int bcm_multicast_vlan_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_gport_t vlan_port_id,
                                 bcm_if_t* encap_id) {
  return Call(calls::bcm_multicast_vlan_encap_get(unit, group, port, vlan_port_id, encap_id))
      .answer([&](const Chip& chip) {
        const std::optional<chip::VirtualPortId> id = api::virtual_port_of(vlan_port_id);
        if (!id) return Status::bad_port;
        if (chip.virtual_ports.find(*id) == nullptr) return chip.virtual_ports.absent(*id);
        const Status status = chip.multicast_groups.check(GroupId::of(group), MulticastGroups::vlan, port_of(port));
        if (status == Status::ok) *encap_id = encapsulation::of_virtual_port(*id);
        return status;
      });
}
