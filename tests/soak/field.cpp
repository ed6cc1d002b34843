// Field groups, access rules, traps, source guard, policers of entries.
#include "soak.h"

namespace {

using soak::expect;
using soak::made;
using soak::must;
using soak::unit;

class Field : public soak::Family {
 public:
  /// Groups are for good: all that the chip has room for are made here.
  Field() {
    constexpr int32_t (*create[])(int32_t, int32_t*) = {
        sai_ifp_l2_group_create,
        sai_efp_l2_group_create,
        sai_ifp_mac_ipv4_group_create,
        sai_efp_mac_ipv4_group_create,
        sai_fp_vport_group_create,
        sai_ifp_mac_ipv6_group_create,
        sai_system_ipv4_fp_create,
        sai_system_ipv6_fp_create,
        sai_fp_mld_group_create,
        sai_fp_mld_exclude_group_create,
        sai_ipsg_init,
    };
    int32_t* const groups[] = {&in_l2_,   &out_l2_,  &in_ip4_, &out_ip4_,     &vport_, &in_ip6_,
                               &system4_, &system6_, &mld_,    &mld_exclude_, &guard_};
    for (std::size_t i = 0; i < std::size(create); ++i)
      must("the creation of a field group", create[i](unit, groups[i]));
    int32_t more = 0;
    while (made(sai_fp_mld_group_create(unit, &more)) == 0) {
    }
  }

  void work(soak::Random& random) override {
    switch (random.below(8)) {
      case 0:
      case 1:
        return install_rule(random);
      case 2:
        return trap(random);
      case 3:
        return guard(random);
      case 4:
        return police(random);
      case 5:
        if (random.one_in(500)) made(sai_efp_mac_ipv6_group_create(unit, &unused_));
        if (random.one_in(10)) must("sai_dhcp_packet_to_cpu", sai_dhcp_packet_to_cpu(unit, random.flag()));
        return;
      default:
        if (entries_.empty()) return expect(false, "sai_fp_entry_destroy", sai_fp_entry_destroy(unit, no_entry));
        return drop(random.key_of(entries_));
    }
  }

  void tear_down() override {
    while (!entries_.empty()) drop(entries_.begin()->first);
    // Entries whose ids nobody was told: three of each MLD trap, and what a failed step left.
    for (int32_t id = 1; id <= highest_; ++id) made(sai_fp_entry_destroy(unit, id));
    highest_ = 0;
    while (!policers_.empty()) drop_policer(policers_.begin()->first);
    // Policers that could not be attached.
    for (const int id : soak::ids_in("policer"))
      must("sai_vport_fp_policer_destroy", sai_vport_fp_policer_destroy(unit, id));
    must("sai_dhcp_packet_to_cpu", sai_dhcp_packet_to_cpu(unit, 1));
    must("sai_dhcp_packet_to_cpu", sai_dhcp_packet_to_cpu(unit, 0));
  }

 private:
  static constexpr int32_t no_entry = 1000000;
  static constexpr std::size_t most_entries = 400;

  /// Takes note of an entry, be it one that is not complete.
  void keep(int32_t entry, int lost = 0) {
    if (entry <= 0) return;
    entries_[entry] = true;
    highest_ = std::max(highest_, entry + lost);
  }
  void drop(int32_t entry) {
    made(sai_fp_entry_policer_detach(unit, entry));
    made(sai_fp_entry_destroy(unit, entry));
    entries_.erase(entry);
  }

  void install_rule(soak::Random& random) {
    if (entries_.size() > most_entries) return drop(random.key_of(entries_));
    const bool out = random.flag() != 0;
    const bool six = !out && random.flag() != 0;
    sai_acl_rule_t rule{};
    rule.action = static_cast<int8_t>(random.flag());
    rule.ip_type = six ? SAI_ACL_IPV6 : SAI_ACL_IPV4;
    std::ranges::copy(soak::mac_of(random.below(64)).bytes, rule.src_mac);
    if (random.flag() != 0) std::ranges::fill(rule.src_mac_mask, uint8_t{0xFF});
    rule.vlan_id = static_cast<uint16_t>(random.below(4096));
    rule.vlan_mask = 0xFFF;
    rule.vlan_pri = static_cast<uint8_t>(random.below(8));
    rule.vlan_pri_mask = static_cast<uint8_t>(random.below(8));
    rule.src_ip = random.below(1U << 31);
    rule.src_ip_mask = 0xFFFFFF;
    rule.src_ip6[0] = 0x20;
    rule.src_ip6_mask[0] = 0xFF;
    rule.l4_dst_port = random.below(1024);
    rule.l4_dst_port_mask = 0xFFFF;
    rule.ip_protocol = random.between(-1, 17);
    rule.ip_protocol_mask = 0xFF;
    rule.tos_mode = random.below(5);
    rule.tos_value = static_cast<int8_t>(random.below(64));

    const int32_t direction = random.one_in(64) ? 2 : out ? SAI_ACL_EGRESS : SAI_ACL_INGRESS;
    const int32_t group = out ? out_ip4_ : six ? in_ip6_ : in_ip4_;
    const int32_t port = random.port();
    int32_t entry = -1;
    switch (random.below(4)) {
      case 0:
        made(sai_acl_l2_entry_install(unit, port, direction, out ? out_l2_ : in_l2_, &rule, &entry));
        break;
      case 1:
        made(sai_acl_std_l3_entry_install(unit, port, direction, group, &rule, &entry));
        break;
      case 2:
        made(sai_acl_ext_l3_entry_install(unit, port, direction, group, &rule, &entry));
        break;
      default:
        made(sai_acl_l2_l3_entry_install(unit, port, direction, group, &rule, &entry));
    }
    keep(entry);
  }

