/**
 * @file bcm/port.h
 * Ports.
 */
#ifndef BCM_PORT_H
#define BCM_PORT_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int bcm_port_frametype_t;
/** A set of abilities, one bit each. */
typedef uint32 bcm_port_abil_t;

/** Settings of a port record, for its action mask. */
#define BCM_PORT_ATTR_ENABLE_MASK 0x1
#define BCM_PORT_ATTR_LINKSTAT_MASK 0x2
#define BCM_PORT_ATTR_AUTONEG_MASK 0x4
#define BCM_PORT_ATTR_SPEED_MASK 0x8
#define BCM_PORT_ATTR_DUPLEX_MASK 0x10
#define BCM_PORT_ATTR_INTERFACE_MASK 0x8000
#define BCM_PORT_ATTR_LOCAL_ADVERT_MASK 0x80000
#define BCM_PORT_ATTR_REMOTE_ADVERT_MASK 0x100000
#define BCM_PORT_ATTR_RATE_MCAST_MASK 0x400000
#define BCM_PORT_ATTR_RATE_BCAST_MASK 0x800000
#define BCM_PORT_ATTR_RATE_DLFBC_MASK 0x1000000

/** Where a port checks its VLAN membership. */
#define BCM_PORT_VLAN_MEMBER_INGRESS 0x1
#define BCM_PORT_VLAN_MEMBER_EGRESS 0x2

/** Kinds of flooding. */
#define BCM_PORT_FLOOD_BLOCK_BCAST 0x1
#define BCM_PORT_FLOOD_BLOCK_UNKNOWN_UCAST 0x2
#define BCM_PORT_FLOOD_BLOCK_UNKNOWN_MCAST 0x4

/** What a port does with frames from unknown addresses. */
#define BCM_PORT_LEARN_ARL 0x1
#define BCM_PORT_LEARN_CPU 0x2
#define BCM_PORT_LEARN_FWD 0x4

/** Loopbacks. */
#define BCM_PORT_LOOPBACK_NONE 0
#define BCM_PORT_LOOPBACK_MAC 1
#define BCM_PORT_LOOPBACK_PHY 2

