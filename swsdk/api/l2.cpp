#include <bcm/l2.h>

#include <optional>
#include <vector>

#include "api/call.h"
#include "api/events.h"
#include "api/gports.h"
#include "api/l2.h"

using api::Call;
using api::found_by;
using api::hex;
using api::in;
using api::mac_at;
using api::my_module;
using api::out;
using chip::Chip;
using chip::MacEntry;
using chip::Status;

namespace {

chip::Place place_of(const bcm_l2_addr_t& sdk) {
  return sdk.flags & BCM_L2_TRUNK_MEMBER ? chip::TrunkId::of(sdk.tgid) : api::place_of(sdk.port);
}

chip::MacEntry to_chip(const bcm_l2_addr_t& sdk) {
  return {.mac = api::address(sdk.mac),
          .vlan = sdk.vid,
          .flags = sdk.flags & ~uint32{BCM_L2_TRUNK_MEMBER},
          .place = place_of(sdk),
          .source_hit = true};  // as if it had just been learned, so that it does not age at once
}

constexpr uint32 all_scopes = BCM_L2_LEARN_LIMIT_SYSTEM | BCM_L2_LEARN_LIMIT_VLAN | BCM_L2_LEARN_LIMIT_PORT |
                              BCM_L2_LEARN_LIMIT_TRUNK | BCM_L2_LEARN_LIMIT_TUNNEL;

/// Every scope that the flags select.
std::vector<chip::MacScope> scopes_of(const bcm_l2_learn_limit_t& limit) {
  std::vector<chip::MacScope> result;
  const auto add = [&](uint32 flag, const chip::MacScope& scope) {
    if (limit.flags & flag) result.push_back(scope);
  };
  add(BCM_L2_LEARN_LIMIT_SYSTEM, chip::AllAddresses{});
  add(BCM_L2_LEARN_LIMIT_VLAN, chip::VlanAddresses{limit.vlan});
  add(BCM_L2_LEARN_LIMIT_PORT, api::port_place_of(limit.port));
  add(BCM_L2_LEARN_LIMIT_TRUNK, chip::Place(chip::TrunkId::of(limit.trunk)));
  add(BCM_L2_LEARN_LIMIT_TUNNEL, chip::TunnelAddresses{limit.tunnel_id});
  return result;
}

api::RemoteCallback callback_of(int unit, bcm_l2_addr_callback_t callback, const void* user_data) {
  return {api::l2_event, unit, reinterpret_cast<const void*>(callback), user_data};
}

}  // namespace

bcm_l2_addr_t api::to_sdk(const chip::MacEntry& own) {
  bcm_l2_addr_t sdk;
  bcm_l2_addr_t_init(&sdk, own.mac.data(), own.vlan);
  sdk.flags = own.flags;
  if (const chip::TrunkId* const trunk = std::get_if<chip::TrunkId>(&own.place)) {
    sdk.flags |= BCM_L2_TRUNK_MEMBER;
    sdk.tgid = trunk->number();
  } else {
    sdk.port = sdk_port(own.place);
  }
  return sdk;
}

int bcm_l2_addr_add(int unit, bcm_l2_addr_t* l2addr) {
  return Call(calls::bcm_l2_addr_add(unit, l2addr)).answer([&](Chip& chip) {
    const MacEntry entry = to_chip(*l2addr);
    if (l2addr->modid != my_module) return Status::bad_parameter;
    const chip::TrunkId* const trunk = std::get_if<chip::TrunkId>(&entry.place);
    if (trunk != nullptr && chip.trunks.find(*trunk) == nullptr) return chip.trunks.absent(*trunk);
    return chip.mac_table.add(entry);
  });
}

int bcm_l2_addr_delete(int unit, uint8* mac, bcm_vlan_t vid) {
  return Call(calls::bcm_l2_addr_delete(unit, mac, vid)).answer([&](Chip& chip) {
    return chip.mac_table.remove(vid, mac_at(mac));
  });
}

int bcm_l2_addr_delete_by_mac(int unit, uint8* mac, uint32 flags) {
  return Call(calls::bcm_l2_addr_delete_by_mac(unit, mac, flags)).answer([&](Chip& chip) {
    return chip.mac_table.remove_if(flags, [&](const MacEntry& entry) { return entry.mac == mac_at(mac); });
  });
}

int bcm_l2_addr_delete_by_port(int unit, bcm_module_t mod, bcm_port_t port, uint32 flags) {
  return Call(calls::bcm_l2_addr_delete_by_port(unit, mod, port, flags)).answer([&](Chip& chip) {
    if (mod != my_module) return Status::bad_parameter;
    const chip::Place place = api::port_place_of(port);
    if (!chip.mac_table.is_place(place)) return Status::bad_port;
    return chip.mac_table.remove_if(flags, [&](const MacEntry& entry) { return entry.place == place; });
  });
}

int bcm_l2_addr_delete_by_trunk(int unit, bcm_trunk_t tid, uint32 flags) {
  return Call(calls::bcm_l2_addr_delete_by_trunk(unit, tid, flags)).answer([&](Chip& chip) {
    if (tid < 0 || tid >= chip::Trunks::capacity) return Status::bad_parameter;
    const chip::Place place = chip::TrunkId::of(tid);
    return chip.mac_table.remove_if(flags, [&](const MacEntry& entry) { return entry.place == place; });
  });
}

