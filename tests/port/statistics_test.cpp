#include <bcm/error.h>
#include <bcm/stat.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/scene.h"

namespace {

class Statistics : public support::Scene {
 protected:
  Statistics() {
    for (sai_hw_counter& row : hw_counters_table) row.value = 0;
  }

  /// What `call` prints.
  template <class Call>
  static std::string printed(Call call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
  }

  static std::string shown(int32_t port) {
    return printed([=] { EXPECT_EQ(sai_port_stat_show(unit, port), 0); });
  }

  static std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) result.push_back(line);
    return result;
  }
};

TEST_F(Statistics, ShowPrintsEveryCounterOfThePortInOrder) {
  ASSERT_EQ(swsdk_counter_set(unit, 3, snmpIfInOctets, 12), 0);
  const std::vector<std::string> all = lines(shown(3));
  ASSERT_EQ(all.size(), 312U);
  EXPECT_EQ(all[0], "      12\tsnmpIfInOctets (stat 0)\r");
  EXPECT_EQ(all[1], "       0\tsnmpIfInUcastPkts (stat 1)\r");
  EXPECT_EQ(all[311], "       0\tsnmpBcmTxRedirectionBufferDropPkts (stat 311)\r");
  for (std::size_t i = 0; i < all.size(); ++i)
    EXPECT_TRUE(all[i].ends_with(" (stat " + std::to_string(i) + ")\r")) << all[i];
}

TEST_F(Statistics, AValueOfMoreThanThirtyTwoBitsIsPrintedInHexadecimal) {
  ASSERT_EQ(swsdk_counter_set(unit, 3, snmpIfInOctets, 4294967295), 0);
  ASSERT_EQ(swsdk_counter_set(unit, 3, snmpIfInUcastPkts, 4294967296), 0);
  ASSERT_EQ(swsdk_counter_set(unit, 3, snmpIfInNUcastPkts, 0xFEDCBA9876543210), 0);
  const std::vector<std::string> all = lines(shown(3));
  EXPECT_EQ(all[0], "4294967295\tsnmpIfInOctets (stat 0)\r");
  EXPECT_EQ(all[1], "0x0000000100000000\tsnmpIfInUcastPkts (stat 1)\r");
  EXPECT_EQ(all[2], "0xfedcba9876543210\tsnmpIfInNUcastPkts (stat 2)\r");
}

TEST_F(Statistics, ShowLeavesOutWhatIsNotReadAndGivesTheLastResult) {
  std::string text;
  EXPECT_TRUE(observe_failing(
                  "bcm_stat_get", BCM_E_UNAVAIL,
                  [&] {
                    int32_t result = 0;
                    text = printed([&] { result = sai_port_stat_show(unit, 3); });
                    return result;
                  },
                  2)
                  .ends_with(") = 0\nreturned 0\n"));
  EXPECT_EQ(lines(text).size(), 311U);
  EXPECT_EQ(text.find("snmpIfInUcastPkts"), std::string::npos);
  EXPECT_TRUE(observe_failing(
                  "bcm_stat_get", BCM_E_UNAVAIL,
                  [&] {
                    int32_t result = 0;
                    text = printed([&] { result = sai_port_stat_show(unit, 3); });
                    return result;
                  },
                  312)
                  .ends_with(") = -16\nreturned -2\n"));
  EXPECT_EQ(lines(text).size(), 311U);
}

TEST_F(Statistics, ShowStopsWhenTheCountersCannotBeBroughtUpToDate) {
  EXPECT_EQ(observe_failing("bcm_stat_sync", BCM_E_TIMEOUT, [] { return sai_port_stat_show(unit, 3); }),
            "bcm_stat_sync(0) = -9\n"
            "log: errors: NONE: sai_port_stat_show bcm_stat_get failed: Operation took too long\n"
            "returned -1\n");
}

TEST_F(Statistics, CleanClearsOnePort) {
  ASSERT_EQ(swsdk_counter_set(unit, 3, snmpIfInOctets, 12), 0);
  ASSERT_EQ(swsdk_counter_set(unit, 4, snmpIfInOctets, 13), 0);
  EXPECT_EQ(observe([] { return sai_port_stat_clean(unit, 3); }), "bcm_stat_clear(0, 3) = 0\nreturned 0\n");
  EXPECT_EQ(lines(shown(3))[0], "       0\tsnmpIfInOctets (stat 0)\r");
  EXPECT_EQ(lines(shown(4))[0], "      13\tsnmpIfInOctets (stat 0)\r");
  EXPECT_EQ(observe_failing("bcm_stat_clear", BCM_E_PORT, [] { return sai_port_stat_clean(unit, 3); }),
            "bcm_stat_clear(0, 3) = -18\n"
            "log: errors: NONE: sai_port_stat_clean bcm_stat_clear port 3 failed: Invalid port\n"
            "returned -9\n");
}

