#include "chip/egress_objects.h"

#include <gtest/gtest.h>

namespace {

using chip::EgressObject;
using chip::EgressObjects;
using chip::Status;

const EgressObject next_hop{.interface = 1, .mac = {0, 1, 2, 3, 4, 5}, .vlan = 10, .port = 3};

TEST(EgressObjects, AreFoundByTheirIdAndByWhatTheyAre) {
  EgressObjects objects;
  int id = 0;
  EXPECT_EQ(objects.create(next_hop, id), Status::ok);
  EXPECT_EQ(id, EgressObjects::first_id);
  ASSERT_NE(objects.find(id), nullptr);
  EXPECT_EQ(*objects.find(id), next_hop);
  int found = 0;
  EXPECT_EQ(objects.find_same(next_hop, found), Status::ok);
  EXPECT_EQ(found, id);
}

TEST(EgressObjects, DifferInAnyField) {
  EgressObjects objects;
  int id = 0;
  objects.create(next_hop, id);
  for (auto change :
       {+[](EgressObject& object) { object.interface = 2; }, +[](EgressObject& object) { object.vlan = 11; },
        +[](EgressObject& object) { object.port = 4; }, +[](EgressObject& object) { object.mac[5] = 6; }}) {
    EgressObject other = next_hop;
    change(other);
    EXPECT_EQ(objects.find_same(other, id), Status::not_found);
    EXPECT_EQ(objects.create(other, id), Status::ok);
  }
  EXPECT_EQ(objects.create(next_hop, id), Status::exists);
  EXPECT_EQ(objects.all().size(), 5U);
}

TEST(EgressObjects, ThatAreAbsentAnswerNotFound) {
  EgressObjects objects;
  EXPECT_EQ(objects.remove(EgressObjects::first_id), Status::not_found);
  EXPECT_EQ(objects.remove(1), Status::bad_parameter);
  EXPECT_EQ(objects.absent(EgressObjects::first_id), Status::not_found);
  EXPECT_EQ(objects.find(1), nullptr);
}

TEST(EgressObjects, AreFullAtTheirCapacity) {
  EgressObjects objects;
  int id = 0;
  for (int i = 0; i < EgressObjects::capacity; ++i) ASSERT_EQ(objects.create({.interface = i}, id), Status::ok);
  EXPECT_EQ(objects.create(next_hop, id), Status::full);
  EXPECT_EQ(objects.remove(id), Status::ok);
  EXPECT_EQ(objects.create(next_hop, id), Status::ok);
}

}  // namespace
