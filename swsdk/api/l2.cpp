#include <bcm/l2.h>

#include "api/call.h"

using api::Call;
using api::hex;
using api::in;
using api::inout;
using api::out;
using api::unmodelled;
using chip::Chip;
using chip::Status;

int bcm_l2_addr_add(int unit, bcm_l2_addr_t* l2addr) { return unmodelled(__func__, unit, in(l2addr)); }

int bcm_l2_addr_delete(int unit, uint8* mac, bcm_vlan_t vid) { return unmodelled(__func__, unit, api::mac(mac), vid); }

int bcm_l2_addr_delete_by_mac(int unit, uint8* mac, uint32 flags) {
  return unmodelled(__func__, unit, api::mac(mac), hex(flags));
}

int bcm_l2_addr_delete_by_port(int unit, bcm_module_t mod, bcm_port_t port, uint32 flags) {
  return unmodelled(__func__, unit, mod, port, hex(flags));
}

int bcm_l2_addr_delete_by_trunk(int unit, bcm_trunk_t tid, uint32 flags) {
  return unmodelled(__func__, unit, tid, hex(flags));
}

int bcm_l2_addr_delete_by_vlan(int unit, bcm_vlan_t vid, uint32 flags) {
  return unmodelled(__func__, unit, vid, hex(flags));
}

int bcm_l2_addr_get(int unit, uint8* mac_addr, bcm_vlan_t vid, bcm_l2_addr_t* l2addr) {
  return unmodelled(__func__, unit, api::mac(mac_addr), vid, out(l2addr));
}

int bcm_l2_addr_register(int unit, bcm_l2_addr_callback_t callback, void* userdata) {
  return Call(__func__, unit, callback, userdata).answer([&](const Chip&) {
    return callback == nullptr ? Status::bad_parameter : api::find_unit(unit)->l2_listeners.add({callback, userdata});
  });
}

int bcm_l2_addr_unregister(int unit, bcm_l2_addr_callback_t callback, void* userdata) {
  return Call(__func__, unit, callback, userdata).answer([&](const Chip&) {
    return api::find_unit(unit)->l2_listeners.remove({callback, userdata});
  });
}

int bcm_l2_age_timer_get(int unit, int* age_seconds) { return unmodelled(__func__, unit, out(age_seconds)); }

int bcm_l2_age_timer_set(int unit, int age_seconds) { return unmodelled(__func__, unit, age_seconds); }

int bcm_l2_cache_delete(int unit, int index) {
  return Call(__func__, unit, index).answer([&](Chip& chip) { return chip.l2_cache.remove(index); });
}

int bcm_l2_cache_delete_all(int unit) {
  return Call(__func__, unit).answer([](Chip& chip) {
    chip.l2_cache.clear();
    return Status::ok;
  });
}

int bcm_l2_cache_set(int unit, int index, bcm_l2_cache_addr_t* addr, int* index_used) {
  return Call(__func__, unit, index, in(addr), out(index_used)).answer([&](Chip& chip) {
    const chip::L2CacheEntry entry{
        .flags = addr->flags,
        .mac = api::address(addr->mac),
        .mac_mask = api::address(addr->mac_mask),
        .vlan = addr->vlan,
        .vlan_mask = addr->vlan_mask,
        .source_port = addr->src_port,
        .source_port_mask = addr->src_port_mask,
        .destination_port = addr->dest_port,
        .priority = addr->prio,
    };
    return chip.l2_cache.set(index, entry, *index_used);
  });
}

int bcm_l2_init(int unit) { return unmodelled(__func__, unit); }

int bcm_l2_learn_limit_disable(int unit) { return unmodelled(__func__, unit); }

int bcm_l2_learn_limit_enable(int unit) { return unmodelled(__func__, unit); }

int bcm_l2_learn_limit_get(int unit, bcm_l2_learn_limit_t* limit) { return unmodelled(__func__, unit, inout(limit)); }

int bcm_l2_learn_limit_set(int unit, bcm_l2_learn_limit_t* limit) { return unmodelled(__func__, unit, in(limit)); }

int bcm_l2_traverse(int unit, bcm_l2_traverse_cb trav_fn, void* user_data) {
  return unmodelled(__func__, unit, trav_fn, user_data);
}
