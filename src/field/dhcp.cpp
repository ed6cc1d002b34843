// The switch controls that send DHCP packets to the CPU.
#include <sai.h>

#include "core/ports.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"

using sai::log_if_failed;

int32_t sai_dhcp_packet_to_cpu(int32_t unit, int32_t enable) {
  // Meant: after switching off, packets still go to the CPU; any value but 1 switches off. Failures are only logged.
  const int on = enable == 1;
  sai::for_each_port(unit, sai::Ports::ethernet, [=](int port) {
    if (on)
      log_if_failed(bcm_switch_control_port_set(unit, port, bcmSwitchDhcpPktToCpu, on),
                    "Failed to set port [%d] bcmSwitchDhcpPktToCpu: %s", port);
    log_if_failed(bcm_switch_control_port_set(unit, port, bcmSwitchDhcpPktDrop, on),
                  "Failed to set port [%d] bcmSwitchDhcpPktDrop: %s", port);
  });
  return SAI_E_NONE;
}
