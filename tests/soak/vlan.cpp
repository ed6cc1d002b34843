// VLANs, their translation, their assignment, spanning tree.
#include "soak.h"

namespace {

using soak::expect;
using soak::made;
using soak::must;
using soak::unit;

constexpr int lowest = 100;
constexpr int highest = 163;
constexpr uint16_t system_vlan = 4095;

/// What translates or tags a VLAN of a port.
struct Rule {
  int port;
  int outside;
  auto operator<=>(const Rule&) const = default;
};

class Vlans : public soak::Family {
 public:
  void work(soak::Random& random) override {
    switch (random.below(4)) {
      case 0:
        return work_on_table(random);
      case 1:
        return work_on_translation(random);
      case 2:
        return work_on_assignment(random);
      default:
        return work_on_groups(random);
    }
  }

  void tear_down() override {
    while (!translations_.empty()) drop_translation(translations_.begin()->first);
    while (!tags_.empty()) drop_tag(tags_.begin()->first);
    while (!ranges_.empty()) drop_range(ranges_.begin()->first);
    must("sai_vlan_mac_clear", sai_vlan_mac_clear(unit));
    must("sai_vlan_subnet_clear", sai_vlan_subnet_clear(unit));
    must("sai_stg_default_set", sai_stg_default_set(unit, 1));
    must("sai_stg_clear", sai_stg_clear(unit));
    must("sai_stg_init", sai_stg_init(unit));
    groups_.clear();
    must("sai_vlan_destroy_all", sai_vlan_destroy_all(unit));
    must("sai_vlan_init", sai_vlan_init(unit));
    vlans_.clear();
    // All is all: that of the virtual ports went along.
    must("sai_vlan_create", sai_vlan_create(unit, system_vlan));
    must("sai_vlan_port_remove", sai_vlan_port_remove(unit, system_vlan, 0));
    for (int port = 1; port <= soak::ports; ++port)
      must("sai_vlan_port_add", sai_vlan_port_add(unit, system_vlan, static_cast<uint16_t>(port), 1));
  }

 private:
  static uint16_t vlan(soak::Random& random) { return static_cast<uint16_t>(random.between(lowest, highest)); }

  void work_on_table(soak::Random& random) {
    const uint16_t vid = vlan(random);
    const bool there = vlans_.contains(vid);
    const int port = random.port();
    const bool good = there && port <= soak::ports;
    switch (random.below(12)) {
      case 0:
      case 1:
      case 2:
        must("sai_vlan_create", sai_vlan_create(unit, vid));
        vlans_[vid] = true;
        break;
      case 3:
        expect(there, "sai_vlan_destroy", sai_vlan_destroy(unit, vid));
        vlans_.erase(vid);
        break;
      case 4:
      case 5:
        expect(good, "sai_vlan_port_add", sai_vlan_port_add(unit, vid, static_cast<uint16_t>(port), random.flag()));
        break;
      case 6:
        expect(good, "sai_vlan_port_remove", sai_vlan_port_remove(unit, vid, static_cast<uint16_t>(port)));
        break;
      case 7:
        expect(there, "sai_vlan_l2_learn_set", sai_vlan_l2_learn_set(unit, vid, random.flag()));
        break;
      case 8:
        expect(there, "sai_vlan_l2_lookup_set", sai_vlan_l2_lookup_set(unit, vid, random.flag()));
        break;
      case 9:
        expect(there, "sai_vlan_mcast_flood_set", sai_vlan_mcast_flood_set(unit, random.between(0, 3), vid));
        expect(there, "sai_ipv6_vlan_mcast_flood_set", sai_ipv6_vlan_mcast_flood_set(unit, random.between(0, 3), vid));
        break;
      case 10:
        made(sai_esw_vlan_mcast_flood_set(unit, random.flag(), vid));
        break;
      default:
        made(sai_ipv6_esw_vlan_mcast_flood_set(unit, vid, static_cast<uint8_t>(random.flag())));
    }
  }

  void work_on_translation(soak::Random& random) {
    const Rule rule{random.between(1, soak::ports), random.between(1000, 1040)};
    const int inside = random.between(1100, 1140);
    switch (random.below(7)) {
      case 0:
      case 1:
        if (translations_.contains(rule)) return drop_translation(rule);
        // The way out may be taken by another; then the way in stays, and goes with its deletion.
        made(sai_vlan_translate_add(unit, rule.port, rule.outside, random.between(0, 7), inside, random.between(0, 7)));
        translations_[rule] = inside;
        break;
      case 2:
      case 3:
        if (tags_.contains(rule)) return drop_tag(rule);
        made(sai_vlan_dtag_add(unit, rule.port, rule.outside, random.between(0, 7), inside, random.between(0, 7)));
        tags_[rule] = inside;
        break;
      case 4:
      case 5: {
        const Rule range{rule.port, rule.outside * 2};
        if (ranges_.contains(range)) return drop_range(range);
        made(sai_vlan_dtag_range_add(unit, range.port, range.outside, range.outside + 1, 0, inside + 100,
                                     random.between(0, 7)));
        ranges_[range] = inside + 100;
        break;
      }
      default:
        made(sai_port_vlan_translate_init(unit));
    }
  }

