// The system calls that the log makes, taken over by the test program: a clock that is set by hand, a system log that
// remembers, and memory that runs out. The program's symbols take the place of libc's in libsai.so.
#pragma once

#include <ctime>
#include <string>

namespace support::system {

/// What gettimeofday tells from now on; each reading moves it on by `step` microseconds.
void set_clock(time_t seconds, long microseconds, long step = 0);

/// How often a date was made into text.
int dates_made();

/// The calls that reached the system log, a line each; forgotten by reading.
std::string take_syslog();

/// The next calloc finds no memory. False where the sanitizers own the allocator.
bool fail_next_allocation();

}  // namespace support::system
