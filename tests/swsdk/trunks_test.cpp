#include "chip/trunks.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::Status;
using chip::TrunkId;

class Trunks : public testing::Test {
 protected:
  static constexpr uint32_t with_id = 0x10;

  TrunkId create() {
    TrunkId id = -1;
    EXPECT_EQ(trunks.create(0, id), Status::ok);
    return id;
  }
  Status create(TrunkId id) { return trunks.create(with_id, id); }

  chip::Ports ports{12};
  chip::Trunks trunks{ports};
};

TEST_F(Trunks, HaveTheLowestFreeIdOrTheOneThatIsAskedFor) {
  EXPECT_EQ(create(), TrunkId{0});
  EXPECT_EQ(create(), TrunkId{1});
  EXPECT_EQ(create(3), Status::ok);
  EXPECT_EQ(create(), TrunkId{2});
  EXPECT_EQ(create(), TrunkId{4});
  EXPECT_EQ(create(3), Status::exists);
}

TEST_F(Trunks, Are128) {
  for (int i = 0; i < 128; ++i) create();
  TrunkId id;
  EXPECT_EQ(trunks.create(0, id), Status::full);
  EXPECT_EQ(trunks.destroy(64), Status::ok);
  EXPECT_EQ(create(), TrunkId{64});
}

TEST_F(Trunks, RefuseIdsAndFlagsThatThereAreNot) {
  TrunkId id;
  EXPECT_EQ(trunks.create(0x1, id), Status::bad_parameter);
  for (const TrunkId bad : {TrunkId{-1}, TrunkId{128}}) {
    EXPECT_EQ(create(bad), Status::bad_parameter) << bad.number();
    EXPECT_EQ(trunks.destroy(bad), Status::bad_parameter) << bad.number();
    EXPECT_EQ(trunks.set(bad, 1, {}), Status::bad_parameter) << bad.number();
    EXPECT_EQ(trunks.set_criterion(bad, 1), Status::bad_parameter) << bad.number();
    EXPECT_EQ(trunks.find(bad), nullptr) << bad.number();
    EXPECT_EQ(trunks.absent(bad), Status::bad_parameter) << bad.number();
  }
  EXPECT_EQ(trunks.destroy(1), Status::not_found);
  EXPECT_EQ(trunks.set(1, 1, {}), Status::not_found);
  EXPECT_EQ(trunks.set_criterion(1, 1), Status::not_found);
  EXPECT_EQ(trunks.find(1), nullptr);
  EXPECT_EQ(trunks.absent(1), Status::not_found);
}

TEST_F(Trunks, KeepMembersInTheirOrderAndTheCriterion) {
  const TrunkId id = create();
  EXPECT_EQ(trunks.set(id, 3, {4, 2, 2}), Status::ok);
  EXPECT_EQ(trunks.find(id)->members, (std::vector<Port>{4, 2, 2}));
  EXPECT_EQ(trunks.find(id)->criterion, static_cast<chip::TrunkCriterion>(3));
  EXPECT_EQ(trunks.set_criterion(id, 6), Status::ok);
  EXPECT_EQ(trunks.find(id)->criterion, static_cast<chip::TrunkCriterion>(6));
  EXPECT_EQ(trunks.find(id)->members.size(), 3U);
}

TEST_F(Trunks, TellTheTrunkOfAPort) {
  const TrunkId id = create();
  trunks.set(id, 1, {1, 2});
  EXPECT_EQ(trunks.trunk_of(1), id);
  EXPECT_EQ(trunks.trunk_of(3), std::nullopt);
  trunks.set(id, 1, {2, 3});
  EXPECT_EQ(trunks.trunk_of(1), std::nullopt);
  EXPECT_EQ(trunks.trunk_of(3), id);
  trunks.destroy(id);
  EXPECT_EQ(trunks.trunk_of(3), std::nullopt);
}

TEST_F(Trunks, RefuseMembersWhole) {
  const TrunkId first = create();
  const TrunkId second = create();
  trunks.set(first, 1, {1, 2});
  EXPECT_EQ(trunks.set(second, 1, {3, 13}), Status::bad_port);
  EXPECT_EQ(trunks.set(second, 1, {3, 2}), Status::exists);
  EXPECT_EQ(trunks.set(second, 1, {3, 4, 5, 6, 7, 8, 9, 10, 11}), Status::full);
  EXPECT_TRUE(trunks.find(second)->members.empty());
  EXPECT_EQ(trunks.trunk_of(3), std::nullopt);
  EXPECT_EQ(trunks.set(second, 1, {3, 4, 5, 6, 7, 8, 9, 10}), Status::ok);
}

TEST_F(Trunks, RefuseCriteriaThatThereAreNot) {
  const TrunkId id = create();
  for (const int bad : {-1, 7}) {
    EXPECT_EQ(trunks.set(id, bad, {1}), Status::bad_parameter) << bad;
    EXPECT_EQ(trunks.set_criterion(id, bad), Status::bad_parameter) << bad;
  }
  EXPECT_EQ(trunks.set(id, 0, {1}), Status::ok);
}

TEST_F(Trunks, AnswerNotInitializedWhileTheyAreDetached) {
  create();
  trunks.detach();
  TrunkId id;
  EXPECT_EQ(trunks.create(0, id), Status::not_initialized);
  EXPECT_EQ(trunks.destroy(0), Status::not_initialized);
  EXPECT_EQ(trunks.set(0, 1, {1}), Status::not_initialized);
  EXPECT_EQ(trunks.set_criterion(0, 1), Status::not_initialized);
  EXPECT_EQ(trunks.find(0), nullptr);
  EXPECT_EQ(trunks.absent(0), Status::not_initialized);
  trunks.reset();
  EXPECT_EQ(trunks.destroy(0), Status::not_found);
  EXPECT_EQ(create(), TrunkId{0});
}

}  // namespace
