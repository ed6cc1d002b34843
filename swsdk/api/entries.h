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

/// "call 208: bcm_vlan_create(0, 10) = 0"; the line has its process unless that is the reader.
std::string call_text(const chip::Cause& cause, const std::string& reader);

}  // namespace api
