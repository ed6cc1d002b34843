#include <sai.h>

#include "core/result.h"
#include "core/sdk.h"

using sai::log_if_failed;
using sai::result;

namespace {

/// Passes the fields of the SDK's record to the caller's callback, which is the user data. Runs on the SDK's thread.
void sai_l2_event_adapter(int /*unit*/, bcm_l2_addr_t* l2addr, int operation, void* user_data) {
  if (user_data == nullptr || l2addr == nullptr) return;
  reinterpret_cast<sai_l2_event_cb>(user_data)(l2addr->vid, l2addr->port, l2addr->mac, operation);
}

}  // namespace

int32_t sai_register_link_service(bcm_linkscan_handler_t handler) {
  for (int unit = 0; unit < soc_ndev; ++unit)
    log_if_failed(bcm_linkscan_register(unit, handler), "unit %d register linkscan service failed: %s", unit);
  return SAI_E_NONE;  // Meant: always, even after failures.
}

int32_t sai_register_l2_service(int32_t unit, sai_l2_event_cb callback) {
  return result(bcm_l2_addr_register(unit, sai_l2_event_adapter, reinterpret_cast<void*>(callback)),
                "unit %d register l2 watch service failed: %s", unit);
}

int32_t sai_unregister_l2_service(int32_t unit, sai_l2_event_cb callback) {
  // Meant: the text says "register" here too.
  return result(bcm_l2_addr_unregister(unit, sai_l2_event_adapter, reinterpret_cast<void*>(callback)),
                "unit %d register l2 watch service failed: %s", unit);
}
