// The Chip SDK's headers, some of which a vendor has as plain C without C++ guards, and its functions without one.
#pragma once

extern "C" {
#include <appl/diag/shell.h>
#include <appl/diag/system.h>
#include <bcm/cosq.h>
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/init.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/link.h>
#include <bcm/mcast.h>
#include <bcm/mirror.h>
#include <bcm/multicast.h>
#include <bcm/policer.h>
#include <bcm/port.h>
#include <bcm/rate.h>
#include <bcm/stack.h>
#include <bcm/stat.h>
#include <bcm/stg.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/types.h>
#include <bcm/vlan.h>
#include <soc/cmic.h>
#include <soc/drv.h>
#include <soc/knet.h>

int sdk_main(int argc, char** argv);

int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
}
