#include "chip/egress_objects.h"

#include <gtest/gtest.h>

namespace {

using chip::EgressObject;
using chip::EgressObjects;
using chip::Status;

const EgressObject one_object{.interface = 1, .mac = {0, 1, 2, 3, 4, 5}, .vlan = 10, .place = chip::Port{3}};

TEST(EgressObjects, AreFoundByTheirIdAndByWhatTheyAre) {
  EgressObjects objects;
  int id = 0;
  EXPECT_EQ(objects.create(one_object, id), Status::ok);
  EXPECT_EQ(id, EgressObjects::first_id);
  ASSERT_NE(objects.find(id), nullptr);
  EXPECT_EQ(*objects.find(id), one_object);
  EXPECT_EQ(objects.find_same(one_object), id);
}

TEST(EgressObjects, DifferInAnyField) {
  EgressObjects objects;
  int id = 0;
  objects.create(one_object, id);
  for (auto change :
       {+[](EgressObject& object) { object.interface = 2; }, +[](EgressObject& object) { object.vlan = 11; },
        +[](EgressObject& object) { object.place = chip::Port{4}; },
        +[](EgressObject& object) { object.place = chip::TrunkId{3}; },
        +[](EgressObject& object) { object.mac[5] = 6; }}) {
    EgressObject other = one_object;
    change(other);
    EXPECT_EQ(objects.find_same(other), std::nullopt);
    EXPECT_EQ(objects.create(other, id), Status::ok);
  }
  EXPECT_EQ(objects.create(one_object, id), Status::exists);
  EXPECT_EQ(objects.all().size(), 6U);
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
  EXPECT_EQ(objects.create(one_object, id), Status::full);
  EXPECT_EQ(objects.remove(id), Status::ok);
  EXPECT_EQ(objects.create(one_object, id), Status::ok);
}

}  // namespace
