// The MAC table and its limits, trunks, mirrors.
#include <bcm/l2.h>
#include <bcm/trunk.h>
#include <swsdk/chip.h>

#include "soak.h"

namespace {

using soak::expect;
using soak::made;
using soak::must;
using soak::unit;

constexpr uint16_t vlans[] = {10, 11};
constexpr int sessions = 4;
constexpr uint32_t static_too = 0x1;  // of a deletion; the interface headers have no name for it

class Layer2 : public soak::Family {
 public:
  Layer2() {
    int32_t room = 0;
    int32_t current = 0;
    must("sai_l2_info", sai_l2_info(unit, &room, &current));
    shown_.resize(static_cast<std::size_t>(room));
  }

  void prepare() override {
    for (const uint16_t vid : vlans) must("sai_vlan_create", sai_vlan_create(unit, vid));
  }

  void work(soak::Random& random) override {
    switch (random.below(8)) {
      case 0:
        return limit(random);
      case 1:
        return work_on_trunks(random);
      case 2:
        return mirror(random);
      case 3:
        return see_frames(random);
      case 4:
        return ask(random);
      default:
        return change(random);
    }
  }

  void tear_down() override {
    must("sai_l2_mac_age_time_set", sai_l2_mac_age_time_set(unit, 300));
    must("sai_l2_dst_hit_enable_set", sai_l2_dst_hit_enable_set(unit, 0));
    for (const int flags : {BCM_L2_LEARN_LIMIT_SYSTEM, BCM_L2_LEARN_LIMIT_VLAN, BCM_L2_LEARN_LIMIT_PORT})
      set_limit(static_cast<uint32_t>(flags), unlimited);
    must("sai_l2_mac_learn_limit_disable", sai_l2_mac_learn_limit_disable(unit));
    while (!trunks_.empty()) drop_trunk(trunks_.begin()->first);
    for (const auto& [key, mode] : sources_)
      must("sai_mirror_source_port_unset", sai_mirror_source_port_unset(unit, key.first, key.second, mode));
    sources_.clear();
    for (const auto& [session, port] : destinations_)
      must("sai_mirror_dest_port_unset", sai_mirror_dest_port_unset(unit, session, port));
    destinations_.clear();
    must("sai_mirror_init", sai_mirror_init(unit));
    for (const uint16_t vid : vlans) {
      sai_l2_mac_entry_t entry{};
      entry.vlan = vid;
      entry.flags = static_too;
      must("sai_l2_mac_entry_del", sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_VLAN));
    }
    swsdk_events_drain();
    must("sai_l2_mac_init", sai_l2_mac_init(unit));
  }

 private:
  static constexpr int32_t unlimited = -1;
  static constexpr int32_t limited_port = 3;
  static constexpr uint32_t stations = 2000;

  static sai_l2_mac_entry_t entry_of(soak::Random& random) {
    sai_l2_mac_entry_t entry;
    sai_l2_init(&entry);
    std::ranges::copy(soak::mac_of(random.below(stations)).bytes, entry.mac);
    entry.vlan = vlans[random.below(2)];
    entry.port = random.port();
    entry.flags = random.below(16);
    return entry;
  }

