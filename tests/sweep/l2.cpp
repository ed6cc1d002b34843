#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr int32_t poison = 7777;

/// An address of VLAN 10 as the caller describes it.
sai_l2_mac_entry_t entry(int32_t port = poison) {
  sai_l2_mac_entry_t entry;
  sai_l2_init(&entry);  // what is between its fields too, which is compared with them
  entry.mac[5] = 0x2A;
  entry.vlan = 10;
  entry.port = port;
  entry.port_out = poison;
  entry.trunk = 4;
  return entry;
}

void address_on(int32_t port) {
  const sai_l2_mac_entry_t address = entry(port);
  sai_vlan_create(unit, 10);
  sai_l2_mac_entry_add(unit, &address);
}

void address_on_port() { address_on(1); }

void address_on_virtual_port() {
  sai_vlan_vport_init(unit);
  sai_vlan_create(unit, 10);
  sai_vport_t vport{3, 10, 20, 10, 0, -1};
  sai_vport_create(unit, 1, &vport);
  address_on(vport.vport_id);
}

void trunk_4() {
  int32_t id = 4;
  sai_trunk_init(unit);
  sai_trunk_create(unit, 0x10, &id);
}

void address_on_trunk() {
  trunk_4();
  address_on_port();
}

constexpr sai_l2_learn_limit_t limit{.flags = 0x4, .vlan = 0, .port = 1, .trunk = 0, .scope_id = 0, .limit = poison};

Row deletion(const char* name, uint8_t mode, const std::function<void()>& scene = address_on_port) {
  return {.name = std::string("sai_l2_mac_entry_del, ") + name,
          .call =
              [mode] {
                const sai_l2_mac_entry_t address = entry(1);
                return sai_l2_mac_entry_del(unit, &address, mode);
              },
          .scene = scene};
}

void mirroring() { sai_mirror_init(unit); }

void session_1() {
  mirroring();
  sai_mirror_dest_port_set(unit, 1, 2);
}

void session_1_with_source() {
  session_1();
  sai_mirror_source_port_set(unit, 1, 3, 1);
}

}  // namespace