  void trap(soak::Random& random) {
    if (entries_.size() > most_entries) return drop(random.key_of(entries_));
    const soak::Mac mac = soak::mac_of(random.below(64));
    const uint8_t address[16] = {0xFF, 0x02};
    const int port = random.port();
    const int vlan = random.between(1, 4095);
    int32_t entry = -1;
    int lost = 0;
    switch (random.below(12)) {
      case 0:
        made(sai_fp_ospf_ttl1_set(unit, port, system4_, &entry));
        break;
      case 1:
        made(sai_fp_loopd_packet_to_cpu_set(unit, port, mac.bytes, system4_, &entry));
        break;
      case 2:
        made(sai_fp_dhcp_requeset_to_cpu_set(unit, vlan, system4_, &entry));
        break;
      case 3:
        made(sai_fp_dhcp_response_to_cpu_set(unit, vlan, system4_, &entry));
        break;
      case 4:
        made(sai_fp_dhcpv6_req_to_cpu_set(unit, vlan, system6_, &entry));
        break;
      case 5:
        made(sai_fp_igmp_packet_to_cpu(unit, port, system4_, &entry));
        break;
      case 6:
        if (!random.one_in(20)) break;
        made(sai_fp_mld_packet_to_cpu(unit, port, system6_, &entry));
        lost = 3;
        break;
      case 7:
        made(sai_fp_arp_packet_vlan_qualify_set(unit, port, system4_, &entry, mac.bytes));
        break;
      case 8:
        made(sai_fp_arp_packet_cpu_qualify_set(unit, port, system4_, &entry));
        break;
      case 9:
        made(sai_fp_arp_packet_port_qualify_set(unit, port, system4_, &entry, random.port()));
        break;
      case 10:
        made(sai_fp_mld_packet_exclude_filter_set(unit, port, mld_exclude_, &entry, 0, address, address));
        break;
      default:
        if (made(sai_fp_vport_qualify_set(unit, port, vport_, &entry, static_cast<uint16_t>(vlan))) == 0)
          made(sai_fp_vport_qualify_action(unit, vport_, entry));
    }
    keep(entry, lost);
  }

  void guard(soak::Random& random) {
    if (entries_.size() > most_entries) return drop(random.key_of(entries_));
    int32_t entry = 0;
    const int vlan = random.between(0, 4095);
    if (random.flag() == 0)
      made(sai_ipsg_verify_config(guard_, vlan, 0, random.port(), &entry));
    else
      made(sai_ipsg_parameter_config(guard_, random.below(1U << 31), 0xFFFFFFFF, vlan, 0, random.port(), &entry));
    keep(entry);
    if (entry > 0 && random.flag() == 0) made(sai_ipsg_verify_config(guard_, vlan, 0, random.port(), &entry));
  }

  void police(soak::Random& random) {
    if (entries_.empty()) return;
    const int32_t entry = random.key_of(entries_);
    int32_t policer = 0;
    uint32_t values[4];
    switch (random.below(3)) {
      case 0:
        if (policers_.size() > 100) return drop_policer(random.key_of(policers_));
        if (made(sai_vport_fp_policer_set(unit, entry, &policer, random.below(100000), random.below(100000),
                                          random.below(100000), random.below(100000))) == 0)
          policers_[policer] = entry;
        break;
      case 1:
        made(sai_vport_fp_policer_get(unit, entry, &policer, &values[0], &values[1], &values[2], &values[3]));
        break;
      default:
        made(sai_fp_entry_policer_detach(unit, entry));
    }
  }
  void drop_policer(int32_t policer) {
    made(sai_fp_entry_policer_detach(unit, policers_.at(policer)));
    must("sai_vport_fp_policer_destroy", sai_vport_fp_policer_destroy(unit, policer));
    policers_.erase(policer);
  }

  int32_t in_l2_ = 0;
  int32_t out_l2_ = 0;
  int32_t in_ip4_ = 0;
  int32_t out_ip4_ = 0;
  int32_t in_ip6_ = 0;
  int32_t system4_ = 0;
  int32_t system6_ = 0;
  int32_t mld_ = 0;
  int32_t mld_exclude_ = 0;
  int32_t vport_ = 0;
  int32_t guard_ = 0;
  int32_t unused_ = 0;
  int32_t highest_ = 0;  // of all entries that there may be
  std::map<int32_t, bool> entries_;
  std::map<int32_t, int32_t> policers_;  // the entries that they were made for
};

}  // namespace

std::unique_ptr<soak::Family> soak::field_family() { return std::make_unique<Field>(); }
