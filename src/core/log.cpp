#include "core/log.h"

#include <errno.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <syslog.h>
#include <time.h>

sai_log_handle* sai_log_default = nullptr;

const char* sai_log_priority[9] = {"emergencies",   "alerts",        "critical",  "errors", "warnings",
                                   "notifications", "informational", "debugging", nullptr};

const char* sai_log_module_names[3] = {"NONE", "STG", nullptr};

namespace {

/// The date text of the last second that was stamped; formatted again only when the second changes.
struct DateCache {
  time_t second;
  size_t length;
  char text[28];
};

DateCache date_cache;

/// The time stamp of one message: made once, printed on each of its lines.
struct Stamp {
  size_t length;
  int32_t precision;
  bool made;
  char text[40];
};

constexpr int max_real_digits = 6;  // the clock counts microseconds
constexpr int32_t divisors[max_real_digits + 1] = {1000000, 100000, 10000, 1000, 100, 10, 1};

void refresh(DateCache& cache, time_t second) {
  if (second == cache.second) return;
  cache.second = second;
  cache.length = strftime(cache.text, sizeof cache.text, "%Y/%m/%d %H:%M:%S", localtime(&second));
}

/// Appends '.' and `precision` digits of the second's fraction; digits beyond the microsecond are zeros.
void append_fraction(Stamp& stamp, suseconds_t microseconds) {
  int precision = stamp.precision;
  char* const digits = stamp.text + stamp.length + 1;
  digits[-1] = '.';
  digits[precision] = '\0';
  stamp.length += 1 + static_cast<size_t>(precision);

  while (precision > max_real_digits) digits[--precision] = '0';
  auto quotient = microseconds / divisors[precision];
  while (precision > 0) {
    digits[--precision] = static_cast<char>('0' + quotient % 10);
    quotient /= 10;
  }
}

void make(Stamp& stamp) {
  timeval now;
  gettimeofday(&now, nullptr);
  refresh(date_cache, now.tv_sec);

  stamp.made = true;
  if (date_cache.length >= sizeof stamp.text) return;  // the stamp stays empty

  memcpy(stamp.text, date_cache.text, date_cache.length);
  stamp.text[date_cache.length] = '\0';
  stamp.length = date_cache.length;

  const auto room = static_cast<int32_t>(sizeof stamp.text - 1 - stamp.length);
  if (stamp.precision > 0 && stamp.precision < room) append_fraction(stamp, now.tv_usec);
}

void sai_log_timestamp(FILE* stream, Stamp& stamp) {
  if (!stamp.made) make(stamp);
  if (stream != nullptr) fprintf(stream, "%s ", stamp.text);
}

/// The name of a handle's module, which callers may set to anything.
const char* module_name(int32_t module) {
  return module == 0 || module == 1 ? sai_log_module_names[module] : "unknown";
}

[[gnu::format(printf, 5, 0)]] void write_line(FILE* stream, Stamp& stamp, const char* level_name, const char* module,
                                              const char* format, va_list args) {
  sai_log_timestamp(stream, stamp);
  if (level_name != nullptr) fprintf(stream, "%s: ", level_name);
  fprintf(stream, "%s: ", module);
  vfprintf(stream, format, args);
  fputc('\n', stream);
  fflush(stream);
}

[[gnu::format(printf, 4, 0)]] void write_line(FILE* stream, Stamp& stamp, int32_t level, const char* format,
                                              va_list args) {
  const sai_log_handle& log = *sai_log_default;
  va_list copy;
  va_copy(copy, args);
  write_line(stream, stamp, log.show_priority != 0 ? sai_log_priority[level] : nullptr, module_name(log.module), format,
             copy);
  va_end(copy);
}

[[gnu::format(printf, 2, 0)]] void sai_log_write(int32_t level, const char* format, va_list args) {
  if (format == nullptr) return;
  const int saved_errno = errno;
  Stamp stamp{};

  if (sai_log_default == nullptr) {
    // Meant: no level filter. Without a log nothing is lost.
    write_line(stderr, stamp, nullptr, "unknown", format, args);
  } else {
    const sai_log_handle& log = *sai_log_default;
    stamp.precision = log.time_precision;
    if (level <= log.max_level[SAI_LOG_SYSLOG]) {
      va_list copy;
      va_copy(copy, args);
      vsyslog(level | log.facility, format, copy);
      va_end(copy);
    }
    if (level <= log.max_level[SAI_LOG_FILE] && log.file != nullptr) write_line(log.file, stamp, level, format, args);
    if (level <= log.max_level[SAI_LOG_CONSOLE]) write_line(stdout, stamp, level, format, args);
  }

  errno = saved_errno;
}

}  // namespace

sai_log_handle* open_sai_log(const char* ident, int32_t module, int32_t syslog_options, int32_t facility) {
  auto* log = static_cast<sai_log_handle*>(calloc(1, sizeof(sai_log_handle)));
  if (log == nullptr) return nullptr;
  log->ident = ident;
  log->module = module;
  log->facility = facility;
  log->syslog_options = syslog_options;
  log->level = SAI_LOG_OFF;
  for (int32_t& limit : log->max_level) limit = SAI_LOG_OFF;
  openlog(ident, syslog_options, facility);
  return log;
}

void close_sai_log(sai_log_handle* log) {
  closelog();
  if (log->file != nullptr) fclose(log->file);
  if (log->file_name != nullptr) free(log->file_name);
  free(log);
}

void sai_log_set_level(sai_log_handle* log, int32_t destination, int32_t level) {
  if (log == nullptr) log = sai_log_default;
  if (log != nullptr) log->max_level[destination] = level;  // Meant: not checked; callers know the three destinations.
}

int32_t sai_level_match(const char* text) {
  if (text == nullptr) return -1;
  for (int32_t level = 0; sai_log_priority[level] != nullptr; ++level)
    if (strncmp(sai_log_priority[level], text, 2) == 0) return level;
  return -1;
}

void sai_err(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sai_log_write(SAI_LOG_ERRORS, format, args);
  va_end(args);
}

void sai_warn(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sai_log_write(SAI_LOG_WARNINGS, format, args);
  va_end(args);
}

void sai_notice(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sai_log_write(SAI_LOG_NOTIFICATIONS, format, args);
  va_end(args);
}

void sai_info(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sai_log_write(SAI_LOG_INFORMATIONAL, format, args);
  va_end(args);
}

void sai_debug(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sai_log_write(SAI_LOG_DEBUGGING, format, args);
  va_end(args);
}
