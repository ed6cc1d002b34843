// Port attributes, rates, statistics, temperature; and the PHYs.
#include "soak.h"

namespace {

using soak::made;
using soak::must;
using soak::unit;

constexpr uint16_t ether_type = 0x8863;
constexpr int frame_type = 1;
constexpr uint16_t home_vlan = 1;
constexpr int32_t home_interface = 3;

class Ports : public soak::Family {
 public:
  void work(soak::Random& random) override {
    switch (random.below(4)) {
      case 0:
        return set_one(random, random.port());
      case 1:
        return get_one(random, random.port());
      case 2:
        return limit(random, random.port());
      default:
        return count(random, random.port());
    }
  }

  void tear_down() override {
    for (int port = 1; port <= soak::ports; ++port) {
      must("sai_port_enable_set", sai_port_enable_set(unit, port, 1));
      must("sai_port_interface_set", sai_port_interface_set(unit, port, home_interface));
      must("sai_port_duplex_set", sai_port_duplex_set(unit, port, 1));
      must("sai_port_speed_set", sai_port_speed_set(unit, port, 1000));
      must("sai_port_autoneg_set", sai_port_autoneg_set(unit, port, 0));
      must("sai_port_pause_set", sai_port_pause_set(unit, port, 0, 0));
      must("sai_port_frame_max_set", sai_port_frame_max_set(unit, port, 1518));
      must("sai_port_learn_set", sai_port_learn_set(unit, port, 0x5));
      must("sai_port_untagged_vlan_set", sai_port_untagged_vlan_set(unit, port, home_vlan));
      must("sai_port_loopback_set", sai_port_loopback_set(unit, port, 0));
      must("sai_port_isolate_reset", sai_port_isolate_reset(unit, port));
      must("sai_port_protocol_vlan_clear", sai_port_protocol_vlan_clear(unit, port));
      must("sai_port_mac_vlan_set", sai_port_mac_vlan_set(unit, port, 0));
      must("sai_port_subnet_vlan_set", sai_port_subnet_vlan_set(unit, port, 0));
      must("sai_vlan_precedence_set", sai_vlan_precedence_set(unit, port, SAI_VLAN_PRECEDENCE_MAC));
      must("sai_port_ifg_set", sai_port_ifg_set(unit, port, 96));
      must("sai_rate_mcast_set", sai_rate_mcast_set(unit, port, 0, 0));
      must("sai_rate_dlfbc_set", sai_rate_dlfbc_set(unit, port, 0, 0));
      must("sai_rate_bcast_set", sai_rate_bcast_set(unit, port, 0, 0));
      must("sai_port_rate_egress_set", sai_port_rate_egress_set(unit, port, 0, 0));
      must("sai_port_rate_ingress_set", sai_port_rate_ingress_set(unit, port, 0, 0));
    }
    must("sai_cpu_rate_egress_set", sai_cpu_rate_egress_set(unit, 0, 0));
    must("sai_stat_clean", sai_stat_clean(unit));
  }

 private:
  static void set_one(soak::Random& random, int port) {
    switch (random.below(17)) {
      case 0:
        made(sai_port_enable_set(unit, port, random.flag()));
        break;
      case 1:
        made(sai_port_autoneg_set(unit, port, random.flag()));
        break;
      case 2:
        made(sai_port_duplex_set(unit, port, random.flag()));
        break;
      case 3:
        made(sai_port_speed_set(unit, port, random.flag() == 0 ? 100 : 1000));
        break;
      case 4:
        made(sai_port_pause_set(unit, port, random.flag(), random.flag()));
        break;
      case 5:
        made(sai_port_frame_max_set(unit, port, random.between(64, 10000)));
        break;
      case 6:
        made(sai_port_learn_set(unit, port, random.between(0, 8)));
        break;
      case 7:
        made(sai_port_interface_set(unit, port, random.between(0, 40)));
        break;
      case 8:
        made(sai_port_untagged_vlan_set(unit, port, static_cast<uint16_t>(random.between(1, 4))));
        break;
      case 9:
        made(sai_port_loopback_set(unit, port, random.between(0, 3)));
        break;
      case 10:
        made(sai_port_isolate_set(unit, port, random.port()));
        break;
      case 11:
        made(sai_port_isolate_reset(unit, port));
        break;
      case 12:
        if (random.flag() == 0)
          made(sai_port_protocol_vlan_add(unit, port, frame_type, ether_type, home_vlan));
        else
          made(sai_port_protocol_vlan_del(unit, port, frame_type, ether_type));
        break;
      case 13:
        made(sai_port_mac_vlan_set(unit, port, static_cast<uint8_t>(random.flag())));
        break;
      case 14:
        made(sai_port_subnet_vlan_set(unit, port, static_cast<uint8_t>(random.flag())));
        break;
      case 15:
        made(sai_vlan_precedence_set(unit, port, random.between(0, 2)));
        break;
      default:
        made(sai_port_ifg_set(unit, port, random.between(64, 128)));
    }
  }

