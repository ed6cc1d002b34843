/**
 * @file bcm/knet.h
 * Network interfaces of the host, connected to the chip.
 */
#ifndef BCM_KNET_H
#define BCM_KNET_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Kinds of interfaces. */
#define BCM_KNET_NETIF_T_TX_CPU_INGRESS 1
#define BCM_KNET_NETIF_T_TX_LOCAL_PORT 2

/** Flags of an interface. */
#define BCM_KNET_NETIF_F_KEEP_RX_TAG 0x4

/** Size of an interface's name, including its zero byte. */
#define BCM_KNET_NETIF_NAME_MAX 16

/** A network interface of the host. */
typedef struct bcm_knet_netif_s {
  int id;
  int type;
  uint32 flags;
  bcm_mac_t mac_addr;
  bcm_vlan_t vlan;
  bcm_port_t port;
  bcm_cos_queue_t cosq;
  char name[BCM_KNET_NETIF_NAME_MAX];
  uint32 cb_user_data;
} bcm_knet_netif_t;

/** Creates a network interface of the host; fills in its number. */
int bcm_knet_netif_create(int unit, bcm_knet_netif_t* netif);

void bcm_knet_netif_t_init(bcm_knet_netif_t* netif);

#ifdef __cplusplus
}
#endif

#endif
