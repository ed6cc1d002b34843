#include "api/events.h"

#include <bcm/link.h>
#include <swsdk/events.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "api/call.h"
#include "api/event_threads.h"
#include "api/l2.h"

using api::EventThreads;

namespace {

/// Calls each listener of a unit, in the order in which they were added, unless it was removed meanwhile. The unit's
/// lock is free during the calls, so that they may call the SDK.
template <class Listener, class Tell>
void tell_each(int unit, api::Listeners<Listener> api::Unit::*listeners, Tell tell) {
  api::Unit* const attached = api::find_unit(unit);
  if (attached == nullptr) return;
  const auto present = [&] {
    const std::lock_guard guard(attached->lock);
    return (attached->*listeners).all();
  };
  for (const Listener& listener : present()) {
    const std::vector<Listener> now = present();
    if (std::find(now.begin(), now.end(), listener) != now.end()) tell(listener);
  }
}

void post_l2(int unit, int operation, const bcm_l2_addr_t& address) {
  EventThreads::all().post(EventThreads::l2_learning, [=] {
    tell_each(unit, &api::Unit::l2_listeners, [=](const api::L2Listener& listener) {
      const auto& [callback, user_data, caller] = listener;
      if (caller != nullptr)
        return caller->tell(
            call_text(api::l2_event, {unit, address, operation, callback, user_data}, api::Form::wire, 0));
      api::deliver_address(callback, unit, address, operation, user_data);
    });
  });
}

std::mutex captured_lock;
std::atomic<bool> captures = false;
std::vector<std::string> captured;  // guarded by `captured_lock`

}  // namespace

void api::capture_events(bool on) {
  const std::lock_guard guard(captured_lock);
  captures = on;
  captured.clear();
}

void api::deliver_link(bcm_linkscan_handler_t handler, int unit, int port, bool up) {
  bcm_port_info_t info{};
  info.linkstatus = up ? 1 : 0;
  if (captures_events()) capture_event(call_text(link_callback, {handler, unit, port, in(&info)}, Form::recording, 0));
  handler(unit, port, &info);
}

void api::deliver_address(bcm_l2_addr_callback_t callback, int unit, bcm_l2_addr_t address, int operation,
                          void* user_data) {
  if (captures_events())
    capture_event(call_text(l2_callback, {callback, unit, in(&address), operation, user_data}, Form::recording, 0));
  callback(unit, &address, operation, user_data);
}

bool api::captures_events() { return captures.load(std::memory_order_relaxed); }

void api::capture_event(std::string text) {
  const std::lock_guard guard(captured_lock);
  if (captures) captured.push_back(std::move(text));
}

std::vector<std::string> api::take_captured_events() {
  const std::lock_guard guard(captured_lock);
  return std::exchange(captured, {});
}

void api::tell_mac_change(int unit, chip::MacTable::Change change, const chip::MacEntry& entry) {
  if (find_unit(unit)->l2_listeners.all().empty()) return;
  const bool added = change == chip::MacTable::Change::added;
  post_l2(unit, added ? BCM_L2_CALLBACK_ADD : BCM_L2_CALLBACK_DELETE, to_sdk(entry));
}

void api::tell_link(int unit, int port, bool up) {
  EventThreads::all().post(EventThreads::link_scan, [=] {
    tell_each(unit, &api::Unit::link_listeners, [=](const LinkListener& listener) {
      const auto& [handler, caller] = listener;
      if (caller != nullptr) return caller->tell(call_text(link_event, {unit, port, int{up}, handler}, Form::wire, 0));
      deliver_link(handler, unit, port, up);
    });
  });
}

void api::tell_links(int unit, chip::Chip& chip) {
  for (const chip::Port port : chip.link_scan.look(chip.port_macs.links()))
    tell_link(unit, port.number(), chip.port_macs.of(port).link());
}

void api::stop_event_threads() { EventThreads::all().stop(); }

int swsdk_link_event(int unit, int port, int up) {
  const auto change = [&](chip::Chip& chip) {
    const chip::Port plugged = chip::Port::of(port);
    const bool was_up = chip.port_macs.links().contains(plugged);
    if (chip.port_macs.set_partner(plugged, up != 0) != chip::Status::ok) return -1;
    const chip::PortMac& mac = chip.port_macs.of(plugged);
    // A link that is as before was something else for a moment.
    if (chip.link_scan.watches() && mac.enabled && mac.link() == was_up && was_up == (up != 0))
      api::tell_link(unit, port, was_up);
    api::tell_links(unit, chip);
    return 0;
  };
  return api::act(__func__, unit, change, port, up);
}

int swsdk_l2_event(int unit, int operation, int vid, const unsigned char* mac, int port) {
  const auto raise = [&](const chip::Chip& chip) {
    if (!chip.ports.has(chip::Port::of(port))) return -1;
    bcm_l2_addr_t address{};
    std::memcpy(address.mac, mac, sizeof address.mac);
    address.vid = static_cast<bcm_vlan_t>(vid);
    address.port = port;
    post_l2(unit, operation, address);
    return 0;
  };
  if (mac == nullptr || !chip::is_vlan(vid)) return -1;
  return api::act(__func__, unit, raise, operation, vid, api::mac(mac), port);
}

int swsdk_clock_step(int unit, int seconds) {
  constexpr uint64_t second = 1'000'000'000;
  return seconds < 0 ? -1 : swsdk_clock_advance(unit, static_cast<uint64_t>(seconds) * second);
}

int swsdk_clock_advance(int unit, uint64_t nanoseconds) {
  if (api::remote_chip() != nullptr)
    return static_cast<int>(api::call_remote(api::Kind::action, __func__, {unit, nanoseconds}, -1));
  constexpr uint64_t second = 1'000'000'000;
  int seconds = 0;
  const auto advance = [&](chip::Chip& chip) {
    const uint64_t before = chip.now;
    chip.now += nanoseconds;
    seconds = static_cast<int>(chip.now / second - before / second);
    return 0;
  };
  if (api::on_chip(unit, advance, -1) != 0) return -1;
  // Entries that age out are recorded at that time.
  const auto age = [=] {
    const auto pass = [&](chip::Chip& chip) {
      chip.mac_table.pass(seconds);
      return 0;
    };
    if (nanoseconds % second == 0)
      api::act("swsdk_clock_step", unit, pass, seconds);
    else
      api::act("swsdk_clock_advance", unit, pass, nanoseconds);
  };
  if (seconds == 0)
    age();
  else
    EventThreads::all().post(EventThreads::l2_learning, age);
  return 0;
}

void swsdk_events_drain() {
  if (api::RemoteChip* const chip = api::remote_chip())
    chip->drain();
  else
    EventThreads::all().drain();
}
