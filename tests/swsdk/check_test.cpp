// What swsdk_check() finds on a chip: each kind of thing that is left over, and what may wait for its use.
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/l3.h>
#include <bcm/mirror.h>
#include <bcm/multicast.h>
#include <bcm/policer.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <sai.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <regex>
#include <string>

#include "support/scene.h"
#include "support/start.h"

namespace {

constexpr uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};
constexpr uint8_t neighbor[6] = {0x02, 0, 0, 0, 0, 0x2A};
constexpr uint32_t host = 0x0A000001;
constexpr uint32_t group_address = 0xE1000001;

class Check : public support::Scene {
 protected:
  /// What is left, each with the function that made it so.
  static std::string left() {
    char text[4096];
    EXPECT_LT(swsdk_check(unit, text, sizeof text), long{sizeof text});
    return std::regex_replace(std::string(text), std::regex("call [0-9]+: (\\w+)\\(.*"), "by $1");
  }

  static void fail(const char* function) { EXPECT_EQ(swsdk_fault_inject(function, BCM_E_FAIL, 1), 0); }

  static void add_neighbor() {
    sai_vlan_create(unit, 10);
    sai_vlan_port_add(unit, 10, 3, 0);
    sai_l3_intf_create(unit, router, 10);
    sai_l2_mac_entry_t address{};
    std::copy_n(neighbor, sizeof neighbor, address.mac);
    address.vlan = 10;
    address.port = 3;
    sai_l2_mac_entry_add(unit, &address);
    bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1);
  }
};

TEST_F(Check, FindsNothingOnANewChip) { EXPECT_EQ(left(), ""); }

TEST_F(Check, FindsNothingThatStartUpLeaves) {
  sai_switch_chip_init(router);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsVlansWithoutMembers) {
  fail("bcm_vlan_port_add");
  EXPECT_NE(sai_vlan_create(unit, 10), SAI_E_NONE);
  EXPECT_EQ(left(), "VLAN 10 has no members\n  by bcm_vlan_create\n");
  sai_vlan_create(unit, 10);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsSpanningTreeGroupsWithoutVlans) {
  sai_stg_create(unit, 2);
  EXPECT_EQ(left(), "spanning-tree group 2 has no VLANs\n  by bcm_stg_create_id\n");
  sai_stg_default_set(unit, 2);
  EXPECT_EQ(left(), "") << "it is the default one";
  sai_stg_default_set(unit, 1);
  sai_stg_vlan_add(unit, 2, 1);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsTrunksWithoutMembers) {
  int32_t id = 4;
  sai_trunk_init(unit);
  sai_trunk_create(unit, 0x10, &id);
  EXPECT_EQ(left(), "trunk 4 has no members\n  by bcm_trunk_create\n");
  sai_trunk_set(unit, 4, 1, 0x2, 1);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsMirrorDestinationsWithoutSources) {
  sai_mirror_init(unit);
  sai_mirror_dest_port_set(unit, 1, 2);
  EXPECT_EQ(left(), "mirror destination 1 has no sources\n  by bcm_mirror_destination_create\n");
  sai_mirror_source_port_set(unit, 1, 3, 1);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsVirtualPortsWithoutVlan) {
  sai_vlan_vport_init(unit);
  sai_vlan_create(unit, 10);
  sai_vport_t vport{3, 10, 20, 10, 0, -1};
  fail("bcm_vlan_gport_add");
  sai_vport_create(unit, 3, &vport);
  EXPECT_EQ(left(), "virtual port 1 is in no VLAN\n  by bcm_vlan_port_create\n");
  bcm_vlan_gport_add(unit, 10, vport.vport_id, 0);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsWhatADestroyedVirtualPortLeaves) {
  sai_vlan_vport_init(unit);
  sai_vlan_create(unit, 10);
  sai_vport_t vport{3, 10, 20, 10, 0, -1};
  sai_vport_create(unit, 3, &vport);
  ASSERT_EQ(left(), "");
  sai_vport_destroy(unit, 3, &vport);
  EXPECT_EQ(left(),
            "tags at egress of virtual port 1, which does not exist\n"
            "  by bcm_vlan_translate_egress_action_add\n"
            "multicast group 1 has the member virtual port 1, which does not exist\n"
            "  by bcm_multicast_egress_add\n"
            "multicast group 2 has the member virtual port 1, which does not exist\n"
            "  by bcm_multicast_egress_add\n"
            "multicast group 3 has the member virtual port 1, which does not exist\n"
            "  by bcm_multicast_egress_add\n");
}

TEST_F(Check, FindsMulticastGroupsWithoutRouteAndVlan) {
  sai_vlan_create(unit, 10);
  fail("bcm_ipmc_add");
  sai_multicast_egress_add(unit, 10, group_address, router, 3, 10);
  EXPECT_EQ(left(),
            "multicast group 1 is used by no route and no VLAN\n"
            "  by bcm_multicast_egress_add\n");
}

