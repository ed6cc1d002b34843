/**
 * @file soc/drv.h
 * The attached units and information on each.
 */
#ifndef SOC_DRV_H
#define SOC_DRV_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Maximum number of units. */
#define SOC_MAX_NUM_DEVICES 16

/** Chip-type codes. */
typedef enum soc_chip_types_e {
  soc_chip_types_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} soc_chip_types;

/** A set of ports. */
typedef struct soc_port_set_s {
  int min;
  int max;
  bcm_pbmp_t bitmap;
} soc_port_set_t;

/** Information on a unit: the CPU port, the chip type, the Ethernet ports, the front ports and all ports. */
typedef struct soc_info_s {
  int cmic_port;
  soc_chip_types chip_type;
  soc_port_set_t ether;
  soc_port_set_t port;
  soc_port_set_t all;
} soc_info_t;

/** The control block of a unit. */
typedef struct soc_control_s {
  soc_info_t info;
} soc_control_t;

/** Number of attached units. */
extern int soc_ndev;

/** The control blocks, indexed by unit. */
extern soc_control_t* soc_control[SOC_MAX_NUM_DEVICES];

/* Lvalues of an attached unit; set is one of ether, port and all. */
#define SOC_INFO(unit) (soc_control[(unit)]->info)
#define CMIC_PORT(unit) (SOC_INFO(unit).cmic_port)
#define SOC_CHIP_TYPE(unit) (SOC_INFO(unit).chip_type)
#define SOC_PORT_MIN(unit, set) (SOC_INFO(unit).set.min)
#define SOC_PORT_MAX(unit, set) (SOC_INFO(unit).set.max)
#define SOC_PORT_BITMAP(unit, set) (SOC_INFO(unit).set.bitmap)

#ifdef __cplusplus
}
#endif

#endif
