#include <bcm/trunk.h>

#include <vector>

#include "api/call.h"
#include "api/gports.h"

using api::array;
using api::Call;
using api::hex;
using api::in;
using api::inout;
using chip::Chip;
using chip::Status;

int bcm_trunk_create(int unit, uint32 flags, bcm_trunk_t* tid) {
  return Call(calls::bcm_trunk_create(unit, flags, tid)).answer([&](Chip& chip) {
    chip::TrunkId id = chip::TrunkId::of(*tid);
    const Status status = chip.trunks.create(flags, id);
    if (status == Status::ok) *tid = id.number();
    return status;
  });
}

int bcm_trunk_destroy(int unit, bcm_trunk_t tid) {
  return Call(calls::bcm_trunk_destroy(unit, tid)).answer([&](Chip& chip) {
    return chip.trunks.destroy(chip::TrunkId::of(tid));
  });
}

int bcm_trunk_detach(int unit) {
  return Call(calls::bcm_trunk_detach(unit)).answer([](Chip& chip) {
    chip.trunks.detach();
    return Status::ok;
  });
}

int bcm_trunk_init(int unit) {
  return Call(calls::bcm_trunk_init(unit)).answer([](Chip& chip) {
    chip.trunks.reset();
    return Status::ok;
  });
}

int bcm_trunk_psc_set(int unit, bcm_trunk_t tid, int psc) {
  return Call(calls::bcm_trunk_psc_set(unit, tid, psc)).answer([&](Chip& chip) {
    return chip.trunks.set_criterion(chip::TrunkId::of(tid), psc);
  });
}

int bcm_trunk_set(int unit, bcm_trunk_t tid, bcm_trunk_info_t* trunk_info, int member_count,
                  bcm_trunk_member_t* member_array) {
  return Call(calls::bcm_trunk_set(unit, tid, trunk_info, member_count, member_array)).answer([&](Chip& chip) {
    if (member_count < 0) return Status::bad_parameter;
    std::vector<chip::Port> members;
    for (int i = 0; i < member_count; ++i) {
      if (!api::gport::names_port(member_array[i].gport)) return Status::bad_port;
      members.push_back(api::port_of(member_array[i].gport));
    }
    return chip.trunks.set(chip::TrunkId::of(tid), trunk_info->psc, members);
  });
}
