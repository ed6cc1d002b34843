#include "chip/pipeline/pipeline.h"

#include "chip/chip.h"
#include "chip/pipeline/parse.h"
#include "chip/pipeline/stages.h"

namespace chip {

Drop Pipeline::receive(int port, std::span<const uint8_t> bytes, Wire& wire) {
  copies_.clear();
  Passage frame{.chip = chip_, .meters = meters_, .packet = {}, .verdict = {}, .copies = copies_};
  if (parse(port, bytes, frame.packet)) {
    admit(frame);
    if (!frame.dropped()) {
      mirror_ingress(frame, wire);
      for (const auto stage :
           {assign_vlan, check_membership, trap, learn_source, apply_ingress_rules, forward, control_storms})
        stage(frame);
      for (const Copy& copy : copies_) send_copy(frame, copy, wire);
      if (frame.cpu_reasons != 0) send_to_cpu(frame, wire);
    }
  } else {
    frame.stop(Drop::malformed);
  }
  if (frame.dropped()) ++drops_[static_cast<std::size_t>(frame.drop)];
  return frame.drop;
}

}  // namespace chip
