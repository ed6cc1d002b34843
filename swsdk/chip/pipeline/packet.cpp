#include "chip/pipeline/packet.h"

namespace chip {

const char* name(Drop drop) {
  switch (drop) {
    case Drop::none:
      return "none";
    case Drop::malformed:
      return "malformed";
    case Drop::port_down:
      return "port down";
    case Drop::too_long:
      return "too long";
    case Drop::rate:
      return "port rate";
    case Drop::no_vlan:
      return "no such vlan";
    case Drop::not_member:
      return "not a member of the vlan";
    case Drop::spanning_tree:
      return "spanning tree";
    case Drop::trapped:
      return "trapped to the cpu";
    case Drop::switch_control:
      return "switch control";
    case Drop::source_discard:
      return "source discard";
    case Drop::learn_limit:
      return "learn limit";
    case Drop::unknown_source:
      return "unknown source";
    case Drop::field_rule:
      return "field rule";
    case Drop::policer:
      return "policer";
    case Drop::storm:
      return "storm control";
    case Drop::discard:
      return "destination discard";
    case Drop::router:
      return "router";
    case Drop::no_destination:
      return "no destination";
    case Drop::group_source:
      return "source is a group";
  }
  return "";
}

}  // namespace chip