  static void change(soak::Random& random) {
    const sai_l2_mac_entry_t entry = entry_of(random);
    switch (random.below(64)) {
      case 0:
        made(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_MAC));
        break;
      case 1:
        if (random.one_in(20)) made(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_VLAN));
        break;
      case 2:
        if (random.one_in(10)) made(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_PORT));
        break;
      case 3:
        if (random.one_in(20)) made(sai_l2_mac_entry_del(unit, &entry, 0));
        break;
      default:
        if (random.flag() == 0)
          made(sai_l2_mac_entry_add(unit, &entry));
        else
          made(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_ENTRY));
    }
  }

  void ask(soak::Random& random) {
    sai_l2_mac_entry_t entry = entry_of(random);
    int32_t value = 0;
    int32_t current = 0;
    switch (random.below(8)) {
      case 0:
        made(sai_l2_mac_entry_get(unit, &entry));
        break;
      case 1:
        made(sai_l2_addr_port_id_get(unit, &entry));
        break;
      case 2:
        made(sai_l2_addr_logic_port_get(unit, &entry));
        break;
      case 3:
        must("sai_l2_mac_age_time_get", sai_l2_mac_age_time_get(unit, &value));
        break;
      case 4:
        made(sai_l2_mac_age_time_set(unit, random.between(-1, 100)));
        break;
      case 5:
        made(sai_l2_dst_hit_enable_set(unit, random.flag()));
        break;
      case 6:
        must("sai_l2_dst_hit_enable_get", sai_l2_dst_hit_enable_get(unit, &value));
        break;
      default:
        must("sai_l2_info", sai_l2_info(unit, &value, &current));
        if (random.one_in(500)) must("sai_l2_addr_show", sai_l2_addr_show(unit, shown_.data()));
    }
  }

  static void see_frames(soak::Random& random) {
    const soak::Mac mac = soak::mac_of(random.below(stations));
    const int vid = vlans[random.below(2)];
    if (random.one_in(3)) swsdk_l2_lookup(unit, vid, mac.bytes);
    swsdk_l2_learn(unit, vid, mac.bytes, random.between(1, soak::ports), 0);
    if (!random.one_in(200)) return;
    swsdk_clock_step(unit, random.between(1, 50));
    swsdk_events_drain();
  }

  static void set_limit(uint32_t flags, int32_t number) {
    sai_l2_learn_limit_t limit;
    must("sai_l2_mac_learn_limit_init", sai_l2_mac_learn_limit_init(&limit));
    limit.flags = flags;
    limit.vlan = vlans[0];
    limit.port = limited_port;
    limit.limit = number;
    must("sai_l2_mac_learn_limit_set", sai_l2_mac_learn_limit_set(unit, &limit));
  }

  static void limit(soak::Random& random) {
    const uint32_t flags = 1U << random.below(3);
    sai_l2_learn_limit_t limit{};
    limit.flags = flags;
    limit.vlan = vlans[0];
    limit.port = limited_port;
    switch (random.below(4)) {
      case 0:
        set_limit(flags, random.between(0, 3000));
        break;
      case 1:
        made(sai_l2_mac_learn_limit_get(unit, &limit));
        break;
      case 2:
        must("sai_l2_mac_learn_limit_enable", sai_l2_mac_learn_limit_enable(unit));
        break;
      default:
        must("sai_l2_mac_learn_limit_disable", sai_l2_mac_learn_limit_disable(unit));
    }
  }

  void work_on_trunks(soak::Random& random) {
    constexpr int32_t criteria[] = {0, 1, 9, 10, 18, 19};
    const int32_t criterion = criteria[random.below(6)];
    int32_t tid = random.between(0, 127);
    const bool there = trunks_.contains(tid);
    switch (random.below(6)) {
      case 0:
        if (random.flag() == 0) {
          expect(!there, "sai_trunk_create", sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &tid));
        } else if (trunks_.size() < 100) {
          must("sai_trunk_create", sai_trunk_create(unit, 0, &tid));
        } else
          break;
        trunks_[tid] = true;
        break;
      case 1:
        if (there) return drop_trunk(tid);
        expect(false, "sai_trunk_destroy", sai_trunk_destroy(unit, tid));
        break;
      case 2:
        // A port is in one trunk at most, so that many of these are refused.
        made(sai_trunk_set(unit, tid, criterion, 1U << random.below(soak::ports), 1));
        break;
      case 3:
        expect(there, "sai_trunk_psc_set", sai_trunk_psc_set(unit, tid, criterion));
        break;
      case 4:
        made(sai_l2_addr_delete_by_trunk(unit, tid));
        break;
      default: {
        sai_l2_mac_entry_t entry{};
        entry.trunk = tid;
        made(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_TRUNK));
        if (!random.one_in(200)) break;
        must("sai_trunk_detach", sai_trunk_detach(unit));
        must("sai_trunk_init", sai_trunk_init(unit));
        trunks_.clear();
      }
    }
  }
  void drop_trunk(int32_t tid) {
    must("sai_trunk_destroy", sai_trunk_destroy(unit, tid));
    trunks_.erase(tid);
  }

  void mirror(soak::Random& random) {
    const int session = random.between(0, sessions - 1);
    const int port = random.between(1, soak::ports);
    const bool there = destinations_.contains(session);
    const auto source = std::pair(session, port);
    switch (random.below(4)) {
      case 0:
        if (there) break;
        must("sai_mirror_dest_port_set", sai_mirror_dest_port_set(unit, session, port));
        destinations_[session] = port;
        break;
      case 1:
        if (std::ranges::any_of(sources_, [&](const auto& entry) { return entry.first.first == session; })) break;
        expect(there, "sai_mirror_dest_port_unset", sai_mirror_dest_port_unset(unit, session, port));
        destinations_.erase(session);
        break;
      case 2: {
        if (sources_.contains(source)) break;
        const int32_t mode = random.between(SAI_MIRROR_INGRESS, SAI_MIRROR_INGRESS | SAI_MIRROR_EGRESS);
        if (made(sai_mirror_source_port_set(unit, session, port, mode)) == 0) sources_[source] = mode;
        break;
      }
      default:
        if (!sources_.contains(source)) break;
        must("sai_mirror_source_port_unset", sai_mirror_source_port_unset(unit, session, port, sources_.at(source)));
        sources_.erase(source);
    }
  }

  std::map<int32_t, bool> trunks_;
  std::map<int, int> destinations_;                 // ports by session
  std::map<std::pair<int, int>, int32_t> sources_;  // modes by session and port
  std::vector<sai_l2_mac_entry_t> shown_;
};

}  // namespace

std::unique_ptr<soak::Family> soak::l2_family() { return std::make_unique<Layer2>(); }
