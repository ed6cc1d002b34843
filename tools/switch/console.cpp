#include "console.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#include "descriptor.h"

namespace vswitch {

/// Writes to a file descriptor in a thread of its own, which holds the writer too: it may wait for a reader forever.
class Writer : public std::enable_shared_from_this<Writer> {
 public:
  explicit Writer(int descriptor) : descriptor_(descriptor), ended_(eventfd(0, EFD_CLOEXEC)) {}

  void start() {
    std::thread([self = shared_from_this()] { self->run(); }).detach();
  }

  void add(std::string_view text) {
    const std::lock_guard guard(lock_);
    if (error_ != 0) return;
    if (waiting_.size() + text.size() > most || (left_out_ > 0 && !waiting_.empty())) {
      left_out_ += text.size();
      return;
    }
    tell_left_out();
    waiting_ += text;
    changed_.notify_one();
  }

  /// Stops adding. Waits like Console::finish; returns the error that ended writing, or 0.
  int finish(int signals) {
    {
      const std::lock_guard guard(lock_);
      tell_left_out();
      finishing_ = true;
      changed_.notify_one();
    }
    constexpr int grace = 1000;  // milliseconds
    pollfd polled[] = {{ended_.get(), POLLIN, 0}, {signals, POLLIN, 0}};
    poll(polled, 2, -1);
    if (polled[0].revents == 0) poll(polled, 1, grace);
    const std::lock_guard guard(lock_);
    return error_;
  }

 private:
  static constexpr std::size_t most = 16 << 20;

  void run() {
    std::unique_lock guard(lock_);
    for (;;) {
      changed_.wait(guard, [this] { return !waiting_.empty() || finishing_; });
      if (waiting_.empty()) break;
      const std::string text = std::exchange(waiting_, {});
      guard.unlock();
      const int error = write_all(text);
      guard.lock();
      if (error != 0) {
        error_ = error;
        waiting_.clear();
      }
    }
    [[maybe_unused]] const int told = eventfd_write(ended_.get(), 1);
  }

  int write_all(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t count = write(descriptor_, text.data(), text.size());
      if (count >= 0)
        text.remove_prefix(static_cast<std::size_t>(count));
      else if (errno == EAGAIN)  // another process may have made it non-blocking
        wait_for_room();
      else if (errno != EINTR)
        return errno;
    }
    return 0;
  }

  void wait_for_room() const {
    pollfd polled{descriptor_, POLLOUT, 0};
    poll(&polled, 1, -1);
  }

  void tell_left_out() {
    if (left_out_ > 0) waiting_ += "\n(" + std::to_string(left_out_) + " bytes are left out here: nobody read them)\n";
    left_out_ = 0;
  }

  const int descriptor_;
  const Descriptor ended_;
  std::mutex lock_;
  std::condition_variable changed_;
  std::string waiting_;
  std::size_t left_out_ = 0;
  int error_ = 0;  // that ended writing
  bool finishing_ = false;
};

namespace {

std::FILE* stream_into(Writer& writer, int mode) {
  cookie_io_functions_t functions{};
  functions.write = [](void* cookie, const char* text, std::size_t size) {
    static_cast<Writer*>(cookie)->add({text, size});
    return static_cast<ssize_t>(size);
  };
  std::FILE* const stream = fopencookie(&writer, "w", functions);
  std::setvbuf(stream, nullptr, mode, BUFSIZ);
  return stream;
}

bool go_to_the_same_place(int one, int other) {
  struct stat a {};
  struct stat b {};
  return fstat(one, &a) == 0 && fstat(other, &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

void tell(const std::string& line) {
  std::fflush(stdout);
  std::fprintf(stderr, "swsdk-switch: %s\n", line.c_str());
}

Console::Console()
    : output_(stdout),
      errors_(stderr),
      output_writer_(std::make_shared<Writer>(STDOUT_FILENO)),
      errors_writer_(go_to_the_same_place(STDOUT_FILENO, STDERR_FILENO) ? output_writer_
                                                                        : std::make_shared<Writer>(STDERR_FILENO)) {
  output_writer_->start();
  if (errors_writer_ != output_writer_) errors_writer_->start();
  stdout = stream_into(*output_writer_, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF);
  stderr = stream_into(*errors_writer_, _IONBF);
}

Console::~Console() {
  std::fclose(std::exchange(stdout, output_));
  std::fclose(std::exchange(stderr, errors_));
}

bool Console::finish(int signals) {
  std::fflush(stdout);
  const int error = output_writer_->finish(signals);
  if (error != 0) tell(std::string("cannot write to standard output: ") + std::strerror(error));
  if (errors_writer_ != output_writer_) errors_writer_->finish(signals);
  return error == 0;
}

}  // namespace vswitch
