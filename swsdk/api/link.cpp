#include <bcm/link.h>

#include "api/call.h"
#include "api/events.h"

using api::Call;
using chip::Chip;
using chip::Status;

int bcm_linkscan_enable_set(int unit, int us) {
  return Call(calls::bcm_linkscan_enable_set(unit, us)).answer([&](Chip& chip) {
    const Status status = chip.link_scan.set_interval(us);
    api::tell_links(unit, chip);
    return status;
  });
}

namespace {

api::RemoteCallback callback_of(int unit, bcm_linkscan_handler_t handler) {
  return {api::link_event, unit, reinterpret_cast<const void*>(handler), nullptr};
}

}  // namespace

int bcm_linkscan_register(int unit, bcm_linkscan_handler_t f) {
  const Call call(calls::bcm_linkscan_register(unit, f));
  return api::with_callback(callback_of(unit, f), [&] {
    return call.answer([&](const Chip&) {
      return f == nullptr ? Status::bad_parameter : api::find_unit(unit)->link_listeners.add({f});
    });
  });
}

int bcm_linkscan_unregister(int unit, bcm_linkscan_handler_t f) {
  const int rv = Call(calls::bcm_linkscan_unregister(unit, f)).answer([&](const Chip&) {
    return api::find_unit(unit)->link_listeners.remove({f});
  });
  return api::without_callback(callback_of(unit, f), rv);
}
