// Virtual ports and their isolation.
#include <bcm/multicast.h>
#include <bcm/vlan.h>

#include "soak.h"

namespace {

using soak::made;
using soak::must;
using soak::unit;

constexpr int first_vlan = 40;
constexpr int vlan_count = 4;

class VirtualPorts : public soak::Family {
 public:
  void prepare() override {
    for (int vid = first_vlan; vid < first_vlan + vlan_count; ++vid)
      must("sai_vlan_create", sai_vlan_create(unit, static_cast<uint16_t>(vid)));
    // The first one brings the front ports into the flood groups, for good.
    sai_vport_t vport{};
    vport.match_vlan = 99;
    vport.vlan = first_vlan;
    must("sai_vport_create", sai_vport_create(unit, 1, &vport));
    vports_[vport.vport_id] = {1, vport};
    drop(vport.vport_id);
  }

  void work(soak::Random& random) override {
    uint32_t isolated = 0;
    switch (random.below(8)) {
      case 0:
        if (!random.one_in(4)) break;
        if (vports_.size() < 64)
          create(random);
        else
          drop(random.key_of(vports_));
        break;
      case 1:
        if (random.one_in(4) && !vports_.empty()) drop(random.key_of(vports_));
        break;
      case 2: {
        // A MAC address behind one of them, which its destruction forgets.
        if (vports_.empty()) break;
        sai_l2_mac_entry_t entry{};
        std::ranges::copy(soak::mac_of(0x9000 + random.below(256)).bytes, entry.mac);
        entry.vlan = first_vlan;
        entry.port = random.key_of(vports_);
        made(sai_l2_mac_entry_add(unit, &entry));
        made(sai_l2_addr_logic_port_get(unit, &entry));
        break;
      }
      case 3:
      case 4:
        made(sai_vport_split_horizon_set(unit, random.between(0, 8), random.flag()));
        break;
      default:
        made(sai_vport_split_horizon_get(unit, random.between(0, 8), &isolated));
    }
  }

  void tear_down() override {
    while (!vports_.empty()) drop(vports_.begin()->first);
    for (int group = 0; group <= 8; ++group) made(sai_vport_split_horizon_set(unit, group, 0));
  }

 private:
  struct Placed {
    int port;
    sai_vport_t vport;
  };

  static uint16_t joined_by(const sai_vport_t& vport) { return vport.outer_vlan != 0 ? vport.outer_vlan : vport.vlan; }

  void create(soak::Random& random) {
    const auto some_vlan = [&] {
      return static_cast<uint16_t>(first_vlan + static_cast<int>(random.below(vlan_count)));
    };
    sai_vport_t vport{};
    vport.priority = random.between(-1, 9);
    vport.match_vlan = static_cast<uint16_t>(random.between(200, 260));
    vport.vlan = some_vlan();
    if (random.flag() != 0) vport.match_inner_vlan = static_cast<uint16_t>(random.between(200, 260));
    if (random.one_in(4)) vport.outer_vlan = some_vlan();
    const int port = random.between(1, soak::ports);
    made(sai_vport_create(unit, port, &vport));
    if (vport.vport_id != 0)
      vports_[vport.vport_id] = {port, vport};
    else  // of one that could not be made the rewrite is there all the same
      bcm_vlan_translate_egress_action_delete(unit, 0, joined_by(vport), vport.outer_vlan != 0 ? vport.vlan : 0);
  }

  void drop(int32_t id) {
    auto [port, vport] = vports_.at(id);
    const uint16_t joined = joined_by(vport);
    leave_flood_groups(port, id, joined);
    must("sai_vport_destroy", sai_vport_destroy(unit, 0, &vport));
    // Its rewrite on the way out stays.
    bcm_vlan_translate_egress_action_delete(unit, id, joined, 0);
    vports_.erase(id);
  }

  /// Its memberships of the flood groups would stay as well.
  static void leave_flood_groups(int port, int32_t id, uint16_t joined) {
    bcm_gport_t gport = 0;
    bcm_port_gport_get(unit, port, &gport);
    bcm_vlan_control_vlan_t control;
    bcm_vlan_control_vlan_t_init(&control);
    bcm_vlan_control_vlan_get(unit, joined, &control);
    for (const bcm_multicast_t group :
         {control.unknown_unicast_group, control.unknown_multicast_group, control.broadcast_group}) {
      bcm_if_t encap = 0;
      bcm_multicast_vlan_encap_get(unit, group, gport, id, &encap);
      bcm_multicast_egress_delete(unit, group, gport, encap);
    }
  }

  std::map<int32_t, Placed> vports_;
};

}  // namespace

std::unique_ptr<soak::Family> soak::vport_family() { return std::make_unique<VirtualPorts>(); }
