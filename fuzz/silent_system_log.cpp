// The system's log is left alone; what would go there is formatted all the same.
#include <cstdarg>
#include <cstdio>

extern "C" {
void openlog(const char* /*ident*/, int /*options*/, int /*facility*/) {}
void closelog() {}
void vsyslog(int /*priority*/, const char* format, va_list args) {
  char text[256];
  std::vsnprintf(text, sizeof text, format, args);
}
/// What vsyslog becomes when libc's checks are compiled in.
void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list args) { vsyslog(priority, format, args); }
}
