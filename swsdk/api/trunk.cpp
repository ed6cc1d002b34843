#include <bcm/trunk.h>

#include <vector>

#include "api/call.h"
#include "chip/gports.h"

using api::array;
using api::Call;
using api::hex;
using api::in;
using api::inout;
using chip::Chip;
using chip::Status;

int bcm_trunk_create(int unit, uint32 flags, bcm_trunk_t* tid) {
  return Call(__func__, unit, hex(flags), inout(tid)).answer([&](Chip& chip) {
    return chip.trunks.create(flags, *tid);
  });
}

int bcm_trunk_destroy(int unit, bcm_trunk_t tid) {
  return Call(__func__, unit, tid).answer([&](Chip& chip) { return chip.trunks.destroy(tid); });
}

int bcm_trunk_detach(int unit) {
  return Call(__func__, unit).answer([](Chip& chip) {
    chip.trunks.detach();
    return Status::ok;
  });
}

int bcm_trunk_init(int unit) {
  return Call(__func__, unit).answer([](Chip& chip) {
    chip.trunks.reset();
    return Status::ok;
  });
}

int bcm_trunk_psc_set(int unit, bcm_trunk_t tid, int psc) {
  return Call(__func__, unit, tid, psc).answer([&](Chip& chip) { return chip.trunks.set_criterion(tid, psc); });
}

int bcm_trunk_set(int unit, bcm_trunk_t tid, bcm_trunk_info_t* trunk_info, int member_count,
                  bcm_trunk_member_t* member_array) {
  return Call(__func__, unit, tid, in(trunk_info), member_count, array(member_array, member_count))
      .answer([&](Chip& chip) {
        if (member_count < 0) return Status::bad_parameter;
        std::vector<int> members;
        for (int i = 0; i < member_count; ++i) {
          if (!chip::gport::names_port(member_array[i].gport)) return Status::bad_port;
          members.push_back(chip::gport::port_of(member_array[i].gport));
        }
        return chip.trunks.set(tid, trunk_info->psc, members);
      });
}
