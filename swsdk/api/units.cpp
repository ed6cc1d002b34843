#include "api/units.h"

#include <soc/drv.h>

#include <array>

namespace {

std::array<api::Unit, SOC_MAX_NUM_DEVICES> units;
int attached = 0;

}  // namespace

int api::attached_units() { return attached; }

api::Unit* api::find_unit(int unit) {
  return unit >= 0 && unit < attached ? &units[static_cast<std::size_t>(unit)] : nullptr;
}

api::Unit& api::attach_unit(int ethernet_ports) {
  Unit& unit = units[static_cast<std::size_t>(attached++)];
  unit.chip.emplace(ethernet_ports);
  unit.pipeline.emplace(*unit.chip);
  unit.initialized = false;
  return unit;
}

void api::detach_units() {
  attached = 0;
  for (Unit& unit : units) {
    unit.pipeline.reset();
    unit.chip.reset();
    unit.frame_handler = {};
    unit.initialized = false;
    unit.link_listeners.clear();
    unit.l2_listeners.clear();
  }
}
