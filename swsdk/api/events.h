// The SDK's own threads, from which it calls those who listen.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace api {

/// Runs pieces of work one after the other on a thread of its own, which starts with the first of them.
class EventThread {
 public:
  ~EventThread() { stop(); }

  void post(std::function<void()> work);

  /// Waits until everything that was posted has run. Returns at once on the thread itself.
  void drain();

  /// Lets the piece that is running end, and forgets the others.
  void stop();

 private:
  void run();

  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> waiting_;
  bool busy_ = false;
  bool stopping_ = false;
  std::thread thread_;
};

void stop_event_threads();

}  // namespace api
