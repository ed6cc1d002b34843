#include <bcm/mirror.h>

#include "api/call.h"
#include "api/gports.h"

using api::Call;
using api::hex;
using api::inout;
using api::mirror_of;
using api::out;
using api::port_of;
using chip::Chip;
using chip::Status;

int bcm_mirror_destination_create(int unit, bcm_mirror_destination_t* mirror_dest) {
  return Call(calls::bcm_mirror_destination_create(unit, mirror_dest)).answer([&](Chip& chip) {
    const int gport = mirror_dest->gport;  // a plain number is not a gport
    const chip::Place to = api::gport::names_port(gport) ? port_of(gport) : chip::Port::of(-1);
    chip::MirrorId id = mirror_of(mirror_dest->mirror_dest_id);
    const Status status = chip.mirrors.create(mirror_dest->flags, to, id);
    if (status == Status::ok) mirror_dest->mirror_dest_id = api::gport_of(id);
    return status;
  });
}

int bcm_mirror_destination_destroy(int unit, bcm_gport_t mirror_dest_id) {
  return Call(calls::bcm_mirror_destination_destroy(unit, mirror_dest_id)).answer([&](Chip& chip) {
    return chip.mirrors.destroy(mirror_of(mirror_dest_id));
  });
}

int bcm_mirror_destination_get(int unit, bcm_gport_t mirror_dest_id, bcm_mirror_destination_t* mirror_dest) {
  return Call(calls::bcm_mirror_destination_get(unit, mirror_dest_id, mirror_dest)).answer([&](const Chip& chip) {
    const chip::Place* const found = chip.mirrors.find(mirror_of(mirror_dest_id));
    if (found == nullptr) return Status::not_found;
    bcm_mirror_destination_t_init(mirror_dest);
    mirror_dest->mirror_dest_id = mirror_dest_id;
    mirror_dest->gport = std::visit([](auto id) { return api::gport_of(id); }, *found);
    return Status::ok;
  });
}

int bcm_mirror_init(int unit) {
  return Call(calls::bcm_mirror_init(unit)).answer([](Chip& chip) {
    chip.mirrors.reset();
    return Status::ok;
  });
}

int bcm_mirror_mode_set(int unit, int mode) {
  return Call(calls::bcm_mirror_mode_set(unit, mode)).answer([&](Chip& chip) { return chip.mirrors.set_mode(mode); });
}

int bcm_mirror_port_dest_add(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id) {
  return Call(calls::bcm_mirror_port_dest_add(unit, port, flags, mirror_dest_id)).answer([&](Chip& chip) {
    return chip.mirrors.add_source(port_of(port), flags, mirror_of(mirror_dest_id));
  });
}

int bcm_mirror_port_dest_delete(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id) {
  return Call(calls::bcm_mirror_port_dest_delete(unit, port, flags, mirror_dest_id)).answer([&](Chip& chip) {
    return chip.mirrors.remove_source(port_of(port), flags, mirror_of(mirror_dest_id));
  });
}
