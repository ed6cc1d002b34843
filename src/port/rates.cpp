#include <sai.h>
#include <stdio.h>

#include "core/result.h"
#include "core/sdk.h"

using sai::result;

static_assert(sizeof(sai_storm_ctrl) == sizeof(uint64_t), "it travels in one register");

namespace {

// Meant: port 0, not the unit's CPU port.
constexpr int cpu_port = 0;

/// Meant: the functions that call this use only 16 bits of the port.
constexpr uint16_t id(int32_t port) { return static_cast<uint16_t>(port); }

constexpr int packets(uint32_t rate) { return static_cast<int>(rate); }

/// Meant: a negative `enable` is off, unlike everywhere else.
constexpr int flags(int enable, int kind) { return enable >= 1 ? kind : 0; }

using Getter = int (*)(int unit, bcm_port_t port, uint32* rate, uint32* burst);

int get(Getter getter, int unit, int port, uint32_t* rate, uint32_t* burst) {
  if (rate == nullptr || burst == nullptr) return BCM_E_PARAM;
  uint32 found_rate = 0;
  uint32 found_burst = 0;
  const int rv = getter(unit, port, &found_rate, &found_burst);
  if (rv == BCM_E_NONE) {
    *rate = found_rate;
    *burst = found_burst;
  }
  return rv;
}

/// Meant: an unknown type is not an error.
int limit(int unit, int port, const sai_storm_ctrl& request) {
  switch (request.type) {
    case BCM_RATE_MCAST:
      return bcm_rate_mcast_set(unit, packets(request.rate), BCM_RATE_MCAST, port);
    case BCM_RATE_BCAST:
      return bcm_rate_bcast_set(unit, packets(request.rate), BCM_RATE_BCAST, port);
    case BCM_RATE_DLF:
      return bcm_rate_dlfbc_set(unit, packets(request.rate), BCM_RATE_DLF, port);
    default:
      return BCM_E_NONE;
  }
}

}  // namespace

int32_t sai_rate_mcast_set(int32_t unit, int32_t port, int32_t enable, uint32_t rate) {
  return result(bcm_rate_mcast_set(unit, packets(rate), flags(enable, BCM_RATE_MCAST), port),
                "Failed to set port [%d] mcast rate %d: %s", port, rate);
}

int32_t sai_rate_dlfbc_set(int32_t unit, int32_t port, int32_t enable, uint32_t rate) {
  return result(bcm_rate_dlfbc_set(unit, packets(rate), flags(enable, BCM_RATE_DLF), port),
                "Failed to set port [%d] dlfbc rate %d: %s", port, rate);
}

int32_t sai_rate_bcast_set(int32_t unit, int32_t port, int32_t enable, uint32_t rate) {
  return result(bcm_rate_bcast_set(unit, packets(rate), flags(enable, BCM_RATE_BCAST), port),
                "Failed to set port [%d] bcast rate %d: %s", port, rate);
}

int32_t sai_port_storm_ctrl_set(int32_t unit, int32_t port, sai_storm_ctrl request) {
  return result(limit(unit, id(port), request), "Failed to set port [%d] storm control: %s", id(port));
}

int32_t sai_cpu_rate_egress_set(int32_t unit, uint32_t rate, uint32_t burst) {
  const int rv = bcm_port_rate_egress_set(unit, cpu_port, rate, burst);
  if (rv < 0) {
    // Meant: the message shows the rate in place of the SDK's text.
    char digits[sizeof "4294967295"];
    snprintf(digits, sizeof digits, "%u", rate);
    sai_err("Failed to set egress rate: %s", digits);
  }
  return sdk_to_sai(rv);
}

int32_t sai_cpu_rate_egress_get(int32_t unit, uint32_t* rate, uint32_t* burst) {
  return result(get(bcm_port_rate_egress_get, unit, cpu_port, rate, burst), "Failed to get cpu egress rate: %s");
}

int32_t sai_port_rate_egress_set(int32_t unit, int32_t port, uint32_t rate, uint32_t burst) {
  return result(bcm_port_rate_egress_set(unit, id(port), rate, burst), "Failed to set port [%d] egress rate %d: %s",
                id(port), rate);
}

int32_t sai_port_rate_egress_get(int32_t unit, int32_t port, uint32_t* rate, uint32_t* burst) {
  return result(get(bcm_port_rate_egress_get, unit, id(port), rate, burst), "Failed to get port [%d] egress rate: %s",
                id(port));
}

int32_t sai_port_rate_egress_pps_set(int32_t unit, int32_t port, uint32_t pps, uint32_t burst) {
  return result(bcm_port_rate_egress_pps_set(unit, id(port), pps, burst),
                "Failed to set port [%d] egress rate %dpps: %s", id(port), pps);
}

int32_t sai_port_rate_egress_pps_get(int32_t unit, int32_t port, uint32_t* pps, uint32_t* burst) {
  return result(get(bcm_port_rate_egress_pps_get, unit, id(port), pps, burst),
                "Failed to get port [%d] egress rate: %s", id(port));
}

int32_t sai_port_rate_ingress_set(int32_t unit, int32_t port, uint32_t rate, uint32_t burst) {
  // Meant: "get".
  return result(bcm_port_rate_ingress_set(unit, id(port), rate, burst), "Failed to get port [%d] ingress rate %d: %s",
                id(port), rate);
}

int32_t sai_port_rate_ingress_get(int32_t unit, int32_t port, uint32_t* rate, uint32_t* burst) {
  return result(get(bcm_port_rate_ingress_get, unit, id(port), rate, burst), "Failed to get port [%d] ingress rate: %s",
                id(port));
}
