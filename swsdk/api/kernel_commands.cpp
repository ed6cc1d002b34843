#include "api/kernel_commands.h"

#include <soc/knet.h>
#include <swsdk/kernel_commands.h>

#include <cstring>
#include <deque>
#include <mutex>
#include <vector>

#include "api/call.h"

namespace {

constexpr std::size_t kept = 64;

std::mutex commands_lock;
std::deque<std::vector<uint8_t>> commands;  // the newest first

}  // namespace

void api::forget_kernel_commands() {
  const std::lock_guard guard(commands_lock);
  commands.clear();
}

int soc_knet_cmd_req(kcom_msg_t* kmsg, unsigned int len, unsigned int buf_size) {
  const uint8_t* const bytes = kmsg == nullptr ? nullptr : kmsg->bytes;
  const auto send = [&] {
    if (bytes == nullptr || len < sizeof(kcom_msg_hdr_t) || len > sizeof(kcom_msg_t) || buf_size < len)
      return chip::Status::bad_parameter;
    const std::lock_guard guard(commands_lock);
    commands.emplace_front(bytes, bytes + len);
    if (commands.size() > kept) commands.pop_back();
    return chip::Status::ok;
  };
  return api::call_without_unit(calls::soc_knet_cmd_req(kmsg, len, buf_size), send);
}

size_t swsdk_kernel_command(int index, void* buffer, size_t size) {
  kcom_msg_t message{};
  std::size_t length = 0;
  const auto read = [&] {
    const std::lock_guard guard(commands_lock);
    if (index >= 0 && static_cast<std::size_t>(index) < commands.size()) {
      const std::vector<uint8_t>& command = commands[static_cast<std::size_t>(index)];
      length = command.size();
      std::copy(command.begin(), command.end(), message.bytes);
    }
    return length;
  };
  length =
      api::ask(__func__, read, std::size_t{0}, index, api::bytes_out(message.bytes, sizeof message.bytes, &length));
  if (size > 0 && buffer != nullptr) std::memcpy(buffer, message.bytes, std::min(size, length));
  return length;
}
