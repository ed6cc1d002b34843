#include "recording.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

/// By which the virtual chip, which can record itself, knows that it need not.
extern "C" __attribute__((visibility("default"))) const char swsdk_recorder = 1;

namespace {

using Clock = std::chrono::steady_clock;

/// Opened at the first line, so that a program that makes no call leaves an existing file alone. Its lines are written
/// one by one, so that no end of the process, however sudden, loses one.
class Recording {
 public:
  Recording() {
    const char* const path = std::getenv("SWSDK_RECORD");
    path_ = path == nullptr ? "" : path;
    is_on_ = !path_.empty();
  }

  bool is_on() const { return is_on_.load(std::memory_order_relaxed); }

  void add(api::Kind kind, std::string_view text) {
    const std::lock_guard guard(lock_);
    if (!is_on() || !is_open()) return;
    line_.assign(api::kind_names[static_cast<int>(kind)]).append(1, ' ').append(text).append(api::stamp_mark);
    char stamp[64];
    const auto length = std::snprintf(stamp, sizeof stamp, "%.6f %d\n",
                                      std::chrono::duration<double>(Clock::now() - began_).count(), thread_number());
    write_line(line_.append(stamp, static_cast<std::size_t>(length)));
    writer_ = getpid();
  }

  void give_up(const char* why) {
    if (is_on_.exchange(false)) syslog(LOG_ERR, "the recording %s ends here: %s", path_.c_str(), why);
  }

  /// A process that exits ends the recording if it wrote its last line; otherwise its child has gone on.
  void end_with_process() {
    const std::lock_guard guard(lock_);
    if (file_ >= 0 && is_on() && writer_ == getpid()) write_line(std::string(api::recording_end) + '\n');
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

 private:
  bool is_open() {
    if (file_ >= 0) return true;
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    if (file_ < 0) {
      give_up(std::strerror(errno));
      return false;
    }
    began_ = Clock::now();
    write_line(std::string(api::recording_header) + std::to_string(api::recording_version) + '\n');
    return is_on();
  }

  void write_line(std::string_view line) {
    ssize_t written = 0;
    do written = ::write(file_, line.data(), line.size());
    while (written < 0 && errno == EINTR);
    if (written == static_cast<ssize_t>(line.size())) return;
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

  std::mutex lock_;
  std::atomic<bool> is_on_ = false;
  std::string path_;
  int file_ = -1;
  pid_t writer_ = 0;
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
  pthread_atfork([] { recording().before_fork(); }, [] { recording().after_fork(); }, [] { recording().after_fork(); });
}

/// Runs when the library is unloaded, and so after everything that a program does at exit.
__attribute__((destructor)) void end_with_process() { recording().end_with_process(); }

}  // namespace

bool recorder::is_on() { return recording().is_on(); }

void recorder::add(api::Kind kind, std::string_view text) { recording().add(kind, text); }

void recorder::give_up(const char* why) { recording().give_up(why); }

int api::pointer_number(const char* what, const void* pointer) { return recording().pointer_number(what, pointer); }
