#include "chip/mac_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

using chip::AllAddresses;
using chip::Mac;
using chip::MacEntry;
using chip::Place;
using chip::Port;
using chip::Status;
using chip::TrunkId;
using chip::TunnelAddresses;
using chip::VirtualPortId;
using chip::VlanAddresses;

class MacTable : public testing::Test {
 protected:
  static Mac address(uint32_t number) {
    Mac mac{0x02, 0};
    for (std::size_t i = 0; i < 4; ++i) mac[2 + i] = static_cast<uint8_t>(number >> (24 - 8 * i));
    return mac;
  }
  static MacEntry entry(uint32_t number, const Place& place = Port{1}, uint32_t flags = 0) {
    return {.mac = address(number), .vlan = 10, .flags = flags, .place = place, .source_hit = true};
  }

  /// Addresses that share the bucket of address 0, which is the first of them.
  static std::vector<MacEntry> neighbors(std::size_t count) {
    std::vector<MacEntry> result;
    for (uint32_t number = 0; result.size() < count; ++number)
      if (chip::MacTable::bucket_of(10, address(number)) == chip::MacTable::bucket_of(10, address(0)))
        result.push_back(entry(number));
    return result;
  }

  bool has(uint32_t number) const { return table.find(10, address(number)) != nullptr; }
  int learned(const chip::MacScope& scope) const { return table.learned(scope); }

  chip::Ports ports{12};
  chip::MacTable table{ports};
};

TEST_F(MacTable, KeepsWhatIsAdded) {
  const MacEntry wanted{.mac = address(7),
                        .vlan = 4095,
                        .flags = MacEntry::fixed | MacEntry::discard_source | MacEntry::copy_to_cpu,
                        .place = Port{12}};
  EXPECT_EQ(table.add(wanted), Status::ok);
  const MacEntry* const found = table.find(4095, address(7));
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(*found, wanted);
  EXPECT_EQ(table.size(), 1);
}

TEST_F(MacTable, TellsAddressesApartByVlan) {
  table.add(entry(7, Port{1}));
  MacEntry other = entry(7, Port{2});
  other.vlan = 11;
  table.add(other);
  EXPECT_EQ(table.find(10, address(7))->place, Place{Port{1}});
  EXPECT_EQ(table.find(11, address(7))->place, Place{Port{2}});
  EXPECT_EQ(table.find(12, address(7)), nullptr);
}

TEST_F(MacTable, HasOneEntryPerAddressTheLastOne) {
  table.add(entry(7, Port{1}, MacEntry::fixed));
  EXPECT_EQ(table.add(entry(7, Port{2})), Status::ok);
  EXPECT_EQ(table.size(), 1);
  EXPECT_EQ(*table.find(10, address(7)), entry(7, Port{2}));
}

TEST_F(MacTable, RefusesVlansPortsAndFlagsThatThereAreNot) {
  for (const uint16_t vlan : {uint16_t{0}, uint16_t{4096}}) {
    MacEntry bad = entry(1);
    bad.vlan = vlan;
    EXPECT_EQ(table.add(bad), Status::bad_parameter) << vlan;
    EXPECT_EQ(table.find(vlan, address(1)), nullptr) << vlan;
    EXPECT_EQ(table.absent(vlan), Status::bad_parameter) << vlan;
    EXPECT_EQ(table.remove(vlan, address(1)), Status::bad_parameter) << vlan;
  }
  for (const Port port : {Port{-1}, Port{13}, Port{INT_MAX}})
    EXPECT_EQ(table.add(entry(1, port)), Status::bad_port) << port.number();
  EXPECT_EQ(table.add(entry(1, Port{1}, 0x1)), Status::bad_parameter);
  EXPECT_EQ(table.size(), 0);
}

