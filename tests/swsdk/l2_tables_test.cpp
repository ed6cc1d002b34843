// Trunks, mirrors, VLAN assignments and spanning-tree groups through the SDK, and all layer-2 tables as they are shown.
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/mirror.h>
#include <bcm/port.h>
#include <bcm/stack.h>
#include <bcm/stg.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/gports.h"
#include "support/start.h"

namespace {

class L2Tables : public testing::Test {
 protected:
  L2Tables() { support::start_chip(); }
  ~L2Tables() override { swsdk_power_off(); }

  static std::string show(const char* table) {
    std::string text(static_cast<std::size_t>(swsdk_show(0, table, nullptr, 0)), '\0');
    swsdk_show(0, table, text.data(), text.size() + 1);
    return text;
  }

  static bcm_gport_t gport(int port) { return support::gport(BCM_GPORT_TYPE_MODPORT, port); }
  static bcm_gport_t session(int number) { return support::gport(BCM_GPORT_TYPE_MIRROR, number); }

  static int set_trunk(int id, int psc, const std::vector<bcm_gport_t>& gports) {
    bcm_trunk_info_t info;
    bcm_trunk_info_t_init(&info);
    info.psc = psc;
    std::vector<bcm_trunk_member_t> members;
    for (const bcm_gport_t member : gports) {
      bcm_trunk_member_t_init(&members.emplace_back());
      members.back().gport = member;
    }
    return bcm_trunk_set(0, id, &info, static_cast<int>(members.size()), members.data());
  }

  static int mirror_to(int number, bcm_gport_t to) {
    bcm_mirror_destination_t destination;
    bcm_mirror_destination_t_init(&destination);
    destination.mirror_dest_id = session(number);
    destination.flags = BCM_MIRROR_DEST_REPLACE | BCM_MIRROR_DEST_WITH_ID;
    destination.gport = to;
    return bcm_mirror_destination_create(0, &destination);
  }

