// What the board does to a chip from outside, and how the SDK's calls see it: counters, temperatures, PHY registers.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/stat.h>
#include <bcm/switch.h>
#include <gtest/gtest.h>
#include <soc/cmic.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <string>

#include "support/scene.h"
#include "support/start.h"

namespace {

class Board : public testing::Test {
 protected:
  Board() { support::start_chip(); }
  ~Board() override { swsdk_power_off(); }

  static uint64 counter(bcm_port_t port, bcm_stat_val_t stat) {
    uint64 value = 99;
    EXPECT_EQ(bcm_stat_get(0, port, stat, &value), BCM_E_NONE);
    return value;
  }

  /// The readings as the SDK tells them, "current/peak " for each sensor that there is room for.
  static std::string temperatures(int room) {
    bcm_switch_temperature_monitor_t all[300] = {};
    int count = -1;
    EXPECT_EQ(bcm_switch_temperature_monitor_get(0, room, all, &count), BCM_E_NONE);
    std::string result;
    for (int i = 0; i < count; ++i) result += std::to_string(all[i].curr) + '/' + std::to_string(all[i].peak) + ' ';
    return result;
  }

  static constexpr swsdk_temperature readings[] = {{405, 450}, {-15, 0}, {1250, 1300}};
};

TEST_F(Board, SetsCounters) {
  EXPECT_EQ(swsdk_counter_set(0, 1, snmpIfHCInOctets, 1ULL << 32), 0);
  EXPECT_EQ(bcm_stat_sync(0), BCM_E_NONE);
  EXPECT_EQ(counter(1, snmpIfHCInOctets), 1ULL << 32);
  EXPECT_EQ(counter(2, snmpIfHCInOctets), 0U);
  EXPECT_EQ(bcm_stat_clear(0, 1), BCM_E_NONE);
  EXPECT_EQ(counter(1, snmpIfHCInOctets), 0U);
}

TEST_F(Board, SetsCountersThatAreReadSeveralAtOnce) {
  swsdk_counter_set(0, 1, snmpIfInOctets, 5);
  swsdk_counter_set(0, 1, snmpIfInErrors, 6);
  bcm_stat_val_t stats[] = {snmpIfInErrors, snmpIfInDiscards, snmpIfInOctets};
  uint64 values[3] = {99, 99, 99};
  EXPECT_EQ(bcm_stat_multi_get(0, 1, 3, stats, values), BCM_E_NONE);
  EXPECT_EQ(values[0], 6U);
  EXPECT_EQ(values[1], 0U);
  EXPECT_EQ(values[2], 5U);
  stats[1] = snmpValCount;
  EXPECT_EQ(bcm_stat_multi_get(0, 1, 3, stats, values), BCM_E_PARAM);
  EXPECT_EQ(bcm_stat_multi_get(0, 1, -1, stats, values), BCM_E_PARAM);
}

TEST_F(Board, HasNoOtherCounters) {
  uint64 value = 0;
  EXPECT_EQ(swsdk_counter_set(0, 13, 0, 1), -1);
  EXPECT_EQ(swsdk_counter_set(0, 1, 312, 1), -1);
  EXPECT_EQ(swsdk_counter_set(1, 1, 0, 1), -1);
  EXPECT_EQ(bcm_stat_get(0, 13, snmpIfInOctets, &value), BCM_E_PORT);
  EXPECT_EQ(bcm_stat_get(0, 1, snmpValCount, &value), BCM_E_PARAM);
  EXPECT_EQ(bcm_stat_clear(0, 13), BCM_E_PORT);
}

TEST_F(Board, SetsTemperatures) {
  EXPECT_EQ(temperatures(160), "405/450 417/470 ");
  EXPECT_EQ(swsdk_temperatures_set(0, readings, 3), 0);
  EXPECT_EQ(temperatures(160), "405/450 -15/0 1250/1300 ");
  EXPECT_EQ(temperatures(2), "405/450 -15/0 ");
  EXPECT_EQ(temperatures(0), "");
  system_init(0);
  EXPECT_EQ(temperatures(160), "405/450 -15/0 1250/1300 ");
  EXPECT_EQ(swsdk_temperatures_set(0, nullptr, 0), 0);
  EXPECT_EQ(temperatures(160), "");
}

TEST_F(Board, SetsAsManyTemperaturesAsThereCanBeSensors) {
  const swsdk_temperature many[256] = {};
  EXPECT_EQ(swsdk_temperatures_set(0, many, 256), 0);
  EXPECT_EQ(temperatures(300).size(), 256 * std::string("0/0 ").size());
  EXPECT_EQ(swsdk_temperatures_set(0, many, 257), -1);
  EXPECT_EQ(swsdk_temperatures_set(0, many, -1), -1);
  EXPECT_EQ(swsdk_temperatures_set(0, nullptr, 1), -1);
  EXPECT_EQ(swsdk_temperatures_set(1, many, 1), -1);
}

TEST_F(Board, TemperaturesShowInTheJournalAsManyAsThereAre) {
  swsdk_journal_record(1);
  temperatures(160);
  EXPECT_EQ(support::journal(),
            "bcm_switch_temperature_monitor_get(0, 160, &[{curr=405, peak=450}, {curr=417, peak=470}], &2) = 0\n");
  int count = 0;
  EXPECT_EQ(bcm_switch_temperature_monitor_get(0, -1, nullptr, &count), BCM_E_PARAM);
  EXPECT_EQ(bcm_switch_temperature_monitor_get(0, 1, nullptr, &count), BCM_E_PARAM);
}

TEST_F(Board, ReadsAndSetsPhyRegisters) {
  EXPECT_EQ(swsdk_phy_register_set(0, 1, SWSDK_PHY_CLAUSE22, 2, 0xFFFF), 0);
  EXPECT_EQ(swsdk_phy_register_set(0, 1, 1, 2, 3), 0);
  EXPECT_EQ(swsdk_phy_register_get(0, 1, SWSDK_PHY_CLAUSE22, 2), 0xFFFF);
  uint16 data = 0;
  EXPECT_EQ(soc_miimc45_read(0, 1, 1, 2, &data), BCM_E_NONE);
  EXPECT_EQ(data, 3);
  soc_miimc45_write(0, 1, 1, 2, 4);
  EXPECT_EQ(swsdk_phy_register_get(0, 1, 1, 2), 4);
}

TEST_F(Board, HasNoOtherPhyRegisters) {
  EXPECT_EQ(swsdk_phy_register_get(0, -1, 1, 0), -1);
  EXPECT_EQ(swsdk_phy_register_get(0, 256, 1, 0), -1);
  EXPECT_EQ(swsdk_phy_register_get(0, 1, 32, 0), -1);
  EXPECT_EQ(swsdk_phy_register_get(0, 1, 1, -1), -1);
  EXPECT_EQ(swsdk_phy_register_get(0, 1, SWSDK_PHY_CLAUSE22, 32), -1);
  EXPECT_EQ(swsdk_phy_register_get(1, 1, 1, 0), -1);
  EXPECT_EQ(swsdk_phy_register_set(0, 1, 1, 0, 0x10000), -1);
  EXPECT_EQ(swsdk_phy_register_set(0, 1, 1, 0, -1), -1);
}

}  // namespace
