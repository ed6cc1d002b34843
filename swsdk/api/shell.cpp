#include <appl/diag/shell.h>

#include "api/call.h"

cmd_result_t sh_process_command(int unit, char* c) {
  return static_cast<cmd_result_t>(api::unmodelled(__func__, unit, c));
}
