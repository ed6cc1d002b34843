#include "core/unit.h"

#include <sai.h>

#include "core/sdk.h"

int sai::cpu_port(int unit) { return CMIC_PORT(unit); }

// Meant: one chip, always unit 0.
int32_t sai_unit_get() { return 0; }
