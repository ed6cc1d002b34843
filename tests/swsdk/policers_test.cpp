#include "chip/policers.h"

#include <gtest/gtest.h>

namespace {

using chip::PolicerSettings;
using chip::Status;

TEST(Policers, KeepTheirSettings) {
  chip::Policers policers;
  const PolicerSettings made{.flags = 1, .committed_rate = 2};
  const PolicerSettings changed{.flags = 0x74, .mode = 3, .committed_rate = 64, .committed_burst = 8, .peak_rate = 128};
  int id = 0;
  PolicerSettings found;
  EXPECT_EQ(policers.create(made, id), Status::ok);
  EXPECT_EQ(id, 1);
  EXPECT_EQ(policers.get(id, found), Status::ok);
  EXPECT_EQ(found, made);
  EXPECT_EQ(policers.set(id, changed), Status::ok);
  EXPECT_EQ(policers.get(id, found), Status::ok);
  EXPECT_EQ(found, changed);
}

TEST(Policers, ThatAreAbsentAnswerNotFound) {
  chip::Policers policers;
  PolicerSettings found;
  EXPECT_EQ(policers.get(1, found), Status::not_found);
  EXPECT_EQ(policers.set(1, {}), Status::not_found);
  EXPECT_EQ(policers.use(1), Status::not_found);
  EXPECT_EQ(policers.destroy(1), Status::not_found);
  EXPECT_EQ(policers.destroy(0), Status::bad_parameter);
  EXPECT_EQ(policers.destroy(2049), Status::bad_parameter);
}

TEST(Policers, Are2048) {
  chip::Policers policers;
  int id = 0;
  for (int i = 0; i < 2048; ++i) ASSERT_EQ(policers.create({}, id), Status::ok);
  EXPECT_EQ(policers.create({}, id), Status::full);
  EXPECT_EQ(policers.destroy(7), Status::ok);
  EXPECT_EQ(policers.create({}, id), Status::ok);
  EXPECT_EQ(id, 7);
}

TEST(Policers, AreDestroyedWhenNothingUsesThem) {
  chip::Policers policers;
  int id = 0;
  policers.create({}, id);
  policers.use(id);
  EXPECT_EQ(policers.destroy(id), Status::busy);
  policers.release(id);
  EXPECT_EQ(policers.destroy(id), Status::ok);
}

TEST(Policers, ClearForgetsThoseInUseToo) {
  chip::Policers policers;
  int id = 0;
  policers.create({}, id);
  policers.use(id);
  policers.clear();
  EXPECT_TRUE(policers.all().empty());
}

}  // namespace
