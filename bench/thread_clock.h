#pragma once

#include <ctime>

namespace bench {

/// The CPU time of this thread: other work on the machine affects it as little as possible.
inline double thread_nanoseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

}  // namespace bench
