// A field processor by itself, on a chip of 12 ports.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "chip/field_processor.h"

namespace support {

class FieldProcessor : public testing::Test {
 protected:
  using FieldAction = chip::FieldAction;
  using FieldGroup = chip::FieldGroup;
  using FieldQualifier = chip::FieldQualifier;
  using FieldStage = chip::FieldStage;
  using FieldVerdict = chip::FieldVerdict;
  using FrameFields = chip::FrameFields;
  using Status = chip::Status;

  static constexpr int in = chip::FieldProcessor::ingress_stage;
  static constexpr int out = chip::FieldProcessor::egress_stage;
  static constexpr int in_port = static_cast<int>(FieldQualifier::in_port);
  static constexpr int out_port = static_cast<int>(FieldQualifier::out_port);
  static constexpr int vlan = static_cast<int>(FieldQualifier::outer_vlan);

  /// An enabled group of ports and VLANs.
  int group(int priority = FieldGroup::any_priority, int stage = in) {
    int id = 0;
    EXPECT_EQ(processor.create_group({stage, stage == in ? in_port : out_port, vlan}, priority, id), Status::ok);
    EXPECT_EQ(processor.enable_group(id, true), Status::ok);
    return id;
  }
  int entry(int group) {
    int id = 0;
    EXPECT_EQ(processor.create_entry(group, id), Status::ok);
    return id;
  }
  /// An installed entry that every frame meets.
  int entry(int group, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    const int id = entry(group);
    EXPECT_EQ(add_action(id, action, parameter0, parameter1), Status::ok);
    EXPECT_EQ(processor.install(id), Status::ok);
    return id;
  }
  Status add_action(int entry, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    return processor.add_action(entry, static_cast<int>(action), parameter0, parameter1);
  }
  FieldVerdict classify(const FrameFields& frame = {}, FieldStage stage = FieldStage::ingress) {
    return processor.classify(stage, frame);
  }
  /// The entries that a frame meets: "3 1 ".
  std::string met(const FrameFields& frame = {}, FieldStage stage = FieldStage::ingress) {
    std::string entries;
    for (const chip::FieldHits::Hit& hit : classify(frame, stage).hits) entries += std::to_string(hit.entry) + ' ';
    return entries;
  }

  chip::Ports ports{12};
  chip::Policers policers;
  chip::FieldProcessor processor{ports, policers};
};

}  // namespace support
