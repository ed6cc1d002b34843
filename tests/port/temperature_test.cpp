#include <bcm/error.h>
#include <bcm/switch.h>
#include <dlfcn.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <climits>
#include <optional>
#include <string>
#include <vector>

#include "support/scene.h"

extern "C" int sdk_main(int argc, char** argv);
extern "C" int system_init(int unit);

namespace {

/// How many sensors the SDK tells of, whatever the room; without a number, what the chip tells.
std::optional<int> told_sensors;

}  // namespace

// It takes the place of the SDK's function, which it calls.
extern "C" int bcm_switch_temperature_monitor_get(int unit, int temperature_max,
                                                  bcm_switch_temperature_monitor_t* temperature_array,
                                                  int* temperature_count) {
  static const auto real = reinterpret_cast<decltype(&bcm_switch_temperature_monitor_get)>(
      dlsym(RTLD_NEXT, "bcm_switch_temperature_monitor_get"));
  const int rv = real(unit, temperature_max, temperature_array, temperature_count);
  if (told_sensors) *temperature_count = *told_sensors;
  return rv;
}

namespace {

class Temperature : public support::Scene {
 protected:
  /// Starts a chip of that type with these sensors, current and peak readings in tenths of a degree.
  static void start(const std::vector<swsdk_temperature>& sensors, int chip_type = 0) {
    swsdk_power_off();
    const swsdk_board board{.units = 1, .ports = 12, .chip_type = chip_type};
    ASSERT_EQ(swsdk_board_set(&board), 0);
    sdk_main(0, nullptr);
    ASSERT_EQ(system_init(unit), 0);
    ASSERT_EQ(swsdk_temperatures_set(unit, sensors.data(), static_cast<int>(sensors.size())), 0);
  }

  /// "average|highest|result".
  static std::string read(int32_t avg_len = 32, int32_t max_len = 32) {
    char average[33] = "untouched";
    char highest[33] = "untouched";
    const int32_t result = sai_switch_temperature_monitor_get(unit, average, avg_len, highest, max_len);
    return std::string(average) + "|" + highest + "|" + std::to_string(result);
  }
};

TEST_F(Temperature, GivesTheAverageAndTheHighestPeak) {
  start({{405, 450}, {417, 470}});
  EXPECT_EQ(read(), " 41.1|47.0\n|0");
  start({{405, 470}, {418, 450}});
  EXPECT_EQ(read(), " 41.1|47.0\n|0");
}

TEST_F(Temperature, NegativeTenthsLoseTheirSignBetweenMinusOneAndZero) {
  start({{-15, -15}});
  EXPECT_EQ(read(), " -1.5|-1.5\n|0");
  start({{-5, -5}});
  EXPECT_EQ(read(), "  0.5|0.5\n|0");
  start({{-14, -1}, {-15, -20}});
  EXPECT_EQ(read(), " -1.4|0.1\n|0");
}

TEST_F(Temperature, LeavesTheLastSensorOutOnChipTypeFifty) {
  start({{300, 310}, {500, 510}, {1000, 1100}}, 50);
  EXPECT_EQ(read(), " 40.0|51.0\n|0");
  start({{300, 310}, {500, 510}, {1000, 1100}}, 51);
  EXPECT_EQ(read(), " 60.0|110.0\n|0");
}

TEST_F(Temperature, ReadsNoSensorBeyondTheRoomThatItGave) {
  for (const int chip_type : {0, 50}) {
    start(std::vector<swsdk_temperature>(160, {400, 450}), chip_type);
    for (const int told : {161, 170, INT_MAX}) {
      told_sensors = told;
      EXPECT_EQ(read(), " 40.0|45.0\n|0") << told << " sensors of a chip of type " << chip_type;
    }
    told_sensors.reset();
  }
}

TEST_F(Temperature, WithoutASensorFormatsNothing) {
  start({});
  EXPECT_EQ(read(), "untouched|untouched|-1");
  start({{300, 310}}, 50);
  EXPECT_EQ(read(), "untouched|untouched|-1");
}

TEST_F(Temperature, AFailedReadSpeaksOfVlansAndFormatsNothing) {
  start({{300, 310}});
  std::string text;
  EXPECT_EQ(observe_failing("bcm_switch_temperature_monitor_get", BCM_E_UNAVAIL,
                            [&] {
                              text = read();
                              return 0;
                            }),
            "bcm_switch_temperature_monitor_get(0, 160, &?, &?) = -16\n"
            "log: errors: NONE: Failed to init vlan: Not available on this chip\n"
            "returned 0\n");
  EXPECT_EQ(text, "untouched|untouched|-2");
}

TEST_F(Temperature, FillsNoMoreThanTheBuffersHold) {
  start({{405, 450}});
  EXPECT_EQ(read(4, 3), " 40|45|0");
  EXPECT_EQ(read(1, 1), "||0");
  EXPECT_EQ(read(0, -1), "untouched|untouched|0");
}

}  // namespace
