// What happens to the tags of frames on the way out.
#include "chip/egress_actions.h"

#include <bcm/error.h>
#include <bcm/vlan.h>

#include "support/chip_test.h"

namespace {

class EgressActions : public support::ChipTest {
 protected:
  /// An action that gives frames this outer VLAN.
  static bcm_vlan_action_set_t gives(bcm_vlan_t vid, int priority = 0) {
    bcm_vlan_action_set_t action;
    bcm_vlan_action_set_t_init(&action);
    action.new_outer_vlan = vid;
    action.priority = priority;
    return action;
  }
  static int add(int port_class, bcm_vlan_t outer, bcm_vlan_t inner, bcm_vlan_action_set_t action) {
    return bcm_vlan_translate_egress_action_add(0, port_class, outer, inner, &action);
  }
  static int remove(int port_class, bcm_vlan_t outer, bcm_vlan_t inner) {
    return bcm_vlan_translate_egress_action_delete(0, port_class, outer, inner);
  }
};

TEST_F(EgressActions, AreKeptByClassAndBothVlans) {
  EXPECT_EQ(add(1, 10, 0, gives(20, 3)), BCM_E_NONE);
  EXPECT_EQ(add(1, 10, 5, gives(21)), BCM_E_NONE);
  EXPECT_EQ(add(2, 10, 5, gives(0)), BCM_E_NONE);
  EXPECT_EQ(add(2, 4095, 4095, gives(4095)), BCM_E_NONE);
  EXPECT_EQ(add(0, 0, 0, gives(1)), BCM_E_NONE);
  EXPECT_EQ(shown("translation"),
            "out        0     0          1        0\n"
            "out        1     10         20       3\n"
            "out        1     10:5       21       0\n"
            "out        2     10:5       -        0\n"
            "out        2     4095:4095  4095     0\n");
}

TEST_F(EgressActions, TakeThePlaceOfTheOneWithTheirKey) {
  EXPECT_EQ(add(1, 10, 5, gives(20, 3)), BCM_E_NONE);
  EXPECT_EQ(add(1, 10, 5, gives(21, 4)), BCM_E_NONE);
  EXPECT_EQ(shown("translation"), "out        1     10:5  21       4\n");
}

TEST_F(EgressActions, CanTakeTheOuterTagAway) {
  bcm_vlan_action_set_t action = gives(20);
  action.dt_outer = bcmVlanActionDelete;
  EXPECT_EQ(add(1, 10, 5, action), BCM_E_NONE);
  action.dt_outer = bcmVlanActionReplace;
  action.ot_outer = bcmVlanActionDelete;
  EXPECT_EQ(add(1, 10, 6, action), BCM_E_NONE);
  EXPECT_EQ(shown("translation"),
            "out        1     10:5  without the outer tag  0\n"
            "out        1     10:6  20                     0\n");
}

TEST_F(EgressActions, LoseWhatIsDeletedAlone) {
  add(1, 10, 5, gives(20));
  EXPECT_EQ(remove(1, 10, 0), BCM_E_NOT_FOUND);
  EXPECT_EQ(remove(2, 10, 5), BCM_E_NOT_FOUND);
  EXPECT_EQ(remove(1, 11, 5), BCM_E_NOT_FOUND);
  EXPECT_EQ(shown("translation"), "out        1     10:5  20       0\n");
  EXPECT_EQ(remove(1, 10, 5), BCM_E_NONE);
  EXPECT_EQ(remove(1, 10, 5), BCM_E_NOT_FOUND);
  EXPECT_EQ(shown("translation"), "");
}

TEST_F(EgressActions, RefuseVlansOutsideTheirRange) {
  for (const bcm_vlan_t vid : std::initializer_list<bcm_vlan_t>{4096, 65535}) {
    EXPECT_EQ(add(1, vid, 5, gives(20)), BCM_E_PARAM) << vid;
    EXPECT_EQ(add(1, 10, vid, gives(20)), BCM_E_PARAM) << vid;
    EXPECT_EQ(remove(1, vid, 5), BCM_E_PARAM) << vid;
    EXPECT_EQ(remove(1, 10, vid), BCM_E_PARAM) << vid;
  }
  EXPECT_EQ(bcm_vlan_translate_egress_action_add(0, 1, 10, 5, nullptr), BCM_E_PARAM);
  EXPECT_EQ(shown("translation"), "");
}

TEST_F(EgressActions, AnswerFullAfter8192) {
  for (const int port_class : {1, 2})
    for (bcm_vlan_t vid = 0; vid <= 4095; ++vid) ASSERT_EQ(add(port_class, vid, 0, gives(20)), BCM_E_NONE);
  EXPECT_EQ(add(3, 0, 0, gives(20)), BCM_E_FULL);
  EXPECT_EQ(add(2, 4095, 0, gives(21)), BCM_E_NONE);
  EXPECT_EQ(remove(1, 0, 0), BCM_E_NONE);
  EXPECT_EQ(add(3, 0, 0, gives(20)), BCM_E_NONE);
}

TEST(EgressActionsOfAChip, KeepTheWholeAction) {
  using chip::TagAction;
  chip::EgressActions actions;
  chip::EgressAction wanted;
  wanted.double_tagged.outer.vlan = TagAction::copy;
  wanted.untagged.inner.cfi = TagAction::remove;
  wanted.inner_vlan = 7;
  wanted.outer_cfi = 1;
  EXPECT_EQ(actions.set({chip::Port{1}, 10, 5}, wanted), chip::Status::ok);
  const chip::EgressAction& found = actions.all().at({chip::Port{1}, 10, 5});
  EXPECT_EQ(found.double_tagged.outer.vlan, TagAction::copy);
  EXPECT_EQ(found.untagged.inner.cfi, TagAction::remove);
  EXPECT_EQ(found.inner_vlan, 7);
  EXPECT_EQ(found.outer_cfi, 1);
  actions.clear();
  EXPECT_TRUE(actions.all().empty());
}

TEST(EgressActionsOfAChip, TellPortsFromVirtualPortsOfTheSameNumber) {
  chip::EgressActions actions;
  chip::EgressAction action;
  action.outer_vlan = 20;
  EXPECT_EQ(actions.set({chip::Port{1}, 10, 5}, action), chip::Status::ok);
  EXPECT_EQ(actions.find({chip::VirtualPortId{1}, 10, 5}), nullptr);
  EXPECT_EQ(actions.remove({chip::VirtualPortId{1}, 10, 5}), chip::Status::not_found);
  action.outer_vlan = 30;
  EXPECT_EQ(actions.set({chip::VirtualPortId{1}, 10, 5}, action), chip::Status::ok);
  EXPECT_EQ(actions.find({chip::Port{1}, 10, 5})->outer_vlan, 20);
  EXPECT_EQ(actions.find({chip::VirtualPortId{1}, 10, 5})->outer_vlan, 30);
}

}  // namespace
