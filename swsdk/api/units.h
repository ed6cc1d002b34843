// The units that are attached: one chip each, behind the lock that makes the SDK serial.
#pragma once

#include <bcm/l2.h>
#include <bcm/link.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <mutex>
#include <optional>
#include <vector>

#include "chip/chip.h"
#include "chip/pipeline/pipeline.h"

namespace api {

/// Who is called when something happens on a unit.
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

  /// In the order in which they were added.
  const std::vector<Listener>& all() const { return all_; }

 private:
  std::vector<Listener> all_;
};

struct L2Listener {
  bcm_l2_addr_callback_t callback;
  void* user_data;
  bool operator==(const L2Listener&) const = default;
};

/// Who takes the frames that leave a unit.
struct FrameHandler {
  swsdk_frame_handler function = nullptr;
  void* user_data = nullptr;
};

struct Unit {
  std::recursive_mutex lock;  // recursive: callbacks that run inside a call may call the SDK again
  std::optional<chip::Chip> chip;
  std::optional<chip::Pipeline> pipeline;
  FrameHandler frame_handler;
  bool initialised = false;
  Listeners<bcm_linkscan_handler_t> link_listeners;
  Listeners<L2Listener> l2_listeners;
};

/// Makes the L3 module's record of an attached unit tell the egress mode that its switch control sets.
void publish_egress_mode(int unit);

/// The attached unit of that number, or null.
Unit* find_unit(int unit);

/// What `body` makes of the unit's chip under its lock, or `otherwise` when the unit is not up.
template <class Body, class Result>
Result on_chip(int unit, Body body, Result otherwise) {
  Unit* const attached = find_unit(unit);
  if (attached == nullptr) return otherwise;
  const std::lock_guard guard(attached->lock);
  return attached->initialised ? body(*attached->chip) : otherwise;
}

}  // namespace api
