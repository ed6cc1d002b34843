// One switching chip: its ports and its tables.
#pragma once

#include "chip/counters.h"
#include "chip/egress_actions.h"
#include "chip/egress_objects.h"
#include "chip/field_processor.h"
#include "chip/hosts.h"
#include "chip/l2_cache.h"
#include "chip/l3_interfaces.h"
#include "chip/learn_limits.h"
#include "chip/led_processors.h"
#include "chip/link_scan.h"
#include "chip/mac_table.h"
#include "chip/meters.h"
#include "chip/mirrors.h"
#include "chip/multicast_groups.h"
#include "chip/multicast_routes.h"
#include "chip/network_groups.h"
#include "chip/network_interfaces.h"
#include "chip/phy_controls.h"
#include "chip/phy_registers.h"
#include "chip/policers.h"
#include "chip/port_filters.h"
#include "chip/port_forwarding.h"
#include "chip/port_macs.h"
#include "chip/port_rates.h"
#include "chip/ports.h"
#include "chip/protocol_vlans.h"
#include "chip/queues.h"
#include "chip/reserved_multicast.h"
#include "chip/routes.h"
#include "chip/spanning_trees.h"
#include "chip/storm_rates.h"
#include "chip/switch_controls.h"
#include "chip/temperature_sensors.h"
#include "chip/trunks.h"
#include "chip/virtual_ports.h"
#include "chip/vlan_assignments.h"
#include "chip/vlan_controls.h"
#include "chip/vlan_translations.h"
#include "chip/vlans.h"

namespace chip {

struct Chip {
  explicit Chip(int ethernet_ports);
  ~Chip();

  // The tables refer to the ports.
  Chip(const Chip&) = delete;
  Chip& operator=(const Chip&) = delete;

  /// Every table and setting as after power-on, including those of the PHYs. What is not part of the chip stays: cables
  /// and link partners, sensor readings, the clock, and the observer of the MAC table.
  void reset();

  /// All of it but the ports, of which there are as many.
  template <class Archive>
  void serialize(Archive& archive) {
    archive(now, vlans, vlan_controls, vlan_translations, egress_actions, port_filters, port_forwarding, port_macs,
            link_scan, phy_registers, phy_controls, port_rates, storm_rates, counters, drops, meters,
            temperature_sensors, protocol_vlans, switch_controls, mac_table, trunks, learn_limits, mirrors, mac_vlans,
            subnet_vlans, spanning_trees, l2_cache, multicast_groups, multicast_routing, multicast_routes,
            unicast_routing, l3_interfaces, egress_objects, hosts, routes, virtual_ports, network_groups,
            reserved_multicast, queues, network_interfaces, led_processors, policers, field_processor);
  }

  uint64_t now = 0;  // nanoseconds
  Ports ports;
  Vlans vlans;
  VlanControls vlan_controls;
  VlanTranslations vlan_translations;
  EgressActions egress_actions;
  PortFilters port_filters;
  PortForwardings port_forwarding;
  PortMacs port_macs;
  LinkScan link_scan;
  PhyRegisters phy_registers;
  PhyControls phy_controls;
  PortRates port_rates;
  StormRates storm_rates;
  Counters counters;
  DropCounts drops{ports.all()};
  Meters meters;
  TemperatureSensors temperature_sensors;
  ProtocolVlans protocol_vlans;
  SwitchControls switch_controls;
  MacTable mac_table;
  Trunks trunks;
  LearnLimits learn_limits;
  Mirrors mirrors;
  MacVlans mac_vlans;
  SubnetVlans subnet_vlans;
  SpanningTrees spanning_trees;
  L2Cache l2_cache;
  MulticastGroups multicast_groups{ports};
  Setting<bool> multicast_routing;
  MulticastRoutes multicast_routes;
  Setting<bool> unicast_routing;
  L3Interfaces l3_interfaces;
  EgressObjects egress_objects;
  Hosts hosts;
  Routes routes;
  VirtualPorts virtual_ports{ports};
  NetworkGroups network_groups;
  ReservedMulticast reserved_multicast;
  Queues queues;
  NetworkInterfaces network_interfaces;
  LedProcessors led_processors;
  Policers policers;
  FieldProcessor field_processor;
};

}  // namespace chip
