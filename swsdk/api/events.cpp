#include "api/events.h"

#include <bcm/link.h>
#include <swsdk/events.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "api/call.h"
#include "api/l2.h"

namespace {

/// Threads that each run their work items in order. A thread starts with its first item.
class EventThreads {
 public:
  enum Kind : std::size_t { link_scan, l2_learning };

  ~EventThreads() { stop(); }

  /// Work that is posted while the threads stop is discarded.
  void post(Kind kind, std::function<void()> work);

  /// Waits until no thread has work left, including work that the threads post to each other. Returns at once on the
  /// threads themselves.
  void drain();

  /// Waits for the items that are running, and discards the others.
  void stop();

 private:
  struct Thread {
    std::deque<std::function<void()>> waiting;
    bool busy = false;
    std::thread thread;
  };

  void run(Thread& self);

  std::mutex lock_;
  std::condition_variable changed_;
  std::array<Thread, 2> threads_;  // by kind
  bool stopping_ = false;
  static thread_local bool is_one_;
};

thread_local bool EventThreads::is_one_ = false;

void EventThreads::post(Kind kind, std::function<void()> work) {
  const std::lock_guard guard(lock_);
  if (stopping_) return;
  Thread& doer = threads_[kind];
  doer.waiting.push_back(std::move(work));
  if (!doer.thread.joinable()) doer.thread = std::thread([this, &doer] { run(doer); });
  changed_.notify_all();
}

void EventThreads::drain() {
  if (is_one_) return;
  std::unique_lock guard(lock_);
  const auto is_idle = [](const Thread& doer) { return doer.waiting.empty() && !doer.busy; };
  changed_.wait(guard, [&] { return std::all_of(threads_.begin(), threads_.end(), is_idle); });
}

void EventThreads::stop() {
  {
    const std::lock_guard guard(lock_);
    stopping_ = true;
    for (Thread& doer : threads_) doer.waiting.clear();
    changed_.notify_all();
  }
  for (Thread& doer : threads_)
    if (doer.thread.joinable()) doer.thread.join();
  const std::lock_guard guard(lock_);
  stopping_ = false;
}

void EventThreads::run(Thread& self) {
  is_one_ = true;
  std::unique_lock guard(lock_);
  while (true) {
    changed_.wait(guard, [&] { return stopping_ || !self.waiting.empty(); });
    if (stopping_) return;
    const std::function<void()> work = std::move(self.waiting.front());
    self.waiting.pop_front();
    self.busy = true;
    guard.unlock();
    work();
    guard.lock();
    self.busy = false;
    changed_.notify_all();
  }
}

/// Made on first use: a program that exits with the chip on then ends the threads before the objects that they use.
EventThreads& threads() {
  static EventThreads all;
  return all;
}

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

bool has_port(int unit, int port) {
  return api::on_chip(
      unit, [&](const chip::Chip& chip) { return chip.ports.has(chip::Port::of(port)); }, false);
}

void post_l2(int unit, int operation, const bcm_l2_addr_t& address) {
  threads().post(EventThreads::l2_learning, [=] {
    tell_each(unit, &api::Unit::l2_listeners, [=](const api::L2Listener& listener) {
      bcm_l2_addr_t told = address;
      listener.callback(unit, &told, operation, listener.user_data);
    });
  });
}

}  // namespace

void api::tell_mac_change(int unit, chip::MacTable::Change change, const chip::MacEntry& entry) {
  if (find_unit(unit)->l2_listeners.all().empty()) return;
  const bool added = change == chip::MacTable::Change::added;
  post_l2(unit, added ? BCM_L2_CALLBACK_ADD : BCM_L2_CALLBACK_DELETE, to_sdk(entry));
}

void api::tell_link(int unit, int port, bool up) {
  threads().post(EventThreads::link_scan, [=] {
    tell_each(unit, &api::Unit::link_listeners, [=](bcm_linkscan_handler_t handler) {
      bcm_port_info_t info{};
      info.linkstatus = up ? 1 : 0;
      handler(unit, port, &info);
    });
  });
}

void api::stop_event_threads() { threads().stop(); }

int swsdk_link_event(int unit, int port, int up) {
  const auto change = [&](chip::Chip& chip) {
    const int result = api::zero_if_ok(chip.port_macs.set_partner(chip::Port::of(port), up != 0));
    // Queued under the unit's lock, so that events are in the order of the changes.
    if (result == 0 && chip.link_scan.watches()) api::tell_link(unit, port, up != 0);
    return result;
  };
  return api::act(__func__, unit, change, port, up);
}

int swsdk_l2_event(int unit, int operation, int vid, const unsigned char* mac, int port) {
  if (!has_port(unit, port) || mac == nullptr || !chip::is_vlan(vid)) return -1;
  bcm_l2_addr_t address{};
  std::memcpy(address.mac, mac, sizeof address.mac);
  address.vid = static_cast<bcm_vlan_t>(vid);
  address.port = port;
  api::record(api::Kind::action, __func__, 0, {unit, operation, vid, api::mac(mac), port});
  post_l2(unit, operation, address);
  return 0;
}

int swsdk_clock_step(int unit, int seconds) {
  constexpr uint64_t second = 1'000'000'000;
  return seconds < 0 ? -1 : swsdk_clock_advance(unit, static_cast<uint64_t>(seconds) * second);
}

int swsdk_clock_advance(int unit, uint64_t nanoseconds) {
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
    threads().post(EventThreads::l2_learning, age);
  return 0;
}

void swsdk_events_drain() { threads().drain(); }
