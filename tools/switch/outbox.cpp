#include "outbox.h"

#include <algorithm>
#include <cstring>

#include "vnet_header.h"

namespace vswitch {

namespace {

constexpr std::size_t room = 128 << 10;  // for max_count frames of the usual length

}  // namespace

Outbox::Outbox() : bytes_(room) {
  for (std::size_t i = 0; i < max_count; ++i) {
    messages_[i].msg_hdr.msg_iov = &parts_[i];
    messages_[i].msg_hdr.msg_iovlen = 1;
  }
}

void Outbox::add(int socket, std::span<const uint8_t> frame) {
  constexpr VnetHeader header{};
  const std::size_t size = sizeof header + frame.size();
  if (size > bytes_.size()) return;  // longer than any interface takes
  if (count_ == max_count || end_ + size > bytes_.size()) flush(socket);
  uint8_t* const begin = &bytes_[end_];
  std::memcpy(begin, &header, sizeof header);
  std::copy(frame.begin(), frame.end(), begin + sizeof header);
  parts_[count_++] = {begin, size};
  end_ += size;
}

void Outbox::flush(int socket) {
  for (std::size_t sent = 0; sent < count_;) {
    const int now = sendmmsg(socket, &messages_[sent], static_cast<unsigned>(count_ - sent), MSG_DONTWAIT);
    sent += static_cast<std::size_t>(std::max(now, 1));  // the first was refused
  }
  count_ = 0;
  end_ = 0;
}

}  // namespace vswitch