  static void get_one(soak::Random& random, int port) {
    int32_t value = 0;
    uint8_t byte = 0;
    switch (random.below(10)) {
      case 0:
        made(sai_port_enable_get(unit, port, &value));
        break;
      case 1:
        made(sai_port_autoneg_get(unit, port, &value));
        break;
      case 2:
        made(sai_port_duplex_get(unit, port, &value));
        break;
      case 3:
        made(sai_port_speed_get(unit, port, &value));
        break;
      case 4:
        made(sai_port_learn_get(unit, port, &value));
        break;
      case 5:
        made(sai_port_interface_get(unit, port, &value));
        break;
      case 6:
        made(sai_port_link_status_get(unit, port, &value));
        break;
      case 7:
        made(sai_port_mac_vlan_get(unit, port, &byte));
        break;
      case 8:
        made(sai_port_subnet_vlan_get(unit, port, &byte));
        break;
      default:
        made(sai_port_ifg_get(unit, port, &value));
    }
  }

  static void limit(soak::Random& random, int port) {
    const uint32_t rate = random.below(100000);
    const uint32_t burst = random.below(1000);
    uint32_t read_rate = 0;
    uint32_t read_burst = 0;
    switch (random.below(12)) {
      case 0:
        made(sai_rate_mcast_set(unit, port, random.flag(), rate));
        break;
      case 1:
        made(sai_rate_dlfbc_set(unit, port, random.flag(), rate));
        break;
      case 2:
        made(sai_rate_bcast_set(unit, port, random.flag(), rate));
        break;
      case 3:
        made(sai_port_storm_ctrl_set(unit, port, {.rate = rate, .type = random.below(6)}));
        break;
      case 4:
        must("sai_cpu_rate_egress_set", sai_cpu_rate_egress_set(unit, rate, burst));
        break;
      case 5:
        made(sai_cpu_rate_egress_get(unit, &read_rate, &read_burst));
        break;
      case 6:
        made(sai_port_rate_egress_set(unit, port, rate, burst));
        break;
      case 7:
        made(sai_port_rate_egress_get(unit, port, &read_rate, &read_burst));
        break;
      case 8:
        made(sai_port_rate_egress_pps_set(unit, port, rate, burst));
        break;
      case 9:
        made(sai_port_rate_egress_pps_get(unit, port, &read_rate, &read_burst));
        break;
      case 10:
        made(sai_port_rate_ingress_set(unit, port, rate, burst));
        break;
      default:
        made(sai_port_rate_ingress_get(unit, port, &read_rate, &read_burst));
    }
  }

