// Raw registers of the PHYs, and the equalization of a port's SerDes.
#include <sai.h>

#include "core/result.h"
#include "core/sdk.h"

using sai::log_if_failed;
using sai::result;

namespace {

constexpr uint32_t default_space = 0;

/// A control of a set that is read or written as a whole, and its name in messages.
struct Control {
  bcm_port_phy_control_t control;
  const char* name;
};

constexpr Control tx_fir_taps[] = {
    {BCM_PORT_PHY_CONTROL_TX_FIR_PRE, "BCM_PORT_PHY_CONTROL_TX_FIR_PRE"},
    {BCM_PORT_PHY_CONTROL_TX_FIR_MAIN, "BCM_PORT_PHY_CONTROL_TX_FIR_MAIN"},
    {BCM_PORT_PHY_CONTROL_TX_FIR_POST, "BCM_PORT_PHY_CONTROL_TX_FIR_POST"},
    {BCM_PORT_PHY_CONTROL_TX_FIR_POST2, "BCM_PORT_PHY_CONTROL_TX_FIR_POST2"},
    {BCM_PORT_PHY_CONTROL_TX_FIR_POST3, "BCM_PORT_PHY_CONTROL_TX_FIR_POST3"},
};

constexpr Control rx_filters[] = {
    {BCM_PORT_PHY_CONTROL_RX_PEAK_FILTER, "BCM_PORT_PHY_CONTROL_RX_PEAK_FILTER"},
    {BCM_PORT_PHY_CONTROL_RX_LOW_FREQ_PEAK_FILTER, "BCM_PORT_PHY_CONTROL_RX_LOW_FREQ_PEAK_FILTER"},
    {BCM_PORT_PHY_CONTROL_RX_VGA, "BCM_PORT_PHY_CONTROL_RX_VGA"},
};

constexpr Control rx_taps[] = {
    {BCM_PORT_PHY_CONTROL_RX_TAP1, "BCM_PORT_PHY_CONTROL_RX_TAP1"},
    {BCM_PORT_PHY_CONTROL_RX_TAP2, "BCM_PORT_PHY_CONTROL_RX_TAP2"},
    {BCM_PORT_PHY_CONTROL_RX_TAP3, "BCM_PORT_PHY_CONTROL_RX_TAP3"},
    {BCM_PORT_PHY_CONTROL_RX_TAP4, "BCM_PORT_PHY_CONTROL_RX_TAP4"},
    {BCM_PORT_PHY_CONTROL_RX_TAP5, "BCM_PORT_PHY_CONTROL_RX_TAP5"},
    {BCM_PORT_PHY_CONTROL_RX_TAP6, "BCM_PORT_PHY_CONTROL_RX_TAP6"},
};

constexpr bcm_port_phy_control_t fec_controls[] = {
    BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION,
    BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION_CL91,
    BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION_CL108,
};

constexpr bcm_port_phy_control_t dfe_controls[] = {
    BCM_PORT_PHY_CONTROL_FIRMWARE_DFE_ENABLE,
    BCM_PORT_PHY_CONTROL_FIRMWARE_LP_DFE_ENABLE,
    BCM_PORT_PHY_CONTROL_FIRMWARE_BR_DFE_ENABLE,
};

/// The row that `selector` selects, counted from 1. Meant: any other number selects the first row.
template <class Row, int count>
constexpr const Row& selected(const Row (&rows)[count], int selector) {
  return rows[1 <= selector && selector <= count ? selector - 1 : 0];
}

/// Writes every control of a set. Meant: a failure does not end the loop, and the result is that of the last control
/// only; get_each() does the same.
template <int count>
int32_t set_each(int unit, int port, const Control (&rows)[count], const uint32_t (&values)[count]) {
  int rv = BCM_E_NONE;
  for (int i = 0; i < count; ++i) {
    rv = bcm_port_phy_control_set(unit, port, rows[i].control, values[i]);
    log_if_failed(rv, "Failed to set port [%d] phy control %s value %d: %s", port, rows[i].name, values[i]);
  }
  return sdk_to_sai(rv);
}

template <int count>
int32_t get_each(int unit, int port, const Control (&rows)[count], uint32_t* values) {
  int rv = BCM_E_NONE;
  for (int i = 0; i < count; ++i) {
    rv = values == nullptr ? BCM_E_PARAM : bcm_port_phy_control_get(unit, port, rows[i].control, &values[i]);
    log_if_failed(rv, "Failed to get port [%d] phy control %s: %s", port, rows[i].name);
  }
  return sdk_to_sai(rv);
}

/// Meant: a port whose speed cannot be read is not changed; the speed itself does not matter.
int speed_check(int unit, int port) {
  int speed = 0;
  const int rv = bcm_port_speed_get(unit, port, &speed);
  log_if_failed(rv, "Failed to get port [%d] speed: %s", port);
  return rv;
}

}  // namespace

