#include <sai.h>

#include "core/sdk.h"

int32_t sai_sh_process_command(int32_t unit, char* command) {
  return sh_process_command(unit, command) == 0 ? SAI_E_NONE : SAI_E_FAIL;
}
