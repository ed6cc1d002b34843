// Lines of the log against a formatter of the target's own: level filters, stamp, headers, text.
#include <sai.h>
#include <sys/time.h>
#include <syslog.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <string_view>
#include <utility>
#include <vector>

#include "input.h"

using fuzz::Input;
using fuzz::require;

namespace {

timeval now{};
std::string syslog_records;

constexpr std::string_view level_names[] = {"emergencies", "alerts",        "critical",      "errors",
                                            "warnings",    "notifications", "informational", "debugging"};

/// `number` in decimal with zeros before it.
std::string padded(int64_t number, std::size_t width) {
  std::string digits = std::to_string(number);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

bool is_leap(int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

/// The date as people count it, from 1970 on; UTC.
std::string date_of(int64_t seconds) {
  int64_t days = seconds / 86400;
  constexpr int64_t days_of_400_years = 146097;
  int64_t year = 1970 + 400 * (days / days_of_400_years);
  days %= days_of_400_years;
  for (; days >= 365 + is_leap(year); ++year) days -= 365 + is_leap(year);
  const int lengths[] = {31, is_leap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int month = 0;
  for (; days >= lengths[month]; ++month) days -= lengths[month];
  const int64_t of_day = seconds % 86400;
  return padded(year, 4) + '/' + padded(month + 1, 2) + '/' + padded(days + 1, 2) + ' ' + padded(of_day / 3600, 2) +
         ':' + padded(of_day / 60 % 60, 2) + ':' + padded(of_day % 60, 2);
}

std::string stamp_of(const timeval& time, int32_t precision) {
  constexpr std::size_t longest = 39;
  std::string stamp = date_of(time.tv_sec);
  if (precision <= 0 || static_cast<std::size_t>(precision) >= longest - stamp.size()) return stamp;
  const std::string digits = padded(time.tv_usec, 6) + std::string(static_cast<std::size_t>(precision), '0');
  return stamp + '.' + digits.substr(0, static_cast<std::size_t>(precision));
}

/// A stream whose text is in memory, in place of one of libc's or of a log's.
struct Stream {
  Stream() : file(open_memstream(&text, &size)) {}
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { std::free(text); }
  std::string take() const {
    std::fflush(file);
    return {text, size};
  }
  char* text = nullptr;
  std::size_t size = 0;
  FILE* file;
};

struct Message {
  int level;
  std::string text;
};

/// Logs by one of the five functions, in one of a few formats.
Message log_message(Input& input) {
  constexpr void (*functions[])(const char*, ...) = {sai_err, sai_warn, sai_notice, sai_info, sai_debug};
  const int index = input.from(0, 4);
  const auto log = functions[index];
  const int level = SAI_LOG_ERRORS + index;
  const int format = input.from(0, 3);
  const auto number = input.any<int32_t>();
  const std::string text = input.text(200).c_str();  // up to its first zero
  errno = number;
  switch (format) {
    case 0:
      log("%s", text.c_str());
      break;
    case 1:
      log("port [%d]: %s", number, text.c_str());
      break;
    case 2:
      log("%x%%", static_cast<unsigned>(number));
      break;
    default:
      log("nothing else");
  }
  require(errno == number, "errno is not as it was");
  char hexadecimal[16];
  std::snprintf(hexadecimal, sizeof hexadecimal, "%x%%", static_cast<unsigned>(number));
  const std::string texts[] = {text, "port [" + std::to_string(number) + "]: " + text, hexadecimal, "nothing else"};
  return {level, texts[format]};
}

void check_level_match(Input& input) {
  const std::string text = input.text(20).c_str();
  int32_t expected = -1;
  for (int32_t level = SAI_LOG_DEBUGGING; level >= 0; --level)
    if (text.size() >= 2 && level_names[level].starts_with(text.substr(0, 2))) expected = level;
  const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
  require(sai_level_match(exact.data()) == expected, "another level is found");
}

/// The clock goes anywhere up to the year 36812, whose dates no longer leave room for 19 digits.
void move_clock(Input& input) {
  constexpr int64_t end = int64_t{1} << 40;
  if (input.flag()) now.tv_sec = 1 + static_cast<int64_t>(input.any<uint64_t>() % end);
  now.tv_usec = static_cast<suseconds_t>(input.any<uint32_t>() % 1000000);
}

}  // namespace

extern "C" {

int gettimeofday(timeval* time, void* /*zone*/) noexcept {
  *time = now;
  errno = EINTR;
  return 0;
}
void openlog(const char* /*ident*/, int /*options*/, int /*facility*/) {}
void closelog() {}
void vsyslog(int priority, const char* format, va_list args) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, args);
  syslog_records += std::to_string(priority) + ' ' + text + '\n';
  errno = EPIPE;
}
void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list args) { vsyslog(priority, format, args); }

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  setenv("TZ", "UTC", 1);
  tzset();
  return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const Stream console;
  const Stream error;
  const Stream file;
  FILE* const own_output = std::exchange(stdout, console.file);
  FILE* const own_error = std::exchange(stderr, error.file);

  const bool has_log = input.any<uint8_t>() < 240;
  const bool has_file = input.flag();
  if (has_log) {
    sai_log_default = open_sai_log("fuzz", input.from(0, 1), 0, input.any<uint8_t>() << 3);
    sai_log_default->file = has_file ? file.file : nullptr;
  }

  std::string expected_console;
  std::string expected_error;
  std::string expected_file;
  std::string expected_syslog;
  syslog_records.clear();
  now = {1, 0};
  while (!input.is_empty()) {
    move_clock(input);
    check_level_match(input);
    if (!has_log) {
      expected_error += stamp_of(now, 0) + " unknown: " + log_message(input).text + '\n';
      continue;
    }
    sai_log_handle& log = *sai_log_default;
    log.show_priority = input.near(0, 1);
    log.time_precision = input.near(0, 21);
    for (int destination = 0; destination < 3; ++destination)
      sai_log_set_level(input.flag() ? &log : nullptr, destination, input.near(SAI_LOG_OFF, SAI_LOG_DEBUGGING));
    const Message message = log_message(input);
    const std::string line = stamp_of(now, log.time_precision) + ' ' +
                             (log.show_priority != 0 ? std::string(level_names[message.level]) + ": " : "") +
                             (log.module == 0 ? "NONE: " : "STG: ") + message.text + '\n';
    if (message.level <= log.max_level[SAI_LOG_SYSLOG])
      expected_syslog += std::to_string(message.level | log.facility) + ' ' + message.text + '\n';
    if (message.level <= log.max_level[SAI_LOG_CONSOLE]) expected_console += line;
    if (message.level <= log.max_level[SAI_LOG_FILE] && has_file) expected_file += line;
  }

  const std::string on_console = console.take();
  const std::string on_error = error.take();
  const std::string in_file = file.take();
  stdout = own_output;
  stderr = own_error;
  std::fclose(console.file);
  std::fclose(error.file);
  if (!has_log || !has_file) std::fclose(file.file);
  if (has_log) close_sai_log(std::exchange(sai_log_default, nullptr));
  require(on_console == expected_console, "the console shows something else");
  require(on_error == expected_error, "standard error shows something else");
  require(in_file == expected_file, "the file has something else");
  require(syslog_records == expected_syslog, "the system log has something else");
  return 0;
}
}
