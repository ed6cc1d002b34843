// An entry of a field group while it is built, moved or completed.
#pragma once

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

namespace sai {

/// A failed step is logged under the name of the function that runs it. `rv` keeps the result of the last step.
struct FieldEntry {
  const char* function;
  int unit;
  int group;
  int id = -1;
  int rv = BCM_E_NONE;

  /// Whether `call`, which returned `result`, succeeded.
  bool passed(int result, const char* call) {
    rv = result;
    return !failed(rv, "%s %s entry %d failed: %s", function, call, id);
  }

  /// The same, with a message that names the group too.
  bool passed_in_group(int result, const char* call) {
    rv = result;
    return !failed(rv, "%s %s group %d entry %d failed: %s", function, call, group, id);
  }
};

constexpr bcm_vlan_t vlan_id_mask = 0xFFF;

}  // namespace sai
