#include <sai.h>

#include "core/gports.h"
#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"
#include "vport/flood_groups.h"

using sai::failed;
using sai::log_if_failed;
using sai::result;

namespace {

constexpr int max_priority = 7;

/// The VLANs that a virtual port is made from.
struct Vlans {
  bcm_vlan_t none;
  bcm_vlan_t outer;
  bcm_vlan_t vlan;
  bcm_vlan_t own;  // the VLAN of frames that are given none: that of their inner tag, or the port's untagged VLAN
  bcm_vlan_t vlan_or_own;
};

using V = Vlans;
using A = bcm_vlan_action_set_t;
using Pick = bcm_vlan_t Vlans::*;

/// How the tags change at egress.
struct Rewrite {
  struct {
    bcm_vlan_action_t A::*field;
    bcm_vlan_action_t action;
  } changes[3];
};

constexpr Rewrite replace_both{{{&A::dt_outer, bcmVlanActionReplace},
                                {&A::dt_inner, bcmVlanActionReplace},
                                {&A::dt_inner_pkt_prio, bcmVlanActionCopy}}};
constexpr Rewrite add_inner{{{&A::ot_outer, bcmVlanActionReplace},
                             {&A::ot_inner, bcmVlanActionAdd},
                             {&A::ot_inner_pkt_prio, bcmVlanActionCopy}}};
constexpr Rewrite delete_inner{{{&A::dt_outer, bcmVlanActionReplace}, {&A::dt_inner, bcmVlanActionDelete}}};
constexpr Rewrite replace_outer{{{&A::ot_outer, bcmVlanActionReplace}}};

struct Case {
  uint32 flags;
  Pick egress_vlan;
  Pick egress_inner_vlan;
  Pick joined;  // also the rewrite's outer key
  Pick inner_key;
  const Rewrite& rewrite;
};

enum Match { stacked, single };
enum Given { outer_given, vlan_given, nothing_given };

constexpr Case cases[2][3] = {
    // stacked
    {{BCM_VLAN_PORT_INNER_VLAN_PRESERVE, &V::outer, &V::vlan_or_own, &V::outer, &V::vlan, replace_both},
     {BCM_VLAN_PORT_VLAN_TRANSLATION, &V::vlan, &V::none, &V::vlan, &V::none, add_inner},
     {BCM_VLAN_PORT_TRANSPARENT, &V::none, &V::none, &V::own, &V::none, add_inner}},
    // single
    {{BCM_VLAN_PORT_INNER_VLAN_ADD, &V::outer, &V::vlan_or_own, &V::outer, &V::vlan, delete_inner},
     {BCM_VLAN_PORT_OUTER_VLAN_PRESERVE, &V::vlan, &V::none, &V::vlan, &V::none, replace_outer},
     {BCM_VLAN_PORT_OUTER_VLAN_PRESERVE, &V::own, &V::none, &V::own, &V::none, replace_outer}},
};

const Case& case_of(const sai_vport_t& vport) {
  const Given given = vport.outer_vlan != 0 ? outer_given : vport.vlan != 0 ? vlan_given : nothing_given;
  return cases[vport.match_inner_vlan != 0 ? stacked : single][given];
}

bcm_vlan_port_t matching(const sai_vport_t& vport, const Vlans& vlans, bcm_gport_t port) {
  const Case& row = case_of(vport);
  bcm_vlan_port_t object;
  bcm_vlan_port_t_init(&object);
  object.criteria = vport.match_inner_vlan != 0 ? BCM_VLAN_PORT_MATCH_PORT_VLAN_STACKED : BCM_VLAN_PORT_MATCH_PORT_VLAN;
  object.flags = row.flags;
  if (row.flags == BCM_VLAN_PORT_VLAN_TRANSLATION && vport.vlan == vport.match_inner_vlan)
    object.flags = BCM_VLAN_PORT_TRANSPARENT;  // nothing to translate
  object.match_vlan = vport.match_vlan;
  object.match_inner_vlan = vport.match_inner_vlan;
  object.egress_vlan = vlans.*row.egress_vlan;
  object.egress_inner_vlan = vlans.*row.egress_inner_vlan;
  object.port = port;
  return object;
}

/// Restores at egress the tags that are matched at ingress.
bcm_vlan_action_set_t to_tags_of(const sai_vport_t& vport) {
  bcm_vlan_action_set_t action;
  bcm_vlan_action_set_t_init(&action);
  action.new_outer_vlan = vport.match_vlan;
  action.new_inner_vlan = vport.match_inner_vlan;
  for (const auto& [field, change] : case_of(vport).rewrite.changes)
    if (field != nullptr) action.*field = change;
  return action;
}

/// Adds a port to the three flood groups, with the encapsulation that `encap_get`, called `name` in messages, returns
/// for each; 0 where it returns none.
template <class EncapGet>
void join_flood_groups(int unit, bcm_gport_t port, const char* name, EncapGet encap_get) {
  constexpr struct {
    const char* name;
    const bcm_multicast_t* id;
  } groups[] = {
      {"sai_unicast_group", &sai_unicast_group},
      {"sai_multicast_group", &sai_multicast_group},
      {"sai_broadcast_group", &sai_broadcast_group},
  };
  for (const auto& group : groups) {
    bcm_if_t encap = 0;
    log_if_failed(encap_get(*group.id, &encap), "Failed to %s %s 0x%x: %s", name, group.name, *group.id);
    log_if_failed(bcm_multicast_egress_add(unit, *group.id, port, encap),
                  "Failed to bcm_multicast_egress_add %s 0x%x: %s", group.name, *group.id);
  }
}

/// Makes a VLAN flood through the three groups. A VLAN that has three groups already is not changed.
void sai_vlan_control_vlan_set(int unit, bcm_vlan_t vlan) {
  bcm_vlan_control_vlan_t control;
  bcm_vlan_control_vlan_t_init(&control);
  // Meant: a VLAN that cannot be read is written anyway.
  log_if_failed(bcm_vlan_control_vlan_get(unit, vlan, &control), "%s %d bcm vlan control vlan get failed %s.\n",
                __func__, __LINE__);
  if (control.unknown_unicast_group != 0 && control.unknown_multicast_group != 0 && control.broadcast_group != 0)
    return;
  control.unknown_unicast_group = sai_unicast_group;
  control.unknown_multicast_group = sai_multicast_group;
  control.broadcast_group = sai_broadcast_group;
  log_if_failed(bcm_vlan_control_vlan_set(unit, vlan, control), "%s %d bcm vlan control vlan set failed %s.\n",
                __func__, __LINE__);
}

}  // namespace