Rows l2() {
  Row flush = deletion("of every port", 0);
  flush.failures = {{"bcm_stk_my_modid_get#3", "-"},  // the last port's result is the one that counts
                    {"bcm_stk_my_modid_get", "- *", no_line},
                    {"bcm_l2_addr_delete_by_port#3", stops},
                    {"bcm_l2_addr_delete_by_port", goes_on, no_line}};
  flush.ports = 3;
  return {
      {"sai_l2_init", [] { return sai_l2_init(out<sai_l2_mac_entry_t>()); }},
      {"sai_l2_mac_init", [] { return sai_l2_mac_init(unit); }},
      {"sai_l2_mac_age_time_set", [] { return sai_l2_mac_age_time_set(unit, 300); }},
      {"sai_l2_mac_age_time_get", [] { return sai_l2_mac_age_time_get(unit, out<int32_t>()); }},
      {.name = "sai_l2_mac_entry_get",
       .call = [] { return sai_l2_mac_entry_get(unit, out(entry())); },
       .scene = address_on_port},
      {.name = "sai_l2_mac_entry_add",
       .call =
           [] {
             const sai_l2_mac_entry_t address = entry(1);
             return sai_l2_mac_entry_add(unit, &address);
           },
       .scene = [] { sai_vlan_create(unit, 10); }},
      deletion("the entry", 0x01),
      deletion("by MAC address", 0x02),
      deletion("by VLAN", 0x04),
      deletion("by port", 0x08),
      deletion("by trunk", 0x20, address_on_trunk),
      std::move(flush),
      {.name = "sai_l2_addr_delete_by_trunk",
       .call = [] { return sai_l2_addr_delete_by_trunk(unit, 4); },
       .scene = address_on_trunk},
      {.name = "sai_l2_addr_port_id_get",
       .call = [] { return sai_l2_addr_port_id_get(unit, out(entry())); },
       .scene = address_on_port},
      {.name = "sai_l2_addr_logic_port_get",
       .call = [] { return sai_l2_addr_logic_port_get(unit, out(entry())); },
       .scene = address_on_port},
      // An address that is not told is not on a virtual port.
      {.name = "sai_l2_addr_logic_port_get, of a virtual port",
       .call = [] { return sai_l2_addr_logic_port_get(unit, out(entry())); },
       .failures = {{"bcm_l2_addr_get", stops, no_line, positive}},
       .scene = address_on_virtual_port},

      {"sai_l2_mac_learn_limit_init", [] { return sai_l2_mac_learn_limit_init(out<sai_l2_learn_limit_t>()); }},
      {"sai_l2_mac_learn_limit_set", [] { return sai_l2_mac_learn_limit_set(unit, &limit); }},
      {"sai_l2_mac_learn_limit_get", [] { return sai_l2_mac_learn_limit_get(unit, out(limit)); }},
      {"sai_l2_mac_learn_limit_enable", [] { return sai_l2_mac_learn_limit_enable(unit); }},
      {"sai_l2_mac_learn_limit_disable", [] { return sai_l2_mac_learn_limit_disable(unit); }},

      {.name = "sai_l2_addr_show",
       .call = [] { return sai_l2_addr_show(unit, out<sai_l2_mac_entry_t>()); },
       .scene = address_on_port},
      // A virtual port that cannot be found is no failure. The second calls fail: those that the one traversal makes.
      {.name = "sai_l2_addr_show, of virtual ports",
       .call = [] { return sai_l2_addr_show(unit, out<sai_l2_mac_entry_t, 2>()); },
       .failures = {{"bcm_vlan_port_find", "- *", no_line, non_zero},
                    {"bcm_port_local_get", goes_on, no_line, non_zero}},
       .result = "bcm_l2_traverse",
       .scene =
           [] {
             address_on_virtual_port();
             sai_l2_mac_entry_t other = entry();
             sai_l2_mac_entry_get(unit, &other);
             other.port = other.port_out;
             other.mac[5] = 0x2B;
             sai_l2_mac_entry_add(unit, &other);
           },
       .every = 2},
      {"sai_l2_info", [] { return sai_l2_info(unit, out<int32_t>(), out<int32_t>()); }},
      {"sai_l2_dst_hit_enable_set", [] { return sai_l2_dst_hit_enable_set(unit, 1); }},
      {"sai_l2_dst_hit_enable_get", [] { return sai_l2_dst_hit_enable_get(unit, out<int32_t>()); }},

      {"sai_trunk_init", [] { return sai_trunk_init(unit); }},
      {.name = "sai_trunk_detach", .call = [] { return sai_trunk_detach(unit); }, .scene = trunk_4},
      {.name = "sai_trunk_create",
       .call = [] { return sai_trunk_create(unit, 0, out(poison)); },
       .scene = [] { sai_trunk_init(unit); }},
      {.name = "sai_trunk_destroy", .call = [] { return sai_trunk_destroy(unit, 4); }, .scene = trunk_4},
      {.name = "sai_trunk_set", .call = [] { return sai_trunk_set(unit, 4, 9, 0x7, 3); }, .scene = trunk_4},
      {.name = "sai_trunk_psc_set", .call = [] { return sai_trunk_psc_set(unit, 4, 9); }, .scene = trunk_4},

      {"sai_mirror_init",
       [] { return sai_mirror_init(unit); },
       {{"bcm_mirror_init bcm_switch_control_set", goes_on}},
       "bcm_mirror_mode_set"},
      {.name = "sai_mirror_dest_port_set",
       .call = [] { return sai_mirror_dest_port_set(unit, 1, 2); },
       .scene = mirroring},
      {.name = "sai_mirror_dest_port_unset",
       .call = [] { return sai_mirror_dest_port_unset(unit, 1, 2); },
       .scene = session_1},
      {.name = "sai_mirror_source_port_set",
       .call = [] { return sai_mirror_source_port_set(unit, 1, 3, 1); },
       .scene = session_1},
      {.name = "sai_mirror_source_port_unset",
       .call = [] { return sai_mirror_source_port_unset(unit, 1, 3, 1); },
       .scene = session_1_with_source},
  };
}

}  // namespace sweep
