// Multicast groups: what IPv4 and IPv6 have in common. A group is an entry of the IP multicast table, bound to a group
// of the SDK whose members are ports, each with the interface that gives its copies their tags.
#pragma once

#include <stdint.h>

#include "core/format.h"
#include "core/sdk.h"

namespace sai::multicast {

/// Flags of the interfaces made here.
constexpr uint32_t interface_flags = BCM_L3_ADD_TO_ARL | BCM_L3_IPMC;

/// Copies to a double-tagged member have this outer VLAN, and the member's own as the inner VLAN.
constexpr bcm_vlan_t double_tag_vlan = 4095;

/// The interface of the given tags; its flags are left to the caller.
bcm_l3_intf_t interface(const uint8_t* mac, int outer_vlan, int inner_vlan = 0);

/// Creates the interface unless it exists; fills in its id.
int find_or_create(int unit, bcm_l3_intf_t& intf);

struct Member {
  const uint8_t* mac;  ///< the router's
  int port;
  int user_vlan;
};

struct JoinTexts {
  Format<const char*> intf_create;
  Format<const char*> group_create;
  Format<const char*> ipmc_add;
  Format<const char*> gport_get;
  Format<const char*> encap_get;
  Format<const char*> egress_add;
  void (*found)(bcm_multicast_t group);  ///< logs that the group exists already
};

/// Adds a member to the group of `key`, which is created if it is missing. Stops at the first failure.
int32_t join(int unit, int vlan, bcm_ipmc_addr_t& key, const Member& member, const JoinTexts& texts);

struct LeaveTexts {
  Format<const char*> ipmc_find;
  Format<const char*> gport_get;
  Format<bcm_vlan_t, bcm_vlan_t, const char*> intf_find;
  Format<const char*> encap_get;
  Format<const char*> egress_delete;
  bool without_interface;  ///< continue when the interface or the encapsulation is not found
};

/// Removes a member from the group of `key`, and fills in the rest of `key`. Returns the SDK's code.
int leave(int unit, bcm_ipmc_addr_t& key, const Member& member, const LeaveTexts& texts);

/// Reads how many members a group has; `count` is unchanged when the SDK does not write it.
int count_members(int unit, bcm_multicast_t group, int& count);

struct DestroyTexts {
  Format<const char*> ipmc_find;
  Format<const char*> ipmc_remove;
  Format<const char*> group_destroy;
  bool without_remove;  ///< destroy the group even if its entry cannot be removed
};

/// Removes the entry of `key` and destroys its group; the interfaces stay.
int32_t destroy(int unit, bcm_ipmc_addr_t& key, const DestroyTexts& texts);

}  // namespace sai::multicast
