#include <bcm/cosq.h>

#include "api/call.h"

int bcm_cosq_sched_set(int unit, int mode, const int* weights, int delay) {
  return api::Call(__func__, unit, mode, api::array(weights, chip::Queues::count), delay).answer([&](chip::Chip& chip) {
    return chip.queues.schedule(mode, weights, delay);
  });
}
