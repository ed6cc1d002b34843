// The SDK's own threads, from which it calls the listeners; swsdk/events.h is the interface that raises events.
#pragma once

#include <bcm/l2.h>
#include <bcm/link.h>

#include <string>
#include <vector>

#include "chip/chip.h"

namespace api {

// What a client is told, as the text of a call: unit, port, whether the link is up, callback;
constexpr const char* link_event = "link";
/// unit, address, operation, callback, user data;
constexpr const char* l2_event = "l2";
/// unit, port, port of arrival, SWSDK_CPU_ reasons, frame, handler, user data.
constexpr const char* frame_event = "frame";
/// what the client is to print.
constexpr const char* print_event = "print";

/// Makes the link scan thread call the listeners of a unit's links: one went up or down.
void tell_link(int unit, int port, bool up);
/// Has link scan look: tells of each link that changed, in order of the ports. Under the unit's lock, so that events
/// are in the order of the changes.
void tell_links(int unit, chip::Chip& chip);

/// Makes the L2 thread call the present listeners of a unit's MAC table.
void tell_mac_change(int unit, chip::MacTable::Change change, const chip::MacEntry& entry);

/// Keeps the texts of the events that callbacks of this process get, as a recording has them, until they are taken.
void capture_events(bool on);
bool captures_events();
/// Keeps one, if events are kept.
void capture_event(std::string text);
std::vector<std::string> take_captured_events();

// Each calls a callback of this process, with a record of its own.

void deliver_link(bcm_linkscan_handler_t handler, int unit, int port, bool up);
void deliver_address(bcm_l2_addr_callback_t callback, int unit, bcm_l2_addr_t address, int operation, void* user_data);

/// Waits for the callbacks that are running, and discards all other events.
void stop_event_threads();

}  // namespace api
