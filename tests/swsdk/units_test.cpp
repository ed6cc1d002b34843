// Units, their information, and the answers that do not depend on a table.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/init.h>
#include <bcm/l2.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <shared/error.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

#include <set>
#include <string>

#include "support/scene.h"
#include "support/start.h"

extern "C" {
int sdk_main(int argc, char** argv);
extern uint32* l3_module_data[];
}

namespace {

using support::attach_chip;
using support::start_chip;

class Units : public testing::Test {
 protected:
  ~Units() override { swsdk_power_off(); }

  static std::string ports(const bcm_pbmp_t& bitmap) {
    std::string result;
    for (int port = 0; port < BCM_PBMP_PORT_MAX; ++port)
      if (BCM_PBMP_MEMBER(bitmap, port)) result += std::to_string(port) + ' ';
    return result;
  }
};

TEST_F(Units, AreAbsentUntilTheSdkStarts) {
  swsdk_power_off();
  EXPECT_EQ(soc_ndev, 0);
  EXPECT_EQ(soc_control[0], nullptr);
  EXPECT_EQ(l3_module_data[0], nullptr);
  EXPECT_EQ(bcm_vlan_init(0), BCM_E_UNIT);
  EXPECT_EQ(system_init(0), BCM_E_UNIT);
}

TEST_F(Units, AnswerNotInitializedUntilTheSystemIsInitialized) {
  attach_chip();
  EXPECT_EQ(soc_ndev, 1);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_INIT);
  EXPECT_EQ(bcm_l2_init(0), BCM_E_INIT);
  EXPECT_EQ(system_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
}

TEST_F(Units, TellWhichChipTheyAreAndNoVendor) {
  swsdk_power_off();
  const swsdk_board board{.units = 2, .ports = 12, .chip_type = 50};
  ASSERT_EQ(swsdk_board_set(&board), 0);
  sdk_main(0, nullptr);
  ASSERT_EQ(system_init(1), BCM_E_NONE);
  bcm_info_t info{.vendor = 7, .device = 7, .revision = 7, .capability = 7};
  swsdk_journal_clear();
  swsdk_journal_record(1);
  EXPECT_EQ(bcm_info_get(1, &info), BCM_E_NONE);
  EXPECT_EQ(bcm_info_get(2, &info), BCM_E_UNIT);
  EXPECT_EQ(bcm_info_get(1, nullptr), BCM_E_PARAM);
  swsdk_journal_record(0);
  EXPECT_EQ(info.device, 50U);
  for (const uint32 nothing : {info.vendor, info.revision, info.capability}) EXPECT_EQ(nothing, 0U);
  EXPECT_EQ(support::journal(),
            "bcm_info_get(1, &{device=0x32}) = 0\n"
            "bcm_info_get(2, &?) = -3\n"
            "bcm_info_get(1, NULL) = -4\n");
}

TEST_F(Units, ThatDoNotExistAreRefused) {
  start_chip(2);
  EXPECT_EQ(bcm_vlan_create(-1, 10), BCM_E_UNIT);
  EXPECT_EQ(bcm_vlan_create(1, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_create(2, 10), BCM_E_UNIT);
  EXPECT_EQ(bcm_vlan_create(INT32_MAX, 10), BCM_E_UNIT);
}

TEST_F(Units, KeepTheirTablesApart) {
  start_chip(2);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_destroy(1, 10), BCM_E_NOT_FOUND);
}

TEST_F(Units, AreInitializedAnewWithEmptyTables) {
  start_chip();
  bcm_vlan_create(0, 10);
  bcm_switch_control_set(0, bcmSwitchL3EgressMode, 1);
  EXPECT_EQ(system_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_destroy(0, 10), BCM_E_NOT_FOUND);
  int mode = -1;
  EXPECT_EQ(bcm_switch_control_get(0, bcmSwitchL3EgressMode, &mode), BCM_E_NONE);
  EXPECT_EQ(mode, 0);
}

TEST_F(Units, KeepTheirCablesWhenTheyAreInitializedAnew) {
  start_chip();
  EXPECT_EQ(swsdk_link_event(0, 3, 1), 0);
  bcm_port_enable_set(0, 3, 0);
  EXPECT_EQ(system_init(0), BCM_E_NONE);
  int up = -1;
  EXPECT_EQ(bcm_port_link_status_get(0, 3, &up), BCM_E_NONE);
  EXPECT_EQ(up, 1);
  EXPECT_EQ(bcm_port_link_status_get(0, 4, &up), BCM_E_NONE);
  EXPECT_EQ(up, 0);
}

TEST_F(Units, StayAttachedWhenTheSdkStartsTwice) {
  start_chip();
  bcm_vlan_create(0, 10);
  EXPECT_EQ(sdk_main(0, nullptr), 0);
  EXPECT_EQ(soc_ndev, 1);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
}

TEST_F(Units, TellTheirPortSetsAndChipType) {
  swsdk_power_off();
  const swsdk_board board{.units = 1, .ports = 3, .chip_type = 50};
  ASSERT_EQ(swsdk_board_set(&board), 0);
  sdk_main(0, nullptr);
  EXPECT_EQ(CMIC_PORT(0), 0);
  EXPECT_EQ(SOC_CHIP_TYPE(0), 50);
  EXPECT_EQ(SOC_PORT_MIN(0, ether), 1);
  EXPECT_EQ(SOC_PORT_MAX(0, ether), 3);
  EXPECT_EQ(ports(SOC_PORT_BITMAP(0, ether)), "1 2 3 ");
  EXPECT_EQ(SOC_PORT_MIN(0, port), 1);
  EXPECT_EQ(SOC_PORT_MAX(0, port), 3);
  EXPECT_EQ(ports(SOC_PORT_BITMAP(0, port)), "1 2 3 ");
  EXPECT_EQ(SOC_PORT_MIN(0, all), 0);
  EXPECT_EQ(ports(SOC_PORT_BITMAP(0, all)), "0 1 2 3 ");
  ASSERT_NE(l3_module_data[0], nullptr);
  EXPECT_EQ(l3_module_data[0][0] & 1, 0U);
}

TEST_F(Units, CanBeNone) {
  attach_chip(0);
  EXPECT_EQ(soc_ndev, 0);
  EXPECT_EQ(bcm_vlan_init(0), BCM_E_UNIT);
}

TEST_F(Units, TheBoardChangesOnlyWithinItsRangesAndWhileTheSdkIsOff) {
  swsdk_power_off();
  for (const swsdk_board& bad : {swsdk_board{-1, 12, 0}, swsdk_board{17, 12, 0}, swsdk_board{1, 0, 0},
                                 swsdk_board{1, 256, 0}, swsdk_board{1, 12, -1}})
    EXPECT_EQ(swsdk_board_set(&bad), -1);
  EXPECT_EQ(swsdk_board_set(nullptr), -1);
  const swsdk_board largest{16, 255, 0};
  EXPECT_EQ(swsdk_board_set(&largest), 0);
  sdk_main(0, nullptr);
  EXPECT_EQ(soc_ndev, 16);
  EXPECT_EQ(SOC_PORT_MAX(15, all), 255);
  const swsdk_board usual{1, 12, 0};
  EXPECT_EQ(swsdk_board_set(&usual), -1);
  swsdk_board now;
  swsdk_board_get(&now);
  EXPECT_EQ(now.units, 16);
  EXPECT_EQ(now.ports, 255);
}

TEST_F(Units, TellEachErrorInItsOwnWords) {
  std::set<std::string> texts;
  for (int code = 0; code <= 23; ++code) {
    ASSERT_NE(_shr_errmsg[code], nullptr);
    texts.insert(_shr_errmsg[code]);
  }
  EXPECT_EQ(texts.size(), 24U);
  EXPECT_FALSE(texts.contains(""));
}

TEST_F(Units, RefuseANullPointerWhereTheyNeedSomething) {
  start_chip();
  EXPECT_EQ(bcm_vlan_control_vlan_get(0, 1, nullptr), BCM_E_PARAM);
  EXPECT_EQ(bcm_switch_control_get(0, bcmSwitchL3EgressMode, nullptr), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_addr_add(0, nullptr), BCM_E_PARAM);
}

TEST_F(Units, ShowTheirTables) {
  start_chip();
  bcm_vlan_create(0, 10);
  bcm_pbmp_t ports;
  BCM_PBMP_CLEAR(ports);
  BCM_PBMP_PORT_ADD(ports, 2);
  bcm_vlan_port_add(0, 10, ports, ports);
  char text[1024];
  ASSERT_GT(swsdk_show(0, "port", text, sizeof text), 0);
  EXPECT_EQ(std::string(text).substr(0, std::string(text).find("\n3 ")),
            "port  kind     state  speed  duplex  tagged in  untagged in\n"
            "0     cpu      -      -      -       1          -\n"
            "1     gigabit  down   1000   full    -          1\n"
            "2     gigabit  down   1000   full    -          1,10");
  EXPECT_NE(std::string(text).find("12    uplink   down   10000  full    -          1\n"), std::string::npos);
}

TEST_F(Units, ShowOnlyTablesThatThereAre) {
  EXPECT_EQ(swsdk_show(0, "vlan", nullptr, 0), -1);
  start_chip();
  EXPECT_GT(swsdk_show(0, "vlan", nullptr, 0), 0);
  EXPECT_EQ(swsdk_show(0, "nothing", nullptr, 0), -1);
  EXPECT_EQ(swsdk_show(0, nullptr, nullptr, 0), -1);
  EXPECT_EQ(swsdk_show(1, "vlan", nullptr, 0), -1);
}

TEST_F(Units, NameTheTablesThatTheyShow) {
  start_chip();
  int count = 0;
  for (; swsdk_show_table(count) != nullptr; ++count)
    EXPECT_GT(swsdk_show(0, swsdk_show_table(count), nullptr, 0), 0) << swsdk_show_table(count);
  EXPECT_GE(count, 2);
  EXPECT_EQ(swsdk_show_table(-1), nullptr);
}

TEST_F(Units, ShowWhatFitsTheBufferAndTellTheWholeLength) {
  start_chip();
  char text[5] = "....";
  EXPECT_GT(swsdk_show(0, "vlan", text, sizeof text), 5);
  EXPECT_STREQ(text, "VLAN");
}

}  // namespace
