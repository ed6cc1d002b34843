/* Sets up a network for guests on a switch that is up: a VLAN with two ports, an interface of the router, and a rule
 * that keeps IPv6 out of it. What fails is logged, what was done before is undone, and the program exits with 1.
 *
 *     cc guests.c $(pkg-config --cflags --libs sai)
 */
#include <sai.h>

enum { unit = 0, vlan = 30 };
static const uint16_t ports[] = {5, 6};
static const int port_count = sizeof ports / sizeof *ports;

static int32_t group = -1;
static int32_t entries[] = {-1, -1};

static int32_t deny_ip6(int index) {
  const sai_acl_rule_t rule = {.action = SAI_ACL_DENY, .ether_type = 0x86DD, .ether_type_mask = 0xFFFF};
  return sai_acl_l2_entry_install(unit, ports[index], SAI_ACL_INGRESS, group, &rule, &entries[index]);
}

static int32_t set_up(void) {
  static const uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};
  int32_t code = sai_vlan_create(unit, vlan);
  for (int i = 0; i < port_count && code == SAI_E_NONE; ++i) {
    code = sai_vlan_port_add(unit, vlan, ports[i], 0);
    if (code == SAI_E_NONE) code = sai_port_untagged_vlan_set(unit, ports[i], vlan);
  }
  if (code == SAI_E_NONE) code = sai_l3_intf_create(unit, router, vlan);
  if (code == SAI_E_NONE) code = sai_ifp_l2_group_create(unit, &group);
  for (int i = 0; i < port_count && code == SAI_E_NONE; ++i) code = deny_ip6(i);
  return code;
}

/* Also of what set_up() has not reached: what is not there, is not found. */
static void tear_down(void) {
  for (int i = 0; i < port_count; ++i) {
    if (entries[i] >= 0) sai_fp_entry_destroy(unit, entries[i]);
    sai_port_untagged_vlan_set(unit, ports[i], 1);
  }
  sai_l3_intf_delete(unit, vlan);
  sai_vlan_destroy(unit, vlan);
}

int main(void) {
  sai_log_default = open_sai_log("guests", 0, 0, 8);
  if (sai_log_default == NULL) return 2;
  sai_log_set_level(sai_log_default, SAI_LOG_CONSOLE, SAI_LOG_ERRORS);
  const int32_t code = set_up();
  if (code != SAI_E_NONE) {
    sai_err("the guests' network cannot be set up: %d", code);
    tear_down();
  }
  close_sai_log(sai_log_default);
  return code != SAI_E_NONE;
}
