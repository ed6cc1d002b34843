// Settings that decide on frames without being entries of a table: a trace names them, and the calls that made them so.
#include <bcm/ipmc.h>
#include <bcm/l3.h>
#include <bcm/multicast.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <regex>
#include <string>

#include "support/frames.h"
#include "support/start.h"

namespace {

using support::Bytes;
using support::Frame;

class SettingsInTraces : public testing::Test {
 protected:
  SettingsInTraces() {
    support::start_chip();
    for (const int port : {1, 2, 3}) swsdk_link_event(0, port, 1);
    swsdk_events_drain();
    EXPECT_EQ(bcm_vlan_create(0, 10), 0);
    bcm_pbmp_t members;
    bcm_pbmp_t untagged;
    BCM_PBMP_CLEAR(members);
    BCM_PBMP_CLEAR(untagged);
    for (const int port : {1, 2}) BCM_PBMP_PORT_ADD(members, port);
    EXPECT_EQ(bcm_vlan_port_add(0, 10, members, untagged), 0);
  }
  ~SettingsInTraces() override { swsdk_power_off(); }

  /// The lines of the trace of a frame that comes in at port 1, the numbers of calls left out.
  static std::string trace(const Bytes& frame) {
    std::string text(65536, '\0');
    const long length = swsdk_frame_trace(0, 1, frame.data(), frame.size(), text.data(), text.size());
    EXPECT_GT(length, 0);
    text.resize(static_cast<std::size_t>(length));
    return '\n' + std::regex_replace(text, std::regex("call [0-9]+:"), "call:");
  }

  /// Whether a trace names a setting, and then a call.
  static testing::AssertionResult names(const std::string& text, const std::string& setting, const std::string& call) {
    const std::string lines = "\n  control: " + setting + "\n    call: " + call + '\n';
    if (text.find(lines) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << lines << "is not in" << text;
  }

  static bcm_vlan_port_t virtual_port(int match, int group) {
    bcm_vlan_port_t result;
    bcm_vlan_port_t_init(&result);
    result.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN;
    EXPECT_EQ(bcm_port_gport_get(0, 1, &result.port), 0);
    result.match_vlan = static_cast<bcm_vlan_t>(match);
    result.egress_vlan = 10;
    result.ingress_network_group_id = group;
    result.egress_network_group_id = group;
    EXPECT_EQ(bcm_vlan_port_create(0, &result), 0);
    return result;
  }

  const Bytes tagged = Frame(1, 2).tag(10).type(0x9000);
};

TEST_F(SettingsInTraces, TellThatTranslationIsOffWhereAFrameHasOne) {
  EXPECT_EQ(trace(tagged).find("VLAN translation"), std::string::npos);
  EXPECT_EQ(bcm_vlan_translate_add(0, 1, 10, 1, 0), 0);
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 0), 0);
  EXPECT_TRUE(names(trace(tagged), "VLAN translation, off", "bcm_vlan_control_set(0, 5, 0) = 0"));
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanTranslateIngressEnable, 0), 0);
  EXPECT_TRUE(
      names(trace(tagged), "VLAN translation at ingress, port 1, 0", "bcm_vlan_control_port_set(0, 1, 2, 0) = 0"));
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanTranslateIngressEnable, 1), 0);
  const std::string text = trace(tagged);
  EXPECT_EQ(text.find("control: VLAN translation"), std::string::npos) << text;
  EXPECT_NE(text.find("\nassign_vlan: VLAN 1\n"), std::string::npos) << text;
}

TEST_F(SettingsInTraces, TellThatTranslationAtEgressIsOff) {
  bcm_vlan_action_set_t action;
  bcm_vlan_action_set_t_init(&action);
  action.ot_outer = bcmVlanActionDelete;
  EXPECT_EQ(bcm_vlan_translate_egress_action_add(0, 2, 10, 0, &action), 0);
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 2, bcmVlanTranslateEgressEnable, 0), 0);
  EXPECT_TRUE(
      names(trace(tagged), "VLAN translation at egress, port 2, 0", "bcm_vlan_control_port_set(0, 2, 5, 0) = 0"));
}

TEST_F(SettingsInTraces, TellThatAPortDoesNotLookForVirtualPorts) {
  virtual_port(10, 1);
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanTranslateIngressEnable, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanPortTranslateKeyFirst, 0), 0);
  EXPECT_TRUE(
      names(trace(tagged), "first key of virtual ports, port 1, 0", "bcm_vlan_control_port_set(0, 1, 14, 0) = 0"));
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanPortTranslateKeyFirst, bcmVlanTranslateKeyPortOuter), 0);
  EXPECT_EQ(trace(tagged).find("first key"), std::string::npos);
}

TEST_F(SettingsInTraces, TellWhyTheVlanOfASourceIsNotTaken) {
  const Bytes untagged = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(5, 6);
  Bytes source = support::mac(1);
  EXPECT_EQ(bcm_vlan_mac_add(0, source.data(), 10, 0), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanLookupMACEnable, 0), 0);
  EXPECT_TRUE(names(trace(untagged), "VLAN by MAC, port 1, 0", "bcm_vlan_control_port_set(0, 1, 8, 0) = 0"));

  bcm_vlan_ip_t subnet;
  bcm_vlan_ip_t_init(&subnet);
  subnet.ip4 = support::ip4("10.0.0.0");
  subnet.mask = 0xFF000000;
  subnet.vid = 1;
  EXPECT_EQ(bcm_vlan_ip_add(0, &subnet), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanLookupIPEnable, 0), 0);
  EXPECT_TRUE(names(trace(untagged), "VLAN by subnet, port 1, 0", "bcm_vlan_control_port_set(0, 1, 9, 0) = 0"));

  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanLookupMACEnable, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanLookupIPEnable, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanPortPreferIP4, 1), 0);
  EXPECT_TRUE(
      names(trace(untagged), "VLAN of the subnet preferred, port 1, 1", "bcm_vlan_control_port_set(0, 1, 0, 1) = 0"));
}

