// What the board around the chips does to them: their registers, readings and counters from outside the SDK.
#include <swsdk/chip.h>

#include <vector>

#include "api/call.h"

using chip::Chip;

namespace {

chip::PhyRegisters::Key phy_register(int phy, int device, int reg) {
  return {static_cast<uint32_t>(phy), device, static_cast<uint32_t>(reg)};
}

}  // namespace

static_assert(SWSDK_PHY_CLAUSE22 == chip::PhyRegisters::clause22);

int swsdk_counter_set(int unit, int port, int stat, unsigned long long value) {
  return api::act(
      __func__, unit, [&](Chip& chip) { return api::zero_if_ok(chip.counters.set(port, stat, value)); }, port, stat,
      value);
}

int swsdk_temperatures_set(int unit, const swsdk_temperature* readings, int count) {
  if (count < 0 || count > chip::TemperatureSensors::capacity || (readings == nullptr && count > 0)) return -1;
  std::vector<chip::Temperature> temperatures;
  for (int i = 0; i < count; ++i) temperatures.push_back({readings[i].current, readings[i].peak});
  const auto set = [&](Chip& chip) {
    chip.temperature_sensors.set(temperatures);
    return 0;
  };
  return api::act(__func__, unit, set, api::array(readings, count), count);
}

int swsdk_phy_register_get(int unit, int phy, int device, int reg) {
  const auto read = [&](Chip& chip) {
    int value = 0;
    return api::zero_if_ok(chip.phy_registers.read(phy_register(phy, device, reg), value)) == 0 ? value : -1;
  };
  return api::on_chip(unit, read, -1);
}

int swsdk_phy_register_set(int unit, int phy, int device, int reg, int value) {
  const auto write = [&](Chip& chip) {
    return api::zero_if_ok(chip.phy_registers.write(phy_register(phy, device, reg), static_cast<uint32_t>(value)));
  };
  return api::act(__func__, unit, write, phy, device, reg, value);
}
