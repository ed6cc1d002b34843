#include <bcm/cosq.h>

#include "api/call.h"

using api::array;
using api::unmodelled;

namespace {

constexpr int queues = 8;

}  // namespace

int bcm_cosq_sched_set(int unit, int mode, const int* weights, int delay) {
  return unmodelled(__func__, unit, mode, array(weights, queues), delay);
}
