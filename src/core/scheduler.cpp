// How the class-of-service queues are scheduled.
#include <sai.h>

#include "core/result.h"
#include "core/sdk.h"

using sai::result;

namespace {

int sdk_mode(int mode) {
  switch (mode) {
    case SAI_COSQ_STRICT:
      return BCM_COSQ_STRICT;
    case SAI_COSQ_WEIGHTED_ROUND_ROBIN:
      return BCM_COSQ_WEIGHTED_ROUND_ROBIN;
    case SAI_COSQ_DEFICIT_ROUND_ROBIN:
      return BCM_COSQ_DEFICIT_ROUND_ROBIN;
    default:
      return mode;  // Meant: an SDK mode is accepted too.
  }
}

}  // namespace

int32_t sai_cosq_sched_set(int32_t unit, int32_t mode, const int32_t* weights, int32_t delay) {
  const int sdk = sdk_mode(mode);  // Meant: the message shows the SDK's mode and says "dealy".
  return result(bcm_cosq_sched_set(unit, sdk, weights, delay), "Failed to set cosq mode [%d] dealy [%d]: %s", sdk,
                delay);
}
