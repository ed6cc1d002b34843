// Records have more fields than the chip models. What one of the others asks for is refused, whichever it is.
#include <bcm/error.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/mirror.h>
#include <bcm/policer.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <swsdk/journal.h>

#include <cstring>
#include <functional>
#include <set>

#include "support/chip_test.h"
#include "support/scene.h"

namespace {

using Names = std::set<std::string>;

/// The name of the one field that is set in the records which a journal line shows; empty when there is none.
std::string field_in(const std::string& line) {
  const std::string given = line.substr(0, line.find(" -> &"));  // behind that is what the call wrote
  const std::size_t equals = given.find_first_of("=)");
  if (given[equals] == ')') return {};
  const std::size_t begin = given.rfind('{', equals) + 1;
  return given.substr(begin, equals - begin);
}

class UnmodeledFields : public support::ChipTest {
 protected:
  UnmodeledFields() { swsdk_journal_record(1); }

  /// Calls with each byte of an empty record set in turn; the journal tells which field that is. Those of `modeled`
  /// are looked at, all others are refused as unavailable. What lies between fields is of no account.
  template <class Record, class Call>
  static void expect_refused_but(const Names& modeled, Call call) {
    Names taken;
    for (std::size_t at = 0; at < sizeof(Record); ++at) {
      Record record;
      std::memset(&record, 0, sizeof record);
      reinterpret_cast<unsigned char*>(&record)[at] = 1;
      swsdk_journal_clear();
      const int rv = call(&record);
      const std::string line = support::journal();
      const std::string name = field_in(line);
      if (name.empty()) continue;
      EXPECT_EQ(rv == BCM_E_UNAVAIL, !modeled.contains(name)) << line;
      if (rv != BCM_E_UNAVAIL) taken.insert(name);
    }
    EXPECT_EQ(taken, modeled);
  }

  static constexpr int unit = 0;
};

TEST_F(UnmodeledFields, OfMacAddressesAreRefused) {
  expect_refused_but<bcm_l2_addr_t>({"flags", "mac", "vid", "port", "modid", "tgid"},
                                    [](auto* record) { return bcm_l2_addr_add(unit, record); });
}

TEST_F(UnmodeledFields, OfL2CacheEntriesAreRefused) {
  int index = 0;
  expect_refused_but<bcm_l2_cache_addr_t>(
      {"flags", "mac", "mac_mask", "vlan", "vlan_mask", "src_port", "src_port_mask"},
      [&](auto* record) { return bcm_l2_cache_set(unit, -1, record, &index); });
}

TEST_F(UnmodeledFields, OfLearnLimitsAreRefused) {
  expect_refused_but<bcm_l2_learn_limit_t>({"flags", "vlan", "port", "trunk", "tunnel_id", "limit"},
                                           [](auto* record) { return bcm_l2_learn_limit_set(unit, record); });
}

TEST_F(UnmodeledFields, OfInterfacesAreRefused) {
  expect_refused_but<bcm_l3_intf_t>(
      {"l3a_flags", "l3a_vrf", "l3a_intf_id", "l3a_mac_addr", "l3a_vid", "l3a_inner_vlan", "l3a_ttl"},
      [](auto* record) { return bcm_l3_intf_create(unit, record); });
}

TEST_F(UnmodeledFields, OfEgressObjectsAreRefused) {
  ASSERT_EQ(bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1), BCM_E_NONE);
  bcm_if_t id = 0;
  const Names modeled = {"intf", "mac_addr", "vlan", "port"};
  expect_refused_but<bcm_l3_egress_t>(modeled,
                                      [&](auto* record) { return bcm_l3_egress_create(unit, 0, record, &id); });
  expect_refused_but<bcm_l3_egress_t>(modeled, [&](auto* record) { return bcm_l3_egress_find(unit, record, &id); });
}

TEST_F(UnmodeledFields, OfHostsAreRefused) {
  expect_refused_but<bcm_l3_host_t>(
      {"l3a_flags", "l3a_vrf", "l3a_ip_addr", "l3a_intf", "l3a_nexthop_mac", "l3a_port_tgid"},
      [](auto* record) { return bcm_l3_host_add(unit, record); });
}

TEST_F(UnmodeledFields, OfRoutesAreRefused) {
  expect_refused_but<bcm_l3_route_t>({"l3a_flags", "l3a_vrf", "l3a_subnet", "l3a_ip_mask", "l3a_intf", "l3a_nexthop_ip",
                                      "l3a_nexthop_mac", "l3a_port_tgid", "l3a_vid"},
                                     [](auto* record) { return bcm_l3_route_add(unit, record); });
}

TEST_F(UnmodeledFields, OfVirtualPortsAreRefused) {
  expect_refused_but<bcm_vlan_port_t>(
      {"criteria", "flags", "match_vlan", "match_inner_vlan", "port", "egress_vlan", "egress_inner_vlan",
       "vlan_port_id", "ingress_network_group_id", "egress_network_group_id"},
      [](auto* record) { return bcm_vlan_port_create(unit, record); });
}

TEST_F(UnmodeledFields, OfVlanControlsAreRefused) {
  expect_refused_but<bcm_vlan_control_vlan_t>(
      {"flags", "ip6_mcast_flood_mode", "ip4_mcast_flood_mode", "l2_mcast_flood_mode", "broadcast_group",
       "unknown_multicast_group", "unknown_unicast_group"},
      [](auto* record) { return bcm_vlan_control_vlan_set(unit, 1, *record); });
}

