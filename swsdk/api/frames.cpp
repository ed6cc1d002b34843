#include <bcm/knet.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <iterator>
#include <span>

#include "api/call.h"
#include "api/events.h"
#include "api/frame_log.h"
#include "api/recording.h"
#include "api/way.h"

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

/// As swsdk_segments has it.
chip::Segments to_chip(const swsdk_segments& given) {
  return {.kind = static_cast<chip::Segments::Kind>(given.kind),
          .payload = given.payload,
          .headers = given.headers,
          .checksum_start = given.checksum_start,
          .checksum_at = given.checksum_at};
}
swsdk_segments to_c(const chip::Segments& segments) {
  return {.kind = static_cast<int>(segments.kind),
          .payload = segments.payload,
          .headers = segments.headers,
          .checksum_start = segments.checksum_start,
          .checksum_at = segments.checksum_at};
}
static_assert(SWSDK_TCP_IP4 == static_cast<int>(chip::Segments::Kind::tcp_ip4));
static_assert(SWSDK_TCP_IP6 == static_cast<int>(chip::Segments::Kind::tcp_ip6));
static_assert(SWSDK_UDP == static_cast<int>(chip::Segments::Kind::udp));

bool is_frame(const swsdk_in& in) {
  if (in.data == nullptr) return false;
  const swsdk_segments* const segments = in.segments;
  return segments == nullptr || (segments->kind >= SWSDK_TCP_IP4 && segments->kind <= SWSDK_UDP &&
                                 segments->payload > 0 && segments->headers <= in.length);
}

/// Passes frames that leave a unit to its handlers.
class Handlers : public chip::Wire {
 public:
  Handlers(int unit, const std::vector<api::FrameHandler>& handlers, chip::Port in_port)
      : unit_(unit), handlers_(handlers), in_port_(in_port) {}

  void transmit(chip::Port port, std::span<const uint8_t> frame) override { hand_over(port, 0, frame, nullptr); }
  void deliver(const chip::CpuFrame& frame) override {
    hand_over(chip::Ports::cpu, frame.reasons, frame.bytes, nullptr);
  }
  void transmit_whole(chip::Port port, std::span<const uint8_t> aggregate, const chip::Segments& segments) override {
    const bool all_take_them = std::all_of(handlers_.begin(), handlers_.end(),
                                           [](const api::FrameHandler& one) { return one.takes_aggregates; });
    if (!all_take_them) return Wire::transmit_whole(port, aggregate, segments);
    const swsdk_segments told = to_c(segments);
    hand_over(port, 0, aggregate, &told);
  }

 private:
  void hand_over(chip::Port port, uint32_t cpu, std::span<const uint8_t> frame, const swsdk_segments* segments) {
    const swsdk_out out{.port = port.number(),
                        .in_port = in_port_.number(),
                        .cpu = cpu,
                        .data = frame.data(),
                        .length = frame.size(),
                        .segments = segments};
    if (api::has_recording_file() || api::captures_events()) [[unlikely]]
      record(out);
    for (std::size_t i = 0; i < handlers_.size(); ++i) {  // one may replace itself
      const auto [function, user_data, takes_aggregates, caller] = handlers_[i];
      if (caller == nullptr)
        function(unit_, &out, user_data);
      else
        tell(*caller, out, function, user_data);
    }
  }

  void record(const swsdk_out& out) const {
    const std::string event =
        call_text(api::frame_callback,
                  {unit_, out.port, api::hex(out.cpu), api::bytes(out.data, static_cast<unsigned>(out.length))},
                  api::Form::recording, 0);
    api::capture_event(event);
    api::add_to_recording(api::Kind::event, event);
  }

  void tell(api::Caller& caller, const swsdk_out& out, swsdk_frame_handler function, void* user_data) const {
    inform(caller, call_text(api::frame_event,
                             {unit_, out.port, out.in_port, api::hex(out.cpu),
                              api::bytes(out.data, static_cast<unsigned>(out.length)), function, user_data},
                             api::Form::wire, 0));
  }

  const int unit_;
  const std::vector<api::FrameHandler>& handlers_;
  const chip::Port in_port_;
};

/// A frame arrives at a unit, which is locked. Returns what swsdk_frame_send() does.
int arrive(int unit, const chip::Chip& chip, int port, std::span<const uint8_t> frame) {
  const chip::Port in_port = chip::Port::of(port);
  if (!chip.ports.has(in_port)) return -1;
  Handlers wire(unit, api::find_unit(unit)->frame_handlers, in_port);
  return static_cast<int>(api::receive_watched(unit, in_port, frame, wire));
}

/// Sends each frame of an aggregate by itself, or the only one, by `send`, which returns what swsdk_frame_send() does.
/// Returns whether one was forwarded.
template <class Send>
bool send_cut(const swsdk_in& in, Send send) {
  const std::span<const uint8_t> bytes(in.data, in.length);
  if (in.segments == nullptr) return send(bytes) == 0;
  chip::Cutter cutter;
  const auto frames = cutter.cut(bytes, to_chip(*in.segments));
  return std::count_if(frames.begin(), frames.end(), [&](const auto frame) { return send(frame) == 0; }) > 0;
}

