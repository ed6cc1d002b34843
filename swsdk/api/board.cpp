// What the board around the chips does to them: their registers, readings and counters from outside the SDK.
#include <swsdk/chip.h>

#include <vector>

#include "api/units.h"

using chip::Chip;
using chip::Status;

namespace {

chip::PhyRegisters::Key phy_register(int phy, int device, int reg) {
  return {static_cast<uint32_t>(phy), device, static_cast<uint32_t>(reg)};
}

}  // namespace

static_assert(SWSDK_PHY_CLAUSE22 == chip::PhyRegisters::clause22);

int swsdk_counter_set(int unit, int port, int stat, unsigned long long value) {
  return api::on_chip(unit, [&](Chip& chip) { return chip.counters.set(port, stat, value); });
}

int swsdk_temperatures_set(int unit, const swsdk_temperature* readings, int count) {
  if (count < 0 || count > chip::TemperatureSensors::capacity || (readings == nullptr && count > 0)) return -1;
  std::vector<chip::Temperature> temperatures;
  for (int i = 0; i < count; ++i) temperatures.push_back({readings[i].current, readings[i].peak});
  return api::on_chip(unit, [&](Chip& chip) {
    chip.temperature_sensors.set(temperatures);
    return Status::ok;
  });
}

int swsdk_phy_register_get(int unit, int phy, int device, int reg) {
  int value = 0;
  const int rv =
      api::on_chip(unit, [&](Chip& chip) { return chip.phy_registers.read(phy_register(phy, device, reg), value); });
  return rv == 0 ? value : -1;
}

int swsdk_phy_register_set(int unit, int phy, int device, int reg, int value) {
  return api::on_chip(unit, [&](Chip& chip) {
    return chip.phy_registers.write(phy_register(phy, device, reg), static_cast<uint32_t>(value));
  });
}
