#include "api/units.h"

#include <soc/drv.h>

#include <array>
#include <atomic>

namespace {

/// Never destroyed: clients can be there when the process exits.
auto& units = *new std::array<api::Unit, SOC_MAX_NUM_DEVICES>;
std::atomic<int> attached = 0;

}  // namespace

int api::attached_units() { return attached; }

api::Unit* api::find_unit(int unit) {
  return unit >= 0 && unit < attached ? &units[static_cast<std::size_t>(unit)] : nullptr;
}

api::Unit& api::attach_unit(std::unique_ptr<chip::Chip> chip) {
  Unit& unit = units[static_cast<std::size_t>(attached)];
  const std::lock_guard guard(unit.lock);
  set_chip(unit, std::move(chip));
  unit.initialized = false;
  ++attached;
  return unit;
}

void api::set_chip(Unit& unit, std::unique_ptr<chip::Chip> chip) {
  unit.chip = std::move(chip);
  unit.pipeline.emplace(*unit.chip);
  ++unit.starts;
}

void api::detach_units() {
  for (Unit& unit : units) {
    const std::lock_guard guard(unit.lock);
    unit.pipeline.reset();
    unit.chip.reset();
    unit.initialized = false;
    unit.link_listeners.clear();
    unit.l2_listeners.clear();
    std::erase_if(unit.frame_handlers, [](const FrameHandler& one) { return one.caller == present_caller(); });
  }
  attached = 0;  // last: a call that is running has found its unit, and may do so again
}

void api::forget_caller(const std::shared_ptr<Caller>& caller) {
  for (Unit& unit : units) {
    const std::lock_guard guard(unit.lock);
    unit.link_listeners.remove_those_of(caller);
    unit.l2_listeners.remove_those_of(caller);
    std::erase_if(unit.frame_handlers, [&](const FrameHandler& one) { return one.caller == caller; });
  }
}

api::FrameHandler* api::find_frame_handler(Unit& unit, const std::shared_ptr<Caller>& caller) {
  const auto found = std::find_if(unit.frame_handlers.begin(), unit.frame_handlers.end(),
                                  [&](const FrameHandler& one) { return one.caller == caller; });
  return found == unit.frame_handlers.end() ? nullptr : &*found;
}
