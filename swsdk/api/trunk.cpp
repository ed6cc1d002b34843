#include <bcm/trunk.h>

#include "api/call.h"

using api::array;
using api::hex;
using api::in;
using api::inout;
using api::unmodelled;

int bcm_trunk_create(int unit, uint32 flags, bcm_trunk_t* tid) {
  return unmodelled(__func__, unit, hex(flags), inout(tid));
}

int bcm_trunk_destroy(int unit, bcm_trunk_t tid) { return unmodelled(__func__, unit, tid); }

int bcm_trunk_detach(int unit) { return unmodelled(__func__, unit); }

int bcm_trunk_init(int unit) { return unmodelled(__func__, unit); }

int bcm_trunk_psc_set(int unit, bcm_trunk_t tid, int psc) { return unmodelled(__func__, unit, tid, psc); }

int bcm_trunk_set(int unit, bcm_trunk_t tid, bcm_trunk_info_t* trunk_info, int member_count,
                  bcm_trunk_member_t* member_array) {
  return unmodelled(__func__, unit, tid, in(trunk_info), member_count, array(member_array, member_count));
}
