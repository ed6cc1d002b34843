#include "support/system.h"

#include <dlfcn.h>
#include <sys/time.h>
#include <syslog.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <utility>

#ifdef SANITIZED
constexpr bool own_allocator = false;
#else
constexpr bool own_allocator = true;
#endif

namespace {

timeval now{};
long clock_step = 0;
int dates = 0;
std::string records;
bool out_of_memory = false;

}  // namespace

void support::system::set_clock(time_t seconds, long microseconds, long step) {
  now = {seconds, microseconds};
  clock_step = step;
}

int support::system::dates_made() { return dates; }

std::string support::system::take_syslog() { return std::exchange(records, {}); }

bool support::system::fail_next_allocation() {
  out_of_memory = own_allocator;
  return own_allocator;
}

extern "C" {

int gettimeofday(timeval* time, void* /*zone*/) noexcept {
  *time = now;
  now.tv_usec += clock_step;
  errno = EINTR;  // libc may leave errno changed by any call; so does this one, always
  return 0;
}

size_t strftime(char* text, size_t size, const char* format, const tm* time) noexcept {
  static const auto real = reinterpret_cast<decltype(&strftime)>(dlsym(RTLD_NEXT, "strftime"));
  ++dates;
  return real(text, size, format, time);
}

void openlog(const char* ident, int options, int facility) {
  records += "open " + std::string(ident) + " " + std::to_string(options) + " " + std::to_string(facility) + "\n";
}

void closelog() { records += "close\n"; }

void vsyslog(int priority, const char* format, va_list args) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, args);
  records += std::to_string(priority) + " " + text + "\n";
  errno = EPIPE;
}

/// What vsyslog becomes when libc's checks are compiled in.
void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list args) { vsyslog(priority, format, args); }

#ifndef SANITIZED
void* __libc_calloc(size_t count, size_t size);

void* calloc(size_t count, size_t size) {
  return std::exchange(out_of_memory, false) ? nullptr : __libc_calloc(count, size);
}
#endif
}
