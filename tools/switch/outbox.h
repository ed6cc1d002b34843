// Frames that wait to be sent through a packet socket together.
#pragma once

#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vswitch {

class Outbox {
 public:
  Outbox();

  /// Keeps a copy, after what waits was sent when there is no more room.
  void add(int socket, std::span<const uint8_t> frame);

  /// Sends what waits. What cannot be sent is lost.
  void flush(int socket);

 private:
  static constexpr std::size_t max_count = 64;

  std::vector<uint8_t> bytes_;  // each frame after its header
  std::array<iovec, max_count> parts_{};
  std::array<mmsghdr, max_count> messages_{};
  std::size_t count_ = 0;
  std::size_t end_ = 0;  // of the bytes
};

}  // namespace vswitch
