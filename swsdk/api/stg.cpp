#include <bcm/stg.h>

#include "api/call.h"

using api::out;
using api::unmodelled;

int bcm_stg_clear(int unit) { return unmodelled(__func__, unit); }

int bcm_stg_count_get(int unit, int* max_stg) { return unmodelled(__func__, unit, out(max_stg)); }

int bcm_stg_create_id(int unit, bcm_stg_t stg) { return unmodelled(__func__, unit, stg); }

int bcm_stg_default_get(int unit, bcm_stg_t* stg_ptr) { return unmodelled(__func__, unit, out(stg_ptr)); }

int bcm_stg_default_set(int unit, bcm_stg_t stg) { return unmodelled(__func__, unit, stg); }

int bcm_stg_destroy(int unit, bcm_stg_t stg) { return unmodelled(__func__, unit, stg); }

int bcm_stg_init(int unit) { return unmodelled(__func__, unit); }

int bcm_stg_stp_get(int unit, bcm_stg_t stg, bcm_port_t port, int* stp_state) {
  return unmodelled(__func__, unit, stg, port, out(stp_state));
}

int bcm_stg_stp_set(int unit, bcm_stg_t stg, bcm_port_t port, int stp_state) {
  return unmodelled(__func__, unit, stg, port, stp_state);
}

int bcm_stg_vlan_add(int unit, bcm_stg_t stg, bcm_vlan_t vid) { return unmodelled(__func__, unit, stg, vid); }

int bcm_stg_vlan_remove(int unit, bcm_stg_t stg, bcm_vlan_t vid) { return unmodelled(__func__, unit, stg, vid); }

int bcm_stg_vlan_remove_all(int unit, bcm_stg_t stg) { return unmodelled(__func__, unit, stg); }
