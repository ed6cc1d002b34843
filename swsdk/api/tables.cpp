#include <swsdk/tables.h>

#include <optional>

#include "api/call.h"
#include "api/check.h"
#include "api/gports.h"
#include "api/journal.h"
#include "api/show.h"
#include "chip/pipeline/learning.h"

using chip::Chip;

long swsdk_show(int unit, const char* table, char* buffer, size_t size) {
  const std::size_t room = std::min(size, api::max_text);
  const auto show = [=]() -> long {
    api::Unit* const attached = api::find_unit(unit);
    if (attached == nullptr || table == nullptr) return -1;
    const std::lock_guard guard(attached->lock);
    const std::optional<api::Rows> rows = attached->chip ? api::table_rows(*attached->chip, table) : std::nullopt;
    return rows ? static_cast<long>(api::copy_out(api::columns(*rows), buffer, room)) : -1;
  };
  return api::ask(__func__, show, -1L, unit, table, api::text_out(buffer, room), room);
}

const char* swsdk_show_table(int index) {
  return index < 0 ? nullptr : api::shown_table(static_cast<std::size_t>(index));
}

long swsdk_check(int unit, char* buffer, size_t size) {
  const std::size_t room = std::min(size, api::max_text);
  const auto check = [=](const Chip& chip) -> long {
    const std::string reader = api::own_journal().owner();
    std::string text;
    for (const auto& [what, origin] : api::leftovers(chip)) {
      text += what + '\n';
      if (const chip::Cause* const cause = origin.cause()) text += "  " + api::call_text(*cause, reader) + '\n';
    }
    return static_cast<long>(api::copy_out(text, buffer, room));
  };
  return api::ask_chip(__func__, unit, check, -1L, api::text_out(buffer, room), room);
}

int swsdk_l2_learn(int unit, int vid, const unsigned char* mac, int port, unsigned tunnel) {
  const auto learn = [&](Chip& chip) {
    const chip::Place place = api::port_place_of(port);
    if (!chip.mac_table.is_place(place)) return -1;
    const chip::Source source{api::mac_at(mac), static_cast<uint16_t>(vid), place, tunnel};
    return is_in_place(chip::learn(chip, source)) ? 1 : 0;
  };
  if (mac == nullptr || !chip::is_vlan(vid)) return -1;
  return api::act(__func__, unit, learn, vid, api::mac(mac), port, tunnel);
}

int swsdk_l2_lookup(int unit, int vid, const unsigned char* mac) {
  const auto look_up = [&](Chip& chip) { return chip::look_up(chip, vid, api::mac_at(mac)) != nullptr ? 1 : 0; };
  if (mac == nullptr || !chip::is_vlan(vid)) return -1;
  return api::act(__func__, unit, look_up, vid, api::mac(mac));
}

int swsdk_l3_host_hit(int unit, unsigned address, unsigned hits) {
  return api::act(
      __func__, unit,
      [&](Chip& chip) {
        return api::zero_if_ok(chip.hosts.hit({0, address}, hits));
      },
      api::ip4(address), api::hex(hits));
}

int swsdk_l3_route_hit(int unit, unsigned subnet, unsigned mask, unsigned hits) {
  const auto mark = [&](Chip& chip) {
    const std::optional<chip::RouteKey> key = chip::Routes::key_of(0, subnet, mask);
    return key ? api::zero_if_ok(chip.routes.hit(*key, hits)) : -1;
  };
  return api::act(__func__, unit, mark, api::ip4(subnet), api::ip4(mask), api::hex(hits));
}

int swsdk_counter_set(int unit, int port, int stat, unsigned long long value) {
  return api::act(
      __func__, unit, [&](Chip& chip) { return api::zero_if_ok(chip.counters.set(chip::Port::of(port), stat, value)); },
      port, stat, value);
}
