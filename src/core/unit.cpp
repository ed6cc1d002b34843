#include "core/unit.h"

#include <sai.h>

#include "core/ports.h"

namespace sai {

namespace {

bool exists(int unit) { return 0 <= unit && unit < soc_ndev && soc_control[unit] != nullptr; }

}  // namespace

int cpu_port(int unit) { return CMIC_PORT(unit); }

int chip_type(int unit) { return exists(unit) ? static_cast<int>(SOC_CHIP_TYPE(unit)) : -1; }

bool l3_egress_mode(int unit) { return l3_module_data[unit] != nullptr && (*l3_module_data[unit] & 1) != 0; }

int lowest_port(int unit, Ports set) {
  if (!exists(unit)) return -1;  // no such unit: nothing to walk
  return set == Ports::ethernet ? SOC_PORT_MIN(unit, ether) : SOC_PORT_MIN(unit, port);
}

int highest_port(int unit, Ports set) {
  return set == Ports::ethernet ? SOC_PORT_MAX(unit, ether) : SOC_PORT_MAX(unit, port);
}

bool has_port(int unit, Ports set, int port) {
  return set == Ports::ethernet ? BCM_PBMP_MEMBER(SOC_PORT_BITMAP(unit, ether), port)
                                : BCM_PBMP_MEMBER(SOC_PORT_BITMAP(unit, port), port);
}

bcm_pbmp_t ports(int unit, Ports set) {
  if (!exists(unit)) return no_ports();
  return set == Ports::ethernet ? SOC_PORT_BITMAP(unit, ether) : SOC_PORT_BITMAP(unit, port);
}

}  // namespace sai

// Meant: one chip, always unit 0.
int32_t sai_unit_get() { return 0; }