  // Each direction goes by itself: the other's own result does not matter here, the tables are compared afterwards.
  void drop_translation(Rule rule) {
    made(sai_vlan_translate_delete(unit, rule.port, rule.outside, translations_.at(rule)));
    translations_.erase(rule);
  }
  void drop_tag(Rule rule) {
    made(sai_vlan_dtag_delete(unit, rule.port, rule.outside, tags_.at(rule)));
    tags_.erase(rule);
  }
  void drop_range(Rule rule) {
    made(sai_vlan_dtag_range_delete(unit, rule.port, rule.outside, rule.outside + 1, ranges_.at(rule)));
    ranges_.erase(rule);
  }

  void work_on_assignment(soak::Random& random) {
    const soak::Mac mac = soak::mac_of(random.below(256));
    const uint16_t vid = vlan(random);
    const uint32_t subnet = 10 | random.below(64) << 8;
    constexpr uint32_t mask = 0xFFFF;
    bcm_ip6_t subnet6 = {0x20, 0x01, static_cast<uint8_t>(random.below(64))};
    constexpr int prefix = 48;
    switch (random.below(8)) {
      case 0:
      case 1:
        made(sai_vlan_mac_add(unit, mac.bytes, vid, random.between(0, 7)));
        break;
      case 2:
        made(sai_vlan_mac_del(unit, mac.bytes));
        break;
      case 3:
        made(sai_vlan_ip_subnet_add(unit, subnet, mask, vid, random.between(0, 7)));
        break;
      case 4:
        made(sai_vlan_ip_subnet_del(unit, subnet, mask));
        break;
      case 5:
        made(sai_vlan_ipv6_subnet_add(unit, &subnet6, prefix, vid, random.between(0, 7)));
        break;
      case 6:
        made(sai_vlan_ipv6_subnet_del(unit, &subnet6, prefix));
        break;
      default:
        if (random.one_in(50)) must("sai_vlan_mac_clear", sai_vlan_mac_clear(unit));
        if (random.one_in(50)) must("sai_vlan_subnet_clear", sai_vlan_subnet_clear(unit));
    }
  }

  void work_on_groups(soak::Random& random) {
    const int group = random.between(2, 40);
    const bool there = groups_.contains(group);
    switch (random.below(9)) {
      case 0:
      case 1:
        expect(!there, "sai_stg_create", sai_stg_create(unit, group));
        groups_[group] = true;
        break;
      case 2: {
        int32_t chosen = 0;
        must("sai_stg_default_get", sai_stg_default_get(unit, &chosen));
        if (chosen == group) break;  // the default one cannot go
        expect(there, "sai_stg_destroy", sai_stg_destroy(unit, group));
        groups_.erase(group);
        break;
      }
      case 3:
        made(sai_stg_vlan_add(unit, group, vlan(random)));
        break;
      case 4:
        made(sai_stg_vlan_del(unit, group, vlan(random)));
        break;
      case 5:
        made(sai_stg_vlan_del_all(unit, group));
        break;
      case 6:
        made(sai_port_stg_stp_set(unit, group, {.port = random.port(), .state = random.below(6)}));
        break;
      case 7: {
        sai_port_stg_t query{.stg = group, .reserved = 0, .port = random.port(), .state = 0};
        made(sai_port_stg_stp_get(unit, &query));
        break;
      }
      default: {
        int32_t count = 0;
        must("sai_stg_count_get", sai_stg_count_get(unit, &count));
        if (random.one_in(10)) expect(there, "sai_stg_default_set", sai_stg_default_set(unit, group));
      }
    }
  }

  std::map<uint16_t, bool> vlans_;
  std::map<int, bool> groups_;
  std::map<Rule, int> translations_;  // VLAN inside the switch
  std::map<Rule, int> tags_;          // VLAN of the outer tag
  std::map<Rule, int> ranges_;
};

}  // namespace

std::unique_ptr<soak::Family> soak::vlan_family() { return std::make_unique<Vlans>(); }
