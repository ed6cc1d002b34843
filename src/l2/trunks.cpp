#include <sai.h>

#include <iterator>

#include "core/gports.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::result;

namespace {

constexpr int bitmap_ports = 32;

/// Meant: bit 0 is port 1 and so on; port 0 is the highest bit.
constexpr bool is_member(uint32_t bitmap, int port) {
  const int bit = port == 0 ? bitmap_ports - 1 : port - 1;
  return (bitmap >> bit & 1) != 0;
}

/// The member slots, more than the bitmap can fill, because the caller gives the count.
using Members = bcm_trunk_member_t[BCM_PBMP_PORT_MAX];

/// Fills one slot for each port of the bitmap, in ascending order. Stops at the first port that cannot be mapped.
int fill(int unit, int module, uint32_t bitmap, Members& members) {
  int found = 0;
  for (int port = 0; port < bitmap_ports; ++port) {
    if (!is_member(bitmap, port)) continue;
    int mapped_module = 0;
    int mapped_port = 0;
    const int rv = bcm_stk_modmap_map(unit, BCM_STK_MODMAP_GET, module, port, &mapped_module, &mapped_port);
    if (rv < 0) return rv;
    members[found++].gport =
        sai::gport::is_gport(mapped_port) ? mapped_port : sai::gport::module_port(mapped_module, mapped_port);
  }
  return BCM_E_NONE;
}

}  // namespace

int32_t sai_trunk_init(int32_t unit) { return result(bcm_trunk_init(unit), "Failed to init trunk: %s"); }

int32_t sai_trunk_detach(int32_t unit) { return result(bcm_trunk_detach(unit), "Failed to detach trunk: %s"); }

int32_t sai_trunk_create(int32_t unit, uint32_t flags, int32_t* tid) {
  const bcm_trunk_t wanted = tid == nullptr ? 0 : *tid;
  bcm_trunk_t id = wanted;
  const int rv = tid == nullptr ? BCM_E_PARAM : bcm_trunk_create(unit, flags, &id);
  if (rv == BCM_E_NONE) *tid = id;
  return result(rv, "Failed to create trunk %d: %s", wanted);
}

int32_t sai_trunk_destroy(int32_t unit, int32_t tid) {
  return result(bcm_trunk_destroy(unit, tid), "Failed to destroy trunk %d: %s", tid);
}

int32_t sai_trunk_set(int32_t unit, int32_t tid, int32_t psc, uint32_t member_bitmap, int32_t member_count) {
  int module = 0;
  int rv = bcm_stk_my_modid_get(unit, &module);
  if (failed(rv, "Failed to get module id: %s")) return sdk_to_sai(rv);

  Members members;
  for (bcm_trunk_member_t& member : members) bcm_trunk_member_t_init(&member);
  rv = fill(unit, module, member_bitmap, members);
  if (failed(rv, "Failed to set module identifier: %s")) return sdk_to_sai(rv);

  bcm_trunk_info_t info;
  bcm_trunk_info_t_init(&info);
  info.psc = sai_hash_to_sdk(static_cast<uint32_t>(psc));
  // Meant: the caller's count is passed on, whatever the bitmap holds, up to the number of slots.
  rv = member_count <= static_cast<int>(std::size(members)) ? bcm_trunk_set(unit, tid, &info, member_count, members)
                                                            : BCM_E_PARAM;
  return result(rv, "Failed to set trunk %d psc [%d]: %s", tid, psc);
}

int32_t sai_trunk_psc_set(int32_t unit, int32_t tid, int32_t psc) {
  // Meant: this message shows the SDK's criterion; that of sai_trunk_set() shows the library's.
  const int criterion = sai_hash_to_sdk(static_cast<uint32_t>(psc));
  return result(bcm_trunk_psc_set(unit, tid, criterion), "Failed to set trunk [%d] psc %d: %s", tid, criterion);
}
