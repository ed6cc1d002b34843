#include "callbacks.h"

#include <array>
#include <atomic>
#include <string>
#include <utility>

#include "api/calls/call_text.h"
#include "recording.h"

thread_local int recorder::calls_in_progress = 0;

namespace {

void add_event(const char* type, api::Arguments arguments) {
  if (!recorder::is_on()) return;
  try {
    recorder::add(api::Kind::event, api::call_text(type, arguments, api::Form::recording, 0));
  } catch (...) {
    recorder::give_up("out of memory");
  }
}

// What is written of an event.

void tell(bcm_linkscan_handler_t callback, int unit, bcm_port_t port, const bcm_port_info_t* info) {
  add_event(api::link_callback, {callback, unit, port, api::in(info)});
}
void tell(bcm_l2_addr_callback_t callback, int unit, const bcm_l2_addr_t* address, int operation, void* user_data) {
  add_event(api::l2_callback, {callback, unit, api::in(address), operation, user_data});
}
/// What a traversal finds is in the chip's tables: only the calls that it leads to are written.
void tell(bcm_l2_traverse_cb, int, const bcm_l2_addr_t*, const void*) {}

/// Functions of one type, each of which stands for one callback of the application.
template <class Function>
class Relays;

template <class Returned, class... Args>
class Relays<Returned (*)(Args...)> {
 public:
  using Function = Returned (*)(Args...);

  Function of(Function callback) {
    if (callback == nullptr) return nullptr;
    for (std::size_t i = 0; i < count; ++i) {
      Function found = nullptr;
      if (callbacks[i].compare_exchange_strong(found, callback) || found == callback) return functions[i];
    }
    return callback;
  }

 private:
  static constexpr std::size_t count = 64;

  template <std::size_t index>
  static Returned relay(Args... args) {
    const Function callback = callbacks[index];
    const recorder::CallbackInProgress in_progress;
    tell(callback, args...);
    return callback(args...);
  }

  static constexpr auto functions = []<std::size_t... index>(std::index_sequence<index...>) {
    return std::array<Function, count>{&relay<index>...};
  }
  (std::make_index_sequence<count>());
  inline static std::array<std::atomic<Function>, count> callbacks{};
};

}  // namespace

bcm_linkscan_handler_t recorder::relayed(bcm_linkscan_handler_t callback) {
  return Relays<bcm_linkscan_handler_t>().of(callback);
}
bcm_l2_addr_callback_t recorder::relayed(bcm_l2_addr_callback_t callback) {
  return Relays<bcm_l2_addr_callback_t>().of(callback);
}
bcm_l2_traverse_cb recorder::relayed(bcm_l2_traverse_cb callback) { return Relays<bcm_l2_traverse_cb>().of(callback); }
