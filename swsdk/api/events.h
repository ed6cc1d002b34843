// The SDK's own threads, from which it calls those who listen; swsdk/chip.h is the interface that raises events.
#pragma once

#include "chip/mac_table.h"

namespace api {

/// Has the link scan thread tell those who listen to a unit's links that one went up or down.
void tell_link(int unit, int port, bool up);

/// Has the L2 thread tell those who listen to a unit's MAC table now.
void tell_mac_change(int unit, chip::MacTable::Change change, const chip::MacEntry& entry);

/// Lets the callbacks that are running end, and forgets all other events.
void stop_event_threads();

}  // namespace api
