#include "remote/line_stream.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace remote {

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

std::optional<std::string_view> LineStream::read() {
  while (true) {
    if (const std::size_t end = buffer_.find('\n', scanned_); end != std::string::npos) {
      const std::string_view line(buffer_.data() + begin_, end - begin_);
      begin_ = scanned_ = end + 1;
      return line;
    }
    buffer_.erase(0, begin_);
    begin_ = 0;
    scanned_ = buffer_.size();
    if (buffer_.size() > max_line_) return std::nullopt;
    if (buffer_.capacity() > max_line_ / 4 && buffer_.empty()) buffer_.shrink_to_fit();
    std::array<char, 65536> piece;
    const ssize_t length = recv(socket_.get(), piece.data(), piece.size(), 0);
    if (length > 0)
      buffer_.append(piece.data(), static_cast<std::size_t>(length));
    else if (length == 0 || errno != EINTR)
      return std::nullopt;
  }
}

bool LineStream::write(std::string_view lines) {
  while (!lines.empty()) {
    const ssize_t length = send(socket_.get(), lines.data(), lines.size(), MSG_NOSIGNAL);
    if (length >= 0)
      lines.remove_prefix(static_cast<std::size_t>(length));
    else if (errno != EINTR)
      return false;
  }
  return true;
}

void LineStream::shut_down() { shutdown(socket_.get(), SHUT_RDWR); }

}  // namespace remote