TEST_F(SettingsInTraces, TellThatRoutingIsOff) {
  bcm_l3_intf_t interface;
  bcm_l3_intf_t_init(&interface);
  std::ranges::copy(support::mac(0xE0), interface.l3a_mac_addr);
  interface.l3a_vid = 10;
  interface.l3a_flags = BCM_L3_ADD_TO_ARL;
  EXPECT_EQ(bcm_l3_intf_create(0, &interface), 0);
  const Bytes packet = Frame(1, 0xE0).tag(10).ip("10.0.0.1", "20.0.0.2").udp(5, 6);
  EXPECT_EQ(bcm_l3_enable_set(0, 0), 0);
  EXPECT_TRUE(names(trace(packet), "unicast routing, off", "bcm_l3_enable_set(0, 0) = 0"));
  EXPECT_EQ(bcm_l3_enable_set(0, 1), 0);
  EXPECT_EQ(trace(packet).find("unicast routing"), std::string::npos);
}

TEST_F(SettingsInTraces, TellThatMulticastRoutingIsOffWhereThereIsARoute) {
  int group = 0;
  EXPECT_EQ(bcm_multicast_create(0, BCM_MULTICAST_TYPE_L3, &group), 0);
  bcm_ipmc_addr_t route;
  bcm_ipmc_addr_t_init(&route);
  route.mc_ip_addr = support::ip4("239.1.1.1");
  route.mc_ip_mask = 0xFFFFFFFF;
  route.vid = 10;
  route.group = group;
  route.flags = BCM_IPMC_SOURCE_PORT_NOCHECK;
  EXPECT_EQ(bcm_ipmc_add(0, &route), 0);
  const Bytes packet = Frame(support::mac(1), {1, 0, 0x5E, 1, 1, 1}).tag(10).ip("10.0.0.1", "239.1.1.1").udp(5, 6);
  EXPECT_EQ(bcm_ipmc_enable(0, 0), 0);
  EXPECT_TRUE(names(trace(packet), "multicast routing, off", "bcm_ipmc_enable(0, 0) = 0"));
}

TEST_F(SettingsInTraces, NameReservedAddresses) {
  bcm_ip6_t address = {0xFF, 2};
  bcm_ip6_t mask = {0xFF, 0xFF};
  EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 1, &address, &mask), 0);
  EXPECT_EQ(bcm_switch_control_set(0, bcmSwitchMldReservedMcastEnable, 1), 0);
  EXPECT_EQ(bcm_switch_control_port_set(0, 1, bcmSwitchV6ResvdMcPktToCpu, 1), 0);
  const std::string text =
      trace(Frame(support::mac(1), {0x33, 0x33, 0, 0, 0, 1}).tag(10).ip("fe80::1", "ff02::1").udp(5, 6));
  EXPECT_TRUE(names(text, "reserved MLD multicast, on", "bcm_switch_control_set(0, 216, 1) = 0"));
  EXPECT_NE(text.find("\n  control: reserved IPv6 multicast, ff02:: mask ffff::\n    call: bcm_switch_ipv6_"),
            std::string::npos)
      << text;
  EXPECT_TRUE(
      names(text, "IPv6 reserved multicast to CPU, port 1, on", "bcm_switch_control_port_set(0, 1, 101, 1) = 0"));
}

TEST_F(SettingsInTraces, NameTheNetworkGroupThatKeepsAFrameFromAVirtualPort) {
  for (const int group : {1, 2})
    EXPECT_EQ(bcm_vlan_gport_add(0, 10, virtual_port(100 * group, group).vlan_port_id, 0), 0);
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanTranslateIngressEnable, 1), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, bcmVlanPortTranslateKeyFirst, bcmVlanTranslateKeyPortOuter), 0);
  bcm_switch_network_group_config_t config;
  bcm_switch_network_group_config_t_init(&config);
  config.dest_network_group_id = 2;
  config.config_flags = 2;
  EXPECT_EQ(bcm_switch_network_group_config_set(0, 1, &config), 0);
  const std::string text = trace(Frame(1, 0xFF).tag(100).type(0x9000));
  EXPECT_NE(text.find("\n  control: network group 1, prunes-ingress\n    call: bcm_switch_network_group_config_set("),
            std::string::npos)
      << text;
}

TEST_F(SettingsInTraces, ShowWhereAVlanDoesNotFlood) {
  EXPECT_EQ(bcm_vlan_mcast_flood_set(0, 10, BCM_VLAN_MCAST_FLOOD_NONE), 0);
  const std::string text = trace(Frame(support::mac(1), {1, 2, 3, 4, 5, 6}).tag(10).type(0x9000));
  EXPECT_NE(text.find("flags no-ip4-multicast-flood,no-ip6-multicast-flood,no-l2-multicast-flood\n"
                      "    call: bcm_vlan_mcast_flood_set(0, 10, 2) = 0\n"),
            std::string::npos)
      << text;
}

TEST_F(SettingsInTraces, TellAtWhichStageAFrameIsMalformed) {
  EXPECT_NE(trace(Bytes(13)).find("\nadmit: drops it: malformed\n"), std::string::npos);
}

}  // namespace