int32_t sai_phy_miim_read(int32_t unit, uint16_t phy_addr, uint8_t reg, uint16_t* data) {
  return result(soc_miim_read(unit, phy_addr, reg, data), "Failed to read phy [%d] reg [0x%x]: %s", phy_addr, reg);
}

int32_t sai_phy_miim_write(int32_t unit, uint16_t phy_addr, uint8_t reg, uint16_t data) {
  return result(soc_miim_write(unit, phy_addr, reg, data), "Failed to write phy [%d] reg [0x%x] value [0x%x]: %s",
                phy_addr, reg, data);
}

int32_t sai_phy_miimc45_read(int32_t unit, uint16_t phy_addr, uint8_t devad, uint16_t reg, uint16_t* data) {
  const uint8_t reached = static_cast<uint8_t>(reg);  // Meant: only 8 bits, in the write below too.
  return result(soc_miimc45_read(unit, phy_addr, devad, reached, data),
                "Failed to read phy [%d] devad [%d] reg [0x%x]: %s", phy_addr, devad, reached);
}

int32_t sai_phy_miimc45_write(int32_t unit, uint16_t phy_addr, uint8_t devad, uint16_t reg, uint16_t data) {
  const uint8_t reached = static_cast<uint8_t>(reg);
  return result(soc_miimc45_write(unit, phy_addr, devad, reached, data),
                "Failed to write phy [%d] devad [%d] reg [0x%x] value [0x%x]: %s", phy_addr, devad, reached, data);
}

int32_t sai_port_phy_read(int32_t unit, int32_t port, uint32_t reg, uint32_t* data) {
  return result(bcm_port_phy_get(unit, port, default_space, reg, data), "Failed to read phy [%d] reg [0x%x]: %s", port,
                reg);
}

int32_t sai_port_phy_write(int32_t unit, int32_t port, uint32_t reg, uint32_t data) {
  return result(bcm_port_phy_set(unit, port, default_space, reg, data),
                "Failed to write phy [%d] reg [0x%x] value [0x%x]: %s", port, reg, data);
}

int32_t sai_port_phy_tx_fir_set(int32_t unit, int32_t port, uint32_t pre, uint32_t main, uint32_t post, uint32_t post2,
                                uint32_t post3) {
  return set_each(unit, port, tx_fir_taps, {pre, main, post, post2, post3});
}

int32_t sai_port_phy_tx_fir_get(int32_t unit, int32_t port, uint32_t* fir) {
  return get_each(unit, port, tx_fir_taps, fir);
}

int32_t sai_port_phy_fec_set(int32_t unit, int32_t port, int32_t fec_type, uint32_t value) {
  const int rv = speed_check(unit, port);
  if (rv < 0) return sdk_to_sai(rv);
  const bcm_port_phy_control_t control = selected(fec_controls, fec_type);
  return result(bcm_port_phy_control_set(unit, port, control, value),
                "Failed to set port [%d] phy control %d enable %d: %s", port, control, value);
}

int32_t sai_port_phy_fec_get(int32_t unit, int32_t port, int32_t fec_type, uint32_t* value) {
  const bcm_port_phy_control_t control = selected(fec_controls, fec_type);
  return result(bcm_port_phy_control_get(unit, port, control, value), "Failed to get port [%d] phy control %d : %s",
                port, control);
}

int32_t sai_port_phy_dfe_set(int32_t unit, int32_t port, int32_t dfe_type, uint32_t value) {
  const bcm_port_phy_control_t control = selected(dfe_controls, dfe_type);
  return result(bcm_port_phy_control_set(unit, port, control, value),
                "Failed to set port [%d] phy control %d enable %d: %s", port, control, value);
}

int32_t sai_port_phy_dfe_get(int32_t unit, int32_t port, int32_t dfe_type, uint32_t* value) {
  const bcm_port_phy_control_t control = selected(dfe_controls, dfe_type);
  return result(bcm_port_phy_control_get(unit, port, control, value), "Failed to get port [%d] phy control %d : %s",
                port, control);
}

int32_t sai_port_phy_rx_pf_set(int32_t unit, int32_t port, int32_t pf_type, uint32_t value) {
  const int rv = speed_check(unit, port);
  if (rv < 0) return sdk_to_sai(rv);
  const bcm_port_phy_control_t control = selected(rx_filters, pf_type).control;
  return result(bcm_port_phy_control_set(unit, port, control, value),
                "Failed to set port [%d] phy control %d value %d: %s", port, control, value);
}

int32_t sai_port_phy_rx_pf_get(int32_t unit, int32_t port, uint32_t* pf) {
  return get_each(unit, port, rx_filters, pf);
}

int32_t sai_port_phy_rxtap_set(int32_t unit, int32_t port, int32_t tap, uint32_t value) {
  const bcm_port_phy_control_t control = selected(rx_taps, tap).control;
  return result(bcm_port_phy_control_set(unit, port, control, value),
                "Failed to set port [%d] phy control %d value %d: %s", port, control, value);
}

int32_t sai_port_phy_rxtap_get(int32_t unit, int32_t port, uint32_t* taps) {
  return get_each(unit, port, rx_taps, taps);
}
