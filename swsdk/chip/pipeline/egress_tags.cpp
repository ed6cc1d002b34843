#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

constexpr int cfi_shift = 12;

using Tag = std::optional<uint16_t>;

/// What an action has for one tag.
struct Offer {
  int vlan;
  int priority;
  int packet_priority;
  int cfi;
};

/// Changes some bits of a tag. Copies are of the other tag, if there is one.
void change_bits(uint16_t& tag, TagAction action, uint16_t mask, int offered, const Tag& other) {
  switch (action) {
    case TagAction::none:
      return;
    case TagAction::add:
    case TagAction::replace:
      break;
    case TagAction::remove:
      offered = 0;
      break;
    case TagAction::copy:
      offered = other.value_or(tag);
      break;
  }
  tag = static_cast<uint16_t>((tag & ~mask) | (offered & mask));
}

/// What becomes of a tag; its VLAN decides whether there is one. A new one has the priority of the frame.
Tag changed(const TagChange& change, Tag tag, const Tag& other, const Offer& offer, int frame_priority) {
  if (change.vlan == TagAction::remove) return std::nullopt;
  const bool adds = change.vlan == TagAction::add || (change.vlan == TagAction::copy && other);
  if (!tag && !adds) return std::nullopt;
  uint16_t bits = tag.value_or(with_priority(0, frame_priority));
  change_bits(bits, change.vlan, vlan_mask, offer.vlan, other);
  // The one of the frame and the one on the wire are the same for what leaves; where both change, the latter holds.
  change_bits(bits, change.priority, priority_mask, offer.priority << priority_shift, other);
  change_bits(bits, change.packet_priority, priority_mask, offer.packet_priority << priority_shift, other);
  change_bits(bits, change.cfi, 1 << cfi_shift, offer.cfi << cfi_shift, other);
  return bits;
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

/// The membership comes first: an untagged member has no outer tag left to translate, and what an action does to the
/// frame is what it does to one without. Translation and action both go by the tags that the copy has inside; where
/// both are there, the action, which knows more of the tags, has the last word.
void make_egress_tags(Passage& frame, const Copy& copy, EgressHeader& header) {
  const Chip& chip = frame.chip;
  const int outer = header.vlan();
  const int inner = header.inner_tag.value_or(0) & vlan_mask;
  const bool is_virtual = copy.virtual_port != 0;
  if (!is_virtual) {
    const Vlan* const vlan = chip.vlans.find(outer);
    if (vlan != nullptr && vlan->untagged.contains(copy.port)) header.outer_tag.reset();
  }
  if (!chip.vlan_controls.translates(copy.port, VlanControlOfPort::translate_egress)) return;

  Translation to;
  if (!is_virtual && header.outer_tag && chip.vlan_translations.find_egress(copy.port, outer, to) == Status::ok)
    header.outer_tag = with_priority(with_vlan(*header.outer_tag, to.vlan), to.priority);

  const int port_class = is_virtual ? copy.virtual_port : copy.port;
  const EgressAction* action = chip.egress_actions.find({port_class, outer, inner});
  if (action == nullptr && inner != 0) action = chip.egress_actions.find({port_class, outer, 0});
  if (action != nullptr) apply(*action, frame.packet.priority, header);
}

}  // namespace chip