int set_handler(int unit, swsdk_frame_handler handler, void* user_data, bool takes_aggregates) {
  const auto handle = [&] {
    api::Unit* const attached = api::find_unit(unit);
    if (attached == nullptr) return -1;
    const std::lock_guard guard(attached->lock);
    api::FrameHandler* const present = find_frame_handler(*attached, api::present_caller());
    if (handler == nullptr)
      std::erase_if(attached->frame_handlers, [&](const api::FrameHandler& one) { return &one == present; });
    else if (present != nullptr)
      *present = {handler, user_data, takes_aggregates};
    else
      attached->frame_handlers.push_back({handler, user_data, takes_aggregates});
    return 0;
  };
  const api::RemoteCallback callback{api::frame_event, unit, reinterpret_cast<const void*>(handler), user_data};
  const int rv = api::with_callback(
      callback, [&] { return api::ask("swsdk_frame_handle", handle, -1, unit, handler, user_data); });
  // A unit has one handler of each process.
  if (api::RemoteChip* const chip = api::remote_chip(); chip != nullptr && rv == 0) chip->keep_alone(callback);
  return rv;
}

}  // namespace

int swsdk_frame_handle(int unit, swsdk_frame_handler handler, void* user_data) {
  return set_handler(unit, handler, user_data, false);
}

int swsdk_aggregate_handle(int unit, swsdk_frame_handler handler, void* user_data) {
  return set_handler(unit, handler, user_data, true);
}

int swsdk_frame_send(int unit, int port, const void* data, size_t length) {
  if (data == nullptr) return -1;
  const auto* const bytes = static_cast<const uint8_t*>(data);
  const auto receive = [&](const chip::Chip& chip) { return arrive(unit, chip, port, {bytes, length}); };
  return api::act(__func__, unit, receive, port, api::bytes(bytes, static_cast<unsigned>(length)), length);
}

int swsdk_frames_send(int unit, const swsdk_in* frames, int count) {
  if (count < 0 || (frames == nullptr && count > 0)) return -1;
  const std::span<const swsdk_in> all(frames, static_cast<std::size_t>(count));
  const auto count_forwarded = [&](auto send) {
    return static_cast<int>(
        std::count_if(all.begin(), all.end(), [&](const swsdk_in& in) { return is_frame(in) && send(in); }));
  };
  if (api::remote_chip() != nullptr) {
    constexpr int any_reason = 1;
    if (swsdk_drops(unit, any_reason) < 0) return -1;
    return count_forwarded([&](const swsdk_in& in) {
      return send_cut(in,
                      [&](const auto frame) { return swsdk_frame_send(unit, in.port, frame.data(), frame.size()); });
    });
  }
  const auto receive = [&](const chip::Chip& chip) {
    const bool sees_each = api::is_recording() || api::Watches::any();
    return count_forwarded([&](const swsdk_in& in) {
      const chip::Port in_port = chip::Port::of(in.port);
      if (in.segments != nullptr && !sees_each && chip.ports.has(in_port)) {
        const chip::Segments segments = to_chip(*in.segments);
        Handlers wire(unit, api::find_unit(unit)->frame_handlers, in_port);
        return api::find_unit(unit)->pipeline->receive_whole(in_port, {in.data, in.length}, segments, wire);
      }
      return send_cut(in, [&](const auto frame) {
        const int rv = arrive(unit, chip, in.port, frame);
        api::record(api::Kind::action, "swsdk_frame_send", rv,
                    {unit, in.port, api::bytes(frame.data(), static_cast<unsigned>(frame.size())), frame.size()});
        return rv;
      });
    });
  };
  return api::on_chip(unit, receive, -1);
}

long swsdk_frame_trace(int unit, int port, const void* data, size_t length, char* buffer, size_t size) {
  if (data == nullptr) return -1;
  const auto* const bytes = static_cast<const uint8_t*>(data);
  const std::size_t room = std::min(size, api::max_text);
  const auto trace = [&](const chip::Chip& chip) {
    const chip::Port in_port = chip::Port::of(port);
    if (!chip.ports.has(in_port)) return -1L;
    api::Way way(api::Way::Detail::all, api::own_journal().owner(), nullptr);
    api::find_unit(unit)->pipeline->try_out(in_port, {bytes, length}, way, way);
    return static_cast<long>(api::copy_out(way.text(), buffer, room));
  };
  return api::ask_chip(__func__, unit, trace, -1L, port, api::bytes(bytes, static_cast<unsigned>(length)), length,
                       api::text_out(buffer, room), room);
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
  return api::ask_chip(__func__, unit, get, -1, index, api::out(netif));
}

const char* swsdk_cpu_reason_name(int index) {
  constexpr const char* names[] = {"l2 cache", "protocol", "l3 miss",   "l3 error",
                                   "field",    "learning", "mac entry", "destination"};
  return index >= 0 && index < static_cast<int>(std::size(names)) ? names[index] : nullptr;
}

const char* swsdk_drop_name(int reason) {
  return is_reason(reason) ? chip::name(static_cast<chip::Drop>(reason)) : nullptr;
}

long long swsdk_drops(int unit, int reason) {
  const auto count = [&](const chip::Chip& chip) {
    long long sum = 0;
    for (const auto& [port, counts] : chip.drops)
      sum += static_cast<long long>(counts[static_cast<std::size_t>(reason)]);
    return sum;
  };
  return is_reason(reason) ? api::ask_chip(__func__, unit, count, -1LL, reason) : -1;
}

long long swsdk_port_drops(int unit, int port, int reason) {
  const auto count = [&](const chip::Chip& chip) {
    const auto* const counts = chip.drops.find(chip::Port::of(port));
    return counts == nullptr ? -1LL : static_cast<long long>((*counts)[static_cast<std::size_t>(reason)]);
  };
  return is_reason(reason) ? api::ask_chip(__func__, unit, count, -1LL, port, reason) : -1;
}
