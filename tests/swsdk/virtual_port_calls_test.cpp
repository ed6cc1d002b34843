// The SDK's calls on virtual ports, their VLANs and groups, on policers and on network groups.
#include <bcm/error.h>
#include <bcm/multicast.h>
#include <bcm/policer.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <climits>
#include <cstring>

#include "support/chip_test.h"
#include "support/gports.h"
#include "support/scene.h"

namespace {

constexpr int first_virtual_port = 17 << 26 | 1;

bcm_vlan_port_t stacked_record(int port, bcm_vlan_t outer, bcm_vlan_t inner) {
  bcm_vlan_port_t result;
  bcm_vlan_port_t_init(&result);
  result.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN_STACKED;
  result.flags = BCM_VLAN_PORT_NETWORK | BCM_VLAN_PORT_INNER_VLAN_PRESERVE;
  result.port = support::gport(BCM_GPORT_TYPE_LOCAL, port);
  result.match_vlan = outer;
  result.match_inner_vlan = inner;
  result.egress_vlan = 20;
  result.egress_inner_vlan = 30;
  result.ingress_network_group_id = 5;
  result.egress_network_group_id = 5;
  return result;
}

class VirtualPortCalls : public support::ChipTest {
 protected:
  static bcm_gport_t create(bcm_vlan_port_t virtual_port) {
    EXPECT_EQ(bcm_vlan_port_create(0, &virtual_port), BCM_E_NONE);
    return virtual_port.vlan_port_id;
  }

  static int make_policer() {
    bcm_policer_config_t config;
    bcm_policer_config_t_init(&config);
    int id = -1;
    EXPECT_EQ(bcm_policer_create(0, &config, &id), BCM_E_NONE);
    return id;
  }
};

TEST_F(VirtualPortCalls, FindAVirtualPortByItsGportAndByItsMatch) {
  bcm_vlan_port_t made = stacked_record(3, 100, 10);
  ASSERT_EQ(bcm_vlan_port_create(0, &made), BCM_E_NONE);
  EXPECT_EQ(made.vlan_port_id, first_virtual_port);

  bcm_vlan_port_t by_gport;
  bcm_vlan_port_t_init(&by_gport);
  by_gport.vlan_port_id = made.vlan_port_id;
  EXPECT_EQ(bcm_vlan_port_find(0, &by_gport), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&by_gport, &made, sizeof made), 0);

  bcm_vlan_port_t by_match;
  bcm_vlan_port_t_init(&by_match);
  by_match.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN_STACKED;
  by_match.port = 3;
  by_match.match_vlan = 100;
  by_match.match_inner_vlan = 10;
  EXPECT_EQ(bcm_vlan_port_find(0, &by_match), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&by_match, &made, sizeof made), 0);
}

TEST_F(VirtualPortCalls, LeaveARecordAloneWhenTheyFail) {
  create(stacked_record(3, 100, 10));
  bcm_vlan_port_t same = stacked_record(3, 100, 10);
  EXPECT_EQ(bcm_vlan_port_create(0, &same), BCM_E_EXISTS);
  EXPECT_EQ(same.vlan_port_id, 0);
  bcm_vlan_port_t other = stacked_record(3, 100, 11);
  EXPECT_EQ(bcm_vlan_port_find(0, &other), BCM_E_NOT_FOUND);
  other.vlan_port_id = first_virtual_port + 1;
  EXPECT_EQ(bcm_vlan_port_find(0, &other), BCM_E_NOT_FOUND);
  other.vlan_port_id = 3;
  EXPECT_EQ(bcm_vlan_port_find(0, &other), BCM_E_PORT);
  EXPECT_EQ(other.egress_vlan, 20);
}

