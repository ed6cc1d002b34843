#include "chip/mirrors.h"

#include <gtest/gtest.h>

#include "chip/gports.h"

namespace {

using chip::Status;
using Table = chip::Mirrors;

constexpr int session(int number) { return chip::gport::of(chip::gport::mirror, number); }
constexpr int port(int number) { return chip::gport::of_port(number); }

constexpr uint32_t replace = 0x1;
constexpr uint32_t with_id = 0x2;

class Mirrors : public testing::Test {
 protected:
  Status create(int id, int gport, uint32_t flags = with_id) { return mirrors.create(flags, gport, id); }
  Status add(int source, uint32_t directions, int id) {
    return mirrors.add_source(source, Table::enable | directions, id);
  }
  Status remove(int source, uint32_t directions, int id) {
    return mirrors.remove_source(source, Table::enable | directions, id);
  }
  int destination(int id) {
    int gport = -1;
    mirrors.find(id, gport);
    return gport;
  }

  chip::Ports ports{12};
  chip::Mirrors mirrors{ports};
};

TEST_F(Mirrors, KeepDestinationsUnderTheirIds) {
  EXPECT_EQ(create(session(5), port(12)), Status::ok);
  EXPECT_EQ(destination(session(5)), port(12));
}

TEST_F(Mirrors, ChooseTheLowestFreeId) {
  create(session(0), port(1));
  int id = -1;
  EXPECT_EQ(mirrors.create(0, port(2), id), Status::ok);
  EXPECT_EQ(id, session(1));
}

TEST_F(Mirrors, ReplaceADestinationOnlyOnRequest) {
  create(session(1), port(1));
  EXPECT_EQ(create(session(1), port(2)), Status::exists);
  EXPECT_EQ(destination(session(1)), port(1));
  EXPECT_EQ(create(session(1), port(2), with_id | replace), Status::ok);
  EXPECT_EQ(destination(session(1)), port(2));
  EXPECT_EQ(create(session(2), port(3), with_id | replace), Status::ok) << "there is nothing to replace";
}

TEST_F(Mirrors, HaveFourDestinations) {
  for (int number = 1; number <= 4; ++number) EXPECT_EQ(create(session(number), port(number)), Status::ok);
  EXPECT_EQ(create(session(5), port(5)), Status::full);
  EXPECT_EQ(create(session(4), port(5), with_id | replace), Status::ok);
  EXPECT_EQ(mirrors.destroy(session(1)), Status::ok);
  EXPECT_EQ(create(session(5), port(5)), Status::ok);
}

TEST_F(Mirrors, RefuseDestinationsThatCannotBe) {
  EXPECT_EQ(create(1, port(1)), Status::bad_id);
  EXPECT_EQ(create(session(1), 1), Status::bad_port) << "a plain number is no gport";
  EXPECT_EQ(create(session(1), port(13)), Status::bad_port);
  EXPECT_EQ(create(session(1), port(1), replace), Status::bad_parameter);
  EXPECT_EQ(create(session(1), port(1), 0x4), Status::bad_parameter);
  EXPECT_TRUE(mirrors.destinations().empty());
}

TEST_F(Mirrors, ThatAreUnknownAnswerNotFound) {
  int gport = 0;
  EXPECT_EQ(mirrors.find(session(1), gport), Status::not_found);
  EXPECT_EQ(mirrors.destroy(session(1)), Status::not_found);
  EXPECT_EQ(add(1, Table::ingress, session(1)), Status::not_found);
  EXPECT_EQ(remove(1, Table::ingress, session(1)), Status::not_found);
}

TEST_F(Mirrors, KeepTheDirectionsOfEachSource) {
  create(session(1), port(12));
  EXPECT_EQ(add(3, Table::ingress, session(1)), Status::ok);
  EXPECT_EQ(mirrors.sources().at({3, session(1)}), Table::ingress);
  EXPECT_EQ(add(3, Table::ingress | Table::egress, session(1)), Status::ok);
  EXPECT_EQ(mirrors.sources().at({3, session(1)}), Table::ingress | Table::egress);
  EXPECT_EQ(add(3, Table::egress, session(1)), Status::exists);
  EXPECT_EQ(remove(3, Table::ingress, session(1)), Status::ok);
  EXPECT_EQ(mirrors.sources().at({3, session(1)}), Table::egress);
  EXPECT_EQ(remove(3, Table::ingress, session(1)), Status::not_found);
  EXPECT_EQ(remove(3, Table::ingress | Table::egress, session(1)), Status::ok);
  EXPECT_TRUE(mirrors.sources().empty());
  EXPECT_EQ(remove(3, Table::egress, session(1)), Status::not_found);
}

TEST_F(Mirrors, TakeASourceWithoutADirection) {
  create(session(1), port(12));
  EXPECT_EQ(add(3, 0, session(1)), Status::ok);
  EXPECT_EQ(mirrors.sources().at({3, session(1)}), 0U);
  EXPECT_EQ(add(3, 0, session(1)), Status::exists);
  EXPECT_EQ(remove(3, 0, session(1)), Status::ok);
  EXPECT_TRUE(mirrors.sources().empty());
}

TEST_F(Mirrors, SendAPortToSeveralDestinations) {
  create(session(1), port(11));
  create(session(2), port(12));
  EXPECT_EQ(add(3, Table::ingress, session(1)), Status::ok);
  EXPECT_EQ(add(3, Table::ingress, session(2)), Status::ok);
  EXPECT_EQ(mirrors.sources().size(), 2U);
}

TEST_F(Mirrors, KeepADestinationThatHasSources) {
  create(session(1), port(12));
  add(3, Table::ingress, session(1));
  EXPECT_EQ(mirrors.destroy(session(1)), Status::busy);
  EXPECT_EQ(create(session(1), port(11), with_id | replace), Status::ok);
  EXPECT_EQ(mirrors.sources().size(), 1U);
  remove(3, Table::ingress, session(1));
  EXPECT_EQ(mirrors.destroy(session(1)), Status::ok);
}

TEST_F(Mirrors, RefuseSourcesThatCannotBe) {
  create(session(1), port(12));
  EXPECT_EQ(add(13, Table::ingress, session(1)), Status::bad_port);
  EXPECT_EQ(mirrors.add_source(3, Table::ingress, session(1)), Status::bad_parameter) << "it is not enabled";
  EXPECT_EQ(add(3, 0x8, session(1)), Status::bad_parameter);
  EXPECT_EQ(remove(13, Table::ingress, session(1)), Status::bad_port);
  EXPECT_TRUE(mirrors.sources().empty());
}

TEST_F(Mirrors, HaveThreeModes) {
  EXPECT_EQ(mirrors.mode(), Table::Mode::off);
  EXPECT_EQ(mirrors.set_mode(1), Status::ok);
  EXPECT_EQ(mirrors.mode(), Table::Mode::l2);
  EXPECT_EQ(mirrors.set_mode(2), Status::ok);
  EXPECT_EQ(mirrors.set_mode(3), Status::bad_parameter);
  EXPECT_EQ(mirrors.set_mode(-1), Status::bad_parameter);
  EXPECT_EQ(mirrors.mode(), Table::Mode::l2_and_l3);
}

TEST_F(Mirrors, ResetForgetsEverything) {
  create(session(1), port(12));
  add(3, Table::ingress, session(1));
  mirrors.set_mode(1);
  mirrors.reset();
  EXPECT_TRUE(mirrors.destinations().empty());
  EXPECT_TRUE(mirrors.sources().empty());
  EXPECT_EQ(mirrors.mode(), Table::Mode::off);
}

}  // namespace
