#include <bcm/cosq.h>

#include "api/call.h"

int bcm_cosq_sched_set(int unit, int mode, const int* weights, int delay) {
  return api::Call(calls::bcm_cosq_sched_set(unit, mode, weights, delay)).answer([&](chip::Chip& chip) {
    return chip.queues.schedule(mode, weights, delay);
  });
}
