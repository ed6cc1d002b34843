/**
 * @file bcm/stack.h
 * Modules of a stack.
 */
#ifndef BCM_STACK_H
#define BCM_STACK_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What to do with a mapping. */
#define BCM_STK_MODMAP_SET 1
#define BCM_STK_MODMAP_GET 2

/** Maps a module and port; setget is BCM_STK_MODMAP_SET or BCM_STK_MODMAP_GET. */
int bcm_stk_modmap_map(int unit, int setget, bcm_module_t mod_in, bcm_port_t port_in, bcm_module_t* mod_out,
                       bcm_port_t* port_out);

int bcm_stk_my_modid_get(int unit, int* my_modid);

#ifdef __cplusplus
}
#endif

#endif
