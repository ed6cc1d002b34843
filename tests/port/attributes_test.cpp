#include <bcm/error.h>
#include <bcm/port.h>
#include <shared/error.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <string>

#include "support/rows.h"
#include "support/start.h"

namespace {

using support::as_number;
using support::Row;

constexpr int32_t unit = 0;
constexpr int32_t interface_mode = 3;

// What the getters of the rows write to: "abc" to those that show its bytes.
constexpr int32_t abc = 0x00636261;
int32_t out = abc;
uint8_t flag = 7;

const std::string pause = "soc_linkscan_pause(0) = 0\n";
const std::string go_on = "soc_linkscan_continue(0) = 0\n";
const std::string speed = "bcm_port_speed_get(0, 3, &1000) = 0\n";
const std::string duplex = "bcm_port_duplex_get(0, 3, &1) = 0\n";
const std::string out_shown = "&" + std::to_string(abc);

const Row rows[] = {
    {"EnableSet", [] { return sai_port_enable_set(unit, 3, 1); }, "bcm_port_enable_set(0, 3, 1)",
     "Failed to set port [3] enable 1: ", pause, go_on},
    {"EnableGet", [] { return sai_port_enable_get(unit, 3, &out); }, "bcm_port_enable_get(0, 3, " + out_shown + ")",
     "Failed to set port [3] enable " + as_number(&out) + ": ", pause, go_on},
    {"AutonegSet", [] { return sai_port_autoneg_set(unit, 3, 1); }, "bcm_port_autoneg_set(0, 3, 1)",
     "Failed to set port [3] autoneg 1: "},
    {"AutonegGet", [] { return sai_port_autoneg_get(unit, 3, &out); }, "bcm_port_autoneg_get(0, 3, " + out_shown + ")",
     "Failed to get port [3] autoneg: ", "", "", "abc"},
    {"DuplexSet", [] { return sai_port_duplex_set(unit, 3, 0); }, "bcm_port_duplex_set(0, 3, 0)",
     "Failed to set port [3] duplex 0: "},
    {"DuplexGet", [] { return sai_port_duplex_get(unit, 3, &out); }, "bcm_port_duplex_get(0, 3, " + out_shown + ")",
     "Failed to get port [3] duplex: ", "", "", "abc"},
    {"SpeedSet", [] { return sai_port_speed_set(unit, 3, 100); }, "bcm_port_speed_set(0, 3, 100)",
     "Failed to set port [3] speed 100: "},
    {"SpeedGet", [] { return sai_port_speed_get(unit, 3, &out); }, "bcm_port_speed_get(0, 3, " + out_shown + ")",
     "Failed to get port [3] speed: ", "", "", "abc"},
    {"PauseSet", [] { return sai_port_pause_set(unit, 3, 1, 0); }, "bcm_port_pause_set(0, 3, 1, 0)",
     "Failed to set port [3] pause tx 1 pause rx 0: "},
    {"FrameMaxSet", [] { return sai_port_frame_max_set(unit, 3, 9000); }, "bcm_port_frame_max_set(0, 3, 9000)",
     "Failed to set port [3] frame max 9000: "},
    {"LearnSet", [] { return sai_port_learn_set(unit, 3, 5); }, "bcm_port_learn_set(0, 3, 0x5)",
     "Failed to set port [3] mac learn 5: "},
    {"LearnGet", [] { return sai_port_learn_get(unit, 3, &out); }, "bcm_port_learn_get(0, 3, " + out_shown + ")",
     "Failed to set port [3] mac learn " + as_number(&out) + ": "},
    {"InterfaceSet", [] { return sai_port_interface_set(unit, 3, interface_mode); },
     "bcm_port_selective_set(0, 3, {action_mask=0x18800e, interface=" + std::to_string(interface_mode) + "})",
     "Failed to set port [3] interface mode " + std::to_string(interface_mode) + ": "},
    {"UntaggedVlanSet", [] { return sai_port_untagged_vlan_set(unit, 3, 10); }, "bcm_port_untagged_vlan_set(0, 3, 10)",
     "Failed to set port [3] untagged vlan [10]: "},
    {"LoopbackSet", [] { return sai_port_loopback_set(unit, 3, 2); }, "bcm_port_loopback_set(0, 3, 2)",
     "Failed to set port 3 loopback 2: "},
    {"IsolateReset", [] { return sai_port_isolate_reset(unit, 3); }, "bcm_port_egress_set(0, 3, 0, {1-12})",
     "Failed to unset port [3] egress: "},
    {"ProtocolVlanAdd", [] { return sai_port_protocol_vlan_add(unit, 3, 1, 0x8863, 10); },
     "bcm_port_protocol_vlan_add(0, 3, 1, 0x8863, 10)", "Failed to add port 3 protocol base vlan: "},
    {"ProtocolVlanDel", [] { return sai_port_protocol_vlan_del(unit, 3, 1, 0x8863); },
     "bcm_port_protocol_vlan_delete(0, 3, 1, 0x8863)", "Failed to delete port 3 protocol base vlan: "},
    {"MacVlanSet", [] { return sai_port_mac_vlan_set(unit, 3, 1); }, "bcm_vlan_control_port_set(0, 3, 8, 1)",
     "Failed to set port [3] bcmVlanLookupMACEnable: "},
    {"SubnetVlanSet", [] { return sai_port_subnet_vlan_set(unit, 3, 255); }, "bcm_vlan_control_port_set(0, 3, 9, 255)",
     "Failed to set port [3] bcmVlanLookupIPEnable: "},
    {"MacVlanGet", [] { return sai_port_mac_vlan_get(unit, 3, &flag); }, "bcm_vlan_control_port_get(0, 3, 8, &0)",
     "Failed to set port [3] bcmVlanLookupMACEnable: "},
    {"SubnetVlanGet", [] { return sai_port_subnet_vlan_get(unit, 3, &flag); }, "bcm_vlan_control_port_get(0, 3, 9, &0)",
     "Failed to set port [3] bcmVlanLookupIPEnable: "},
    {"PrecedenceMac", [] { return sai_vlan_precedence_set(unit, 3, 1); }, "bcm_vlan_control_port_set(0, 3, 1, 1)",
     "Failed to set port [3] bcmSwitchDhcpPktToCpu: "},
    {"PrecedenceSubnet", [] { return sai_vlan_precedence_set(unit, 3, 2); }, "bcm_vlan_control_port_set(0, 3, 0, 1)",
     "Failed to set port [3] bcmSwitchDhcpPktToCpu: "},
    {"IfgSet", [] { return sai_port_ifg_set(unit, 3, 96); }, "bcm_port_ifg_set(0, 3, 1000, 1, 96)",
     "Failed to set port [3] ifg [96]: ", speed + duplex},
    {"IfgGet", [] { return sai_port_ifg_get(unit, 3, &out); }, "bcm_port_ifg_get(0, 3, 1000, 1, " + out_shown + ")",
     "Failed to get port [3] ifg: ", speed + duplex},
};

class PortAttribute : public support::RowTest {
 protected:
  PortAttribute() { out = abc; }
};

TEST_P(PortAttribute, PassesTheSdksSuccessOn) { check_success(); }
TEST_P(PortAttribute, LogsTheSdksFailureOnceAndConvertsIt) { check_failure(); }
INSTANTIATE_TEST_SUITE_P(All, PortAttribute, testing::ValuesIn(rows), support::name_of);

class PortAttributes : public support::Scene {
 protected:
  PortAttributes() { swsdk_link_event(unit, 3, 1); }
};

TEST_F(PortAttributes, WhatIsSetIsRead) {
  int32_t value = 77;
  EXPECT_EQ(sai_port_enable_set(unit, 3, 0), 0);
  EXPECT_EQ(sai_port_enable_get(unit, 3, &value), 0);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(sai_port_autoneg_set(unit, 3, 0), 0);
  EXPECT_EQ(sai_port_autoneg_get(unit, 3, &value), 0);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(sai_port_speed_set(unit, 3, 100), 0);
  EXPECT_EQ(sai_port_speed_get(unit, 3, &value), 0);
  EXPECT_EQ(value, 100);
  EXPECT_EQ(sai_port_duplex_set(unit, 3, 0), 0);
  EXPECT_EQ(sai_port_duplex_get(unit, 3, &value), 0);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(sai_port_learn_set(unit, 3, 4), 0);
  EXPECT_EQ(sai_port_learn_get(unit, 3, &value), 0);
  EXPECT_EQ(value, 4);
  EXPECT_EQ(sai_port_interface_set(unit, 3, interface_mode), 0);
  EXPECT_EQ(sai_port_interface_get(unit, 3, &value), 0);
  EXPECT_EQ(value, interface_mode);
  EXPECT_EQ(sai_port_ifg_set(unit, 3, 64), 0);
  EXPECT_EQ(sai_port_ifg_get(unit, 3, &value), 0);
  EXPECT_EQ(value, 64);
}

TEST_F(PortAttributes, TheLinkIsReadWhenTheChipTellsIt) {
  int32_t up = 77;
  EXPECT_EQ(sai_port_link_status_get(unit, 3, &up), 0);
  EXPECT_EQ(up, 1);
  up = 77;
  EXPECT_EQ(observe_failing("bcm_port_link_status_get", BCM_E_TIMEOUT,
                            [&] { return sai_port_link_status_get(unit, 3, &up); }),
            "bcm_port_link_status_get(0, 3, &?) = -9\n"
            "log: errors: NONE: Failed to get link status: Operation took too long\n"
            "returned -1\n");
  EXPECT_EQ(up, 77);
}

TEST_F(PortAttributes, AnInterfaceThatIsNotReadLeavesItsOutputAlone) {
  int32_t mode = 77;
  EXPECT_EQ(
      observe_failing("bcm_port_interface_get", BCM_E_PORT, [&] { return sai_port_interface_get(unit, 3, &mode); }),
      "bcm_port_interface_get(0, 3, &?) = -18\n"
      "log: errors: NONE: Failed to get port [3] interface mode " +
          as_number(&mode) + ": Invalid port\nreturned -9\n");
  EXPECT_EQ(mode, 77);
}

TEST_F(PortAttributes, AFailedGetShowsTheBytesOfItsOutputUpToTheFirstZero) {
  int32_t value = 0;
  const auto get = [&] { return sai_port_speed_get(unit, 3, &value); };
  EXPECT_TRUE(observe_failing("bcm_port_speed_get", BCM_E_PORT, get)
                  .ends_with("log: errors: NONE: Failed to get port [3] speed: \nreturned -9\n"));
  value = 0x64636261;
  EXPECT_TRUE(observe_failing("bcm_port_speed_get", BCM_E_PORT, get)
                  .ends_with("log: errors: NONE: Failed to get port [3] speed: abcd\nreturned -9\n"));
  EXPECT_TRUE(observe_failing("bcm_port_autoneg_get", BCM_E_PORT, [] {
                return sai_port_autoneg_get(unit, 3, nullptr);
              }).ends_with("log: errors: NONE: Failed to get port [3] autoneg: (null)\nreturned -9\n"));
}

TEST_F(PortAttributes, LinkScanGoesOnAfterAFailure) {
  int32_t value = 0;
  EXPECT_EQ(sai_port_enable_set(unit, 200, 1), SAI_E_PORT);
  EXPECT_EQ(sai_port_enable_get(unit, 200, &value), SAI_E_PORT);
  EXPECT_TRUE(observe([&] {
                return sai_port_enable_get(unit, 3, &value);
              }).starts_with("soc_linkscan_pause(0) = 0\nbcm_port_enable_get(0, 3, &1) = 0\nsoc_linkscan_continue(0)"));
}

TEST_F(PortAttributes, LoopbackTakesThreeModes) {
  for (const int32_t mode : {0, 1, 2})
    EXPECT_EQ(observe([=] { return sai_port_loopback_set(unit, 3, mode); }),
              "bcm_port_loopback_set(0, 3, " + std::to_string(mode) + ") = 0\nreturned 0\n");
  for (const int32_t mode : {3, -1, INT32_MAX})
    EXPECT_EQ(observe([=] { return sai_port_loopback_set(unit, 3, mode); }),
              "log: errors: NONE: Invalid loopback mode " + std::to_string(mode) + "\nreturned -1\n");
}

TEST_F(PortAttributes, PrecedenceTakesTwoModesAndRefusesOthersSilently) {
  for (const int32_t mode : {0, 3, -1})
    EXPECT_EQ(observe([=] { return sai_vlan_precedence_set(unit, 3, mode); }), "returned -1\n");
}

TEST_F(PortAttributes, ALookupThatIsNotReadIsOff) {
  ASSERT_EQ(sai_port_mac_vlan_set(unit, 3, 1), 0);
  ASSERT_EQ(sai_port_subnet_vlan_set(unit, 3, 1), 0);
  uint8_t enabled = 7;
  EXPECT_EQ(sai_port_mac_vlan_get(unit, 3, &enabled), 0);
  EXPECT_EQ(enabled, 1);
  EXPECT_EQ(sai_port_subnet_vlan_get(unit, 3, &enabled), 0);
  EXPECT_EQ(enabled, 1);
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_control_port_get", BCM_E_FAIL, SWSDK_FAULT_EVERY_CALL), 0);
  enabled = 7;
  EXPECT_EQ(sai_port_mac_vlan_get(unit, 3, &enabled), SAI_E_FAIL);
  EXPECT_EQ(enabled, 0);
  enabled = 7;
  EXPECT_EQ(sai_port_subnet_vlan_get(unit, 3, &enabled), SAI_E_FAIL);
  EXPECT_EQ(enabled, 0);
}

TEST_F(PortAttributes, IsolationTakesOneDestinationAfterTheOtherAndIsUndoneAtOnce) {
  EXPECT_EQ(sai_port_isolate_reset(unit, 3), 0);
  EXPECT_EQ(observe([] { return sai_port_isolate_set(unit, 3, 5); }),
            "bcm_port_egress_get(0, 3, 0, &{1-12}) = 0\n"
            "bcm_port_egress_set(0, 3, 0, {1-4,6-12}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe([] { return sai_port_isolate_set(unit, 3, 12); }),
            "bcm_port_egress_get(0, 3, 0, &{1-4,6-12}) = 0\n"
            "bcm_port_egress_set(0, 3, 0, {1-4,6-11}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe([] { return sai_port_isolate_reset(unit, 3); }),
            "bcm_port_egress_set(0, 3, 0, {1-12}) = 0\nreturned 0\n");
}

TEST_F(PortAttributes, IsolationStopsAtAFailedRead) {
  EXPECT_EQ(observe_failing("bcm_port_egress_get", BCM_E_PORT, [] { return sai_port_isolate_set(unit, 3, 5); }),
            "bcm_port_egress_get(0, 3, 0, &?) = -18\n"
            "log: errors: NONE: Failed to get port [3] egress: Invalid port\n"
            "returned -9\n");
  const std::string seen =
      observe_failing("bcm_port_egress_set", BCM_E_PORT, [] { return sai_port_isolate_set(unit, 3, 5); });
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: Failed to set port [3] egress: Invalid port\nreturned -9\n")) << seen;
}

TEST_F(PortAttributes, IsolationFromAPortThatFitsNoBitmapIsRefused) {
  for (const int32_t target : {-1, 256, INT32_MAX}) {
    const std::string seen = observe([=] { return sai_port_isolate_set(unit, 3, target); });
    EXPECT_TRUE(seen.ends_with("log: errors: NONE: Failed to set port [3] egress: Invalid parameter\nreturned -5\n"));
    EXPECT_EQ(seen.find("bcm_port_egress_set"), std::string::npos);
  }
}

TEST_F(PortAttributes, IsolationIsUndoneWithTheFrontPortsOfUnitZero) {
  support::start_chip(2);
  EXPECT_EQ(observe([] { return sai_port_isolate_reset(1, 3); }),
            "bcm_port_egress_set(1, 3, 0, {1-12}) = 0\nreturned 0\n");
  BCM_PBMP_PORT_REMOVE(SOC_PORT_BITMAP(0, port), 12);
  EXPECT_EQ(observe([] { return sai_port_isolate_reset(1, 3); }),
            "bcm_port_egress_set(1, 3, 0, {1-11}) = 0\nreturned 0\n");
}

TEST_F(PortAttributes, IsolationIsUndoneWithTheSetsBitmapWhateverItsLowestPort) {
  SOC_PORT_MIN(unit, port) = -1;
  EXPECT_EQ(observe([] { return sai_port_isolate_reset(unit, 3); }),
            "bcm_port_egress_set(0, 3, 0, {1-12}) = 0\nreturned 0\n");
}

TEST_F(PortAttributes, ClearingProtocolVlansShowsTheTextsAddressAndItsNumber) {
  ASSERT_EQ(sai_port_protocol_vlan_add(unit, 3, 1, 0x8863, 10), 0);
  EXPECT_EQ(observe([] { return sai_port_protocol_vlan_clear(unit, 3); }),
            "bcm_port_protocol_vlan_delete_all(0, 3) = 0\nreturned 0\n");
  const struct {
    int code;
    int index;
    int32_t result;
  } cases[] = {{BCM_E_PORT, 18, SAI_E_PORT}, {BCM_E_FULL, 6, SAI_E_FULL}, {-99, 23, SAI_E_FAIL}};
  for (const auto& [code, index, result] : cases)
    EXPECT_EQ(observe_failing("bcm_port_protocol_vlan_delete_all", code,
                              [] { return sai_port_protocol_vlan_clear(unit, 3); }),
              "bcm_port_protocol_vlan_delete_all(0, 3) = " + std::to_string(code) +
                  "\nlog: errors: NONE: Failed to clear port " + as_number(_shr_errmsg[index]) +
                  " protocol base vlan: " + std::to_string(index) + "\nreturned " + std::to_string(result) + "\n");
}

TEST_F(PortAttributes, TheGapStopsWhereSpeedOrDuplexIsNotRead) {
  int32_t gap = 77;
  const struct {
    const char* function;
    const char* before;
    const char* what;
  } steps[] = {{"bcm_port_speed_get", "", "speed"},
               {"bcm_port_duplex_get", "bcm_port_speed_get(0, 3, &1000) = 0\n", "duplex"}};
  for (const auto& [function, before, what] : steps) {
    const std::string expected = std::string(before) + function + "(0, 3, &?) = -9\n" +
                                 "log: errors: NONE: Failed to get port [3] " + what +
                                 ": Operation took too long\nreturned -1\n";
    EXPECT_EQ(observe_failing(function, BCM_E_TIMEOUT, [] { return sai_port_ifg_set(unit, 3, 64); }), expected);
    EXPECT_EQ(observe_failing(function, BCM_E_TIMEOUT, [&] { return sai_port_ifg_get(unit, 3, &gap); }), expected);
  }
  EXPECT_EQ(gap, 77);
}

}  // namespace
