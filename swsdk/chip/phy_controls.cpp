#include "chip/phy_controls.h"

namespace chip {

const char* PhyControls::name(int control) {
  switch (static_cast<PhyControl>(control)) {
    using enum PhyControl;
    case error_correction:
      return "FEC";
    case rx_peak_filter:
      return "RX peak filter";
    case rx_low_frequency_peak_filter:
      return "RX low frequency peak filter";
    case rx_vga:
      return "RX VGA";
    case rx_tap1:
      return "RX tap 1";
    case rx_tap2:
      return "RX tap 2";
    case rx_tap3:
      return "RX tap 3";
    case rx_tap4:
      return "RX tap 4";
    case rx_tap5:
      return "RX tap 5";
    case tx_fir_pre:
      return "TX FIR pre";
    case tx_fir_main:
      return "TX FIR main";
    case tx_fir_post:
      return "TX FIR post";
    case tx_fir_post2:
      return "TX FIR post2";
    case tx_fir_post3:
      return "TX FIR post3";
    case dfe:
      return "DFE";
    case low_power_dfe:
      return "low power DFE";
    case br_dfe:
      return "BR DFE";
    case error_correction_cl91:
      return "FEC clause 91";
    case rx_tap6:
      return "RX tap 6";
    case error_correction_cl108:
      return "FEC clause 108";
  }
  return nullptr;
}

}  // namespace chip
