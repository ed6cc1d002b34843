// The SDK's own threads, which run work in order: those from which it calls the application's callbacks.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace api {

/// Threads that each run their work items in order. A thread starts with its first item.
class EventThreads {
 public:
  enum Kind : std::size_t { link_scan, l2_learning, frames };

  /// @param of_parent  those of the process that has forked this one: nobody can wait for them here
  explicit EventThreads(EventThreads* of_parent = nullptr) : of_parent_(of_parent) {}

  /// Those of this process. A child of it has none at first.
  static EventThreads& all();

  /// Whether this is one of them.
  static bool runs_here() { return is_one_; }

  /// Work that is posted while the threads stop is discarded.
  void post(Kind kind, std::function<void()> work);

  /// Waits until no thread has work left, including work that the threads post to each other. Returns at once on the
  /// threads themselves.
  void drain();

  /// Waits for the items that are running, and discards the others. `forever`: and all that come later.
  void stop(bool forever = false);

 private:
  struct Thread {
    std::deque<std::function<void()>> waiting;
    bool busy = false;
    std::thread thread;
  };

  void run(Thread& self);

  [[maybe_unused]] EventThreads* const of_parent_;  // kept, so that it is not taken for a leak
  std::mutex lock_;
  std::condition_variable changed_;
  std::array<Thread, 3> threads_;  // by kind
  bool stopping_ = false;
  static thread_local bool is_one_;
};

}  // namespace api
