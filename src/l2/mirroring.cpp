#include <sai.h>

#include <initializer_list>

#include "core/gports.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::log_if_failed;
using sai::result;

namespace {

/// The SDK's id of a session's destination.
constexpr bcm_gport_t destination_id(int session) { return session | sai::gport::of_kind(BCM_GPORT_TYPE_MIRROR, 0); }

int destination_get(int unit, int session, bcm_mirror_destination_t& destination) {
  bcm_mirror_destination_t_init(&destination);
  return bcm_mirror_destination_get(unit, destination_id(session), &destination);
}

/// Meant: a port without a direction is enabled too.
constexpr uint32_t port_flags(int mode) {
  return BCM_MIRROR_PORT_ENABLE | (mode & SAI_MIRROR_INGRESS ? BCM_MIRROR_PORT_INGRESS : 0) |
         (mode & SAI_MIRROR_EGRESS ? BCM_MIRROR_PORT_EGRESS : 0);
}

}  // namespace

int32_t sai_mirror_init(int32_t unit) {
  log_if_failed(bcm_mirror_init(unit), "Failed to init mirror: %s");
  // Meant: both failures have the text of the second.
  for (const bcm_switch_control_t control : {bcmSwitchDirectedMirroring, bcmSwitchFlexibleMirrorDestinations})
    log_if_failed(bcm_switch_control_set(unit, control, 1),
                  "Failed to set switch control bcmSwitchFlexibleMirrorDestinations: %s");
  return result(bcm_mirror_mode_set(unit, BCM_MIRROR_L2), "Failed to set mirror mode: %s");
}

int32_t sai_mirror_dest_port_set(int32_t unit, int32_t session, int32_t port) {
  bcm_gport_t gport = port;
  if (!sai::gport::is_gport(port)) {
    const int rv = bcm_port_gport_get(unit, port, &gport);
    if (failed(rv, "Failed to get gport: %s")) return sdk_to_sai(rv);
  }
  bcm_mirror_destination_t destination;
  bcm_mirror_destination_t_init(&destination);
  destination.mirror_dest_id = destination_id(session);
  destination.flags = BCM_MIRROR_DEST_REPLACE | BCM_MIRROR_DEST_WITH_ID;
  destination.gport = gport;
  return result(bcm_mirror_destination_create(unit, &destination), "Failed to create mirror destination port [%d]: %s",
                port);
}

int32_t sai_mirror_dest_port_unset(int32_t unit, int32_t session, int32_t port) {
  bcm_mirror_destination_t destination;
  const int rv = destination_get(unit, session, destination);
  if (failed(rv, "Failed to get mirror session [%d] port [%d]: %s", session, port)) return sdk_to_sai(rv);
  return result(bcm_mirror_destination_destroy(unit, destination.mirror_dest_id),
                "Failed to destroy mirror session [%d] port [%d]: %s", session, port);
}

int32_t sai_mirror_source_port_set(int32_t unit, int32_t session, int32_t port, int32_t mode) {
  bcm_mirror_destination_t destination;
  const int rv = destination_get(unit, session, destination);
  // Meant: without the mode, which the text of the unset function has.
  if (failed(rv, "Failed to get mirror session [%d] port [%d]: %s", session, port)) return sdk_to_sai(rv);
  return result(bcm_mirror_port_dest_add(unit, port, port_flags(mode), destination.mirror_dest_id),
                "Failed to add mirror source port [%d] mode [%d]: %s", port, mode);
}

int32_t sai_mirror_source_port_unset(int32_t unit, int32_t session, int32_t port, int32_t mode) {
  bcm_mirror_destination_t destination;
  const int rv = destination_get(unit, session, destination);
  if (failed(rv, "Failed to get mirror session [%d] port [%d] mode [%d]: %s", session, port, mode))
    return sdk_to_sai(rv);
  return result(bcm_mirror_port_dest_delete(unit, port, port_flags(mode), destination.mirror_dest_id),
                "Failed to delete mirror source port [%d] mode [%d]: %s", port, mode);
}
