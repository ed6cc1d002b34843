#include "chip/mirrors.h"

#include <gtest/gtest.h>

namespace {

using chip::MirrorId;
using chip::Place;
using chip::Port;
using chip::Status;
using MirrorTable = chip::Mirrors;

constexpr uint32_t replace = 0x1;
constexpr uint32_t with_id = 0x2;

class Mirrors : public testing::Test {
 protected:
  Status create(MirrorId id, const Place& to, uint32_t flags = with_id) { return mirrors.create(flags, to, id); }
  Status add(Port source, uint32_t directions, MirrorId id) {
    return mirrors.add_source(source, MirrorTable::enable | directions, id);
  }
  Status remove(Port source, uint32_t directions, MirrorId id) {
    return mirrors.remove_source(source, MirrorTable::enable | directions, id);
  }
  uint32_t directions(Port source, MirrorId id) { return mirrors.sources().at({source, id}); }
  std::optional<Place> destination(MirrorId id) {
    const Place* const found = mirrors.find(id);
    return found == nullptr ? std::nullopt : std::optional(*found);
  }

  chip::Ports ports{12};
  chip::Mirrors mirrors{ports};
};

TEST_F(Mirrors, KeepDestinationsUnderTheirIds) {
  EXPECT_EQ(create(5, Port{12}), Status::ok);
  EXPECT_EQ(destination(5), Place{Port{12}});
}

TEST_F(Mirrors, ChooseTheLowestFreeId) {
  create(0, Port{1});
  MirrorId id = -1;
  EXPECT_EQ(mirrors.create(0, Port{2}, id), Status::ok);
  EXPECT_EQ(id, MirrorId{1});
}

TEST_F(Mirrors, ReplaceADestinationOnlyOnRequest) {
  create(1, Port{1});
  EXPECT_EQ(create(1, Port{2}), Status::exists);
  EXPECT_EQ(destination(1), Place{Port{1}});
  EXPECT_EQ(create(1, Port{2}, with_id | replace), Status::ok);
  EXPECT_EQ(destination(1), Place{Port{2}});
  EXPECT_EQ(create(2, Port{3}, with_id | replace), Status::ok) << "there is nothing to replace";
}

TEST_F(Mirrors, HaveFourDestinations) {
  for (int number = 1; number <= 4; ++number) EXPECT_EQ(create(MirrorId::of(number), Port::of(number)), Status::ok);
  EXPECT_EQ(create(5, Port{5}), Status::full);
  EXPECT_EQ(create(4, Port{5}, with_id | replace), Status::ok);
  EXPECT_EQ(mirrors.destroy(1), Status::ok);
  EXPECT_EQ(create(5, Port{5}), Status::ok);
}

TEST_F(Mirrors, RefuseDestinationsThatCannotBe) {
  EXPECT_EQ(create(-1, Port{1}), Status::bad_id);
  EXPECT_EQ(create(1, chip::TrunkId{1}), Status::bad_port);
  EXPECT_EQ(create(1, chip::VirtualPortId{1}), Status::bad_port);
  EXPECT_EQ(create(1, Port{13}), Status::bad_port);
  EXPECT_EQ(create(1, Port{1}, replace), Status::bad_parameter);
  EXPECT_EQ(create(1, Port{1}, 0x4), Status::bad_parameter);
  EXPECT_TRUE(mirrors.destinations().empty());
}

TEST_F(Mirrors, ThatAreUnknownAnswerNotFound) {
  EXPECT_EQ(mirrors.find(1), nullptr);
  EXPECT_EQ(mirrors.destroy(1), Status::not_found);
  EXPECT_EQ(add(1, MirrorTable::ingress, 1), Status::not_found);
  EXPECT_EQ(remove(1, MirrorTable::ingress, 1), Status::not_found);
}

TEST_F(Mirrors, KeepTheDirectionsOfEachSource) {
  create(1, Port{12});
  EXPECT_EQ(add(3, MirrorTable::ingress, 1), Status::ok);
  EXPECT_EQ(directions(3, 1), MirrorTable::ingress);
  EXPECT_EQ(add(3, MirrorTable::ingress | MirrorTable::egress, 1), Status::ok);
  EXPECT_EQ(directions(3, 1), MirrorTable::ingress | MirrorTable::egress);
  EXPECT_EQ(add(3, MirrorTable::egress, 1), Status::exists);
  EXPECT_EQ(remove(3, MirrorTable::ingress, 1), Status::ok);
  EXPECT_EQ(directions(3, 1), MirrorTable::egress);
  EXPECT_EQ(remove(3, MirrorTable::ingress, 1), Status::not_found);
  EXPECT_EQ(remove(3, MirrorTable::ingress | MirrorTable::egress, 1), Status::ok);
  EXPECT_TRUE(mirrors.sources().empty());
  EXPECT_EQ(remove(3, MirrorTable::egress, 1), Status::not_found);
}

TEST_F(Mirrors, TakeASourceWithoutADirection) {
  create(1, Port{12});
  EXPECT_EQ(add(3, 0, 1), Status::ok);
  EXPECT_EQ(directions(3, 1), 0U);
  EXPECT_EQ(add(3, 0, 1), Status::exists);
  EXPECT_EQ(remove(3, 0, 1), Status::ok);
  EXPECT_TRUE(mirrors.sources().empty());
}

TEST_F(Mirrors, SendAPortToSeveralDestinations) {
  create(1, Port{11});
  create(2, Port{12});
  EXPECT_EQ(add(3, MirrorTable::ingress, 1), Status::ok);
  EXPECT_EQ(add(3, MirrorTable::ingress, 2), Status::ok);
  EXPECT_EQ(mirrors.sources().size(), 2U);
}

TEST_F(Mirrors, KeepADestinationThatHasSources) {
  create(1, Port{12});
  add(3, MirrorTable::ingress, 1);
  EXPECT_EQ(mirrors.destroy(1), Status::busy);
  EXPECT_EQ(create(1, Port{11}, with_id | replace), Status::ok);
  EXPECT_EQ(mirrors.sources().size(), 1U);
  remove(3, MirrorTable::ingress, 1);
  EXPECT_EQ(mirrors.destroy(1), Status::ok);
}

TEST_F(Mirrors, RefuseSourcesThatCannotBe) {
  create(1, Port{12});
  EXPECT_EQ(add(13, MirrorTable::ingress, 1), Status::bad_port);
  EXPECT_EQ(mirrors.add_source(3, MirrorTable::ingress, 1), Status::bad_parameter) << "it is not enabled";
  EXPECT_EQ(add(3, 0x8, 1), Status::bad_parameter);
  EXPECT_EQ(remove(13, MirrorTable::ingress, 1), Status::bad_port);
  EXPECT_TRUE(mirrors.sources().empty());
}

TEST_F(Mirrors, HaveThreeModes) {
  EXPECT_EQ(mirrors.mode(), MirrorTable::Mode::off);
  EXPECT_EQ(mirrors.set_mode(1), Status::ok);
  EXPECT_EQ(mirrors.mode(), MirrorTable::Mode::l2);
  EXPECT_EQ(mirrors.set_mode(2), Status::ok);
  EXPECT_EQ(mirrors.set_mode(3), Status::bad_parameter);
  EXPECT_EQ(mirrors.set_mode(-1), Status::bad_parameter);
  EXPECT_EQ(mirrors.mode(), MirrorTable::Mode::l2_and_l3);
}

TEST_F(Mirrors, ResetForgetsEverything) {
  create(1, Port{12});
  add(3, MirrorTable::ingress, 1);
  mirrors.set_mode(1);
  mirrors.reset();
  EXPECT_TRUE(mirrors.destinations().empty());
  EXPECT_TRUE(mirrors.sources().empty());
  EXPECT_EQ(mirrors.mode(), MirrorTable::Mode::off);
}

}  // namespace
