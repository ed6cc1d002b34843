#include "chip/hash_index.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace {

using Index = chip::HashIndex<int, int>;

std::map<int, int> contents_of(const Index& index) {
  std::map<int, int> contents;
  index.for_each([&](int key, int value) { EXPECT_TRUE(contents.emplace(key, value).second) << key; });
  return contents;
}

TEST(HashIndex, HoldsWhatAMapHolds) {
  std::mt19937 random(5);
  Index index;
  std::map<int, int> expected;
  for (int step = 0; step < 20000; ++step) {
    const int key = static_cast<int>(random() % 300);
    const bool adds = random() % 4000 > static_cast<unsigned>(step) % 4000;  // fills and empties in turn
    if (adds)
      index[key] = expected[key] = step;
    else
      EXPECT_EQ(index.erase(key), expected.erase(key) == 1) << "step " << step;
    const auto found = expected.find(key);
    const int* const value = index.find(key);
    ASSERT_EQ(value == nullptr, found == expected.end()) << "step " << step;
    if (value != nullptr) {
      EXPECT_EQ(*value, found->second) << "step " << step;
    }
    ASSERT_EQ(index.size(), expected.size()) << "step " << step;
    if (step % 100 == 0) {
      ASSERT_EQ(contents_of(index), expected) << "step " << step;
    }
  }
  for (int key = 0; key < 300; ++key) EXPECT_EQ(index.find(key) != nullptr, expected.contains(key)) << key;
}

TEST(HashIndex, StartsWithANewValue) {
  Index index;
  EXPECT_EQ(index.find(7), nullptr);
  EXPECT_EQ(index[7], 0);
  index[7] = 3;
  EXPECT_EQ(index[7], 3);
  index.clear();
  EXPECT_EQ(index.find(7), nullptr);
  EXPECT_EQ(index[7], 0);
}

}  // namespace
