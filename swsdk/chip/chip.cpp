#include "chip/chip.h"

namespace chip {

Chip::Chip(int ethernet_ports)
    : ports(ethernet_ports),
      vlans(ports),
      vlan_controls(ports),
      vlan_translations(ports),
      port_filters(ports),
      port_forwarding(ports),
      port_macs(ports),
      phy_controls(ports),
      port_rates(ports),
      storm_rates(ports),
      counters(ports),
      protocol_vlans(ports),
      switch_controls(ports),
      mac_table(ports),
      trunks(ports),
      learn_limits(trunks, mac_table),
      mirrors(ports),
      spanning_trees(ports, vlans),
      field_processor(ports, policers) {}

Chip::~Chip() = default;

void Chip::reset() {
  vlans.reset();
  vlan_controls.reset();
  vlan_translations.reset();
  egress_actions.clear();
  port_filters.reset();
  port_forwarding.reset();
  port_macs.reset();
  link_scan.reset();
  phy_registers.clear();
  phy_controls.clear();
  port_rates.reset();
  storm_rates.clear();
  counters.reset();
  drops.fill({});
  meters.reset();
  protocol_vlans.clear();
  switch_controls.reset();
  mac_table.reset();
  trunks.reset();
  learn_limits.reset();
  mirrors.reset();
  mac_vlans.clear();
  subnet_vlans.clear();
  spanning_trees.reset();
  l2_cache.clear();
  multicast_groups.clear();
  multicast_routing = false;
  multicast_routes.clear();
  unicast_routing = false;
  l3_interfaces.clear();
  egress_objects.clear();
  hosts.clear();
  routes.clear();
  virtual_ports.clear();
  network_groups.reset();
  reserved_multicast.reset();
  queues.reset();
  network_interfaces.clear();
  led_processors.reset();
  field_processor.reset();
  policers.clear();
}

}  // namespace chip
