#include <bcm/multicast.h>

#include <algorithm>

#include "api/call.h"
#include "chip/gports.h"

using api::Call;
using api::hex;
using api::inout;
using api::out;
using api::out_array;
using chip::Chip;
using chip::MulticastGroups;
using chip::Status;
using chip::gport::number;
using chip::gport::of_port;
using chip::gport::port_of;
namespace encapsulation = chip::encapsulation;

int bcm_multicast_create(int unit, uint32 flags, bcm_multicast_t* group) {
  return Call(__func__, unit, hex(flags), inout(group)).answer([&](Chip& chip) {
    return chip.multicast_groups.create(flags, *group);
  });
}

int bcm_multicast_destroy(int unit, bcm_multicast_t group) {
  return Call(__func__, unit, group).answer([&](Chip& chip) { return chip.multicast_groups.destroy(group); });
}

int bcm_multicast_egress_add(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id) {
  return Call(__func__, unit, group, port, encap_id).answer([&](Chip& chip) {
    return chip.multicast_groups.add_member(group, {port_of(port), encap_id});
  });
}

int bcm_multicast_egress_delete(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id) {
  return Call(__func__, unit, group, port, encap_id).answer([&](Chip& chip) {
    return chip.multicast_groups.remove_member(group, {port_of(port), encap_id});
  });
}

int bcm_multicast_egress_get(int unit, bcm_multicast_t group, int port_max, bcm_gport_t* port_array,
                             bcm_if_t* encap_id_array, int* port_count) {
  return Call(__func__, unit, group, port_max, out_array(port_array, port_max, port_count),
              out_array(encap_id_array, port_max, port_count), out(port_count))
      .answer([&](const Chip& chip) {
        if (port_max < 0) return Status::bad_parameter;
        const chip::MulticastGroup* const found = chip.multicast_groups.find(group);
        if (found == nullptr) return chip.multicast_groups.absent(group);
        // No room at all asks how many members there are.
        const int members = static_cast<int>(found->members.size());
        *port_count = port_max == 0 ? members : std::min(members, port_max);
        auto member = found->members.begin();
        for (int i = 0; i < *port_count && i < port_max; ++i, ++member) {
          port_array[i] = of_port(member->port);
          encap_id_array[i] = member->encapsulation;
        }
        return Status::ok;
      });
}

int bcm_multicast_init(int unit) {
  return Call(__func__, unit).answer([&](Chip& chip) {
    chip.multicast_groups.clear();
    return Status::ok;
  });
}

int bcm_multicast_l2_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_vlan_t vlan, bcm_if_t* encap_id) {
  return Call(__func__, unit, group, port, vlan, out(encap_id)).answer([&](const Chip& chip) {
    constexpr bcm_vlan_t no_vlan = 0xFFFF;
    if (vlan > chip::Vlans::highest_id && vlan != no_vlan) return Status::bad_parameter;
    const Status status =
        chip.multicast_groups.check(group, MulticastGroups::l2 | MulticastGroups::vlan, port_of(port));
    if (status == Status::ok) *encap_id = encapsulation::as_it_is;
    return status;
  });
}

int bcm_multicast_l3_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t intf, bcm_if_t* encap_id) {
  return Call(__func__, unit, group, port, intf, out(encap_id)).answer([&](const Chip& chip) {
    if (chip.l3_interfaces.find(intf) == nullptr) return chip.l3_interfaces.absent(intf);
    const Status status = chip.multicast_groups.check(group, MulticastGroups::l3, port_of(port));
    if (status == Status::ok) *encap_id = encapsulation::of_interface(intf);
    return status;
  });
}

int bcm_multicast_vlan_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_gport_t vlan_port_id,
                                 bcm_if_t* encap_id) {
  return Call(__func__, unit, group, port, vlan_port_id, out(encap_id)).answer([&](const Chip& chip) {
    if (chip.virtual_ports.find(vlan_port_id) == nullptr) return chip.virtual_ports.absent(vlan_port_id);
    const Status status = chip.multicast_groups.check(group, MulticastGroups::vlan, port_of(port));
    if (status == Status::ok) *encap_id = encapsulation::of_virtual_port(number(vlan_port_id));
    return status;
  });
}
