#include "chip/hosts.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using chip::HostKey;
using chip::L3Entry;
using chip::Status;

constexpr HostKey key{0, 0x0A000001};

/// So many keys of one bucket.
std::vector<HostKey> colliding(int count) {
  std::vector<HostKey> result{key};
  for (HostKey next = key; static_cast<int>(result.size()) < count;) {
    ++next.address;
    if (chip::Hosts::bucket_of(next) == chip::Hosts::bucket_of(key)) result.push_back(next);
  }
  return result;
}

class Hosts : public testing::Test {
 protected:
  chip::Hosts hosts;
};

TEST_F(Hosts, KeepTheirEntry) {
  EXPECT_EQ(
      hosts.add(key, {.flags = 0x1000, .interface = 7, .next_hop = {0, 1, 2, 3, 4, 5}, .place = chip::Port{3}}, false),
      Status::ok);
  const L3Entry* const found = hosts.find(key);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->flags, 0x1000U);
  EXPECT_EQ(found->interface, 7);
  EXPECT_EQ(found->next_hop, (chip::Mac{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(found->place, chip::Place{chip::Port{3}});
}

TEST_F(Hosts, AreDifferentInEachVrf) {
  hosts.add(key, {.interface = 7}, false);
  EXPECT_EQ(hosts.find({1, key.address}), nullptr);
  EXPECT_EQ(hosts.add({1, key.address}, {.interface = 8}, false), Status::ok);
  EXPECT_EQ(hosts.find(key)->interface, 7);
}

TEST_F(Hosts, ThatAreThereAreReplacedOnlyOnDemand) {
  hosts.add(key, {.interface = 7}, false);
  EXPECT_EQ(hosts.add(key, {.interface = 8}, false), Status::exists);
  EXPECT_EQ(hosts.find(key)->interface, 7);
  EXPECT_EQ(hosts.add(key, {.interface = 8}, true), Status::ok);
  EXPECT_EQ(hosts.find(key)->interface, 8);
  EXPECT_EQ(hosts.all().size(), 1U);
}

TEST_F(Hosts, ThatAreAbsentAnswerNotFound) {
  EXPECT_EQ(hosts.find(key), nullptr);
  EXPECT_EQ(hosts.remove(key), Status::not_found);
  EXPECT_EQ(hosts.hit(key, L3Entry::any_hit), Status::not_found);
}

TEST_F(Hosts, AreFullWhenOneBucketIs) {
  const std::vector<HostKey> keys = colliding(chip::Hosts::ways + 1);
  for (int i = 0; i < chip::Hosts::ways; ++i)
    EXPECT_EQ(hosts.add(keys[static_cast<std::size_t>(i)], {}, false), Status::ok);
  EXPECT_EQ(hosts.add(keys.back(), {}, false), Status::full);
  EXPECT_EQ(hosts.find(keys.back()), nullptr);
  EXPECT_EQ(hosts.add(keys.front(), {}, false), Status::exists);
  EXPECT_EQ(hosts.add(keys.front(), {.interface = 8}, true), Status::ok);
  EXPECT_EQ(hosts.remove(keys.front()), Status::ok);
  EXPECT_EQ(hosts.remove(keys.front()), Status::not_found);
  EXPECT_EQ(hosts.add(keys.front(), {}, false), Status::ok);
  hosts.clear();
  EXPECT_EQ(hosts.add(keys.front(), {}, false), Status::ok);
}

TEST_F(Hosts, TellHowManyLeadToAnInterface) {
  constexpr HostKey other{0, 0x0A000002};
  hosts.add(key, {.interface = 7}, false);
  hosts.add(other, {.interface = 7}, false);
  EXPECT_EQ(hosts.uses(7), 2);
  hosts.add(other, {.interface = 8}, true);
  EXPECT_EQ(hosts.uses(7), 1);
  EXPECT_EQ(hosts.uses(8), 1);
  hosts.add(other, {.interface = 7}, false);
  EXPECT_EQ(hosts.uses(7), 1);
  hosts.remove(key);
  EXPECT_EQ(hosts.uses(7), 0);
  hosts.clear();
  EXPECT_EQ(hosts.uses(8), 0);
}

TEST_F(Hosts, NoteHitsUntilTheyAreCleared) {
  hosts.add(key, {}, false);
  EXPECT_EQ(hosts.find(key)->hit, 0U);
  EXPECT_EQ(hosts.hit(key, L3Entry::source_hit), Status::ok);
  EXPECT_EQ(hosts.hit(key, L3Entry::destination_hit | 0x1), Status::ok);
  EXPECT_EQ(hosts.find(key)->hit, L3Entry::any_hit);
  EXPECT_EQ(std::exchange(hosts.find(key)->hit, 0), L3Entry::any_hit);
  EXPECT_EQ(hosts.find(key)->hit, 0U);
}

}  // namespace