int bcm_l2_addr_delete_by_vlan(int unit, bcm_vlan_t vid, uint32 flags) {
  return Call(calls::bcm_l2_addr_delete_by_vlan(unit, vid, flags)).answer([&](Chip& chip) {
    if (!chip::is_vlan(vid)) return Status::bad_parameter;
    return chip.mac_table.remove_if(flags, [&](const MacEntry& entry) { return entry.vlan == vid; });
  });
}

int bcm_l2_addr_get(int unit, uint8* mac_addr, bcm_vlan_t vid, bcm_l2_addr_t* l2addr) {
  return Call(calls::bcm_l2_addr_get(unit, mac_addr, vid, l2addr)).answer([&](Chip& chip) {
    const MacEntry* const found = chip.mac_table.find(vid, mac_at(mac_addr));
    if (found == nullptr) return chip.mac_table.absent(vid);
    *l2addr = api::to_sdk(*found);
    return Status::ok;
  });
}

int bcm_l2_addr_register(int unit, bcm_l2_addr_callback_t callback, void* userdata) {
  const Call call(calls::bcm_l2_addr_register(unit, callback, userdata));
  return api::with_callback(callback_of(unit, callback, userdata), [&] {
    return call.answer([&](const Chip&) {
      return callback == nullptr ? Status::bad_parameter : api::find_unit(unit)->l2_listeners.add({callback, userdata});
    });
  });
}

int bcm_l2_addr_unregister(int unit, bcm_l2_addr_callback_t callback, void* userdata) {
  const int rv = Call(calls::bcm_l2_addr_unregister(unit, callback, userdata)).answer([&](const Chip&) {
    return api::find_unit(unit)->l2_listeners.remove({callback, userdata});
  });
  return api::without_callback(callback_of(unit, callback, userdata), rv);
}

int bcm_l2_age_timer_get(int unit, int* age_seconds) {
  return Call(calls::bcm_l2_age_timer_get(unit, age_seconds)).answer([&](const Chip& chip) {
    *age_seconds = chip.mac_table.age_time();
    return Status::ok;
  });
}

int bcm_l2_age_timer_set(int unit, int age_seconds) {
  return Call(calls::bcm_l2_age_timer_set(unit, age_seconds)).answer([&](Chip& chip) {
    return chip.mac_table.set_age_time(age_seconds);
  });
}

int bcm_l2_cache_delete(int unit, int index) {
  return Call(calls::bcm_l2_cache_delete(unit, index)).answer([&](Chip& chip) { return chip.l2_cache.remove(index); });
}

int bcm_l2_cache_delete_all(int unit) {
  return Call(calls::bcm_l2_cache_delete_all(unit)).answer([](Chip& chip) {
    chip.l2_cache.clear();
    return Status::ok;
  });
}

int bcm_l2_cache_set(int unit, int index, bcm_l2_cache_addr_t* addr, int* index_used) {
  return Call(calls::bcm_l2_cache_set(unit, index, addr, index_used)).answer([&](Chip& chip) {
    const chip::L2CacheEntry entry{
        .flags = addr->flags,
        .mac = api::address(addr->mac),
        .mac_mask = api::address(addr->mac_mask),
        .vlan = addr->vlan,
        .vlan_mask = addr->vlan_mask,
        .source_port = chip::Port::of(addr->src_port),
        .source_port_mask = addr->src_port_mask,
    };
    return chip.l2_cache.set(index, entry, *index_used);
  });
}

int bcm_l2_init(int unit) {
  return Call(calls::bcm_l2_init(unit)).answer([](Chip& chip) {
    chip.mac_table.reset();
    chip.learn_limits.reset();
    return Status::ok;
  });
}

int bcm_l2_learn_limit_disable(int unit) {
  return Call(calls::bcm_l2_learn_limit_disable(unit)).answer([](Chip& chip) {
    chip.learn_limits.enable(false);
    return Status::ok;
  });
}

int bcm_l2_learn_limit_enable(int unit) {
  return Call(calls::bcm_l2_learn_limit_enable(unit)).answer([](Chip& chip) {
    chip.learn_limits.enable(true);
    return Status::ok;
  });
}

int bcm_l2_learn_limit_get(int unit, bcm_l2_learn_limit_t* limit) {
  return Call(calls::bcm_l2_learn_limit_get(unit, limit)).answer([&](const Chip& chip) {
    const std::vector<chip::MacScope> scopes = scopes_of(*limit);
    if (scopes.size() != 1) return Status::bad_parameter;
    const std::optional<chip::LearnLimit> found = chip.learn_limits.get(scopes.front());
    if (!found) return chip.learn_limits.absent(scopes.front());
    limit->flags = (limit->flags & all_scopes) | found->actions;
    limit->limit = found->limit;
    return Status::ok;
  });
}

int bcm_l2_learn_limit_set(int unit, bcm_l2_learn_limit_t* limit) {
  return Call(calls::bcm_l2_learn_limit_set(unit, limit)).answer([&](Chip& chip) {
    return chip.learn_limits.set(scopes_of(*limit), {limit->limit, limit->flags & ~all_scopes});
  });
}

int bcm_l2_traverse(int unit, bcm_l2_traverse_cb trav_fn, void* user_data) {
  const auto list = [&](const Chip& chip, std::vector<bcm_l2_addr_t>& entries) {
    if (trav_fn == nullptr) return Status::bad_parameter;
    for (const MacEntry& entry : chip.mac_table.all()) entries.push_back(api::to_sdk(entry));
    return Status::ok;
  };
  const auto visit = [&](bcm_l2_addr_t& entry) { return trav_fn(unit, &entry, user_data); };
  return Call(calls::bcm_l2_traverse(unit, trav_fn, user_data)).walk<bcm_l2_addr_t>(list, visit);
}
