// The application's callbacks, behind functions of the recorder that write each event before they hand it on.
#pragma once

#include "api/calls/sdk.h"

namespace recorder {

/// Calls of the SDK in progress on this thread. What the SDK calls within its own calls is not the application's.
extern thread_local int calls_in_progress;

/// While it lives, calls are the application's again: the SDK has called back.
class CallbackInProgress {
 public:
  CallbackInProgress() { calls_in_progress = 0; }
  ~CallbackInProgress() { calls_in_progress = before_; }
  CallbackInProgress(const CallbackInProgress&) = delete;
  CallbackInProgress& operator=(const CallbackInProgress&) = delete;

 private:
  const int before_ = calls_in_progress;
};

// What to register in place of a callback: always the same for the same one. Null stays null, and so does a callback
// more than the recorder has functions for, whose events are then not recorded.

bcm_linkscan_handler_t relayed(bcm_linkscan_handler_t callback);
bcm_l2_addr_callback_t relayed(bcm_l2_addr_callback_t callback);

/// A traversal's callback, which is called before the traversal returns.
bcm_l2_traverse_cb relayed(bcm_l2_traverse_cb callback);

}  // namespace recorder