TEST_F(UnmodeledFields, OfEgressActionsAreRefused) {
  expect_refused_but<bcm_vlan_action_set_t>(
      {"new_outer_vlan", "new_inner_vlan",    "new_inner_pkt_prio", "new_outer_cfi",     "new_inner_cfi",
       "priority",       "dt_outer",          "dt_outer_prio",      "dt_outer_pkt_prio", "dt_outer_cfi",
       "dt_inner",       "dt_inner_prio",     "dt_inner_pkt_prio",  "dt_inner_cfi",      "ot_outer",
       "ot_outer_prio",  "ot_outer_pkt_prio", "ot_outer_cfi",       "ot_inner",          "ot_inner_pkt_prio",
       "ot_inner_cfi",   "it_outer",          "it_outer_pkt_prio",  "it_outer_cfi",      "it_inner",
       "it_inner_prio",  "it_inner_pkt_prio", "it_inner_cfi",       "ut_outer",          "ut_outer_pkt_prio",
       "ut_outer_cfi",   "ut_inner",          "ut_inner_pkt_prio",  "ut_inner_cfi"},
      [](auto* record) { return bcm_vlan_translate_egress_action_add(unit, 1, 10, 0, record); });
}

TEST_F(UnmodeledFields, OfSubnetsAreRefused) {
  expect_refused_but<bcm_vlan_ip_t>({"flags", "ip4", "mask", "ip6", "prefix", "vid", "prio"},
                                    [](auto* record) { return bcm_vlan_ip_add(unit, record); });
}

TEST_F(UnmodeledFields, OfTrunksAndTheirMembersAreRefused) {
  bcm_trunk_t trunk = 0;
  ASSERT_EQ(bcm_trunk_create(unit, 0, &trunk), BCM_E_NONE);
  bcm_trunk_member_t member{};
  expect_refused_but<bcm_trunk_info_t>({"psc"},
                                       [&](auto* record) { return bcm_trunk_set(unit, trunk, record, 1, &member); });
  bcm_trunk_info_t info{};
  expect_refused_but<bcm_trunk_member_t>({"gport"},
                                         [&](auto* record) { return bcm_trunk_set(unit, trunk, &info, 1, record); });
}

TEST_F(UnmodeledFields, OfMirrorsAreRefused) {
  expect_refused_but<bcm_mirror_destination_t>(
      {"mirror_dest_id", "flags", "gport"}, [](auto* record) { return bcm_mirror_destination_create(unit, record); });
}

TEST_F(UnmodeledFields, OfMulticastRoutesAreRefused) {
  expect_refused_but<bcm_ipmc_addr_t>({"s_ip_addr", "mc_ip_addr", "s_ip6_addr", "mc_ip6_addr", "vid", "vrf",
                                       "port_tgid", "v", "group", "flags", "l3a_intf"},
                                      [](auto* record) { return bcm_ipmc_add(unit, record); });
}

TEST_F(UnmodeledFields, OfPolicersAreRefused) {
  const Names modeled = {"flags",      "mode",         "ckbits_sec",       "ckbits_burst", "cbits_burst_lower",
                         "pkbits_sec", "pkbits_burst", "pbits_burst_lower"};
  bcm_policer_t id = 0;
  expect_refused_but<bcm_policer_config_t>(modeled,
                                           [&](auto* record) { return bcm_policer_create(unit, record, &id); });
  expect_refused_but<bcm_policer_config_t>(modeled, [&](auto* record) { return bcm_policer_set(unit, id, record); });
}

TEST_F(UnmodeledFields, OfNetworkInterfacesAreRefused) {
  expect_refused_but<bcm_knet_netif_t>({"id", "type", "flags", "mac_addr", "name"},
                                       [](auto* record) { return bcm_knet_netif_create(unit, record); });
}

TEST_F(UnmodeledFields, OfNetworkGroupsAreRefused) {
  expect_refused_but<bcm_switch_network_group_config_t>({"dest_network_group_id", "config_flags"}, [](auto* record) {
    return bcm_switch_network_group_config_set(unit, 1, record);
  });
}

/// Which of them count, its masks say; others than the chip's own are refused.
TEST_F(UnmodeledFields, OfPortSettingsAreAskedForByTheirMasks) {
  bcm_port_info_t info;
  std::memset(&info, 1, sizeof info);
  info.action_mask = 0;
  info.action_mask2 = 0;
  EXPECT_EQ(bcm_port_selective_set(unit, 1, &info), BCM_E_NONE);
  info.action_mask2 = 1;
  EXPECT_EQ(bcm_port_selective_set(unit, 1, &info), BCM_E_UNAVAIL);
}

TEST_F(UnmodeledFields, DoNotKeepARecordFromBeingFound) {
  bcm_l3_intf_t interface;
  bcm_l3_intf_t_init(&interface);
  interface.l3a_vid = 1;
  ASSERT_EQ(bcm_l3_intf_create(unit, &interface), BCM_E_NONE);
  interface.l3a_mtu = 9000;
  EXPECT_EQ(bcm_l3_intf_find(unit, &interface), BCM_E_NONE);
  EXPECT_EQ(interface.l3a_mtu, 0) << "what the chip does not model reads as 0";
}

}  // namespace
