#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

using Tag = std::optional<uint16_t>;

/// The values that an action offers for one tag.
struct Offer {
  int vlan;
  int priority;
  int packet_priority;
  int cfi;
};

/// The new value of one part of a tag: its own, the offered one, 0, or that of the other tag.
int chosen(TagAction action, int own, int offered, int other) {
  switch (action) {
    case TagAction::none:
      return own;
    case TagAction::add:
    case TagAction::replace:
      return offered;
    case TagAction::remove:
      return 0;
    case TagAction::copy:
      return other;
  }
  return own;
}

/// Applies a change to a tag; the action for its VLAN decides whether the tag exists. A new tag has the frame's
/// priority. Without another tag, nothing is copied.
Tag changed(const TagChange& change, const Tag& tag, const Tag& other, const Offer& offer, int frame_priority) {
  if (change.vlan == TagAction::remove) return std::nullopt;
  const bool adds = change.vlan == TagAction::add || (change.vlan == TagAction::copy && other);
  if (!tag && !adds) return std::nullopt;
  uint16_t bits = tag.value_or(with_priority(0, frame_priority));
  const uint16_t from = other.value_or(bits);
  bits = with_vlan(bits, chosen(change.vlan, bits, offer.vlan, from));

  // The frame has one priority at egress; where both actions change it, the packet priority wins.
  const auto change_priority = [&](TagAction action, int offered) {
    bits = with_priority(bits, chosen(action, bits >> priority_shift, offered, from >> priority_shift));
  };
  change_priority(change.priority, offer.priority);
  change_priority(change.packet_priority, offer.packet_priority);

  constexpr int cfi_shift = 12;
  const int cfi = chosen(change.cfi, bits >> cfi_shift, offer.cfi, from >> cfi_shift) & 1;
  return static_cast<uint16_t>((bits & ~(1 << cfi_shift)) | cfi << cfi_shift);
}

void apply(const EgressAction& action, int frame_priority, EgressHeader& header) {
  const TagsChange& change = header.outer_tag ? (header.inner_tag ? action.double_tagged : action.outer_tagged)
                                              : (header.inner_tag ? action.inner_tagged : action.untagged);
  const Tag outer = header.outer_tag;
  const Tag inner = header.inner_tag;
  header.outer_tag = changed(change.outer, outer, inner,
                             {action.outer_vlan, action.priority, action.priority, action.outer_cfi}, frame_priority);
  header.inner_tag =
      changed(change.inner, inner, outer,
              {action.inner_vlan, action.priority, action.inner_packet_priority, action.inner_cfi}, frame_priority);
}

}  // namespace

void tell_translation_off(const Passage& frame, VlanControlOfPort direction, Port port) {
  if (frame.chip.vlan_controls.translate() == 0)
    frame.by(decider::ChipTranslation{});
  else
    frame.by(decider::VlanControl{direction, port});
}

/// Membership comes first: the copy of an untagged member has no outer tag left to translate, and an action treats it
/// as one without. Translation and action are both looked up by the tags inside the chip; where both exist, the action
/// wins.
void make_egress_tags(Passage& frame, const Copy& copy, EgressHeader& header) {
  const Chip& chip = frame.chip;
  const int outer = header.vlan();
  const int inner = header.inner_tag.value_or(0) & vlan_mask;
  if (!is_virtual(copy.place)) {
    const Vlan* const vlan = chip.vlans.find(outer);
    if (vlan != nullptr && vlan->untagged.contains(copy.port)) header.outer_tag.reset();
  }
  const bool translates = chip.vlan_controls.translates(copy.port, VlanControlOfPort::translate_egress);
  if (!translates && frame.observer == nullptr) return;

  const bool is_translatable = !is_virtual(copy.place) && header.outer_tag;
  const Translation* const to = is_translatable ? chip.vlan_translations.find_egress(copy.port, outer) : nullptr;
  EgressActions::Key key{copy.place, outer, inner};
  const EgressAction* action = chip.egress_actions.find(key);
  if (action == nullptr && inner != 0) {
    key.inner = 0;
    action = chip.egress_actions.find(key);
  }
  if (!translates) {
    if (to != nullptr || action != nullptr) tell_translation_off(frame, VlanControlOfPort::translate_egress, copy.port);
    return;
  }
  if (to != nullptr) {
    frame.by(decider::EgressTranslation{copy.port, outer});
    header.outer_tag = with_priority(with_vlan(*header.outer_tag, to->vlan), to->priority);
  }
  if (action == nullptr) return;
  frame.by(decider::TagsAtEgress{key});
  apply(*action, frame.packet.priority, header);
}

}  // namespace chip
