#include "chip/place.h"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>
#include <unordered_set>

#include "chip/hash.h"

namespace {

using chip::Place;
using chip::Port;
using chip::TrunkId;
using chip::VirtualPortId;

// Numbers of one kind do not pass for another, nor for plain ones.
template <class One, class Other>
constexpr bool mix =
    std::is_convertible_v<One, Other> || std::is_constructible_v<Other, One> || std::is_assignable_v<Other&, One>;
static_assert(!mix<TrunkId, Port> && !mix<Port, TrunkId>);
static_assert(!mix<VirtualPortId, Port> && !mix<Port, VirtualPortId>);
static_assert(!mix<chip::GroupId, Port> && !mix<chip::MirrorId, Port> && !mix<chip::GroupId, chip::MirrorId>);
static_assert(!mix<Port, int> && !mix<TrunkId, int> && !mix<Place, int>);
static_assert(!mix<Place, Port> && mix<Port, Place>);

// Of plain numbers none passes for a place: it would not say of which kind. Those in the code pass for one of a kind.
static_assert(!std::is_convertible_v<int, Place>);
constexpr Port in_the_code = 3;
static_assert(in_the_code.number() == 3 && in_the_code == Port::of(3));

template <class Number>
concept comparable = requires(Port port, Number number) {
  port == number;
};
static_assert(comparable<Port> && !comparable<TrunkId>);

TEST(Places, TellKindsOfTheSameNumberApart) {
  EXPECT_EQ((std::set<Place>{Port{3}, TrunkId{3}, VirtualPortId{3}, Port{3}}).size(), 3U);
  EXPECT_NE(Place{Port{3}}, Place{TrunkId{3}});
  EXPECT_EQ(Place{Port{3}}, Place{Port::of(3)});
  EXPECT_TRUE(is_trunk(TrunkId{3}));
  EXPECT_FALSE(is_trunk(Port{3}) || is_trunk(VirtualPortId{3}));
  EXPECT_TRUE(is_virtual(VirtualPortId{3}));
  EXPECT_FALSE(is_virtual(Port{3}) || is_virtual(TrunkId{3}));
}

TEST(Places, AreTheCpuPortUnlessTheySayOtherwise) { EXPECT_EQ(Place{}, Place{Port{0}}); }

TEST(Places, HaveNumbersOfTheirOwn) {
  std::set<uint64_t> numbers;
  for (const int number : {0, 1, 4095})
    for (const Place& place : {Place{Port::of(number)}, Place{TrunkId::of(number)}, Place{VirtualPortId::of(number)}})
      numbers.insert(chip::number_of(place));
  EXPECT_EQ(numbers.size(), 9U);
}

TEST(Places, AreVisitedByKind) {
  const auto kind = [](const Place& place) {
    return std::visit(chip::ByKind{
                          [](Port) { return 'p'; },
                          [](TrunkId) { return 't'; },
                          [](VirtualPortId) { return 'v'; },
                      },
                      place);
  };
  EXPECT_EQ(kind(Port{1}), 'p');
  EXPECT_EQ(kind(TrunkId{1}), 't');
  EXPECT_EQ(kind(VirtualPortId{1}), 'v');
}

TEST(Ids, AreInTheOrderOfTheirNumbers) {
  EXPECT_LT(Port{-1}, Port{0});
  EXPECT_LT(Port{2}, Port{10});
  EXPECT_EQ(Port{}, Port{0});
  EXPECT_EQ(Port{7}.index(), 7U);
  EXPECT_EQ((std::unordered_set<Port>{Port{1}, Port{2}, Port{1}}).size(), 2U);
}

}  // namespace
