// The entries that decide on frames, for people.
#pragma once

#include <string>

#include "chip/chip.h"
#include "chip/pipeline/observer.h"

namespace api {

struct Entry {
  std::string text;  // "mac: VLAN 10, MAC 02:00:00:00:00:01, at port 1": the table, and the entry as it is shown there
  chip::Origin origin;
};

Entry entry_of(const chip::Chip& chip, const chip::Decider& decider);

}  // namespace api
