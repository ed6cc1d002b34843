#include <bcm/error.h>

#include <string>
#include <vector>

#include "support/rows.h"
#include "support/start.h"

namespace {

using support::Row;

constexpr int32_t unit = 0;

uint16_t word = 7;
uint32_t value = 7;

const std::string speed = "bcm_port_speed_get(0, 3, &1000) = 0\n";

const Row rows[] = {
    {"MiimRead", [] { return sai_phy_miim_read(unit, 300, 0x1F, &word); }, "soc_miim_read(0, 300, 31, &7)",
     "Failed to read phy [300] reg [0x1f]: "},
    {"MiimWrite", [] { return sai_phy_miim_write(unit, 300, 0x1F, 0xABCD); }, "soc_miim_write(0, 300, 31, 0xabcd)",
     "Failed to write phy [300] reg [0x1f] value [0xabcd]: "},
    {"Clause45Read", [] { return sai_phy_miimc45_read(unit, 300, 1, 0x134, &word); },
     "soc_miimc45_read(0, 300, 1, 52, &7)", "Failed to read phy [300] devad [1] reg [0x34]: "},
    {"Clause45Write", [] { return sai_phy_miimc45_write(unit, 300, 1, 0x134, 0xABCD); },
     "soc_miimc45_write(0, 300, 1, 52, 0xabcd)", "Failed to write phy [300] devad [1] reg [0x34] value [0xabcd]: "},
    {"PortRead", [] { return sai_port_phy_read(unit, 3, 0x10, &value); }, "bcm_port_phy_get(0, 3, 0x0, 0x10, &7)",
     "Failed to read phy [3] reg [0x10]: "},
    {"PortWrite", [] { return sai_port_phy_write(unit, 3, 0x10, 0xFFFFFFFF); },
     "bcm_port_phy_set(0, 3, 0x0, 0x10, 0xffffffff)", "Failed to write phy [3] reg [0x10] value [0xffffffff]: "},
    {"FecSet", [] { return sai_port_phy_fec_set(unit, 3, 2, 1); }, "bcm_port_phy_control_set(0, 3, 319, 1)",
     "Failed to set port [3] phy control 319 enable 1: ", speed},
    {"FecGet", [] { return sai_port_phy_fec_get(unit, 3, 3, &value); }, "bcm_port_phy_control_get(0, 3, 353, &7)",
     "Failed to get port [3] phy control 353 : "},
    {"DfeSet", [] { return sai_port_phy_dfe_set(unit, 3, 2, 1); }, "bcm_port_phy_control_set(0, 3, 303, 1)",
     "Failed to set port [3] phy control 303 enable 1: "},
    {"DfeGet", [] { return sai_port_phy_dfe_get(unit, 3, 3, &value); }, "bcm_port_phy_control_get(0, 3, 304, &7)",
     "Failed to get port [3] phy control 304 : "},
    {"RxPeakFilterSet", [] { return sai_port_phy_rx_pf_set(unit, 3, 3, 5); }, "bcm_port_phy_control_set(0, 3, 102, 5)",
     "Failed to set port [3] phy control 102 value 5: ", speed},
    {"RxTapSet", [] { return sai_port_phy_rxtap_set(unit, 3, 6, 5); }, "bcm_port_phy_control_set(0, 3, 338, 5)",
     "Failed to set port [3] phy control 338 value 5: "},
};

class Phy : public support::RowTest {
 protected:
  Phy() {
    word = 7;
    value = 7;
  }
};

TEST_P(Phy, PassesTheSdksSuccessOn) { check_success(); }
TEST_P(Phy, LogsTheSdksFailureOnceAndConvertsIt) { check_failure(); }
INSTANTIATE_TEST_SUITE_P(All, Phy, testing::ValuesIn(rows), support::name_of);

class Phys : public support::Scene {};

TEST_F(Phys, ASelectorOutsideItsFamilyTakesTheFirst) {
  const struct {
    int32_t (*set)(int32_t unit, int32_t port, int32_t selector, uint32_t value);
    std::vector<int> controls;
  } families[] = {{sai_port_phy_fec_set, {74, 319, 353}},
                  {sai_port_phy_dfe_set, {302, 303, 304}},
                  {sai_port_phy_rx_pf_set, {100, 101, 102}},
                  {sai_port_phy_rxtap_set, {103, 104, 105, 106, 107, 338}}};
  for (const auto& family : families) {
    const int count = static_cast<int>(family.controls.size());
    for (const int selector : {INT32_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 9, INT32_MAX}) {
      const int expected =
          1 <= selector && selector <= count ? family.controls[static_cast<size_t>(selector - 1)] : family.controls[0];
      const std::string call = "bcm_port_phy_control_set(0, 3, " + std::to_string(expected) + ", 1) = ";
      const std::string seen = observe([&] { return family.set(unit, 3, selector, 1); });
      EXPECT_NE(seen.find(call), std::string::npos) << selector << ": " << seen;
    }
  }
  EXPECT_TRUE(observe([] {
                return sai_port_phy_fec_get(unit, 3, 7, &value);
              }).starts_with("bcm_port_phy_control_get(0, 3, 74, "));
  EXPECT_TRUE(observe([] {
                return sai_port_phy_dfe_get(unit, 3, 7, &value);
              }).starts_with("bcm_port_phy_control_get(0, 3, 302, "));
}

TEST_F(Phys, ASpeedThatIsNotReadStopsTheSetters) {
  for (const auto set : {sai_port_phy_fec_set, sai_port_phy_rx_pf_set})
    EXPECT_EQ(observe_failing("bcm_port_speed_get", BCM_E_PORT, [=] { return set(unit, 3, 1, 1); }),
              "bcm_port_speed_get(0, 3, &?) = -18\n"
              "log: errors: NONE: Failed to get port [3] speed: Invalid port\n"
              "returned -9\n");
}

/// A function that goes through a set of controls, and its messages.
struct Set {
  std::string verb;
  std::vector<int> controls;
  std::vector<std::string> names;
  std::function<int32_t()> call;
  std::vector<std::string> values = {};
};

uint32_t fir[5];
uint32_t pf[3];
uint32_t taps[6];

const Set sets[] = {
    {"set",
     {232, 233, 234, 235, 236},
     {"TX_FIR_PRE", "TX_FIR_MAIN", "TX_FIR_POST", "TX_FIR_POST2", "TX_FIR_POST3"},
     [] { return sai_port_phy_tx_fir_set(unit, 3, 1, 2, 3, 4, 5); },
     {"1", "2", "3", "4", "5"}},
    {"get",
     {232, 233, 234, 235, 236},
     {"TX_FIR_PRE", "TX_FIR_MAIN", "TX_FIR_POST", "TX_FIR_POST2", "TX_FIR_POST3"},
     [] { return sai_port_phy_tx_fir_get(unit, 3, fir); }},
    {"get",
     {100, 101, 102},
     {"RX_PEAK_FILTER", "RX_LOW_FREQ_PEAK_FILTER", "RX_VGA"},
     [] { return sai_port_phy_rx_pf_get(unit, 3, pf); }},
    {"get",
     {103, 104, 105, 106, 107, 338},
     {"RX_TAP1", "RX_TAP2", "RX_TAP3", "RX_TAP4", "RX_TAP5", "RX_TAP6"},
     [] { return sai_port_phy_rxtap_get(unit, 3, taps); }},
};

TEST_F(Phys, EveryControlOfASetIsTriedAndTheLastGivesTheResult) {
  for (const Set& set : sets) {
    support::start_chip();  // all controls are 0
    const std::size_t last = set.controls.size() - 1;
    for (std::size_t failing = 0; failing <= last; ++failing) {
      std::string expected;
      for (std::size_t i = 0; i <= last; ++i) {
        const std::string answer = set.verb == "set" ? set.values[i] : i == failing ? "&?" : "&0";
        expected += "bcm_port_phy_control_" + set.verb + "(0, 3, " + std::to_string(set.controls[i]) + ", " + answer +
                    (i == failing ? ") = -6\n" : ") = 0\n");
      }
      expected += "log: errors: NONE: Failed to " + set.verb + " port [3] phy control BCM_PORT_PHY_CONTROL_" +
                  set.names[failing] + (set.verb == "set" ? " value " + set.values[failing] : "") +
                  ": Table is full\nreturned " + (failing == last ? "-13\n" : "0\n");
      const std::string function = "bcm_port_phy_control_" + set.verb;
      const int nth = static_cast<int>(failing) + 1;
      EXPECT_EQ(observe_failing(function.c_str(), BCM_E_FULL, set.call, nth), expected);
    }
  }
}

TEST_F(Phys, TheSetsAreReadInTheirOrder) {
  ASSERT_EQ(sai_port_phy_tx_fir_set(unit, 3, 1, 2, 3, 4, 5), 0);
  ASSERT_EQ(sai_port_phy_tx_fir_get(unit, 3, fir), 0);
  for (uint32_t i = 0; i < 5; ++i) EXPECT_EQ(fir[i], i + 1);
  for (int32_t i = 0; i < 3; ++i) ASSERT_EQ(sai_port_phy_rx_pf_set(unit, 3, i + 1, 10 + static_cast<uint32_t>(i)), 0);
  ASSERT_EQ(sai_port_phy_rx_pf_get(unit, 3, pf), 0);
  for (uint32_t i = 0; i < 3; ++i) EXPECT_EQ(pf[i], 10 + i);
  for (int32_t i = 0; i < 6; ++i) ASSERT_EQ(sai_port_phy_rxtap_set(unit, 3, i + 1, 20 + static_cast<uint32_t>(i)), 0);
  ASSERT_EQ(sai_port_phy_rxtap_get(unit, 3, taps), 0);
  for (uint32_t i = 0; i < 6; ++i) EXPECT_EQ(taps[i], 20 + i);
}

TEST_F(Phys, RegistersKeepWhatIsWritten) {
  ASSERT_EQ(sai_phy_miim_write(unit, 5, 0x10, 0x1234), 0);
  ASSERT_EQ(sai_phy_miim_read(unit, 5, 0x10, &word), 0);
  EXPECT_EQ(word, 0x1234);
  ASSERT_EQ(sai_phy_miimc45_write(unit, 5, 1, 0x234, 0x5678), 0);
  ASSERT_EQ(sai_phy_miimc45_read(unit, 5, 1, 0x34, &word), 0);
  EXPECT_EQ(word, 0x5678);
  ASSERT_EQ(sai_port_phy_write(unit, 3, 0x10, 0x9ABC), 0);
  ASSERT_EQ(sai_port_phy_read(unit, 3, 0x10, &value), 0);
  EXPECT_EQ(value, 0x9ABCU);
}

}  // namespace
