/**
 * @file bcm/switch.h
 * Controls of the whole switch.
 */
#ifndef BCM_SWITCH_H
#define BCM_SWITCH_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What can be controlled. */
typedef enum bcm_switch_control_e {
  bcmSwitchNonIpL3ErrToCpu = 22,
  bcmSwitchV6L3DstMissToCpu = 40,
  bcmSwitchV4L3DstMissToCpu = 43,
  bcmSwitchArpReplyToCpu = 84,
  bcmSwitchArpRequestToCpu = 86,
  bcmSwitchNdPktToCpu = 89,
  bcmSwitchDhcpPktToCpu = 94,
  bcmSwitchDhcpPktDrop = 95,
  bcmSwitchV4ResvdMcPktFlood = 100,
  bcmSwitchV6ResvdMcPktToCpu = 101,
  bcmSwitchV6ResvdMcPktFlood = 103,
  bcmSwitchDirectedMirroring = 125,
  bcmSwitchMldReservedMcastEnable = 216,
  bcmSwitchL3EgressMode = 230,
  bcmSwitchIpmcSameVlanL3Route = 364,
  bcmSwitchL2DstHitEnable = 611,
  bcmSwitchFlexibleMirrorDestinations = 781,
  bcm_switch_control_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_switch_control_t;

/** What can be counted. */
typedef enum bcm_switch_object_e {
  bcmSwitchObjectL2EntryCurrent = 0,
  bcmSwitchObjectL2EntryMax = 32,
  bcm_switch_object_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_switch_object_t;

/** Settings of a network group. */
#define BCM_SWITCH_NETWORK_GROUP_MCAST_REMAP_ENABLE 0x1
#define BCM_SWITCH_NETWORK_GROUP_INGRESS_PRUNE_ENABLE 0x2
#define BCM_SWITCH_NETWORK_GROUP_EGRESS_PRUNE_ENABLE 0x4

/** The readings of a temperature monitor. */
typedef struct bcm_switch_temperature_monitor_s {
  int curr;
  int peak;
} bcm_switch_temperature_monitor_t;

/** How a network group treats frames to another group. */
typedef struct bcm_switch_network_group_config_s {
  bcm_switch_network_group_t dest_network_group_id;
  uint32 config_flags;
} bcm_switch_network_group_config_t;

void bcm_switch_temperature_monitor_t_init(bcm_switch_temperature_monitor_t* monitor);

int bcm_switch_control_get(int unit, bcm_switch_control_t type, int* arg);
int bcm_switch_control_port_set(int unit, bcm_port_t port, bcm_switch_control_t type, int arg);
int bcm_switch_control_set(int unit, bcm_switch_control_t type, int arg);

/** Sets num reserved addresses with their masks. */
int bcm_switch_ipv6_reserved_multicast_addr_multi_set(int unit, int inner, int num, bcm_ip6_t* ip6_addr,
                                                      bcm_ip6_t* ip6_mask);

int bcm_switch_network_group_config_get(int unit, bcm_switch_network_group_t source_network_group_id,
                                        bcm_switch_network_group_config_t* config);
int bcm_switch_network_group_config_set(int unit, bcm_switch_network_group_t source_network_group_id,
                                        bcm_switch_network_group_config_t* config);
void bcm_switch_network_group_config_t_init(bcm_switch_network_group_config_t* config);

/** Reads object_size counts. */
int bcm_switch_object_count_multi_get(int unit, int object_size, bcm_switch_object_t* object_array, int* entries);

/** Reads at most temperature_max monitors. */
int bcm_switch_temperature_monitor_get(int unit, int temperature_max,
                                       bcm_switch_temperature_monitor_t* temperature_array, int* temperature_count);

#ifdef __cplusplus
}
#endif

#endif
