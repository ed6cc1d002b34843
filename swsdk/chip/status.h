// Results of operations on the chip's tables.
#pragma once

namespace chip {

enum class Status : int {
  ok = 0,
  internal = -1,
  no_memory = -2,
  bad_unit = -3,
  bad_parameter = -4,
  empty = -5,
  full = -6,
  not_found = -7,
  exists = -8,
  timeout = -9,
  busy = -10,
  failed = -11,
  disabled = -12,
  bad_id = -13,
  no_resource = -14,
  bad_configuration = -15,
  unavailable = -16,
  not_initialized = -17,
  bad_port = -18,
};

}  // namespace chip
