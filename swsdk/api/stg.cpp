#include <bcm/stg.h>

#include "api/call.h"
#include "api/convert.h"
#include "api/gports.h"

using api::Call;
using api::out;
using api::port_of;
using chip::Chip;
using chip::Status;

int bcm_stg_clear(int unit) {
  return Call(calls::bcm_stg_clear(unit)).answer([](Chip& chip) {
    chip.spanning_trees.destroy_all();
    return Status::ok;
  });
}

int bcm_stg_count_get(int unit, int* max_stg) {
  return Call(calls::bcm_stg_count_get(unit, max_stg)).answer([&](const Chip&) {
    *max_stg = chip::SpanningTrees::capacity;
    return Status::ok;
  });
}

int bcm_stg_create_id(int unit, bcm_stg_t stg) {
  return Call(calls::bcm_stg_create_id(unit, stg)).answer([&](Chip& chip) { return chip.spanning_trees.create(stg); });
}

int bcm_stg_default_get(int unit, bcm_stg_t* stg_ptr) {
  return Call(calls::bcm_stg_default_get(unit, stg_ptr)).answer([&](const Chip& chip) {
    *stg_ptr = chip.spanning_trees.default_id();
    return Status::ok;
  });
}

int bcm_stg_default_set(int unit, bcm_stg_t stg) {
  return Call(calls::bcm_stg_default_set(unit, stg)).answer([&](Chip& chip) {
    return chip.spanning_trees.set_default(stg);
  });
}

int bcm_stg_destroy(int unit, bcm_stg_t stg) {
  return Call(calls::bcm_stg_destroy(unit, stg)).answer([&](Chip& chip) { return chip.spanning_trees.destroy(stg); });
}

int bcm_stg_init(int unit) {
  return Call(calls::bcm_stg_init(unit)).answer([](Chip& chip) {
    chip.spanning_trees.reset();
    return Status::ok;
  });
}

int bcm_stg_stp_get(int unit, bcm_stg_t stg, bcm_port_t port, int* stp_state) {
  return Call(calls::bcm_stg_stp_get(unit, stg, port, stp_state)).answer([&](const Chip& chip) {
    const chip::SpanningTrees& trees = chip.spanning_trees;
    return api::tell(trees.state(stg, port_of(port)), trees.absent_state(stg, port_of(port)), *stp_state);
  });
}

int bcm_stg_stp_set(int unit, bcm_stg_t stg, bcm_port_t port, int stp_state) {
  return Call(calls::bcm_stg_stp_set(unit, stg, port, stp_state)).answer([&](Chip& chip) {
    return chip.spanning_trees.set_state(stg, port_of(port), stp_state);
  });
}

int bcm_stg_vlan_add(int unit, bcm_stg_t stg, bcm_vlan_t vid) {
  return Call(calls::bcm_stg_vlan_add(unit, stg, vid)).answer([&](Chip& chip) {
    return chip.spanning_trees.add_vlan(stg, vid);
  });
}

int bcm_stg_vlan_remove(int unit, bcm_stg_t stg, bcm_vlan_t vid) {
  return Call(calls::bcm_stg_vlan_remove(unit, stg, vid)).answer([&](Chip& chip) {
    return chip.spanning_trees.remove_vlan(stg, vid);
  });
}

int bcm_stg_vlan_remove_all(int unit, bcm_stg_t stg) {
  return Call(calls::bcm_stg_vlan_remove_all(unit, stg)).answer([&](Chip& chip) {
    return chip.spanning_trees.remove_vlans(stg);
  });
}
