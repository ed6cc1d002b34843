#include <bcm/mirror.h>

#include "api/call.h"

using api::hex;
using api::inout;
using api::out;
using api::unmodelled;

int bcm_mirror_destination_create(int unit, bcm_mirror_destination_t* mirror_dest) {
  return unmodelled(__func__, unit, inout(mirror_dest));
}

int bcm_mirror_destination_destroy(int unit, bcm_gport_t mirror_dest_id) {
  return unmodelled(__func__, unit, mirror_dest_id);
}

int bcm_mirror_destination_get(int unit, bcm_gport_t mirror_dest_id, bcm_mirror_destination_t* mirror_dest) {
  return unmodelled(__func__, unit, mirror_dest_id, out(mirror_dest));
}

int bcm_mirror_init(int unit) { return unmodelled(__func__, unit); }

int bcm_mirror_mode_set(int unit, int mode) { return unmodelled(__func__, unit, mode); }

int bcm_mirror_port_dest_add(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id) {
  return unmodelled(__func__, unit, port, hex(flags), mirror_dest_id);
}

int bcm_mirror_port_dest_delete(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id) {
  return unmodelled(__func__, unit, port, hex(flags), mirror_dest_id);
}
