#include "api/recording.h"

#include <dlfcn.h>
#include <swsdk/recording.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

#include "api/caller.h"
#include "api/remote_chip.h"
#include "api/system.h"

namespace {

constexpr char power_off[] = "action swsdk_power_off() = 0";

/// The file, opened at the first line: a process that makes no call does not touch an existing file.
class Recording {
 public:
  Recording() {
    // What the environment requests is the recorder's, if one stands before this library.
    if (dlsym(RTLD_DEFAULT, "swsdk_recorder") != nullptr) return;
    if (const char* const path = std::getenv(SWSDK_RECORD_VARIABLE); path != nullptr && *path != '\0') {
      path_ = path;
      want(false);
    }
  }

  bool is_wanted() const { return wanted_.load(std::memory_order_relaxed); }
  bool has_file() const { return has_file_.load(std::memory_order_relaxed); }

  bool start(const char* path) {
    const std::lock_guard guard(lock_);
    std::FILE* const file = opened(path);
    if (file == nullptr) return false;
    close();
    file_ = file;
    writer_ = getpid();
    want(capturing_);
    return true;
  }

  bool stop() {
    const std::lock_guard guard(lock_);
    path_.clear();
    const bool closed = close();
    want(capturing_);
    return closed;
  }

  void add(api::Kind kind, std::string_view line) {
    const std::lock_guard guard(lock_);
    std::string text = api::kind_names[static_cast<int>(kind)] + (' ' + std::string(line));
    if (capturing_ && kind != api::Kind::event) captured_ += text;
    if (file_ == nullptr && !path_.empty()) open_late();
    if (file_ == nullptr) return;
    if (powered_off_) std::fprintf(file_, "%s\n", power_off);
    powered_off_ = false;
    text += '\n';
    std::fputs(text.c_str(), file_);
    writer_ = getpid();
    empty_ = false;
  }

  /// Ends the recording of a process that exits, if it is its own: the child of a fork has the file too, and while it
  /// has made no call, the recording is still its parent's.
  void end_with_process() {
    const std::lock_guard guard(lock_);
    if (file_ == nullptr || writer_ != getpid()) return;
    if (!close()) std::fprintf(stderr, "the recording could not be written to its end\n");
    want(false);
  }

  void add_power_off() {
    const std::lock_guard guard(lock_);
    if (capturing_) captured_ += power_off;
    powered_off_ = !empty_;
  }

  void capture(bool on) {
    const std::lock_guard guard(lock_);
    capturing_ = on;
    captured_.clear();
    want(on);
  }

  std::string take() {
    const std::lock_guard guard(lock_);
    return std::exchange(captured_, {});
  }

 private:
  void want(bool capturing) {
    has_file_ = file_ != nullptr || !path_.empty();
    wanted_ = has_file_ || capturing;
  }

  /// The file with its first line; later lines are flushed one by one, so that a crash loses nothing.
  static std::FILE* opened(const char* path) {
    std::FILE* const file = std::fopen(path, "we");
    if (file == nullptr) return nullptr;
    std::setvbuf(file, nullptr, _IOLBF, BUFSIZ);
    std::fprintf(file, "%s%d\n", api::recording_header.data(), api::recording_version);
    return file;
  }

  /// No caller checks the result of a recording that the environment requests, so report a failure.
  void open_late() {
    file_ = opened(path_.c_str());
    if (file_ == nullptr)
      std::fprintf(stderr, "%s: cannot write the recording %s: %s\n", SWSDK_RECORD_VARIABLE, path_.c_str(),
                   std::strerror(errno));
    path_.clear();
    want(capturing_);
  }

  bool close() {
    if (file_ == nullptr) return false;
    std::fprintf(file_, "%s\n", api::recording_end.data());
    const bool failed = std::ferror(file_) != 0;
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    powered_off_ = false;
    empty_ = true;
    return closed && !failed;
  }

  std::mutex lock_;
  std::atomic<bool> wanted_ = false;
  std::atomic<bool> has_file_ = false;
  std::string path_;  // of a file that is not open yet
  std::FILE* file_ = nullptr;
  pid_t writer_ = 0;  // the process that wrote the last line
  bool empty_ = true;
  bool powered_off_ = false;
  bool capturing_ = false;
  std::string captured_;
};

/// Never destroyed: calls can occur while the process exits.
Recording& recording() {
  static Recording& instance = *new Recording;
  return instance;
}

/// Runs when the library is unloaded, and so after everything that a program does at exit.
__attribute__((destructor)) void end_with_process() { recording().end_with_process(); }

std::mutex numbers_lock;
/// A pointer, and whose it is; null: of this process.
using Pointer = std::pair<const api::Caller*, const void*>;
std::map<std::string, std::map<Pointer, int>, std::less<>> numbers;  // guarded by `numbers_lock`

}  // namespace

bool api::is_recording() { return recording().is_wanted(); }

bool api::has_recording_file() { return recording().has_file(); }

void api::add_to_recording(Kind kind, std::string_view line) { recording().add(kind, line); }

void api::add_power_off_to_recording() { recording().add_power_off(); }

void api::capture_recording(bool on) { recording().capture(on); }

std::string api::take_captured() { return recording().take(); }

int api::pointer_number(const char* what, const void* pointer) {
  const std::lock_guard guard(numbers_lock);
  std::map<Pointer, int>& known = numbers[what];
  return known.try_emplace({present_caller().get(), pointer}, static_cast<int>(known.size()) + 1).first->second;
}

void api::set_pointer_number(const char* what, const void* pointer, int number) {
  const std::lock_guard guard(numbers_lock);
  numbers[what][{nullptr, pointer}] = number;
}

void api::forget_pointer_numbers() {
  const std::lock_guard guard(numbers_lock);
  numbers.clear();
}

int swsdk_record_start(const char* path) {
  if ((api::published_units() > 0 && api::remote_chip() == nullptr) || path == nullptr || !recording().start(path))
    return -1;
  api::forget_pointer_numbers();
  return 0;
}

int swsdk_record_stop() { return recording().stop() ? 0 : -1; }
