// What a packet socket receives, through memory that it shares with the kernel.
#pragma once

#include <linux/if_packet.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "attachment.h"

namespace vswitch {

/// The kernel fills slots with frames as they come. A frame that is longer than a slot, such as an aggregate, waits in
/// the socket's buffer.
class PacketRing {
 public:
  /// For a socket that has virtio headers and is not bound yet. Throws CannotStart.
  explicit PacketRing(int socket);
  ~PacketRing();
  PacketRing(const PacketRing&) = delete;
  PacketRing& operator=(const PacketRing&) = delete;

  /// Passes on the frames that have come, up to a burst.
  void receive(const Receiver& receiver);

  /// How many frames were lost since the last time.
  uint64_t take_lost();

 private:
  tpacket2_hdr& slot(std::size_t number) const;
  bool take(tpacket2_hdr& slot, Frame& frame);
  std::size_t take_long();

  const int socket_;
  uint8_t* memory_;
  std::size_t next_ = 0;       // the slot that is filled next
  std::vector<uint8_t> long_;  // the last frame that was longer than a slot, after room for a tag
  uint64_t lost_ = 0;          // which the kernel did not count
};

}  // namespace vswitch
