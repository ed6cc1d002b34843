#include <bcm/stack.h>

#include "api/call.h"
#include "api/gports.h"

using api::Call;
using api::my_module;
using api::out;
using chip::Chip;
using chip::Status;

int bcm_stk_modmap_map(int unit, int setget, bcm_module_t mod_in, bcm_port_t port_in, bcm_module_t* mod_out,
                       bcm_port_t* port_out) {
  return Call(calls::bcm_stk_modmap_map(unit, setget, mod_in, port_in, mod_out, port_out))
      .answer([&](const Chip& chip) {
        if (setget == BCM_STK_MODMAP_SET) return Status::unavailable;
        if (setget != BCM_STK_MODMAP_GET) return Status::bad_parameter;
        if (mod_in != my_module) return Status::bad_parameter;
        if (!chip.ports.has(chip::Port::of(port_in))) return Status::bad_port;
        // Modules and ports have the same numbers on both sides.
        *mod_out = mod_in;
        *port_out = port_in;
        return Status::ok;
      });
}

int bcm_stk_my_modid_get(int unit, int* my_modid) {
  return Call(calls::bcm_stk_my_modid_get(unit, my_modid)).answer([&](const Chip&) {
    *my_modid = my_module;
    return Status::ok;
  });
}
