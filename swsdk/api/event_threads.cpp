#include "api/event_threads.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <utility>

namespace {

/// Never destroyed: work can be posted while the process exits.
std::atomic<api::EventThreads*> event_threads = nullptr;

/// Made on first use: a program that exits with the chip on then ends the threads before the objects that they use.
struct EndsThreads {
  EndsThreads() {
    event_threads = new api::EventThreads;
    // A child has none of its parent's threads, so that nobody could wait for them.
    pthread_atfork(nullptr, nullptr, [] { event_threads = new api::EventThreads(event_threads); });
  }
  ~EndsThreads() { event_threads.load()->stop(true); }
};

}  // namespace

api::EventThreads& api::EventThreads::all() {
  static const EndsThreads ends_threads;
  return *event_threads;
}

thread_local bool api::EventThreads::is_one_ = false;

void api::EventThreads::post(Kind kind, std::function<void()> work) {
  const std::lock_guard guard(lock_);
  if (stopping_) return;
  Thread& doer = threads_[kind];
  doer.waiting.push_back(std::move(work));
  if (!doer.thread.joinable()) doer.thread = std::thread([this, &doer] { run(doer); });
  changed_.notify_all();
}

void api::EventThreads::drain() {
  if (is_one_) return;
  std::unique_lock guard(lock_);
  const auto is_idle = [](const Thread& doer) { return doer.waiting.empty() && !doer.busy; };
  changed_.wait(guard, [&] { return std::all_of(threads_.begin(), threads_.end(), is_idle); });
}

void api::EventThreads::stop(bool forever) {
  {
    const std::lock_guard guard(lock_);
    stopping_ = true;
    for (Thread& doer : threads_) doer.waiting.clear();
    changed_.notify_all();
  }
  for (Thread& doer : threads_)
    if (doer.thread.get_id() == std::this_thread::get_id())
      doer.thread.detach();  // a callback ends the program
    else if (doer.thread.joinable())
      doer.thread.join();
  const std::lock_guard guard(lock_);
  stopping_ = forever;
}

void api::EventThreads::run(Thread& self) {
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
