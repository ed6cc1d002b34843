#include "api/events.h"

#include <bcm/link.h>
#include <swsdk/chip.h>

#include <cstring>
#include <utility>
#include <vector>

#include "api/units.h"

namespace {

api::EventThread link_scan;
api::EventThread l2_learning;

/// The listeners of a unit as they are now. They are called without the unit's lock, so that they may call the SDK.
template <class Listener>
std::vector<Listener> present(int unit, api::Listeners<Listener> api::Unit::*listeners) {
  api::Unit* const attached = api::find_unit(unit);
  if (attached == nullptr) return {};
  const std::lock_guard guard(attached->lock);
  return (attached->*listeners).all();
}

/// Whether the unit is up and has the port.
bool has_port(int unit, int port) {
  api::Unit* const attached = api::find_unit(unit);
  if (attached == nullptr) return false;
  const std::lock_guard guard(attached->lock);
  return attached->initialised && attached->chip->ports.has(port);
}

}  // namespace

void api::EventThread::post(std::function<void()> work) {
  const std::lock_guard guard(lock_);
  waiting_.push_back(std::move(work));
  if (!thread_.joinable()) thread_ = std::thread(&EventThread::run, this);
  changed_.notify_all();
}

void api::EventThread::drain() {
  std::unique_lock guard(lock_);
  if (thread_.get_id() == std::this_thread::get_id()) return;
  changed_.wait(guard, [&] { return waiting_.empty() && !busy_; });
}

void api::EventThread::stop() {
  {
    const std::lock_guard guard(lock_);
    stopping_ = true;
    waiting_.clear();
    changed_.notify_all();
  }
  if (thread_.joinable()) thread_.join();
  stopping_ = false;
}

void api::EventThread::run() {
  std::unique_lock guard(lock_);
  while (true) {
    changed_.wait(guard, [&] { return stopping_ || !waiting_.empty(); });
    if (stopping_) return;
    const std::function<void()> work = std::move(waiting_.front());
    waiting_.pop_front();
    busy_ = true;
    guard.unlock();
    work();
    guard.lock();
    busy_ = false;
    changed_.notify_all();
  }
}

void api::stop_event_threads() {
  link_scan.stop();
  l2_learning.stop();
}

int swsdk_link_event(int unit, int port, int up) {
  if (!has_port(unit, port) || port == chip::Ports::cpu) return -1;
  link_scan.post([=] {
    for (const bcm_linkscan_handler_t handler : present(unit, &api::Unit::link_listeners)) {
      bcm_port_info_t info{};
      info.linkstatus = up != 0 ? 1 : 0;
      handler(unit, port, &info);
    }
  });
  return 0;
}

int swsdk_l2_event(int unit, int operation, int vid, const unsigned char* mac, int port) {
  if (!has_port(unit, port) || mac == nullptr || vid < chip::Vlans::lowest_id || vid > chip::Vlans::highest_id)
    return -1;
  bcm_l2_addr_t address{};
  std::memcpy(address.mac, mac, sizeof address.mac);
  address.vid = static_cast<bcm_vlan_t>(vid);
  address.port = port;
  l2_learning.post([=] {
    for (const api::L2Listener& listener : present(unit, &api::Unit::l2_listeners)) {
      bcm_l2_addr_t told = address;
      listener.callback(unit, &told, operation, listener.user_data);
    }
  });
  return 0;
}

void swsdk_events_drain() {
  link_scan.drain();
  l2_learning.drain();
}
