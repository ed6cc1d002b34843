// The SDK's own threads, from which it calls the listeners; swsdk/events.h is the interface that raises events.
#pragma once

#include "chip/mac_table.h"

namespace api {

/// Makes the link scan thread call the listeners of a unit's links: one went up or down.
void tell_link(int unit, int port, bool up);

/// Makes the L2 thread call the present listeners of a unit's MAC table.
void tell_mac_change(int unit, chip::MacTable::Change change, const chip::MacEntry& entry);

/// Waits for the callbacks that are running, and discards all other events.
void stop_event_threads();

}  // namespace api
