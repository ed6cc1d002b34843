#include <sai.h>

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::low_word;
using sai::result;

namespace {

int32_t stp_get_result(int rv, const sai_port_stg_t& query) {
  return result(rv, "Failed to get stg [%d] port [%d] state: %s", query.stg, query.port);
}

}  // namespace

int32_t sai_stg_init(int32_t unit) { return result(bcm_stg_init(unit), "Failed to init stg: %s"); }

int32_t sai_stg_default_set(int32_t unit, int32_t stg) {
  return result(bcm_stg_default_set(unit, stg), "Failed to set default stg %d: %s", stg);
}

int32_t sai_stg_default_get(int32_t unit, int32_t* stg) {
  const int rv = sai::read_into(stg, [&](int* found) { return bcm_stg_default_get(unit, found); });
  // Meant: the message shows the pointer, not an id.
  return result(rv, "Failed to get default stg %d: %s", low_word(stg));
}

int32_t sai_stg_create(int32_t unit, int32_t stg) {
  return result(bcm_stg_create_id(unit, stg), "Failed to create stg %d: %s", stg);
}

int32_t sai_stg_destroy(int32_t unit, int32_t stg) {
  return result(bcm_stg_destroy(unit, stg), "Failed to destroy stg %d: %s", stg);
}

int32_t sai_stg_vlan_add(int32_t unit, int32_t stg, uint16_t vid) {
  // Meant: "to adding", and "to" in the message of the deletion.
  return result(bcm_stg_vlan_add(unit, stg, vid), "Failed to adding vlan %d to stg %d: %s", vid, stg);
}

int32_t sai_stg_vlan_del(int32_t unit, int32_t stg, uint16_t vid) {
  return result(bcm_stg_vlan_remove(unit, stg, vid), "Failed to delete vlan %d to stg %d: %s", vid, stg);
}

int32_t sai_stg_vlan_del_all(int32_t unit, int32_t stg) {
  return result(bcm_stg_vlan_remove_all(unit, stg), "Failed to delete vlan from stg %d: %s", stg);
}

int32_t sai_port_stg_stp_set(int32_t unit, int32_t stg, sai_port_stg_state_t pair) {
  return result(bcm_stg_stp_set(unit, stg, pair.port, static_cast<int>(pair.state)),
                "Failed to set stg [%d] port [%d] state (%u): %s", stg, pair.port, pair.state);
}

int32_t sai_port_stg_stp_get(int32_t unit, sai_port_stg_t* query) {
  if (query == nullptr) return stp_get_result(BCM_E_PARAM, {});
  int state = 0;
  const int rv = bcm_stg_stp_get(unit, query->stg, query->port, &state);
  if (rv == BCM_E_NONE) query->state = static_cast<uint32_t>(state);
  return stp_get_result(rv, *query);
}

int32_t sai_stg_count_get(int32_t unit, int32_t* count) {
  const int rv = sai::read_into(count, [&](int* found) { return bcm_stg_count_get(unit, found); });
  return result(rv, "Failed to get stg count: %s");
}

int32_t sai_stg_clear(int32_t unit) { return result(bcm_stg_clear(unit), "Failed to clear stg: %s"); }