int32_t sai_vport_create(int32_t unit, int32_t port, sai_vport_t* vport) {
  if (vport == nullptr) return result(BCM_E_PARAM, "%s failed: %s", __func__);
  Vlans vlans{
      .none = 0, .outer = vport->outer_vlan, .vlan = vport->vlan, .own = vport->match_inner_vlan, .vlan_or_own = 0};
  if (vport->match_inner_vlan == 0) {
    // Meant: read from unit 0, whatever the unit; and the only failure that ends the function.
    const int rv = bcm_port_untagged_vlan_get(0, port, &vlans.own);
    if (failed(rv, "%s %d bcm_port_untagged_vlan_get failed: %s", __func__, __LINE__)) return sdk_to_sai(rv);
  }
  vlans.vlan_or_own = vlans.vlan != 0 ? vlans.vlan : vlans.own;

  bcm_gport_t gport = 0;
  log_if_failed(bcm_port_gport_get(unit, port, &gport), "%s failed: %s", __func__);
  bcm_vlan_port_t object = matching(*vport, vlans, sai::gport::local_port(gport));
  sai::trace("vlan_port.port = 0x%X match %d inner %d egress %d\n", object.port, object.match_vlan,
             object.match_inner_vlan, object.egress_vlan);
  object.flags |= BCM_VLAN_PORT_NETWORK;
  // Meant: a negative priority is passed on.
  object.ingress_network_group_id = vport->priority > max_priority ? max_priority : vport->priority;
  object.egress_network_group_id = object.ingress_network_group_id;
  int rv = bcm_vlan_port_create(unit, &object);
  log_if_failed(rv, "%s %d bcm_vlan_port_create vlan_port_id 0x%x failed: %s", __func__, __LINE__, object.vlan_port_id);
  vport->vport_id = object.vlan_port_id;  // Meant: after a failure too.

  const Case& row = case_of(*vport);
  const bcm_vlan_t joined = vlans.*row.joined;
  rv = bcm_vlan_gport_add(unit, joined, vport->vport_id, 0);
  if (&row == &cases[stacked][vlan_given])  // Meant: only this case logs more.
    log_if_failed(rv, "%s %d bcm_vlan_gport_add vlan %d port 0x%x failed: %s", __func__, __LINE__, joined,
                  vport->vport_id);
  else
    log_if_failed(rv, "%s %d bcm_vlan_gport_add failed: %s", __func__, __LINE__);
  if (vport->outer_vlan != 0)
    log_if_failed(bcm_vlan_translate_egress_action_delete(unit, vport->vport_id, joined, 0),
                  "%s %d bcm_vlan_translate_egress_action_delete failed: %s", __func__, __LINE__);
  bcm_vlan_action_set_t action = to_tags_of(*vport);
  rv = bcm_vlan_translate_egress_action_add(unit, vport->vport_id, joined, vlans.*row.inner_key, &action);
  log_if_failed(rv, "%s %d bcm_vlan_translate_egress_action_add failed: %s", __func__, __LINE__);

  join_flood_groups(unit, object.port, "bcm_multicast_vlan_encap_get", [&](bcm_multicast_t group, bcm_if_t* encap) {
    return bcm_multicast_vlan_encap_get(unit, group, object.port, vport->vport_id, encap);
  });
  // Meant: at every create. A port that is a member already is logged.
  sai::for_each_port(unit, sai::Ports::front, [&](int member) {
    const bcm_gport_t physical = sai::gport::local_port(member);
    join_flood_groups(unit, physical, "bcm_multicast_l2_encap_get", [&](bcm_multicast_t group, bcm_if_t* encap) {
      constexpr bcm_vlan_t no_vlan = 0xFFFF;
      return bcm_multicast_l2_encap_get(unit, group, physical, no_vlan, encap);
    });
  });
  sai_vlan_control_vlan_set(unit, joined);
  return sdk_to_sai(rv);
}

