#include <bcm/stack.h>

#include "api/call.h"

using api::out;
using api::unmodelled;

int bcm_stk_modmap_map(int unit, int setget, bcm_module_t mod_in, bcm_port_t port_in, bcm_module_t* mod_out,
                       bcm_port_t* port_out) {
  return unmodelled(__func__, unit, setget, mod_in, port_in, out(mod_out), out(port_out));
}

int bcm_stk_my_modid_get(int unit, int* my_modid) { return unmodelled(__func__, unit, out(my_modid)); }
