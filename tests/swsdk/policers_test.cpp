#include "chip/policers.h"

#include <gtest/gtest.h>

namespace {

using chip::Policer;
using chip::Status;

class Policers : public testing::Test {
 protected:
  int create() {
    int id = 0;
    EXPECT_EQ(policers.create({}, id), Status::ok);
    return id;
  }

  chip::Policers policers;
};

TEST_F(Policers, KeepTheirSettings) {
  const int id = create();
  EXPECT_EQ(policers.set(id, {.flags = 0x74, .mode = 3, .committed = {1000, 8, 4000}, .peak = {2000, 16, 8}}),
            Status::ok);
  const Policer* const found = policers.find(id);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->flags, 0x74U);
  EXPECT_EQ(found->mode, 3);
  EXPECT_EQ(found->committed.kilobits_per_second, 1000U);
  EXPECT_EQ(found->committed.burst_kilobits, 8U);
  EXPECT_EQ(found->committed.burst_bits, 4000U);
  EXPECT_EQ(found->peak.kilobits_per_second, 2000U);
  EXPECT_EQ(found->peak.burst_kilobits, 16U);
  EXPECT_EQ(found->peak.burst_bits, 8U);
}

TEST_F(Policers, RoundRatesAndBurstsUpToWhatTheChipCounts) {
  int id = 0;
  EXPECT_EQ(policers.create({.committed = {1, 0, 1}, .peak = {1001, 1, 4001}}, id), Status::ok);
  EXPECT_EQ(policers.find(id)->committed.kilobits_per_second, 8U);
  EXPECT_EQ(policers.find(id)->committed.burst_bits, 8U);
  EXPECT_EQ(policers.find(id)->peak.kilobits_per_second, 1008U);
  EXPECT_EQ(policers.find(id)->peak.burst_kilobits, 1U);
  EXPECT_EQ(policers.find(id)->peak.burst_bits, 4008U);
  policers.set(id, {.committed = {UINT32_MAX, 0, UINT32_MAX}, .peak = {}});
  EXPECT_EQ(policers.find(id)->committed.kilobits_per_second, UINT32_MAX - 7);
  EXPECT_EQ(policers.find(id)->committed.burst_bits, UINT32_MAX - 7);
}

TEST_F(Policers, RefuseModesThatTheChipDoesNotHave) {
  int id = 0;
  for (const int mode : {-1, 4}) {
    EXPECT_EQ(policers.create({.mode = mode, .committed = {}, .peak = {}}, id), Status::bad_parameter);
    EXPECT_EQ(policers.set(create(), {.mode = mode, .committed = {}, .peak = {}}), Status::bad_parameter);
  }
}

TEST_F(Policers, StayWhileTheyAreAttached) {
  const int id = create();
  EXPECT_EQ(policers.attach(id), Status::ok);
  EXPECT_EQ(policers.attach(id), Status::ok);
  EXPECT_EQ(policers.set(id, {.mode = 3, .committed = {}, .peak = {}}), Status::ok);
  EXPECT_EQ(policers.find(id)->attached, 2);
  EXPECT_EQ(policers.destroy(id), Status::busy);
  EXPECT_EQ(policers.detach(id), Status::ok);
  EXPECT_EQ(policers.destroy(id), Status::busy);
  EXPECT_EQ(policers.detach(id), Status::ok);
  EXPECT_EQ(policers.detach(id), Status::not_found);
  EXPECT_EQ(policers.destroy(id), Status::ok);
}

TEST_F(Policers, ThatAreAbsentAnswerNotFound) {
  for (const auto& [id, answer] : {std::pair{1, Status::not_found}, {0, Status::bad_parameter}}) {
    EXPECT_EQ(policers.find(id), nullptr);
    EXPECT_EQ(policers.absent(id), answer);
    EXPECT_EQ(policers.set(id, {}), answer);
    EXPECT_EQ(policers.attach(id), answer);
    EXPECT_EQ(policers.detach(id), answer);
    EXPECT_EQ(policers.destroy(id), answer);
  }
}

TEST_F(Policers, AreFullAtTheirCapacity) {
  for (int i = 0; i < chip::Policers::capacity; ++i) create();
  int id = 0;
  EXPECT_EQ(policers.create({}, id), Status::full);
  policers.clear();
  EXPECT_EQ(create(), 1);
}

}  // namespace
