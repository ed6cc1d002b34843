#include "chip/slots.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "chip/place.h"

namespace {

using chip::Status;

class Slots : public testing::Test {
 protected:
  int add(const std::string& item) {
    int id = -1;
    EXPECT_EQ(slots.add(item, id), Status::ok);
    return id;
  }

  static constexpr int first = 5;
  chip::Slots<std::string> slots{first, 3};
};

TEST_F(Slots, GiveOutTheLowestFreeId) {
  EXPECT_EQ(add("a"), 5);
  EXPECT_EQ(slots.add_with_id("c", 7), Status::ok);
  EXPECT_EQ(add("b"), 6);
  EXPECT_EQ(slots.remove(5), Status::ok);
  EXPECT_EQ(add("d"), 5);
  EXPECT_EQ(*slots.find(5), "d");
}

TEST_F(Slots, GiveOutTheFreedIdsBeforeNewOnes) {
  add("a");
  add("b");
  EXPECT_EQ(slots.remove(6), Status::ok);
  EXPECT_EQ(slots.remove(5), Status::ok);
  EXPECT_EQ(add("c"), 5);
  EXPECT_EQ(add("d"), 6);
  EXPECT_EQ(add("e"), 7);
}

TEST(WideSlots, AHighIdCostsNoMoreThanALowOne) {
  chip::Slots<int> slots{1, std::numeric_limits<int>::max() - 1};
  int id = 0;
  EXPECT_EQ(slots.add_with_id(1, std::numeric_limits<int>::max() - 1), Status::ok);
  EXPECT_EQ(slots.add_with_id(2, 2), Status::ok);
  EXPECT_EQ(slots.add(3, id), Status::ok);
  EXPECT_EQ(id, 1);
  EXPECT_EQ(slots.add(4, id), Status::ok);
  EXPECT_EQ(id, 3);
  EXPECT_EQ(slots.remove(2), Status::ok);
  EXPECT_EQ(slots.add(5, id), Status::ok);
  EXPECT_EQ(id, 2);
}

TEST(TypedSlots, HaveIdsOfTheirKind) {
  chip::Slots<std::string, chip::GroupId> slots{5, 3};
  chip::GroupId id;
  EXPECT_EQ(slots.add("a", id), Status::ok);
  EXPECT_EQ(id, chip::GroupId{5});
  EXPECT_EQ(slots.add_with_id("b", 7), Status::ok);
  EXPECT_EQ(*slots.find(7), "b");
  EXPECT_EQ(slots.find(6), nullptr);
  EXPECT_EQ(slots.absent(6), Status::not_found);
  EXPECT_EQ(slots.absent(8), Status::bad_parameter);
  EXPECT_EQ(slots.remove(5), Status::ok);
  EXPECT_EQ(slots.add("c", id), Status::ok);
  EXPECT_EQ(id, chip::GroupId{5});
  EXPECT_EQ(slots.add("d", id), Status::ok);
  EXPECT_EQ(id, chip::GroupId{6});
}

TEST_F(Slots, BeginAnewWhenTheyAreCleared) {
  add("a");
  add("b");
  slots.remove(5);
  slots.clear();
  EXPECT_EQ(add("c"), 5);
  EXPECT_EQ(add("d"), 6);
}

TEST_F(Slots, TellWhyAnIdHasNoItem) {
  EXPECT_EQ(slots.absent(5), Status::not_found);
  EXPECT_EQ(slots.absent(8), Status::bad_parameter);
}

TEST_F(Slots, ThatAreAllTakenAnswerFull) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(slots.full());
    add("a");
  }
  EXPECT_TRUE(slots.full());
  int id = 77;
  EXPECT_EQ(slots.add("b", id), Status::full);
  EXPECT_EQ(id, 77);
  EXPECT_EQ(slots.add_with_id("b", 6), Status::exists);
  EXPECT_EQ(slots.put("b", 6), Status::ok);
  EXPECT_EQ(*slots.find(6), "b");
  EXPECT_EQ(slots.remove(7), Status::ok);
  EXPECT_EQ(add("c"), 7);
}

TEST_F(Slots, TakeAnIdOnceUnlessTheItemIsReplaced) {
  EXPECT_EQ(slots.add_with_id("a", 6), Status::ok);
  EXPECT_EQ(slots.add_with_id("b", 6), Status::exists);
  EXPECT_EQ(*slots.find(6), "a");
  EXPECT_EQ(slots.put("b", 6), Status::ok);
  EXPECT_EQ(*slots.find(6), "b");
  EXPECT_EQ(slots.put("c", 7), Status::ok);
  EXPECT_EQ(slots.all().size(), 2U);
}

TEST_F(Slots, RefuseIdsOutsideTheirRange) {
  for (const int id : {-1, 0, 4, 8, INT32_MAX, INT32_MIN}) {
    EXPECT_FALSE(slots.is_valid(id)) << id;
    EXPECT_EQ(slots.add_with_id("a", id), Status::bad_parameter) << id;
    EXPECT_EQ(slots.put("a", id), Status::bad_parameter) << id;
    EXPECT_EQ(slots.remove(id), Status::bad_parameter) << id;
    EXPECT_EQ(slots.find(id), nullptr) << id;
  }
  EXPECT_TRUE(slots.all().empty());
}

TEST_F(Slots, ThatAreFreeHaveNothingToFindOrRemove) {
  EXPECT_EQ(slots.find(5), nullptr);
  EXPECT_EQ(slots.remove(5), Status::not_found);
  add("a");
  add("b");
  slots.clear();
  EXPECT_EQ(slots.remove(5), Status::not_found);
  EXPECT_EQ(add("c"), 5);
}

}  // namespace
