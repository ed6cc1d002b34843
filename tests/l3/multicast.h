// What the tests of multicast have in common.
#pragma once

#include <bcm/port.h>

#include <optional>

#include "l3/scene.h"

namespace l3 {

/// Every call succeeds, and the group is there already.
inline const Answers known_group{{"bcm_l3_intf_find", 0},
                                 {"bcm_l3_intf_create", 0},
                                 {"bcm_ipmc_find", 0},
                                 {"bcm_ipmc_add", 0},
                                 {"bcm_ipmc_remove", 0},
                                 {"bcm_multicast_create", 0},
                                 {"bcm_multicast_destroy", 0},
                                 {"bcm_port_gport_get", 0},
                                 {"bcm_multicast_l3_encap_get", 0},
                                 {"bcm_multicast_egress_add", 0},
                                 {"bcm_multicast_egress_delete", 0},
                                 {"bcm_multicast_egress_get", 0}};

/// Every call succeeds, and neither interfaces nor the group are there yet.
inline const Answers new_group =
    but({{"bcm_l3_intf_find", BCM_E_NOT_FOUND}, {"bcm_ipmc_find", BCM_E_NOT_FOUND}}, known_group);

/// How many members the query for them tells of, whatever it answers; without a number, what the chip tells.
extern std::optional<int> told_members;

/// A scene in which the member that leaves is the last one.
class LastMember : public Scene {
 protected:
  LastMember() { told_members = 0; }
  ~LastMember() override { told_members.reset(); }
};

/// The record of an interface, by its VLANs.
inline std::string interface(const std::string& rest) {
  return "{l3a_flags=0x820, l3a_mac_addr=02:00:00:00:00:01, " + rest + '}';
}

/// The same answers, but the chip tells the gport of a port.
inline Answers with_real_gports(Answers answers) {
  answers.erase("bcm_port_gport_get");
  return answers;
}

inline std::string gport_of(int port) {
  bcm_gport_t gport = 0;
  EXPECT_EQ(bcm_port_gport_get(0, port, &gport), BCM_E_NONE);
  return std::to_string(gport);
}

}  // namespace l3
