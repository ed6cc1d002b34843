// The units that are attached: one chip each, behind the lock that serializes the SDK.
#pragma once

#include <bcm/l2.h>
#include <bcm/link.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "api/caller.h"
#include "chip/chip.h"
#include "chip/pipeline/pipeline.h"

namespace api {

/// The callbacks for one kind of event on a unit.
template <class Listener>
class Listeners {
 public:
  static constexpr std::size_t capacity = 32;

  chip::Status add(const Listener& listener) {
    if (std::find(all_.begin(), all_.end(), listener) != all_.end()) return chip::Status::exists;
    if (all_.size() == capacity) return chip::Status::no_resource;
    all_.push_back(listener);
    return chip::Status::ok;
  }
  chip::Status remove(const Listener& listener) {
    return std::erase(all_, listener) == 1 ? chip::Status::ok : chip::Status::not_found;
  }
  void clear() { all_.clear(); }
  void remove_those_of(const std::shared_ptr<Caller>& caller) {
    std::erase_if(all_, [&](const Listener& listener) { return listener.caller == caller; });
  }

  /// In the order in which they were added.
  const std::vector<Listener>& all() const { return all_; }

 private:
  std::vector<Listener> all_;
};

// Of whose process a callback is, it is called there, with the same pointers.

struct LinkListener {
  bcm_linkscan_handler_t handler;
  std::shared_ptr<Caller> caller = present_caller();
  bool operator==(const LinkListener&) const = default;
};

struct L2Listener {
  bcm_l2_addr_callback_t callback;
  void* user_data;
  std::shared_ptr<Caller> caller = present_caller();
  bool operator==(const L2Listener&) const = default;
};

/// A handler of the frames that leave a unit: each process has one at most.
struct FrameHandler {
  swsdk_frame_handler function;
  void* user_data;
  bool takes_aggregates;
  std::shared_ptr<Caller> caller = present_caller();
};

/// Its lock protects all of it. It outlives its chip: another process may switch that off while this one uses it.
struct Unit {
  std::recursive_mutex lock;  // recursive: callbacks that run inside a call may call the SDK again
  std::unique_ptr<chip::Chip> chip;
  std::optional<chip::Pipeline> pipeline;
  std::vector<FrameHandler> frame_handlers;
  bool initialized = false;
  int starts = 0;  // how often it was switched on
  Listeners<LinkListener> link_listeners;
  Listeners<L2Listener> l2_listeners;
};

/// How many units are attached; they are numbered from 0.
int attached_units();
/// The attached unit of that number, or null.
Unit* find_unit(int unit);
/// Attaches the next unit, with a chip that is not initialized yet.
Unit& attach_unit(std::unique_ptr<chip::Chip> chip);
/// Gives a unit, which is locked, another chip.
void set_chip(Unit& unit, std::unique_ptr<chip::Chip> chip);
/// Removes the chips of all units, and their listeners; of the handlers of frames those of the present caller.
void detach_units();
/// Removes everything by which a process is told something of the units.
void forget_caller(const std::shared_ptr<Caller>& caller);

/// The handler of one process for the frames that leave a unit, which is locked; null when it has none.
FrameHandler* find_frame_handler(Unit& unit, const std::shared_ptr<Caller>& caller);

/// The result of `body` on the unit's chip under its lock, or `otherwise` when the unit is not up.
template <class Body, class Result>
Result on_chip(int unit, Body body, Result otherwise) {
  Unit* const attached = find_unit(unit);
  if (attached == nullptr) return otherwise;
  const std::lock_guard guard(attached->lock);
  return attached->initialized ? body(*attached->chip) : otherwise;
}

}  // namespace api