  static void count(soak::Random& random, int port) {
    uint64_t values[18];
    char average[16];
    char highest[16];
    switch (random.below(4)) {
      case 0:
        must("sai_port_mib_read", sai_port_mib_read(unit, port, values));
        break;
      case 1:
        made(sai_port_stat_clean(unit, port));
        break;
      case 2:
        must("sai_switch_temperature_monitor_get",
             sai_switch_temperature_monitor_get(unit, average, sizeof average, highest, sizeof highest));
        break;
      default:
        if (random.one_in(100)) made(sai_port_stat_show(unit, port));
        if (random.one_in(10)) must("sai_stat_clean", sai_stat_clean(unit));
    }
  }
};

/// Registers and controls of PHYs: a few of each, which once written stay in their tables.
class Phys : public soak::Family {
 public:
  void work(soak::Random& random) override {
    const int port = random.port();
    const auto address = static_cast<uint16_t>(random.between(1, soak::ports));
    const auto reg = static_cast<uint8_t>(random.below(registers));
    const uint32_t value = random.below(64);
    uint16_t word = 0;
    uint32_t values[6];
    switch (random.below(16)) {
      case 0:
        must("sai_phy_miim_read", sai_phy_miim_read(unit, address, reg, &word));
        break;
      case 1:
        must("sai_phy_miim_write", sai_phy_miim_write(unit, address, reg, static_cast<uint16_t>(value)));
        break;
      case 2:
        must("sai_phy_miimc45_read", sai_phy_miimc45_read(unit, address, device, reg, &word));
        break;
      case 3:
        must("sai_phy_miimc45_write", sai_phy_miimc45_write(unit, address, device, reg, static_cast<uint16_t>(value)));
        break;
      case 4:
        made(sai_port_phy_read(unit, port, reg, values));
        break;
      case 5:
        made(sai_port_phy_write(unit, port, reg, value));
        break;
      case 6:
        made(sai_port_phy_tx_fir_set(unit, port, value, value, value, value, value));
        break;
      case 7:
        made(sai_port_phy_tx_fir_get(unit, port, values));
        break;
      case 8:
        made(sai_port_phy_fec_set(unit, port, random.between(0, 4), value));
        break;
      case 9:
        made(sai_port_phy_fec_get(unit, port, random.between(0, 4), values));
        break;
      case 10:
        made(sai_port_phy_dfe_set(unit, port, random.between(0, 4), value));
        break;
      case 11:
        made(sai_port_phy_dfe_get(unit, port, random.between(0, 4), values));
        break;
      case 12:
        made(sai_port_phy_rx_pf_set(unit, port, random.between(0, 4), value));
        break;
      case 13:
        made(sai_port_phy_rx_pf_get(unit, port, values));
        break;
      case 14:
        made(sai_port_phy_rxtap_set(unit, port, random.between(0, 7), value));
        break;
      default:
        made(sai_port_phy_rxtap_get(unit, port, values));
    }
  }

  void tear_down() override {
    for (int port = 1; port <= soak::ports; ++port) {
      for (uint8_t reg = 0; reg < registers; ++reg) {
        must("sai_phy_miim_write", sai_phy_miim_write(unit, static_cast<uint16_t>(port), reg, 0));
        must("sai_phy_miimc45_write", sai_phy_miimc45_write(unit, static_cast<uint16_t>(port), device, reg, 0));
        must("sai_port_phy_write", sai_port_phy_write(unit, port, reg, 0));
      }
      must("sai_port_phy_tx_fir_set", sai_port_phy_tx_fir_set(unit, port, 0, 0, 0, 0, 0));
      for (int kind = 1; kind <= 3; ++kind) {
        must("sai_port_phy_fec_set", sai_port_phy_fec_set(unit, port, kind, 0));
        must("sai_port_phy_dfe_set", sai_port_phy_dfe_set(unit, port, kind, 0));
        must("sai_port_phy_rx_pf_set", sai_port_phy_rx_pf_set(unit, port, kind, 0));
      }
      for (int tap = 1; tap <= 6; ++tap) must("sai_port_phy_rxtap_set", sai_port_phy_rxtap_set(unit, port, tap, 0));
    }
  }

 private:
  static constexpr uint8_t registers = 4;
  static constexpr uint8_t device = 1;
};

}  // namespace

std::unique_ptr<soak::Family> soak::port_family() { return std::make_unique<Ports>(); }
std::unique_ptr<soak::Family> soak::phy_family() { return std::make_unique<Phys>(); }
