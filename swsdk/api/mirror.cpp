#include <bcm/mirror.h>

#include "api/call.h"
#include "chip/gports.h"

using api::Call;
using api::hex;
using api::inout;
using api::out;
using chip::Chip;
using chip::Status;
using chip::gport::port_of;

int bcm_mirror_destination_create(int unit, bcm_mirror_destination_t* mirror_dest) {
  return Call(__func__, unit, inout(mirror_dest)).answer([&](Chip& chip) {
    return chip.mirrors.create(mirror_dest->flags, mirror_dest->gport, mirror_dest->mirror_dest_id);
  });
}

int bcm_mirror_destination_destroy(int unit, bcm_gport_t mirror_dest_id) {
  return Call(__func__, unit, mirror_dest_id).answer([&](Chip& chip) { return chip.mirrors.destroy(mirror_dest_id); });
}

int bcm_mirror_destination_get(int unit, bcm_gport_t mirror_dest_id, bcm_mirror_destination_t* mirror_dest) {
  return Call(__func__, unit, mirror_dest_id, out(mirror_dest)).answer([&](const Chip& chip) {
    int gport = 0;
    const Status status = chip.mirrors.find(mirror_dest_id, gport);
    if (status != Status::ok) return status;
    bcm_mirror_destination_t_init(mirror_dest);
    mirror_dest->mirror_dest_id = mirror_dest_id;
    mirror_dest->gport = gport;
    return status;
  });
}

int bcm_mirror_init(int unit) {
  return Call(__func__, unit).answer([](Chip& chip) {
    chip.mirrors.reset();
    return Status::ok;
  });
}

int bcm_mirror_mode_set(int unit, int mode) {
  return Call(__func__, unit, mode).answer([&](Chip& chip) { return chip.mirrors.set_mode(mode); });
}

int bcm_mirror_port_dest_add(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id) {
  return Call(__func__, unit, port, hex(flags), mirror_dest_id).answer([&](Chip& chip) {
    return chip.mirrors.add_source(port_of(port), flags, mirror_dest_id);
  });
}

int bcm_mirror_port_dest_delete(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id) {
  return Call(__func__, unit, port, hex(flags), mirror_dest_id).answer([&](Chip& chip) {
    return chip.mirrors.remove_source(port_of(port), flags, mirror_dest_id);
  });
}
