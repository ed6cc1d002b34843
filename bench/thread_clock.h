#pragma once

#include <ctime>

namespace bench {

/// The time that this thread has spent: what others do to the machine counts as little as can be.
inline double thread_nanoseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

}  // namespace bench