  static bcm_vlan_ip_t ip4_subnet(bcm_ip_t ip, bcm_ip_t mask, bcm_vlan_t vid = 0) {
    bcm_vlan_ip_t entry;
    bcm_vlan_ip_t_init(&entry);
    entry.ip4 = ip;
    entry.mask = mask;
    entry.vid = vid;
    return entry;
  }
};

TEST_F(L2Tables, ATrunkIsMadeFilledAndDestroyed) {
  bcm_trunk_t id = 5;
  ASSERT_EQ(bcm_trunk_create(0, BCM_TRUNK_FLAG_WITH_ID, &id), BCM_E_NONE);
  EXPECT_EQ(id, 5);
  EXPECT_EQ(bcm_trunk_create(0, BCM_TRUNK_FLAG_WITH_ID, &id), BCM_E_EXISTS);
  ASSERT_EQ(set_trunk(5, BCM_TRUNK_PSC_SRCDSTMAC, {gport(1), gport(2)}), BCM_E_NONE);
  EXPECT_EQ(show("trunk"),
            "trunk  picks by   members\n"
            "5      both MACs  1,2\n");
  EXPECT_EQ(bcm_trunk_psc_set(0, 5, BCM_TRUNK_PSC_DSTIP), BCM_E_NONE);
  EXPECT_EQ(show("trunk"),
            "trunk  picks by        members\n"
            "5      destination IP  1,2\n");
  EXPECT_EQ(bcm_trunk_destroy(0, 5), BCM_E_NONE);
  EXPECT_EQ(bcm_trunk_destroy(0, 5), BCM_E_NOT_FOUND);
}

TEST_F(L2Tables, TheMembersOfATrunkAreGportsOfTheChip) {
  bcm_trunk_t id = 0;
  ASSERT_EQ(bcm_trunk_create(0, 0, &id), BCM_E_NONE);
  EXPECT_EQ(set_trunk(id, 1, {3}), BCM_E_PORT) << "a plain number";
  EXPECT_EQ(set_trunk(id, 1, {gport(13)}), BCM_E_PORT);
  EXPECT_EQ(set_trunk(id, 1, {gport(3) | 1 << 11}), BCM_E_PORT) << "a port of another module";
  EXPECT_EQ(set_trunk(id, 1, {support::gport(BCM_GPORT_TYPE_LOCAL, 3)}), BCM_E_NONE);
  bcm_trunk_info_t info;
  bcm_trunk_info_t_init(&info);
  EXPECT_EQ(bcm_trunk_set(0, id, &info, -1, nullptr), BCM_E_PARAM);
  EXPECT_EQ(bcm_trunk_set(0, id, &info, 1, nullptr), BCM_E_PARAM);
  EXPECT_EQ(bcm_trunk_set(0, id, &info, 0, nullptr), BCM_E_NONE);
}

TEST_F(L2Tables, DetachedTrunksAreToBeInitialized) {
  bcm_trunk_t id = 0;
  ASSERT_EQ(bcm_trunk_detach(0), BCM_E_NONE);
  EXPECT_EQ(bcm_trunk_create(0, 0, &id), BCM_E_INIT);
  ASSERT_EQ(bcm_trunk_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_trunk_create(0, 0, &id), BCM_E_NONE);
}

TEST_F(L2Tables, TheChipIsModuleZeroAndMapsItsPortsToThemselves) {
  int module = -1;
  ASSERT_EQ(bcm_stk_my_modid_get(0, &module), BCM_E_NONE);
  EXPECT_EQ(module, 0);
  int port = -1;
  ASSERT_EQ(bcm_stk_modmap_map(0, BCM_STK_MODMAP_GET, 0, 7, &module, &port), BCM_E_NONE);
  EXPECT_EQ(module, 0);
  EXPECT_EQ(port, 7);
  EXPECT_EQ(bcm_stk_modmap_map(0, BCM_STK_MODMAP_GET, 0, 13, &module, &port), BCM_E_PORT);
  EXPECT_EQ(bcm_stk_modmap_map(0, BCM_STK_MODMAP_GET, 1, 7, &module, &port), BCM_E_PARAM);
  EXPECT_EQ(bcm_stk_modmap_map(0, BCM_STK_MODMAP_SET, 0, 7, &module, &port), BCM_E_UNAVAIL);
  EXPECT_EQ(bcm_stk_modmap_map(0, 3, 0, 7, &module, &port), BCM_E_PARAM);
}

TEST_F(L2Tables, AGportOfTheChipHasALocalPort) {
  bcm_port_t local = -1;
  EXPECT_EQ(bcm_port_local_get(0, gport(4), &local), BCM_E_NONE);
  EXPECT_EQ(local, 4);
  EXPECT_EQ(bcm_port_local_get(0, gport(13), &local), BCM_E_PORT);
  EXPECT_EQ(bcm_port_local_get(0, session(4), &local), BCM_E_PORT);
}

TEST_F(L2Tables, AMirrorHasADestinationAndSources) {
  ASSERT_EQ(bcm_mirror_mode_set(0, BCM_MIRROR_L2), BCM_E_NONE);
  ASSERT_EQ(mirror_to(2, gport(11)), BCM_E_NONE);
  ASSERT_EQ(mirror_to(2, gport(12)), BCM_E_NONE);
  bcm_mirror_destination_t found;
  std::memset(&found, 0xFF, sizeof found);
  ASSERT_EQ(bcm_mirror_destination_get(0, session(2), &found), BCM_E_NONE);
  EXPECT_EQ(found.mirror_dest_id, session(2));
  EXPECT_EQ(found.flags, 0U);
  EXPECT_EQ(found.gport, gport(12));
  EXPECT_EQ(bcm_mirror_port_dest_add(0, 3, BCM_MIRROR_PORT_ENABLE | BCM_MIRROR_PORT_INGRESS, session(2)), BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_port_dest_add(0, gport(4), BCM_MIRROR_PORT_ENABLE | BCM_MIRROR_PORT_EGRESS, session(2)),
            BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_port_dest_add(0, 5, BCM_MIRROR_PORT_ENABLE, session(2)), BCM_E_NONE);
  EXPECT_EQ(show("mirror"),
            "session  to port  mode  sources  ingress  egress\n"
            "2        12       L2    {3-5}    {3}      {4}\n");
  EXPECT_EQ(bcm_mirror_destination_destroy(0, session(2)), BCM_E_BUSY);
  EXPECT_EQ(bcm_mirror_port_dest_delete(0, 3, BCM_MIRROR_PORT_ENABLE | BCM_MIRROR_PORT_INGRESS, session(2)),
            BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_port_dest_delete(0, 4, BCM_MIRROR_PORT_ENABLE | BCM_MIRROR_PORT_EGRESS, session(2)), BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_port_dest_delete(0, 5, BCM_MIRROR_PORT_ENABLE, session(2)), BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_destination_destroy(0, session(2)), BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_destination_get(0, session(2), &found), BCM_E_NOT_FOUND);
}

TEST_F(L2Tables, AMirrorDestinationWithoutAnIdIsToldItsOwn) {
  bcm_mirror_destination_t destination;
  bcm_mirror_destination_t_init(&destination);
  destination.gport = gport(12);
  ASSERT_EQ(bcm_mirror_destination_create(0, &destination), BCM_E_NONE);
  EXPECT_EQ(destination.mirror_dest_id, session(0));
  ASSERT_EQ(bcm_mirror_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_mirror_destination_destroy(0, session(0)), BCM_E_NOT_FOUND);
}

TEST_F(L2Tables, AMirrorIsNamedByGportsAlone) {
  for (const bcm_gport_t to : {1, gport(13), session(1), support::gport(BCM_GPORT_TYPE_TRUNK, 1)})
    EXPECT_EQ(mirror_to(2, to), BCM_E_PORT) << to;
  ASSERT_EQ(mirror_to(2, gport(12)), BCM_E_NONE);
  bcm_mirror_destination_t destination;
  for (const bcm_gport_t id : {2, gport(2)}) {
    bcm_mirror_destination_t_init(&destination);
    destination.mirror_dest_id = id;
    destination.flags = BCM_MIRROR_DEST_WITH_ID;
    destination.gport = gport(12);
    EXPECT_EQ(bcm_mirror_destination_create(0, &destination), BCM_E_BADID) << id;
    EXPECT_EQ(bcm_mirror_destination_get(0, id, &destination), BCM_E_NOT_FOUND) << id;
    EXPECT_EQ(bcm_mirror_port_dest_add(0, 3, BCM_MIRROR_PORT_ENABLE, id), BCM_E_NOT_FOUND) << id;
    EXPECT_EQ(bcm_mirror_port_dest_delete(0, 3, BCM_MIRROR_PORT_ENABLE, id), BCM_E_NOT_FOUND) << id;
    EXPECT_EQ(bcm_mirror_destination_destroy(0, id), BCM_E_NOT_FOUND) << id;
  }
  EXPECT_EQ(bcm_mirror_destination_get(0, session(2), &destination), BCM_E_NONE);
}

TEST_F(L2Tables, UntaggedFramesGetVlansBySourceAddress) {
  uint8 mac[6] = {0x02, 0, 0, 0, 0, 1};
  ASSERT_EQ(bcm_vlan_mac_add(0, mac, 10, 5), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_mac_add(0, mac, 10, 5), BCM_E_EXISTS);
  EXPECT_EQ(show("macvlan"),
            "MAC                VLAN  priority\n"
            "02:00:00:00:00:01  10    5\n");
  EXPECT_EQ(bcm_vlan_mac_delete(0, mac), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_mac_delete(0, mac), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_mac_add(0, mac, 0, 5), BCM_E_PARAM);
  bcm_vlan_mac_add(0, mac, 10, 5);
  EXPECT_EQ(bcm_vlan_mac_delete_all(0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_mac_delete(0, mac), BCM_E_NOT_FOUND);
}

TEST_F(L2Tables, UntaggedFramesGetVlansBySubnet) {
  bcm_vlan_ip_t ip4 = ip4_subnet(0x0A010000, 0xFFFF0000, 10);
  ASSERT_EQ(bcm_vlan_ip_add(0, &ip4), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_ip_add(0, &ip4), BCM_E_EXISTS);
  bcm_vlan_ip_t ip6;
  bcm_vlan_ip_t_init(&ip6);
  ip6.flags = BCM_VLAN_SUBNET_IP6;
  ip6.ip6[0] = 0xFE;
  ip6.ip6[1] = 0x80;
  ip6.prefix = 64;
  ip6.vid = 11;
  ip6.prio = 3;
  ASSERT_EQ(bcm_vlan_ip_add(0, &ip6), BCM_E_NONE);
  EXPECT_EQ(show("subnetvlan"),
            "subnet       VLAN  priority\n"
            "10.1.0.0/16  10    0\n"
            "fe80::/64    11    3\n");
  bcm_vlan_ip_t subnet = ip4_subnet(0x0A010000, 0xFFFF0000);
  EXPECT_EQ(bcm_vlan_ip_delete(0, &subnet), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_ip_delete(0, &subnet), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_ip_delete_all(0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_ip_delete(0, &ip6), BCM_E_NOT_FOUND);
}

TEST_F(L2Tables, SubnetsThatCannotBeAreRefused) {
  bcm_vlan_ip_t bad_mask = ip4_subnet(0x0A010000, 0xFF00FF00, 10);
  EXPECT_EQ(bcm_vlan_ip_add(0, &bad_mask), BCM_E_PARAM);
  EXPECT_EQ(bcm_vlan_ip_delete(0, &bad_mask), BCM_E_PARAM);
  bcm_vlan_ip_t bad_flags = ip4_subnet(0x0A010000, 0xFFFF0000, 10);
  bad_flags.flags = 0x1;
  EXPECT_EQ(bcm_vlan_ip_add(0, &bad_flags), BCM_E_PARAM);
}

TEST_F(L2Tables, SpanningTreeGroupsHaveVlansAndStates) {
  bcm_vlan_create(0, 10);
  bcm_vlan_create(0, 11);
  ASSERT_EQ(bcm_stg_create_id(0, 2), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_create_id(0, 2), BCM_E_EXISTS);
  EXPECT_EQ(bcm_stg_vlan_add(0, 2, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_vlan_add(0, 2, 11), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_vlan_remove(0, 2, 11), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_stp_set(0, 2, 3, BCM_STG_STP_LEARN), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_stp_set(0, 2, 3, 5), BCM_E_PARAM);
  EXPECT_EQ(bcm_stg_stp_set(0, 2, 13, 1), BCM_E_PORT);
  int state = -1;
  EXPECT_EQ(bcm_stg_stp_get(0, 2, 3, &state), BCM_E_NONE);
  EXPECT_EQ(state, BCM_STG_STP_LEARN);
  EXPECT_EQ(show("stp"),
            "group        VLANs  disabled    blocking  listening  learning  forwarding\n"
            "1 (default)  1,11   {}          {}        {}         {}        {0-12}\n"
            "2            10     {1-2,4-12}  {}        {}         {3}       {0}\n");
  EXPECT_EQ(bcm_stg_vlan_remove_all(0, 2), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_vlan_remove(0, 2, 10), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_stg_destroy(0, 2), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_destroy(0, 2), BCM_E_NOT_FOUND);
}

TEST_F(L2Tables, OneSpanningTreeGroupIsTheDefault) {
  int group = -1;
  EXPECT_EQ(bcm_stg_count_get(0, &group), BCM_E_NONE);
  EXPECT_EQ(group, 256);
  EXPECT_EQ(bcm_stg_default_get(0, &group), BCM_E_NONE);
  EXPECT_EQ(group, 1);
  EXPECT_EQ(bcm_stg_default_set(0, 2), BCM_E_NOT_FOUND);
  bcm_stg_create_id(0, 2);
  EXPECT_EQ(bcm_stg_default_set(0, 2), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_clear(0), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_destroy(0, 1), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_stg_destroy(0, 2), BCM_E_BADID);
  EXPECT_EQ(bcm_stg_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_stg_default_get(0, &group), BCM_E_NONE);
  EXPECT_EQ(group, 1);
}

TEST_F(L2Tables, TheMacTableIsShownWithItsHits) {
  bcm_vlan_create(0, 10);
  bcm_l2_addr_t address;
  uint8 mac[6] = {0x02, 0, 0, 0, 0, 1};
  bcm_l2_addr_t_init(&address, mac, 10);
  address.port = 3;
  address.flags = BCM_L2_STATIC | BCM_L2_COPY_TO_CPU;
  ASSERT_EQ(bcm_l2_addr_add(0, &address), BCM_E_NONE);
  bcm_switch_control_set(0, bcmSwitchL2DstHitEnable, 1);
  swsdk_l2_lookup(0, 10, mac);
  EXPECT_EQ(show("mac"),
            "VLAN  MAC                at      kind                hit\n"
            "10    02:00:00:00:00:01  port 3  static,copy-to-cpu  source,destination\n");
  bcm_l2_init(0);
  swsdk_l2_learn(0, 10, mac, 17 << 26 | 6, 9);
  EXPECT_EQ(show("mac"),
            "VLAN  MAC                at                       kind  hit\n"
            "10    02:00:00:00:00:01  virtual port 6 tunnel 9  -     source\n");
}

TEST_F(L2Tables, ALearnLimitNeedsAScopeAndIsReadForOne) {
  bcm_l2_learn_limit_t limit;
  bcm_l2_learn_limit_t_init(&limit);
  EXPECT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_learn_limit_get(0, &limit), BCM_E_PARAM);
  limit.flags = BCM_L2_LEARN_LIMIT_SYSTEM | BCM_L2_LEARN_LIMIT_PORT;
  EXPECT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_learn_limit_get(0, &limit), BCM_E_PARAM);
  limit.flags = BCM_L2_LEARN_LIMIT_TUNNEL;
  limit.tunnel_id = 0x80000000;
  limit.limit = 5;
  EXPECT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_NONE);
  limit.flags = BCM_L2_LEARN_LIMIT_TRUNK;
  limit.trunk = 3;
  EXPECT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_NOT_FOUND);
  limit.flags = 0x100 | BCM_L2_LEARN_LIMIT_SYSTEM;
  EXPECT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_PARAM);
}

TEST_F(L2Tables, LearnLimitsAreShownWithWhatIsLearned) {
  bcm_vlan_create(0, 10);
  bcm_l2_learn_limit_t limit;
  bcm_l2_learn_limit_t_init(&limit);
  limit.flags = BCM_L2_LEARN_LIMIT_SYSTEM | BCM_L2_LEARN_LIMIT_VLAN | BCM_L2_LEARN_LIMIT_ACTION_DROP;
  limit.vlan = 11;
  limit.limit = 5;
  ASSERT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_NONE);
  const uint8 mac[6] = {0x02, 0, 0, 0, 0, 1};
  swsdk_l2_learn(0, 10, mac, 1, 0);
  EXPECT_EQ(show("learnlimit"),
            "learned  of at most  in       then  heeded\n"
            "1        5           all      drop  no\n"
            "0        5           VLAN 11  drop  no\n");
}

}  // namespace
