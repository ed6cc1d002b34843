// Interfaces, hosts, subnet routes; multicast of both IP versions.
#include <bcm/l3.h>
#include <swsdk/chip.h>

#include <set>

#include "soak.h"

namespace {

using soak::expect;
using soak::made;
using soak::must;
using soak::unit;

constexpr int first_vlan = 20;
constexpr int vlan_count = 4;
const soak::Mac router = soak::mac_of(0xFF00);

int vlan(soak::Random& random) { return first_vlan + static_cast<int>(random.below(vlan_count)); }

class Routes : public soak::Family {
 public:
  void prepare() override {
    must("sai_l3_enable_set", sai_l3_enable_set(unit, 1));
    for (int vid = first_vlan; vid < first_vlan + vlan_count; ++vid) {
      must("sai_vlan_create", sai_vlan_create(unit, static_cast<uint16_t>(vid)));
      must("sai_l3_intf_create", sai_l3_intf_create(unit, router.bytes, vid));
      for (uint32_t station = 0; station < stations; ++station) learn(station, vid);
    }
  }

  void work(soak::Random& random) override {
    const int vid = vlan(random);
    const uint32_t station = random.below(stations);
    const soak::Mac mac = mac_of_station(station);
    const bool double_tagged = random.one_in(16);
    switch (random.below(10)) {
      case 0:
        learn(station, vid);
        if (random.one_in(50)) must("sai_l3_intf_create", sai_l3_intf_create(unit, router.bytes, vid));
        if (random.one_in(50)) made(sai_l3_intf_delete(unit, vid));
        break;
      case 1:
      case 2: {
        const uint32_t host = 0x0A000000 + random.below(3000);
        if (made(sai_l3_host_route_create(unit, host, router.bytes, mac.bytes, port_of(station), vid, double_tagged)) ==
            0)
          hosts_[host] = double_tagged;
        break;
      }
      case 3: {
        const Subnet subnet{0xC0000000 + (random.below(1000) << 12), 0xFFFFF000};
        const uint32_t next_hop = 0x0A000000 + random.below(3000);
        if (made(sai_l3_subnet_route_create(unit, subnet.first, subnet.second, next_hop, router.bytes, mac.bytes,
                                            port_of(station), vid, double_tagged)) == 0)
          subnets_[subnet] = double_tagged;
        break;
      }
      case 4:
      case 5:
        if (hosts_.empty()) return expect(false, "sai_l3_host_route_delete", sai_l3_host_route_delete(unit, 1, 0));
        return drop_host(random.key_of(hosts_));
      case 6:
        if (subnets_.empty()) break;
        return drop_subnet(random.key_of(subnets_));
      case 7: {
        const uint32_t host = 0x0A000000 + random.below(3000);
        swsdk_l3_host_hit(unit, host, random.below(16));
        expect(hosts_.contains(host), "sai_l3_host_route_hit_get", sai_l3_host_route_hit_get(host));
        break;
      }
      case 8: {
        const uint32_t subnet = 0xC0000000 + (random.below(1000) << 12);
        swsdk_l3_route_hit(unit, subnet, 0xFFFFF000, random.below(16));
        made(sai_l3_subnet_route_hit_get(subnet, 0xFFFFF000));
        break;
      }
      default:
        if (random.one_in(100)) must("sai_l3_enable_set", sai_l3_enable_set(unit, random.flag()));
    }
  }

  void tear_down() override {
    while (!hosts_.empty()) drop_host(hosts_.begin()->first);
    while (!subnets_.empty()) drop_subnet(subnets_.begin()->first);
    // A host in place of another leaves what that one pointed at; nothing in the library ends these.
    for (const int id : soak::ids_in("egress")) bcm_l3_egress_destroy(unit, id);
    must("sai_l3_intf_delete_all", sai_l3_intf_delete_all(unit));
    for (int vid = first_vlan; vid < first_vlan + vlan_count; ++vid) {
      sai_l2_mac_entry_t entry{};
      entry.vlan = static_cast<uint32_t>(vid);
      must("sai_l2_mac_entry_del", sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_VLAN));
    }
    must("sai_l3_enable_set", sai_l3_enable_set(unit, 0));
  }

