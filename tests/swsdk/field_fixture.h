// The field processor of a chip that is up, through the SDK's calls and the control interface.
#pragma once

#include <bcm/error.h>
#include <bcm/field.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/field.h>

#include <functional>
#include <initializer_list>

#include "support/start.h"

namespace support {

class Field : public testing::Test {
 protected:
  static constexpr int unit = 0;
  static constexpr int exact = BCM_FIELD_EXACT_MATCH_MASK;
  static constexpr uint16_t ip4 = 0x0800;
  static constexpr uint16_t ip6 = 0x86DD;

  Field() { support::start_chip(); }
  ~Field() override { swsdk_power_off(); }

  /// An enabled group.
  static int group(std::initializer_list<int> qualifiers) {
    bcm_field_qset_t qset;
    BCM_FIELD_QSET_INIT(qset);
    for (const int qualifier : qualifiers) BCM_FIELD_QSET_ADD(qset, qualifier);
    int id = 0;
    EXPECT_EQ(bcm_field_group_create(unit, qset, BCM_FIELD_GROUP_PRIO_ANY, &id), BCM_E_NONE);
    EXPECT_EQ(bcm_field_group_enable_set(unit, id, 1), BCM_E_NONE);
    return id;
  }

  static int entry(int group) {
    int id = 0;
    EXPECT_EQ(bcm_field_entry_create(unit, group, &id), BCM_E_NONE);
    return id;
  }

  static swsdk_verdict classify(const swsdk_frame& frame, int stage = SWSDK_FIELD_INGRESS) {
    swsdk_verdict verdict;
    EXPECT_EQ(swsdk_field_classify(unit, stage, &frame, &verdict), 0);
    return verdict;
  }

  /// A frame with some fields set.
  static swsdk_frame frame(const std::function<void(swsdk_frame&)>& set) {
    swsdk_frame result{};
    set(result);
    return result;
  }
};

}  // namespace support
