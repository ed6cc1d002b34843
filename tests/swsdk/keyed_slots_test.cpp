#include "chip/keyed_slots.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using chip::Status;

struct Named {
  std::string name;
  int value;
};
struct Name {
  std::string text;
  bool operator==(const Name&) const = default;
  std::size_t hash() const { return text.size(); }  // so that keys collide
};
Name name_of(const Named& item) { return {item.name}; }

class KeyedSlots : public testing::Test {
 protected:
  chip::KeyedSlots<Named, name_of> slots{1, 2};
  int id = 0;
};

TEST_F(KeyedSlots, FindAnItemByItsIdAndByItsKey) {
  EXPECT_EQ(slots.add({"a", 5}, id), Status::ok);
  ASSERT_NE(slots.find(id), nullptr);
  EXPECT_EQ(slots.find(id)->value, 5);
  EXPECT_EQ(slots.find_id({"a"}), id);
  EXPECT_EQ(slots.find_id({"b"}), std::nullopt);
}

TEST_F(KeyedSlots, RefuseASecondItemWithTheSameKey) {
  slots.add({"a", 5}, id);
  EXPECT_EQ(slots.add({"a", 6}, id), Status::exists);
  EXPECT_EQ(slots.all().size(), 1U);
}

TEST_F(KeyedSlots, RememberNoKeyOfWhatDidNotFitOrIsGone) {
  slots.add({"a", 1}, id);
  slots.add({"b", 2}, id);
  EXPECT_EQ(slots.add({"c", 3}, id), Status::full);
  EXPECT_EQ(slots.find_id({"c"}), std::nullopt);
  EXPECT_EQ(slots.remove(1), Status::ok);
  EXPECT_EQ(slots.remove(1), Status::not_found);
  EXPECT_EQ(slots.remove(3), Status::bad_parameter);
  EXPECT_EQ(slots.find_id({"a"}), std::nullopt);
  EXPECT_EQ(slots.add({"c", 3}, id), Status::ok);
  slots.clear();
  EXPECT_EQ(slots.find_id({"c"}), std::nullopt);
}

}  // namespace
