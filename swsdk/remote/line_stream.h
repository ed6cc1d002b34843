// Lines of text over a socket: what clients and the chip say to each other.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace remote {

/// A file descriptor that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();

  int get() const { return number_; }

 private:
  int number_;
};

class LineStream {
 public:
  /// @param max_line  the longest line that is read, so that the other side cannot fill the memory
  LineStream(Descriptor socket, std::size_t max_line) : socket_(std::move(socket)), max_line_(max_line) {}

  /// The next line, without its end, valid until the next call; nothing at the end, or if a line is too long. Waits.
  std::optional<std::string_view> read();

  /// Writes whole lines. Waits for room; false when the other side is gone.
  bool write(std::string_view lines);

  /// Ends reading and writing, also for another thread that waits there.
  void shut_down();

  int socket() const { return socket_.get(); }

 private:
  Descriptor socket_;
  std::size_t max_line_;
  std::string buffer_;
  std::size_t begin_ = 0;    // of what has not been returned
  std::size_t scanned_ = 0;  // up to where there is no end of a line
};

}  // namespace remote
