#include "recording.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "calls_in_effect.h"

/// By which the virtual chip, which can record itself, knows that it need not.
extern "C" __attribute__((visibility("default"))) const char swsdk_recorder = 1;

namespace {

using Clock = std::chrono::steady_clock;

/// A number of bytes such as "64M": with K, M or G, or with nothing behind it.
std::optional<uint64_t> size_of(std::string_view text) {
  uint64_t size = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
  const std::string_view unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
  const int shift = unit.empty() ? 0 : unit == "K" ? 10 : unit == "M" ? 20 : unit == "G" ? 30 : -1;
  if (error != std::errc{} || shift < 0 || size == 0 || size > (UINT64_MAX >> shift)) return std::nullopt;
  return size << shift;
}

/// Opened at the first line, so that a program that makes no call leaves an existing file alone. Its lines are written
/// one by one, so that no end of the process, however sudden, loses one.
///
/// With a limit there are two files. When the present one has two fifths of it, it becomes the former one, and a new
/// one begins with the calls that are still in effect; while it is written, the other two are still there.
class Recording {
 public:
  Recording() {
    const char* const path = std::getenv("SWSDK_RECORD");
    path_ = path == nullptr ? "" : path;
    is_on_ = !path_.empty();
    const char* const limit = std::getenv("SWSDK_RECORD_LIMIT");
    if (!is_on_ || limit == nullptr || *limit == '\0') return;
    if (const std::optional<uint64_t> size = size_of(limit))
      most_ = *size / 5 * 2;
    else
      give_up("SWSDK_RECORD_LIMIT is no size such as 64M");
  }

  bool is_on() const { return is_on_.load(std::memory_order_relaxed); }

  void add(api::Kind kind, std::string_view text) {
    const std::lock_guard guard(lock_);
    if (!is_on() || !is_open()) return;
    line_.assign(api::kind_names[static_cast<int>(kind)]).append(1, ' ').append(text).append(api::stamp_mark);
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - began_).count();
    append_number(microseconds / 1'000'000).append(1, '.');
    append_number(microseconds % 1'000'000, 6).append(1, ' ');
    append_number(thread_number()).append(1, '\n');
    if (most_ > 0 && size_ + line_.size() + end_line.size() > most_) begin_next();
    if (is_on()) write_line(line_);
    if (most_ > 0) in_effect_.add(text, line_);
    writer_ = process_;
  }

  void give_up(const char* why) {
    if (is_on_.exchange(false)) syslog(LOG_ERR, "the recording %s ends here: %s", path_.c_str(), why);
  }

  /// A process that exits ends the recording if it wrote its last line; otherwise its child has gone on.
  void end_with_process() {
    const std::lock_guard guard(lock_);
    if (file_ >= 0 && is_on() && writer_ == process_) write_line(end_line);
    is_on_ = false;
  }

  int pointer_number(const char* what, const void* pointer) {
    const std::lock_guard guard(lock_);
    std::map<const void*, int>& known = numbers_[what];
    return known.try_emplace(pointer, static_cast<int>(known.size()) + 1).first->second;
  }

  // A fork must not leave the lock taken in the child.
  void before_fork() { lock_.lock(); }
  void after_fork() { lock_.unlock(); }
  void begin_child() {
    process_ = getpid();
    lock_.unlock();
  }

 private:
  bool is_open() {
    if (file_ >= 0) return true;
    if (!open_file(path_)) return false;
    if (most_ > 0) {
      unlink(former().c_str());
      unlink(next().c_str());  // left when a process was killed
    }
    began_ = Clock::now();
    write_line(first_line());
    return is_on();
  }

  std::string former() const { return path_ + ".1"; }
  std::string next() const { return path_ + ".next"; }

  static std::string first_line() {
    return std::string(api::recording_header) + std::to_string(api::recording_version) + '\n';
  }

  bool open_file(const std::string& path) {
    file_ = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    if (file_ < 0) give_up(std::strerror(errno));
    return file_ >= 0;
  }

  /// At any moment there is a whole file under one of the two names.
  void begin_next() {
    if (!is_own_file()) return give_up("the file was moved, or another process goes on with it");
    const std::vector<std::string_view> lines = in_effect_.lines();
    std::string text = first_line() + api::state_mark.data() + ' ' + std::to_string(lines.size()) + '\n';
    for (const std::string_view line : lines) text += line;
    if (text.size() > most_ / 2) return give_up("what is in the chip takes more than a fifth of SWSDK_RECORD_LIMIT");
    write_line(end_line);
    close(file_);
    if (!open_file(next())) return;
    size_ = 0;
    write_line(text);
    if (std::rename(path_.c_str(), former().c_str()) != 0 || std::rename(next().c_str(), path_.c_str()) != 0)
      give_up(std::strerror(errno));
  }

  /// Not when a child of the process has begun the next file, or somebody has moved this one.
  bool is_own_file() const {
    struct stat own {};
    struct stat named {};
    return fstat(file_, &own) == 0 && stat(path_.c_str(), &named) == 0 && own.st_ino == named.st_ino &&
           own.st_dev == named.st_dev;
  }

  /// To the line, with at least so many digits.
  std::string& append_number(long long number, std::ptrdiff_t digits = 1) {
    char text[24];
    const char* const end = std::to_chars(std::begin(text), std::end(text), number).ptr;
    const auto length = end - text;
    if (length < digits) line_.append(static_cast<std::size_t>(digits - length), '0');
    return line_.append(text, static_cast<std::size_t>(length));
  }

  /// One line, or several at once.
  void write_line(std::string_view line) {
    ssize_t written = 0;
    do written = ::write(file_, line.data(), line.size());
    while (written < 0 && errno == EINTR);
    if (written == static_cast<ssize_t>(line.size())) {
      size_ += line.size();
      return;
    }
    const int reason = written < 0 ? errno : ENOSPC;
    if (written > 0) {
      const off_t end = lseek(file_, 0, SEEK_CUR);
      if (ftruncate(file_, end - written) != 0) give_up("its last line is cut");
    }
    give_up(std::strerror(reason));
  }

  /// Threads have the numbers 1, 2, and so on, in the order of their first lines.
  int thread_number() {
    thread_local int number = 0;
    if (number == 0) number = ++threads_;
    return number;
  }

  static constexpr std::string_view end_line = "end\n";

  std::mutex lock_;
  std::atomic<bool> is_on_ = false;
  std::string path_;
  int file_ = -1;
  uint64_t size_ = 0;                  // of the file
  uint64_t most_ = 0;                  // that a file may have; 0: without limit
  recorder::CallsInEffect in_effect_;  // with a limit
  pid_t process_ = getpid();
  pid_t writer_ = 0;  // of the last line
  Clock::time_point began_;
  int threads_ = 0;
  std::string line_;  // kept for its memory
  std::map<std::string, std::map<const void*, int>, std::less<>> numbers_;
};

/// Never destroyed: calls can occur while the process exits.
Recording& recording() {
  static Recording& instance = *new Recording;
  return instance;
}

__attribute__((constructor)) void follow_forks() {
  pthread_atfork([] { recording().before_fork(); }, [] { recording().after_fork(); },
                 [] { recording().begin_child(); });
}

/// Runs when the library is unloaded, and so after everything that a program does at exit.
__attribute__((destructor)) void end_with_process() { recording().end_with_process(); }

}  // namespace

bool recorder::is_on() { return recording().is_on(); }

void recorder::add(api::Kind kind, std::string_view text) { recording().add(kind, text); }

void recorder::give_up(const char* why) { recording().give_up(why); }

int api::pointer_number(const char* what, const void* pointer) { return recording().pointer_number(what, pointer); }
