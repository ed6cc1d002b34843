// The one door to the Chip SDK's headers: parts of the vendor's are plain C without C++ guards.
#pragma once

extern "C" {
#include <appl/diag/shell.h>
#include <bcm/error.h>
#include <bcm/trunk.h>
#include <bcm/types.h>
#include <bcm/vlan.h>
#include <shared/error.h>
#include <soc/drv.h>
}