int32_t sai_vport_destroy(int32_t unit, int32_t /*ignored*/, sai_vport_t* vport) {
  if (vport == nullptr) return result(BCM_E_PARAM, "%s failed: %s", __func__);
  const bcm_gport_t id = vport->vport_id;
  if (vport->outer_vlan != 0) {
    log_if_failed(bcm_vlan_translate_egress_action_delete(unit, id, vport->outer_vlan, vport->vlan),
                  "%s %d bcm_vlan_translate_egress_action_delete failed: %s", __func__, __LINE__);
    // Meant: the rule that create deleted is added again, without any action.
    bcm_vlan_action_set_t nothing;
    bcm_vlan_action_set_t_init(&nothing);
    log_if_failed(bcm_vlan_translate_egress_action_add(unit, id, vport->outer_vlan, 0, &nothing),
                  "%s %d bcm_vlan_translate_egress_action_add failed: %s", __func__, __LINE__);
  }
  // Meant: VLAN 0 where create used the port's untagged VLAN, which may have changed since.
  const bcm_vlan_t inner = vport->vlan != 0 ? vport->vlan : vport->match_inner_vlan;
  const bcm_vlan_t joined = vport->outer_vlan != 0 ? vport->outer_vlan : inner;
  log_if_failed(bcm_vlan_gport_delete(unit, joined, id), "%s %d bcm_vlan_gport_delete failed: %s", __func__, __LINE__);
  log_if_failed(bcm_l2_addr_delete_by_port(unit, 0, id, 0), "%s %d bcm_l2_addr_delete_by_port failed: %s", __func__,
                __LINE__);

  const int rv = bcm_vlan_port_destroy(unit, id);
  if (!failed(rv, "%s %d bcm_vlan_port_destroy failed: %s", __func__, __LINE__)) sai::trace("vport destroy success");
  return sdk_to_sai(rv);
}