TEST_F(MacTable, TakesTheCpuPortTrunksAndVirtualPorts) {
  EXPECT_EQ(table.add(entry(1, chip::Ports::cpu)), Status::ok);
  EXPECT_EQ(table.add(entry(2, VirtualPortId{5})), Status::ok);
  EXPECT_EQ(table.add(entry(3, TrunkId{5})), Status::ok);
  EXPECT_EQ(table.find(10, address(2))->place, Place{VirtualPortId{5}});
  EXPECT_EQ(table.find(10, address(3))->place, Place{TrunkId{5}});
}

TEST_F(MacTable, AnswersNotFoundForAnUnknownAddress) {
  EXPECT_EQ(table.find(10, address(1)), nullptr);
  EXPECT_EQ(table.absent(10), Status::not_found);
  EXPECT_EQ(table.remove(10, address(1)), Status::not_found);
}

TEST_F(MacTable, IsFullForAFifthAddressOfABucket) {
  const std::vector<MacEntry> five = neighbors(5);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(table.add(five[i]), Status::ok);
  EXPECT_EQ(table.add(five[4]), Status::full);
  EXPECT_EQ(table.size(), 4);
  EXPECT_EQ(table.add(five[0]), Status::ok) << "an address that is there needs no room";
  EXPECT_EQ(table.remove(10, five[2].mac), Status::ok);
  EXPECT_EQ(table.add(five[4]), Status::ok);
}

TEST_F(MacTable, HoldsFourAddressesInEveryBucket) {
  for (uint32_t number = 0; table.size() < chip::MacTable::capacity; ++number) {
    ASSERT_LT(number, 1'000'000U);
    table.add(entry(number));
  }
  EXPECT_EQ(table.all().size(), 32768U);
  EXPECT_EQ(learned(AllAddresses{}), 32768);
  EXPECT_EQ(table.remove_if(0, [](const MacEntry&) { return true; }), Status::ok);
  EXPECT_EQ(table.size(), 0);
  EXPECT_EQ(learned(AllAddresses{}), 0);
}

TEST_F(MacTable, IsReadBucketByBucket) {
  for (uint32_t number = 0; number < 1000; ++number) table.add(entry(number));
  int last = 0;
  for (const MacEntry& each : table.all()) {
    const int bucket = chip::MacTable::bucket_of(each.vlan, each.mac);
    EXPECT_GE(bucket, last);
    last = bucket;
  }
}

TEST_F(MacTable, LosesWhatABulkDeletionMatchesButForStaticEntries) {
  table.add(entry(1, Port{1}));
  table.add(entry(2, Port{1}, MacEntry::fixed));
  table.add(entry(3, Port{2}));
  const auto on_port_1 = [](const MacEntry& each) { return each.place == Place{Port{1}}; };
  EXPECT_EQ(table.remove_if(chip::MacTable::pending_too, on_port_1), Status::ok);
  EXPECT_FALSE(has(1));
  EXPECT_TRUE(has(2));
  EXPECT_EQ(table.remove_if(chip::MacTable::fixed_too, on_port_1), Status::ok);
  EXPECT_FALSE(has(2));
  EXPECT_TRUE(has(3));
}

TEST_F(MacTable, RefusesABulkDeletionOfAnUnknownKindWhole) {
  table.add(entry(1));
  EXPECT_EQ(table.remove_if(0x8, [](const MacEntry&) { return true; }), Status::bad_parameter);
  EXPECT_TRUE(has(1));
}

TEST_F(MacTable, TellsItsObserverOfEachChangeButAResetAndASilentDeletion) {
  std::string told;
  table.observe([&](chip::MacTable::Change change, const MacEntry& each) {
    told += (change == chip::MacTable::Change::added ? "+" : "-") + std::to_string(each.mac[5]) + "@" +
            std::to_string(std::get<Port>(each.place).number()) + " ";
  });
  table.add(entry(1, Port{1}));
  table.add(entry(1, Port{2}));
  table.remove(10, address(1));
  table.add(entry(2));
  table.remove_if(chip::MacTable::silently, [](const MacEntry&) { return true; });
  table.add(entry(3));
  table.remove_if(0, [](const MacEntry&) { return true; });
  table.add(entry(4));
  table.reset();
  EXPECT_EQ(told, "+1@1 -1@1 +1@2 -1@2 +2@1 +3@1 -3@1 +4@1 ");
}

