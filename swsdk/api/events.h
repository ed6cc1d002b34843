// The SDK's own threads, from which it calls those who listen; swsdk/chip.h is the interface that raises events.
#pragma once

namespace api {

/// Lets the callbacks that are running end, and forgets all other events.
void stop_event_threads();

}  // namespace api