TEST_F(VirtualPortCalls, DestroyAVirtualPort) {
  const bcm_gport_t gport = create(stacked_record(3, 100, 10));
  bcm_vlan_port_t found = stacked_record(3, 100, 10);
  for (const bcm_gport_t other : {1, 3, support::gport(BCM_GPORT_TYPE_LOCAL, 3),
                                  support::gport(BCM_GPORT_TYPE_MODPORT, 1), support::gport(BCM_GPORT_TYPE_TRUNK, 1)}) {
    found.vlan_port_id = other;
    EXPECT_EQ(bcm_vlan_port_find(0, &found), BCM_E_PORT) << other;
    EXPECT_EQ(bcm_vlan_port_destroy(0, other), BCM_E_PORT) << other;
  }
  EXPECT_EQ(bcm_vlan_port_destroy(0, gport), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_port_destroy(0, gport), BCM_E_NOT_FOUND);
}

TEST_F(VirtualPortCalls, MakeGportsMembersOfAVlan) {
  ASSERT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_gport_add(0, 10, first_virtual_port, 0), BCM_E_NOT_FOUND);
  const bcm_gport_t gport = create(stacked_record(3, 100, 10));
  EXPECT_EQ(bcm_vlan_gport_add(0, 10, gport, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_gport_add(0, 11, gport, 0), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_gport_add(0, 10, gport, 1), BCM_E_UNAVAIL);
  EXPECT_EQ(bcm_vlan_gport_delete(0, 0, gport), BCM_E_PARAM);
  EXPECT_EQ(bcm_vlan_port_destroy(0, gport), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_gport_delete(0, 10, gport), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_gport_delete(0, 10, gport), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_gport_add(0, 10, support::gport(BCM_GPORT_TYPE_LOCAL, 3), 0), BCM_E_NONE);
  EXPECT_NE(support::table("vlan").find("10    {3}"), std::string::npos);
  EXPECT_EQ(bcm_vlan_gport_delete(0, 10, 3), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_gport_add(0, 10, 13, 0), BCM_E_PORT);
  for (const int none : {INT_MIN, -1, 256, 65535, INT_MAX}) {
    EXPECT_EQ(bcm_vlan_gport_add(0, 10, none, 0), BCM_E_PORT) << none;
    EXPECT_EQ(bcm_vlan_gport_delete(0, 10, none), BCM_E_PORT) << none;
  }
}

TEST_F(VirtualPortCalls, GiveEachVirtualPortAnEncapsulation) {
  const bcm_gport_t first = create(stacked_record(3, 100, 10));
  const bcm_gport_t second = create(stacked_record(3, 100, 11));
  int group = 0;
  ASSERT_EQ(bcm_multicast_create(0, BCM_MULTICAST_TYPE_VLAN, &group), BCM_E_NONE);
  int of_first = 0;
  int of_second = 0;
  EXPECT_EQ(bcm_multicast_vlan_encap_get(0, group, 3, first, &of_first), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_vlan_encap_get(0, group, 3, second, &of_second), BCM_E_NONE);
  EXPECT_NE(of_first, of_second);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, 3, of_first), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, 3, of_second), BCM_E_NONE);
  EXPECT_EQ(support::table("multicast"),
            "group  type  ports  encapsulation\n"
            "1      VLAN  {3}    virtual port 1\n"
            "1      VLAN  {3}    virtual port 2\n");
  int untouched = 77;
  EXPECT_EQ(bcm_multicast_vlan_encap_get(0, group, 3, first + 2, &untouched), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_multicast_vlan_encap_get(0, group, 3, 3, &untouched), BCM_E_PORT);
  EXPECT_EQ(bcm_multicast_vlan_encap_get(0, group, 13, first, &untouched), BCM_E_PORT);
  EXPECT_EQ(bcm_multicast_vlan_encap_get(0, group + 1, 3, first, &untouched), BCM_E_NOT_FOUND);
  EXPECT_EQ(untouched, 77);
}