TEST_F(Statistics, CleanOfAllGoesOnAfterAFailureAndGivesTheLastResult) {
  std::string calls;
  for (int port = 1; port <= 12; ++port)
    calls += "bcm_stat_clear(0, " + std::to_string(port) + ") = " + (port == 2 ? "-18\n" : "0\n");
  EXPECT_EQ(observe_failing(
                "bcm_stat_clear", BCM_E_PORT, [] { return sai_stat_clean(unit); }, 2),
            calls + "log: errors: NONE: sai_stat_clean bcm_stat_clear port 2 failed: Invalid port\nreturned 0\n");
  EXPECT_TRUE(observe_failing(
                  "bcm_stat_clear", BCM_E_PORT, [] { return sai_stat_clean(unit); }, 12)
                  .ends_with("log: errors: NONE: sai_stat_clean bcm_stat_clear port 12 failed: Invalid port\n"
                             "returned -9\n"));
}

TEST_F(Statistics, CleanOfAllIsOfTheEthernetPorts) {
  BCM_PBMP_CLEAR(SOC_PORT_BITMAP(unit, ether));
  for (const int port : {2, 5}) BCM_PBMP_PORT_ADD(SOC_PORT_BITMAP(unit, ether), port);
  EXPECT_EQ(observe([] { return sai_stat_clean(unit); }),
            "bcm_stat_clear(0, 2) = 0\nbcm_stat_clear(0, 5) = 0\nreturned 0\n");
}

TEST_F(Statistics, CleanOfAllTakesTheSetsBitmapWhateverItsLowestAndHighestPort) {
  SOC_PORT_MIN(unit, ether) = -1;
  SOC_PORT_MAX(unit, ether) = 1;
  BCM_PBMP_CLEAR(SOC_PORT_BITMAP(unit, ether));
  for (const int port : {2, 5}) BCM_PBMP_PORT_ADD(SOC_PORT_BITMAP(unit, ether), port);
  EXPECT_EQ(observe([] { return sai_stat_clean(unit); }),
            "bcm_stat_clear(0, 2) = 0\nbcm_stat_clear(0, 5) = 0\nreturned 0\n");
}

TEST_F(Statistics, CleanWithoutPortsMakesNoCall) {
  EXPECT_EQ(observe([] { return sai_stat_clean(1); }), "returned 0\n");
  BCM_PBMP_CLEAR(SOC_PORT_BITMAP(unit, ether));
  EXPECT_EQ(observe([] { return sai_stat_clean(unit); }), "returned 0\n");
}

constexpr int stats[18] = {58, 18, 59, 60, 61, 3, 4, 56, 62, 19, 63, 64, 65, 9, 10, 57, 39, 38};

TEST_F(Statistics, TheMibReadGivesEighteenCountersInTheirOrder) {
  std::string calls;
  for (int i = 0; i < 18; ++i) {
    EXPECT_EQ(hw_counters_table[i].index, static_cast<uint32_t>(i));
    EXPECT_EQ(hw_counters_table[i].stat, static_cast<uint32_t>(stats[i]));
    const unsigned value = 100 + static_cast<unsigned>(i);
    ASSERT_EQ(swsdk_counter_set(unit, 3, stats[i], value), 0);
    calls += "bcm_stat_get(0, 3, " + std::to_string(stats[i]) + ", &" + std::to_string(value) + ") = 0\n";
  }
  uint64_t values[18] = {};
  EXPECT_EQ(observe([&] { return sai_port_mib_read(unit, 3, values); }), calls + "returned 0\n");
  for (uint64_t i = 0; i < 18; ++i) {
    EXPECT_EQ(values[i], 100 + i);
    EXPECT_EQ(hw_counters_table[i].value, 100 + i);
  }
}

TEST_F(Statistics, ACounterThatIsNotReadKeepsItsLastValueOfWhicheverPort) {
  for (const int stat : stats) {
    ASSERT_EQ(swsdk_counter_set(unit, 3, stat, 30), 0);
    ASSERT_EQ(swsdk_counter_set(unit, 4, stat, 40), 0);
  }
  uint64_t values[18] = {};
  ASSERT_EQ(sai_port_mib_read(unit, 3, values), 0);
  ASSERT_EQ(swsdk_fault_inject("bcm_stat_get", BCM_E_PORT, 5), 0);
  ASSERT_EQ(sai_port_mib_read(unit, 4, values), 0);
  for (int i = 0; i < 18; ++i) EXPECT_EQ(values[i], i == 4 ? 30U : 40U);

  ASSERT_EQ(swsdk_fault_inject("bcm_stat_get", BCM_E_PORT, SWSDK_FAULT_EVERY_CALL), 0);
  const std::string seen = observe([&] { return sai_port_mib_read(unit, 5, values); });
  EXPECT_EQ(seen.find("log:"), std::string::npos);
  EXPECT_TRUE(seen.ends_with("returned 0\n"));
  for (int i = 0; i < 18; ++i) EXPECT_EQ(values[i], i == 4 ? 30U : 40U);
}

}  // namespace