/** Kinds of interfaces between a port and its PHY. */
typedef enum bcm_port_if_e {
  bcm_port_if_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_port_if_t;

/** Duplex modes. */
typedef enum bcm_port_duplex_e {
  BCM_PORT_DUPLEX_HALF = 0,
  BCM_PORT_DUPLEX_FULL = 1,
  bcm_port_duplex_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_port_duplex_t;

/** Crossover settings. */
typedef enum bcm_port_mdix_e {
  bcm_port_mdix_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_port_mdix_t;

/** Crossover states. */
typedef enum bcm_port_mdix_status_e {
  bcm_port_mdix_status_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_port_mdix_status_t;

/** Media of a port. */
typedef enum bcm_port_medium_e {
  bcm_port_medium_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_port_medium_t;

/** Controls of a PHY. */
typedef enum bcm_port_phy_control_e {
  BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION = 74,
  BCM_PORT_PHY_CONTROL_RX_PEAK_FILTER = 100,
  BCM_PORT_PHY_CONTROL_RX_LOW_FREQ_PEAK_FILTER = 101,
  BCM_PORT_PHY_CONTROL_RX_VGA = 102,
  BCM_PORT_PHY_CONTROL_RX_TAP1 = 103,
  BCM_PORT_PHY_CONTROL_RX_TAP2 = 104,
  BCM_PORT_PHY_CONTROL_RX_TAP3 = 105,
  BCM_PORT_PHY_CONTROL_RX_TAP4 = 106,
  BCM_PORT_PHY_CONTROL_RX_TAP5 = 107,
  BCM_PORT_PHY_CONTROL_TX_FIR_PRE = 232,
  BCM_PORT_PHY_CONTROL_TX_FIR_MAIN = 233,
  BCM_PORT_PHY_CONTROL_TX_FIR_POST = 234,
  BCM_PORT_PHY_CONTROL_TX_FIR_POST2 = 235,
  BCM_PORT_PHY_CONTROL_TX_FIR_POST3 = 236,
  BCM_PORT_PHY_CONTROL_FIRMWARE_DFE_ENABLE = 302,
  BCM_PORT_PHY_CONTROL_FIRMWARE_LP_DFE_ENABLE = 303,
  BCM_PORT_PHY_CONTROL_FIRMWARE_BR_DFE_ENABLE = 304,
  BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION_CL91 = 319,
  BCM_PORT_PHY_CONTROL_RX_TAP6 = 338,
  BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION_CL108 = 353,
  bcm_port_phy_control_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_port_phy_control_t;

/** The ports of a unit, by kind. */
typedef struct bcm_port_config_s {
  bcm_pbmp_t fe;
  bcm_pbmp_t ge;
  bcm_pbmp_t xe;
  bcm_pbmp_t e;
  bcm_pbmp_t cpu;
  bcm_pbmp_t all;
} bcm_port_config_t;

/** The settings of a port; the action masks select them. */
typedef struct bcm_port_info_s {
  uint32 action_mask;
  uint32 action_mask2;
  int enable;
  int linkstatus;
  int autoneg;
  int speed;
  int duplex;
  int linkscan;
  uint32 learn;
  int discard;
  uint32 vlanfilter;
  int untagged_priority;
  bcm_vlan_t untagged_vlan;
  int stp_state;
  int pfm;
  int loopback;
  int phy_master;
  bcm_port_if_t interface;
  int pause_tx;
  int pause_rx;
  int encap_mode;
  bcm_mac_t pause_mac;
  bcm_port_abil_t local_advert;
  int remote_advert_valid;
  bcm_port_abil_t remote_advert;
  int mcast_limit;
  int mcast_limit_enable;
  int bcast_limit;
  int bcast_limit_enable;
  int dlfbc_limit;
  int dlfbc_limit_enable;
  int speed_max;
  bcm_port_abil_t ability;
  int frame_max;
  bcm_port_mdix_t mdix;
  bcm_port_mdix_status_t mdix_status;
  bcm_port_medium_t medium;
  uint32 fault;
} bcm_port_info_t;

int bcm_port_autoneg_get(int unit, bcm_port_t port, int* autoneg);
int bcm_port_autoneg_set(int unit, bcm_port_t port, int autoneg);

/** Tells which ports the unit has. */
int bcm_port_config_get(int unit, bcm_port_config_t* config);

void bcm_port_config_t_init(bcm_port_config_t* pconfig);
int bcm_port_duplex_get(int unit, bcm_port_t port, int* duplex);
int bcm_port_duplex_set(int unit, bcm_port_t port, int duplex);
int bcm_port_egress_get(int unit, bcm_port_t port, int modid, bcm_pbmp_t* pbmp);
int bcm_port_egress_set(int unit, bcm_port_t port, int modid, bcm_pbmp_t pbmp);
int bcm_port_enable_get(int unit, bcm_port_t port, int* enable);
int bcm_port_enable_set(int unit, bcm_port_t port, int enable);

/** Blocks kinds of flooding between two ports; flags are BCM_PORT_FLOOD_BLOCK_ values. */
int bcm_port_flood_block_set(int unit, bcm_port_t ingress_port, bcm_port_t egress_port, uint32 flags);

/** Sets the maximum frame size, in bytes. */
int bcm_port_frame_max_set(int unit, bcm_port_t port, int size);

int bcm_port_gport_get(int unit, bcm_port_t port, bcm_gport_t* gport);

/** The inter-frame gap, in bit times, at one speed and duplex. */
int bcm_port_ifg_get(int unit, bcm_port_t port, int speed, bcm_port_duplex_t duplex, int* bit_times);

int bcm_port_ifg_set(int unit, bcm_port_t port, int speed, bcm_port_duplex_t duplex, int bit_times);
void bcm_port_info_t_init(bcm_port_info_t* info);
int bcm_port_interface_get(int unit, bcm_port_t port, bcm_port_if_t* intf);
int bcm_port_learn_get(int unit, bcm_port_t port, uint32* flags);

/** Takes BCM_PORT_LEARN_ flags. */
int bcm_port_learn_set(int unit, bcm_port_t port, uint32 flags);

int bcm_port_link_status_get(int unit, bcm_port_t port, int* status);
int bcm_port_local_get(int unit, bcm_gport_t gport, bcm_port_t* local_port);

/** Takes one of the BCM_PORT_LOOPBACK_ values. */
int bcm_port_loopback_set(int unit, bcm_port_t port, int loopback);

int bcm_port_pause_set(int unit, bcm_port_t port, int pause_tx, int pause_rx);
int bcm_port_phy_control_get(int unit, bcm_port_t port, bcm_port_phy_control_t type, uint32* value);
int bcm_port_phy_control_set(int unit, bcm_port_t port, bcm_port_phy_control_t type, uint32 value);

/** Reads a register of the port's PHY. */
int bcm_port_phy_get(int unit, bcm_port_t port, uint32 flags, uint32 phy_reg_addr, uint32* phy_data);

int bcm_port_phy_set(int unit, bcm_port_t port, uint32 flags, uint32 phy_reg_addr, uint32 phy_data);
int bcm_port_protocol_vlan_add(int unit, bcm_port_t port, bcm_port_frametype_t frame, bcm_port_ethertype_t ether,
                               bcm_vlan_t vid);
int bcm_port_protocol_vlan_delete(int unit, bcm_port_t port, bcm_port_frametype_t frame, bcm_port_ethertype_t ether);
int bcm_port_protocol_vlan_delete_all(int unit, bcm_port_t port);
int bcm_port_rate_egress_get(int unit, bcm_port_t port, uint32* kbits_sec, uint32* kbits_burst);
int bcm_port_rate_egress_pps_get(int unit, bcm_port_t port, uint32* pps, uint32* burst);
int bcm_port_rate_egress_pps_set(int unit, bcm_port_t port, uint32 pps, uint32 burst);
int bcm_port_rate_egress_set(int unit, bcm_port_t port, uint32 kbits_sec, uint32 kbits_burst);
int bcm_port_rate_ingress_get(int unit, bcm_port_t port, uint32* kbits_sec, uint32* kbits_burst);
int bcm_port_rate_ingress_set(int unit, bcm_port_t port, uint32 kbits_sec, uint32 kbits_burst);

/** Applies the settings of the record that its action masks select. */
int bcm_port_selective_set(int unit, bcm_port_t port, bcm_port_info_t* info);

int bcm_port_speed_get(int unit, bcm_port_t port, int* speed);
int bcm_port_speed_set(int unit, bcm_port_t port, int speed);
int bcm_port_untagged_vlan_get(int unit, bcm_port_t port, bcm_vlan_t* vid_ptr);
int bcm_port_untagged_vlan_set(int unit, bcm_port_t port, bcm_vlan_t vid);

/** Takes BCM_PORT_VLAN_MEMBER_ flags. */
int bcm_port_vlan_member_set(int unit, bcm_port_t port, uint32 flags);

#ifdef __cplusplus
}
#endif

#endif
