// The same entries whichever way they are found: the index against a walk over all entries.
#include <algorithm>
#include <random>
#include <vector>

#include "swsdk/field_processor_fixture.h"

namespace {

using chip::FieldEntry;
using chip::FieldMatch;
using support::FieldProcessor;

class FieldIndex : public FieldProcessor {
 protected:
  // Ports, VLANs, MAC, IPv4, IPv6, L4 port, type, protocol.
  static constexpr int fields[] = {in_port, vlan, 6, 9, 0, 27, 29, 30};

  uint64_t any(uint64_t count) { return std::uniform_int_distribution<uint64_t>(0, count - 1)(random_); }
  bool one_in(uint64_t count) { return any(count) == 0; }

  int wide_group() {
    int id = 0;
    std::set<int> qualifiers(std::begin(fields), std::end(fields));
    qualifiers.insert(in);
    EXPECT_EQ(processor.create_group(qualifiers, static_cast<int>(any(4)), id), Status::ok);
    EXPECT_EQ(processor.enable_group(id, true), Status::ok);
    return id;
  }

  /// Few values, so that frames meet entries.
  FieldMatch match(int field) {
    static constexpr uint64_t masks[] = {0, 1, 3, 6, 0xFFFF};
    const uint64_t mask = masks[any(std::size(masks))];
    FieldMatch match;
    match.data.low = field == 29 && !one_in(4) ? (one_in(2) ? 0x0800 : 0x86DD) : 1 + any(6);
    match.mask.low = field == 30 ? mask & 0xFF : mask;
    if (field == 0) {
      match.data.high = any(3);
      match.mask.high = any(4);
    }
    return match;
  }

  void change_an_entry(int entry) {
    for (const int field : fields)
      if (one_in(3)) {
        EXPECT_EQ(processor.qualify(entry, static_cast<FieldQualifier>(field), match(field)), Status::ok) << field;
      }
    if (one_in(2)) processor.set_priority(entry, static_cast<int>(any(5)) - 1);
    if (one_in(8))
      processor.remove(entry);
    else if (processor.install(entry) == Status::exists)
      processor.reinstall(entry);
  }

  FrameFields any_frame() {
    FrameFields frame;
    frame.in_port = chip::Port::of(static_cast<int>(1 + any(6)));
    if (one_in(4)) frame.readable = one_in(2) ? chip::Layer::ethernet : chip::Layer::network;
    frame.outer_tag = static_cast<uint16_t>(1 + any(6));
    frame.ether_type = one_in(2) ? 0x0800 : 0x86DD;
    frame.source_mac = {0, 0, 0, 0, 0, static_cast<uint8_t>(1 + any(6))};
    frame.source_ip = static_cast<uint32_t>(1 + any(6));
    frame.source_ip6[7] = static_cast<uint8_t>(any(3));
    frame.source_ip6[15] = static_cast<uint8_t>(1 + any(6));
    frame.ip_protocol = static_cast<uint8_t>(1 + any(6));
    frame.l4_source_port = static_cast<uint16_t>(1 + any(6));
    return frame;
  }

  /// As met(), by a walk over all entries.
  std::string walked(const FrameFields& frame) const {
    std::vector<int> groups;
    for (const auto& [id, group] : processor.groups())
      if (group.enabled && group.stage == FieldStage::ingress) groups.push_back(id);
    std::stable_sort(groups.begin(), groups.end(), [&](int left, int right) {
      return processor.groups().at(left).priority > processor.groups().at(right).priority;
    });
    std::string text;
    for (const int group : groups) {
      const FieldEntry* best = nullptr;
      int best_id = 0;
      for (const auto& [id, entry] : processor.entries()) {
        if (entry.group != group || !entry.installed) continue;
        const auto& matches = entry.installed->matches;
        const bool meets = std::all_of(matches.begin(), matches.end(), [&](const auto& match) {
          const bool counts = match.second.mask != chip::FieldValue();
          return !counts || (frame.can_read(layer_of(match.first)) && match.second.meets(field_of(frame, match.first)));
        });
        if (!meets ||
            (best != nullptr && (best->priority > entry.priority ||
                                 (best->priority == entry.priority && best->installation < entry.installation))))
          continue;
        best = &entry;
        best_id = id;
      }
      if (best != nullptr) text += std::to_string(best_id) + ' ';
    }
    return text;
  }

 private:
  std::mt19937 random_{20};
};

TEST_F(FieldIndex, FindsWhatAWalkOverAllEntriesFinds) {
  std::vector<int> entries;
  for (int i = 0; i < 4; ++i) {
    const int group = wide_group();
    for (int j = 0; j < 60; ++j) entries.push_back(entry(group));
  }
  int hits = 0;
  for (int round = 0; round < 400; ++round) {
    for (int changes = 0; changes < 5; ++changes) change_an_entry(entries[any(entries.size())]);
    if (one_in(20)) processor.enable_group(static_cast<int>(1 + any(4)), !one_in(3));
    if (one_in(20)) processor.set_group_priority(static_cast<int>(1 + any(4)), static_cast<int>(any(4)));
    for (int frames = 0; frames < 10; ++frames) {
      const FrameFields frame = any_frame();
      const std::string expected = walked(frame);
      ASSERT_EQ(met(frame), expected) << "round " << round;
      hits += expected.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(hits, 1000) << "frames that meet nothing compare nothing";
}

TEST_F(FieldIndex, IsIdleWhileNoEntryCanBeMet) {
  const auto idle = [&] { return processor.is_idle(FieldStage::ingress); };
  EXPECT_TRUE(idle());
  const int in_group = group();
  EXPECT_TRUE(idle());
  const int id = entry(in_group, FieldAction::drop);
  EXPECT_FALSE(idle());
  EXPECT_TRUE(processor.is_idle(FieldStage::egress));
  processor.enable_group(in_group, false);
  EXPECT_TRUE(idle());
  processor.enable_group(in_group, true);
  EXPECT_FALSE(idle());
  processor.remove(id);
  EXPECT_TRUE(idle());
}

TEST_F(FieldIndex, FindsOneOfManyEntriesOfAKind) {
  const int in_group = group();
  for (uint64_t id = 1; id <= 300; ++id) {
    const int made = entry(in_group);
    processor.qualify(made, FieldQualifier::outer_vlan, {id, 0xFFF});
    processor.install(made);
  }
  for (uint16_t id = 1; id <= 300; ++id) {
    FrameFields frame;
    frame.outer_tag = id;
    EXPECT_EQ(met(frame), std::to_string(id) + ' ');
  }
  FrameFields none;
  none.outer_tag = 301;
  EXPECT_EQ(met(none), "");
}

}  // namespace