TEST_F(MacTable, CountsLearnedAddressesByScope) {
  table.add(entry(1, Port{1}));
  table.add(entry(2, Port{1}));
  table.add(entry(3, Port{1}, MacEntry::fixed));
  table.add({.mac = address(4), .vlan = 11, .place = TrunkId{1}, .tunnel = 9});
  EXPECT_EQ(learned(AllAddresses{}), 3);
  EXPECT_EQ(learned(VlanAddresses{10}), 2);
  EXPECT_EQ(learned(VlanAddresses{11}), 1);
  EXPECT_EQ(learned(Port{1}), 2);
  EXPECT_EQ(learned(TrunkId{1}), 1);
  EXPECT_EQ(learned(Port{0}), 0);
  EXPECT_EQ(learned(TunnelAddresses{9}), 1);
  table.add(entry(2, Port{5}));
  EXPECT_EQ(learned(Port{1}), 1);
  EXPECT_EQ(learned(Port{5}), 1);
  EXPECT_EQ(learned(AllAddresses{}), 3);
}

TEST_F(MacTable, AgesAddressesThatWereNotHitForAWholeAgeTime) {
  table.add(entry(1));
  table.add(entry(2));
  table.pass(300);
  EXPECT_TRUE(has(1)) << "it was hit within the first age time";
  table.hit(*table.find(10, address(2)), &MacEntry::source_hit);
  table.pass(299);
  EXPECT_TRUE(has(1));
  table.pass(1);
  EXPECT_FALSE(has(1));
  EXPECT_TRUE(has(2));
  table.pass(300);
  EXPECT_FALSE(has(2));
}

TEST_F(MacTable, KeepsADestinationThatIsHit) {
  table.add(entry(1));
  table.pass(300);
  table.hit(*table.find(10, address(1)), &MacEntry::destination_hit);
  table.pass(300);
  EXPECT_TRUE(has(1));
}

TEST_F(MacTable, NeverAgesStaticEntries) {
  table.add(entry(1, Port{1}, MacEntry::fixed));
  table.pass(1'000'000);
  EXPECT_TRUE(has(1));
}

TEST_F(MacTable, AgesEverythingWhenMuchTimePassesAtOnce) {
  table.add(entry(1));
  table.set_age_time(1);
  table.pass(INT32_MAX);
  EXPECT_FALSE(has(1));
}

TEST_F(MacTable, DoesNotAgeWithoutAnAgeTime) {
  table.add(entry(1));
  EXPECT_EQ(table.set_age_time(0), Status::ok);
  table.pass(INT32_MAX);
  EXPECT_TRUE(has(1));
}

TEST_F(MacTable, StartsANewAgeTimeAtOnce) {
  table.add(entry(1));
  table.pass(300);
  table.pass(299);
  EXPECT_EQ(table.set_age_time(10), Status::ok);
  EXPECT_EQ(table.age_time(), 10);
  table.pass(9);
  EXPECT_TRUE(has(1));
  table.pass(1);
  EXPECT_FALSE(has(1));
}

TEST_F(MacTable, TakesAgeTimesOfTwentyBits) {
  EXPECT_EQ(table.age_time(), 300);
  EXPECT_EQ(table.set_age_time(-1), Status::bad_parameter);
  EXPECT_EQ(table.set_age_time(0x100000), Status::bad_parameter);
  EXPECT_EQ(table.age_time(), 300);
  EXPECT_EQ(table.set_age_time(0xFFFFF), Status::ok);
}

TEST_F(MacTable, ResetForgetsEntriesCountsAndAgeTime) {
  table.add(entry(1));
  table.set_age_time(10);
  table.reset();
  EXPECT_EQ(table.size(), 0);
  EXPECT_EQ(learned(AllAddresses{}), 0);
  EXPECT_EQ(table.age_time(), 300);
}

}  // namespace
