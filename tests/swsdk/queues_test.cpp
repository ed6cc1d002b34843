// How the class-of-service queues are scheduled.
#include "chip/queues.h"

#include <bcm/cosq.h>
#include <bcm/error.h>

#include "support/chip_test.h"

namespace {

using chip::Status;

constexpr std::array<int, 8> weights = {1, 2, 4, 8, 16, 32, 64, 0};

class Queues : public support::ChipTest {};

TEST_F(Queues, TakeEachModeAndNoOther) {
  for (int mode = BCM_COSQ_STRICT; mode <= BCM_COSQ_DEFICIT_ROUND_ROBIN; ++mode)
    EXPECT_EQ(bcm_cosq_sched_set(0, mode, weights.data(), 0), BCM_E_NONE) << mode;
  for (const int mode : {-1, 0, 6}) EXPECT_EQ(bcm_cosq_sched_set(0, mode, weights.data(), 0), BCM_E_PARAM) << mode;
}

TEST_F(Queues, NeedAWeightEachThatIsNotNegative) {
  EXPECT_EQ(bcm_cosq_sched_set(0, BCM_COSQ_STRICT, nullptr, 0), BCM_E_PARAM);
  for (std::size_t queue = 0; queue < weights.size(); ++queue) {
    std::array<int, 8> wrong = weights;
    wrong[queue] = -1;
    EXPECT_EQ(bcm_cosq_sched_set(0, BCM_COSQ_STRICT, wrong.data(), 0), BCM_E_PARAM) << queue;
  }
}

TEST(QueuesOfAChip, KeepTheirSchedule) {
  chip::Queues queues;
  EXPECT_EQ(queues.mode(), BCM_COSQ_STRICT);
  EXPECT_EQ(queues.schedule(BCM_COSQ_WEIGHTED_ROUND_ROBIN, weights.data(), 9), Status::ok);
  EXPECT_EQ(queues.mode(), BCM_COSQ_WEIGHTED_ROUND_ROBIN);
  EXPECT_EQ(queues.weights(), weights);
  EXPECT_EQ(queues.delay(), 9);
  EXPECT_EQ(queues.schedule(0, weights.data(), 10), Status::bad_parameter);
  EXPECT_EQ(queues.delay(), 9);
  queues.reset();
  EXPECT_EQ(queues.mode(), BCM_COSQ_STRICT);
  EXPECT_EQ(queues.weights(), (std::array<int, 8>{}));
}

}  // namespace
