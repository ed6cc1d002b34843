// The units that are attached: one chip each, behind the lock that makes the SDK serial.
#pragma once

#include <mutex>
#include <optional>

#include "chip/chip.h"

namespace api {

struct Unit {
  std::recursive_mutex lock;  // recursive: callbacks that run inside a call may call the SDK again
  std::optional<chip::Chip> chip;
  bool initialised = false;
};

/// The attached unit of that number, or null.
Unit* find_unit(int unit);

/// The initialised chip of that number, or null.
chip::Chip* find_chip(int unit);

}  // namespace api
