#include <sai.h>

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::result;
using sai::vlan_id;

namespace {

/// Stands for the inner VLAN in the key of a range's egress action.
constexpr bcm_vlan_t any_inner = 0;

/// Leaves the frame with a single tag that carries the inner VLAN.
bcm_vlan_action_set_t to_single_tag(bcm_vlan_t inner, int priority) {
  bcm_vlan_action_set_t action;
  bcm_vlan_action_set_t_init(&action);
  action.new_outer_vlan = inner;
  action.new_inner_vlan = 0;
  action.priority = priority;
  action.dt_outer = bcmVlanActionReplace;
  action.dt_outer_prio = bcmVlanActionReplace;
  action.dt_outer_pkt_prio = bcmVlanActionReplace;
  action.dt_outer_cfi = bcmVlanActionReplace;
  action.dt_inner = bcmVlanActionDelete;
  action.ot_outer = bcmVlanActionReplace;
  return action;
}

/// Removes the outer tag.
bcm_vlan_action_set_t strip_outer_tag() {
  bcm_vlan_action_set_t action;
  bcm_vlan_action_set_t_init(&action);
  action.dt_outer = bcmVlanActionDelete;
  return action;
}

}  // namespace

int32_t sai_port_vlan_translate_init(int32_t unit) {
  // Meant: "failed" twice.
  return result(bcm_vlan_control_set(unit, bcmVlanTranslate, 1), "Failed to set unit %d vlan translate mode failed: %s",
                unit);
}

int32_t sai_vlan_translate_add(int32_t unit, int32_t port, int32_t old_vid, int32_t egress_prio, int32_t new_vid,
                               int32_t prio) {
  const bcm_vlan_t outside = vlan_id(old_vid);
  const bcm_vlan_t inside = vlan_id(new_vid);
  const int rv = bcm_vlan_translate_add(unit, port, outside, inside, prio);
  if (failed(rv, "Failed to set port [%d] translate[%d -> %d]: %s", port, outside, inside)) return sdk_to_sai(rv);
  // Meant: the same text with the pair reversed, as the rule is.
  return result(bcm_vlan_translate_egress_add(unit, port, inside, outside, egress_prio),
                "Failed to set port [%d] translate[%d -> %d]: %s", port, inside, outside);
}

int32_t sai_vlan_translate_delete(int32_t unit, int32_t port, int32_t old_vid, int32_t new_vid) {
  const bcm_vlan_t outside = vlan_id(old_vid);
  const bcm_vlan_t inside = vlan_id(new_vid);

  bcm_vlan_t found = 0;
  int prio = 0;
  int rv = bcm_vlan_translate_get(unit, port, outside, &found, &prio);
  if (failed(rv, "Failed to get port [%d] translate vlan %d: %s", port, outside)) return sdk_to_sai(rv);
  if (found == inside) {  // Meant: a rule to another VLAN stays, and the egress rule is still checked.
    rv = bcm_vlan_translate_delete(unit, port, outside);
    if (failed(rv, "Failed to delete port [%d] translate vlan %d: %s", port, outside)) return sdk_to_sai(rv);
  }

  found = 0;
  prio = 0;
  rv = bcm_vlan_translate_egress_get(unit, port, inside, &found, &prio);
  if (failed(rv, "Failed to get port [%d] translate vlan %d: %s", port, inside) || found != outside)
    return sdk_to_sai(rv);
  return result(bcm_vlan_translate_egress_delete(unit, port, inside),
                "Failed to delete port [%d] translate vlan %d: %s", port, inside);
}

int32_t sai_vlan_dtag_add(int32_t unit, int32_t port, int32_t inner_vid, int32_t egress_priority, int32_t outer_vid,
                          int32_t prio) {
  const bcm_vlan_t inner = vlan_id(inner_vid);
  const bcm_vlan_t outer = vlan_id(outer_vid);
  const int rv = bcm_vlan_dtag_add(unit, port, inner, outer, prio);  // Meant: the space before the colon below.
  if (failed(rv, "Failed to add port [%d] vlan dtag[%d:%d] : %s", port, inner, outer)) return sdk_to_sai(rv);
  bcm_vlan_action_set_t action = to_single_tag(inner, egress_priority);
  return result(bcm_vlan_translate_egress_action_add(unit, port, outer, inner, &action),
                "Failed to add port [%d] translate[%d:%d]: %s", port, outer, inner);
}

int32_t sai_vlan_dtag_delete(int32_t unit, int32_t port, int32_t inner_vid, int32_t outer_vid) {
  const bcm_vlan_t inner = vlan_id(inner_vid);
  const bcm_vlan_t outer = vlan_id(outer_vid);
  const int rv = bcm_vlan_dtag_delete(unit, port, inner);
  if (failed(rv, "Failed to delete port [%d] dtag[%d:%d]: %s", port, inner, outer)) return sdk_to_sai(rv);
  return result(bcm_vlan_translate_egress_action_delete(unit, port, outer, inner),
                "Failed to delete port [%d] translate[%d:%d]: %s", port, outer, inner);
}

int32_t sai_vlan_dtag_range_add(int32_t unit, int32_t port, int32_t inner_lo, int32_t inner_hi, int32_t /*ignored*/,
                                int32_t outer_vid, int32_t prio) {
  // Meant: the ignored argument has the position of the egress priority of sai_vlan_dtag_add().
  const bcm_vlan_t low = vlan_id(inner_lo);
  const bcm_vlan_t high = vlan_id(inner_hi);
  const bcm_vlan_t outer = vlan_id(outer_vid);
  const int rv = bcm_vlan_dtag_range_add(unit, port, low, high, outer, prio);  // Meant: "tage".
  if (failed(rv, "Failed to add port [%d] dtag tage[%d-%d:%d]: %s", port, low, high, outer)) return sdk_to_sai(rv);
  bcm_vlan_action_set_t action = strip_outer_tag();
  return result(bcm_vlan_translate_egress_action_add(unit, port, outer, any_inner, &action),
                "Failed to add port [%d] translate[%d-%d:%d]: %s", port, low, high, outer);
}

int32_t sai_vlan_dtag_range_delete(int32_t unit, int32_t port, int32_t inner_lo, int32_t inner_hi, int32_t outer_vid) {
  const bcm_vlan_t low = vlan_id(inner_lo);
  const bcm_vlan_t high = vlan_id(inner_hi);
  const bcm_vlan_t outer = vlan_id(outer_vid);
  const int rv = bcm_vlan_dtag_range_delete(unit, port, low, high);
  if (failed(rv, "Failed to delete port [%d] dtag range[%d-%d:%d]: %s", port, low, high, outer)) return sdk_to_sai(rv);
  return result(bcm_vlan_translate_egress_action_delete(unit, port, outer, any_inner),
                "Failed to delete port [%d] translate range[%d-%d:%d]: %s", port, low, high, outer);
}
