// Multicast groups: what IPv4 and IPv6 have in common. A group is an entry of the IP multicast table, bound to a group
// of the SDK whose members are ports, each with the interface that gives its copies their tags.
#pragma once

#include <stdint.h>

#include "core/format.h"
#include "core/sdk.h"

namespace sai::multicast {

/// Flags of the interfaces made here.
constexpr uint32_t interface_flags = BCM_L3_ADD_TO_ARL | BCM_L3_IPMC;

/// Copies to a double-tagged member have this outer VLAN, and the member's own inside.
constexpr bcm_vlan_t double_tag_vlan = 4095;

/// The interface of the given tags; its flags are left to the caller.
bcm_l3_intf_t interface(const uint8_t* mac, int outer_vlan, int inner_vlan = 0);

/// Creates the interface unless it is there; fills in its number.
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
  void (*found)(bcm_multicast_t group);  ///< says that the group is there already
};

/// Adds a member to the group of `key`, which is made when it is not there. Every failure ends it.
int32_t join(int unit, int vlan, bcm_ipmc_addr_t& key, const Member& member, const JoinTexts& texts);

struct LeaveTexts {
  Format<const char*> ipmc_find;
  Format<const char*> gport_get;
  Format<bcm_vlan_t, bcm_vlan_t, const char*> intf_find;
  Format<const char*> encap_get;
  Format<const char*> egress_delete;
  bool without_interface;  ///< an interface or an encapsulation that cannot be found does not end it
};

/// Takes a member from the group of `key`, whose rest is filled in. The SDK's code.
int leave(int unit, bcm_ipmc_addr_t& key, const Member& member, const LeaveTexts& texts);

/// Asks how many members a group has; `count` stays as it is when the SDK does not tell.
int count_members(int unit, bcm_multicast_t group, int& count);

struct DestroyTexts {
  Format<const char*> ipmc_find;
  Format<const char*> ipmc_remove;
  Format<const char*> group_destroy;
  bool without_remove;  ///< an entry that cannot be removed does not keep its group
};

/// Removes the entry of `key` and destroys its group; the interfaces stay.
int32_t destroy(int unit, bcm_ipmc_addr_t& key, const DestroyTexts& texts);

}  // namespace sai::multicast