TEST_F(VirtualPortCalls, KeepTheSettingsOfAPolicer) {
  const int id = make_policer();
  EXPECT_EQ(id, 1);
  bcm_policer_config_t wanted;
  bcm_policer_config_t_init(&wanted);
  wanted.flags = 0x74;
  wanted.mode = bcmPolicerModeTrTcm;
  wanted.ckbits_sec = 1000;
  wanted.ckbits_burst = 8;
  wanted.cbits_burst_lower = 4000;
  wanted.pkbits_sec = 2001;
  wanted.pkbits_burst = 0;
  wanted.pbits_burst_lower = 7992;
  EXPECT_EQ(bcm_policer_set(0, id, &wanted), BCM_E_NONE);
  bcm_policer_config_t got;
  EXPECT_EQ(bcm_policer_get(0, id, &got), BCM_E_NONE);
  wanted.pkbits_sec = 2008;
  EXPECT_EQ(std::memcmp(&got, &wanted, sizeof got), 0);
  EXPECT_EQ(support::table("policer"),
            "policer  mode  kbit/s  burst  peak kbit/s  peak burst  flags  attached\n"
            "1        3     1000    1500   2008         999         0x74   0\n");
}

TEST_F(VirtualPortCalls, ForgetPolicersThatAreDestroyedOrInitialized) {
  const int first = make_policer();
  const int second = make_policer();
  bcm_policer_config_t config;
  EXPECT_EQ(bcm_policer_destroy(0, first), BCM_E_NONE);
  EXPECT_EQ(bcm_policer_destroy(0, first), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_policer_get(0, first, &config), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_policer_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_policer_get(0, second, &config), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_policer_get(0, -1, &config), BCM_E_PARAM);
}

TEST_F(VirtualPortCalls, KeepTheSettingsOfANetworkGroupWhateverTheDestination) {
  bcm_switch_network_group_config_t config;
  bcm_switch_network_group_config_t_init(&config);
  swsdk_journal_record(1);
  EXPECT_EQ(bcm_switch_network_group_config_get(0, 3, &config), BCM_E_NONE);
  config.config_flags = 0x7;
  EXPECT_EQ(bcm_switch_network_group_config_set(0, 3, &config), BCM_E_NONE);
  bcm_switch_network_group_config_t_init(&config);
  config.dest_network_group_id = 3;
  EXPECT_EQ(bcm_switch_network_group_config_get(0, 3, &config), BCM_E_NONE);
  EXPECT_EQ(config.config_flags, 0x7U);
  EXPECT_EQ(support::journal(),
            "bcm_switch_network_group_config_get(0, 3, {}) = 0\n"
            "bcm_switch_network_group_config_set(0, 3, {config_flags=0x7}) = 0\n"
            "bcm_switch_network_group_config_get(0, 3, {dest_network_group_id=3} -> "
            "&{dest_network_group_id=3, config_flags=0x7}) = 0\n");
  config.dest_network_group_id = 64;
  EXPECT_EQ(bcm_switch_network_group_config_get(0, 3, &config), BCM_E_PARAM);
  EXPECT_EQ(bcm_switch_network_group_config_set(0, 3, &config), BCM_E_PARAM);
  config.dest_network_group_id = 3;
  for (const int none : {-1, 64}) {
    EXPECT_EQ(bcm_switch_network_group_config_get(0, none, &config), BCM_E_PARAM) << none;
    EXPECT_EQ(bcm_switch_network_group_config_set(0, none, &config), BCM_E_PARAM) << none;
  }
}

TEST_F(VirtualPortCalls, FillTheirTableForPeople) {
  bcm_vlan_create(0, 20);
  bcm_vlan_create(0, 30);
  const bcm_gport_t gport = create(stacked_record(3, 100, 10));
  bcm_vlan_gport_add(0, 20, gport, 0);
  bcm_vlan_gport_add(0, 30, gport, 0);
  bcm_vlan_port_t single = stacked_record(4, 100, 0);
  single.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN;
  single.flags = 0;
  single.egress_vlan = single.egress_inner_vlan = 0;
  create(single);
  EXPECT_EQ(support::table("vport"),
            "virtual port  port  match   becomes  in VLANs  network groups  flags\n"
            "1             3     100:10  20:30    20,30     5,5             keeps-inner,network\n"
            "2             4     100     -        -         5,5             -\n");
}

}  // namespace