 private:
  using Subnet = std::pair<uint32_t, uint32_t>;  // address and mask

  static constexpr uint32_t stations = 64;

  static soak::Mac mac_of_station(uint32_t station) { return soak::mac_of(0x8000 + station); }
  static int port_of(uint32_t station) { return 1 + static_cast<int>(station % soak::ports); }

  static void learn(uint32_t station, int vid) {
    sai_l2_mac_entry_t entry{};
    std::ranges::copy(mac_of_station(station).bytes, entry.mac);
    entry.vlan = static_cast<uint32_t>(vid);
    entry.port = port_of(station);
    made(sai_l2_mac_entry_add(unit, &entry));
  }

  void drop_host(uint32_t host) {
    must("sai_l3_host_route_delete", sai_l3_host_route_delete(unit, host, hosts_.at(host)));
    hosts_.erase(host);
  }
  void drop_subnet(Subnet subnet) {
    must("sai_l3_subnet_route_delete",
         sai_l3_subnet_route_delete(unit, subnet.first, subnet.second, subnets_.at(subnet)));
    subnets_.erase(subnet);
  }

  // Whether they are double-tagged.
  std::map<uint32_t, bool> hosts_;
  std::map<Subnet, bool> subnets_;
};

class Multicast : public soak::Family {
 public:
  void prepare() override {
    for (int vid = first_vlan; vid < first_vlan + vlan_count; ++vid)
      must("sai_vlan_create", sai_vlan_create(unit, static_cast<uint16_t>(vid)));
  }

  void work(soak::Random& random) override {
    const Group group{vlan(random), random.below(128)};
    const int port = random.port();
    const int own_vlan = random.between(300, 320);
    switch (random.below(8)) {
      case 0:
      case 1:
        made(sai_multicast_egress_add(unit, group.first, ip4(group), router.bytes, port, own_vlan));
        groups4_.insert(group);
        break;
      case 2:
        made(sai_ipmc_add(unit, group.first, own_vlan, port, ip4(group), router.bytes));
        groups4_.insert(group);
        break;
      case 3:
        made(sai_multicast_egress_del(unit, group.first, ip4(group), router.bytes, port, own_vlan));
        break;
      case 4:
        made(sai_multicast_destroy(unit, group.first, ip4(group)));
        groups4_.erase(group);
        break;
      case 5: {
        const Ip6 address(group);
        made(sai_ipv6_ipmc_add(unit, static_cast<uint16_t>(group.first), static_cast<uint16_t>(own_vlan),
                               static_cast<uint8_t>(port), address.group, address.source, router.bytes));
        groups6_.insert(group);
        break;
      }
      case 6: {
        const Ip6 address(group);
        made(sai_ipv6_multicast_egress_del(unit, static_cast<uint16_t>(group.first), address.group, address.source,
                                           router.bytes, static_cast<uint8_t>(port), own_vlan));
        break;
      }
      default:
        drop6(group);
    }
  }

  void tear_down() override {
    for (const Group& group : groups4_) made(sai_multicast_destroy(unit, group.first, ip4(group)));
    groups4_.clear();
    while (!groups6_.empty()) drop6(*groups6_.begin());
    must("sai_l3_intf_delete_all", sai_l3_intf_delete_all(unit));
  }

 private:
  using Group = std::pair<int, uint32_t>;  // VLAN and number

  static uint32_t ip4(const Group& group) { return 0xE1000000 + group.second; }

  struct Ip6 {
    explicit Ip6(const Group& of) : group{0xFF, 0x05}, source{0x20, 0x01} {
      group[15] = static_cast<uint8_t>(of.second);
      source[15] = 1;
    }
    uint8_t group[16];
    uint8_t source[16];
  };

  void drop6(Group group) {
    const Ip6 address(group);
    made(sai_ipv6_multicast_destroy(unit, static_cast<uint16_t>(group.first), address.group, address.source));
    groups6_.erase(group);
  }

  std::set<Group> groups4_;
  std::set<Group> groups6_;
};

}  // namespace

std::unique_ptr<soak::Family> soak::route_family() { return std::make_unique<Routes>(); }
std::unique_ptr<soak::Family> soak::multicast_family() { return std::make_unique<Multicast>(); }
