#include <bcm/knet.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <iterator>

#include "api/call.h"

namespace {

using chip::cpu_reason::destination;
static_assert(SWSDK_CPU_L2_CACHE == chip::cpu_reason::l2_cache);
static_assert(SWSDK_CPU_PROTOCOL == chip::cpu_reason::protocol);
static_assert(SWSDK_CPU_L3_MISS == chip::cpu_reason::l3_miss);
static_assert(SWSDK_CPU_L3_ERROR == chip::cpu_reason::l3_error);
static_assert(SWSDK_CPU_FIELD == chip::cpu_reason::field_rule);
static_assert(SWSDK_CPU_LEARNING == chip::cpu_reason::learning);
static_assert(SWSDK_CPU_MAC_ENTRY == chip::cpu_reason::mac_entry);
static_assert(SWSDK_CPU_DESTINATION == chip::cpu_reason::destination);

bool is_reason(int reason) { return reason > static_cast<int>(chip::Drop::none) && reason < chip::drop_count; }

/// Passes frames that leave a unit to their handler.
class Handler : public chip::Wire {
 public:
  Handler(int unit, const api::FrameHandler& handler, chip::Port in_port)
      : unit_(unit), handler_(handler), in_port_(in_port) {}

  void transmit(chip::Port port, std::span<const uint8_t> frame) override { hand_over(port, 0, frame); }
  void deliver(const chip::CpuFrame& frame) override { hand_over(chip::Ports::cpu, frame.reasons, frame.bytes); }

 private:
  void hand_over(chip::Port port, uint32_t cpu, std::span<const uint8_t> frame) {
    if (handler_.function == nullptr) return;
    const swsdk_out out{
        .port = port.number(), .in_port = in_port_.number(), .cpu = cpu, .data = frame.data(), .length = frame.size()};
    handler_.function(unit_, &out, handler_.user_data);
  }

  const int unit_;
  const api::FrameHandler handler_;
  const chip::Port in_port_;
};

}  // namespace

int swsdk_frame_handle(int unit, swsdk_frame_handler handler, void* user_data) {
  api::Unit* const attached = api::find_unit(unit);
  if (attached == nullptr) return -1;
  const std::lock_guard guard(attached->lock);
  attached->frame_handler = {handler, user_data};
  return 0;
}

int swsdk_frame_send(int unit, int port, const void* data, size_t length) {
  if (data == nullptr) return -1;
  const auto* const bytes = static_cast<const uint8_t*>(data);
  const auto receive = [&](const chip::Chip& chip) {
    const chip::Port in_port = chip::Port::of(port);
    if (!chip.ports.has(in_port)) return -1;
    api::Unit& attached = *api::find_unit(unit);
    Handler wire(unit, attached.frame_handler, in_port);
    return static_cast<int>(attached.pipeline->receive(in_port, {bytes, length}, wire));
  };
  return api::act(__func__, unit, receive, port, api::bytes(bytes, static_cast<unsigned>(length)), length);
}

int swsdk_netif_get(int unit, int index, swsdk_netif* netif) {
  const auto get = [&](const chip::Chip& chip) {
    const auto& all = chip.network_interfaces.all();
    if (netif == nullptr || index < 0 || index >= static_cast<int>(all.size())) return -1;
    const chip::NetworkInterface& found = std::next(all.begin(), index)->second;
    *netif = {};
    found.name.copy(netif->name, sizeof netif->name - 1);
    std::copy(found.mac.begin(), found.mac.end(), netif->mac);
    netif->keeps_tag = (found.flags & BCM_KNET_NETIF_F_KEEP_RX_TAG) != 0 ? 1 : 0;
    return 0;
  };
  return api::on_chip(unit, get, -1);
}

const char* swsdk_drop_name(int reason) {
  return is_reason(reason) ? chip::name(static_cast<chip::Drop>(reason)) : nullptr;
}

long long swsdk_drops(int unit, int reason) {
  const api::Unit* const attached = api::find_unit(unit);
  const auto count = [&](const chip::Chip&) {
    return static_cast<long long>(attached->pipeline->drops(static_cast<chip::Drop>(reason)));
  };
  return is_reason(reason) ? api::on_chip(unit, count, -1LL) : -1;
}
