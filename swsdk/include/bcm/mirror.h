/**
 * @file bcm/mirror.h
 * Mirroring of ports.
 */
#ifndef BCM_MIRROR_H
#define BCM_MIRROR_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Modes of mirroring. */
#define BCM_MIRROR_DISABLE 0
#define BCM_MIRROR_L2 1
#define BCM_MIRROR_L2_L3 2

/** Flags of a destination. */
#define BCM_MIRROR_DEST_REPLACE 0x1
#define BCM_MIRROR_DEST_WITH_ID 0x2

/** Which frames of a port are mirrored. */
#define BCM_MIRROR_PORT_ENABLE 0x1
#define BCM_MIRROR_PORT_INGRESS 0x2
#define BCM_MIRROR_PORT_EGRESS 0x4

/** Where mirrored frames go. */
typedef struct bcm_mirror_destination_s {
  bcm_gport_t mirror_dest_id;
  uint32 flags;
  bcm_gport_t gport;
} bcm_mirror_destination_t;

/** Creates a destination; fills in its number. */
int bcm_mirror_destination_create(int unit, bcm_mirror_destination_t* mirror_dest);

int bcm_mirror_destination_destroy(int unit, bcm_gport_t mirror_dest_id);
int bcm_mirror_destination_get(int unit, bcm_gport_t mirror_dest_id, bcm_mirror_destination_t* mirror_dest);
void bcm_mirror_destination_t_init(bcm_mirror_destination_t* mirror_dest);
int bcm_mirror_init(int unit);

/** Takes one of BCM_MIRROR_DISABLE, BCM_MIRROR_L2 and BCM_MIRROR_L2_L3. */
int bcm_mirror_mode_set(int unit, int mode);

/** Mirrors a port to a destination; flags are BCM_MIRROR_PORT_ values. */
int bcm_mirror_port_dest_add(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id);

int bcm_mirror_port_dest_delete(int unit, bcm_port_t port, uint32 flags, bcm_gport_t mirror_dest_id);

#ifdef __cplusplus
}
#endif

#endif