TEST_F(Check, FindsInterfacesThatAMulticastGroupHasLeft) {
  sai_vlan_create(unit, 10);
  sai_vlan_port_add(unit, 10, 3, 0);
  sai_multicast_egress_add(unit, 10, group_address, router, 3, 10);
  EXPECT_EQ(left(), "");
  sai_multicast_destroy(unit, 10, group_address);
  EXPECT_EQ(left(), "L3 interface 1 of VLAN 10 is used by nothing\n  by bcm_l3_intf_create\n");
}

TEST_F(Check, FindsInterfacesOfVlansWithoutPorts) {
  sai_vlan_create(unit, 10);
  sai_l3_intf_create(unit, router, 10);
  EXPECT_EQ(left(), "L3 interface 1 of VLAN 10 is used by nothing\n  by bcm_l3_intf_create\n");
  sai_vlan_port_add(unit, 10, 3, 0);
  EXPECT_EQ(left(), "");
  sai_vlan_destroy(unit, 10);
  EXPECT_EQ(left(), "L3 interface 1 of VLAN 10 is used by nothing\n  by bcm_l3_intf_create\n");
}

TEST_F(Check, FindsEgressObjectsThatNothingUses) {
  add_neighbor();
  sai_l3_host_route_create(unit, host, router, neighbor, 3, 10, 0);
  EXPECT_EQ(left(), "");
  fail("bcm_l2_addr_get");
  sai_l3_host_route_delete(unit, host, 0);
  EXPECT_EQ(left(), "egress object 100000 is used by no host and no route\n  by bcm_l3_egress_create\n");
}

TEST_F(Check, FindsFieldGroupsThatAreNotEnabled) {
  int32_t group = 0;
  fail("bcm_field_group_enable_set");
  EXPECT_NE(sai_ifp_l2_group_create(unit, &group), SAI_E_NONE);
  EXPECT_EQ(left(), "field group 1 is not enabled\n  by bcm_field_group_priority_set\n");
  bcm_field_group_enable_set(unit, 1, 1);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsFieldEntriesThatAreNotInstalled) {
  int32_t group = 0;
  int32_t entry = 0;
  sai_system_ipv4_fp_create(unit, &group);
  fail("bcm_field_entry_install");
  EXPECT_NE(sai_fp_ospf_ttl1_set(unit, 1, group, &entry), SAI_E_NONE);
  EXPECT_EQ(left(), "field entry 1 of group 1 is uninstalled\n  by bcm_field_entry_create\n");
  bcm_field_entry_install(unit, 1);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, FindsPolicersThatAreAttachedToNothing) {
  int32_t group = 0;
  int32_t entry = 0;
  int32_t policer = 0;
  sai_system_ipv4_fp_create(unit, &group);
  sai_fp_ospf_ttl1_set(unit, 1, group, &entry);
  fail("bcm_field_entry_policer_attach");
  sai_vport_fp_policer_set(unit, entry, &policer, 1000, 2000, 1500, 1500);
  EXPECT_EQ(left(), "policer 1 is attached to nothing\n  by bcm_policer_set\n");
  bcm_field_entry_policer_attach(unit, entry, 0, 1);
  EXPECT_EQ(left(), "");
}

TEST_F(Check, TellsTheWholeCall) {
  bcm_vlan_create(unit, 10);
  char text[256];
  swsdk_check(unit, text, sizeof text);
  EXPECT_TRUE(
      std::regex_match(text, std::regex("VLAN 10 has no members\n  call [0-9]+: bcm_vlan_create\\(0, 10\\) = 0\n")))
      << text;
}

TEST_F(Check, FillsEachSizeOfBufferAndTellsTheWholeLength) {
  bcm_vlan_create(unit, 10);
  const std::string text(static_cast<std::size_t>(swsdk_check(unit, nullptr, 0)), '#');
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, text.size(), text.size() + 1}) {
    std::string buffer(size + 2, '#');
    EXPECT_EQ(swsdk_check(unit, buffer.data(), size), static_cast<long>(text.size()));
    EXPECT_EQ(buffer.find('\0'), size == 0 ? std::string::npos : size - 1);
    EXPECT_EQ(buffer[size], '#');
  }
}

TEST_F(Check, WorksOnAUnitThatIsInitializedAndOnNoOther) {
  EXPECT_EQ(swsdk_check(-1, nullptr, 0), -1);
  EXPECT_EQ(swsdk_check(1, nullptr, 0), -1);
  support::attach_chip();
  EXPECT_EQ(swsdk_check(unit, nullptr, 0), -1);
}

}  // namespace
