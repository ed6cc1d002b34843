// Initializers of the SDK's records: every field is 0 except those that the initializer's arguments set.
#include <bcm/field.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/mirror.h>
#include <bcm/policer.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>

#include <algorithm>

void bcm_field_qset_t_init(bcm_field_qset_t* qset) { *qset = {}; }
void bcm_ipmc_addr_t_init(bcm_ipmc_addr_t* data) { *data = {}; }
void bcm_knet_netif_t_init(bcm_knet_netif_t* netif) { *netif = {}; }
void bcm_l2_addr_t_init(bcm_l2_addr_t* l2addr, const uint8* mac_addr, bcm_vlan_t vid) {
  *l2addr = {};
  std::copy_n(mac_addr, sizeof(bcm_mac_t), l2addr->mac);
  l2addr->vid = vid;
}
void bcm_l2_cache_addr_t_init(bcm_l2_cache_addr_t* addr) { *addr = {}; }
void bcm_l2_learn_limit_t_init(bcm_l2_learn_limit_t* limit) { *limit = {}; }
void bcm_l3_egress_t_init(bcm_l3_egress_t* egr) { *egr = {}; }
void bcm_l3_host_t_init(bcm_l3_host_t* ip) { *ip = {}; }
void bcm_l3_intf_t_init(bcm_l3_intf_t* intf) { *intf = {}; }
void bcm_l3_route_t_init(bcm_l3_route_t* route) { *route = {}; }
void bcm_mirror_destination_t_init(bcm_mirror_destination_t* mirror_dest) { *mirror_dest = {}; }
void bcm_policer_config_t_init(bcm_policer_config_t* pol_cfg) { *pol_cfg = {}; }
void bcm_port_config_t_init(bcm_port_config_t* pconfig) { *pconfig = {}; }
void bcm_port_info_t_init(bcm_port_info_t* info) { *info = {}; }
void bcm_switch_network_group_config_t_init(bcm_switch_network_group_config_t* config) { *config = {}; }
void bcm_switch_temperature_monitor_t_init(bcm_switch_temperature_monitor_t* monitor) { *monitor = {}; }
void bcm_trunk_info_t_init(bcm_trunk_info_t* trunk_info) { *trunk_info = {}; }
void bcm_trunk_member_t_init(bcm_trunk_member_t* trunk_member) { *trunk_member = {}; }
void bcm_vlan_action_set_t_init(bcm_vlan_action_set_t* action) { *action = {}; }
void bcm_vlan_control_vlan_t_init(bcm_vlan_control_vlan_t* data) { *data = {}; }
void bcm_vlan_ip_t_init(bcm_vlan_ip_t* vlan_ip) { *vlan_ip = {}; }
void bcm_vlan_port_t_init(bcm_vlan_port_t* vlan_port) { *vlan_port = {}; }
