#include "sweep/sweep.h"

namespace sweep {

Rows l2() {
  return {};
}

}  // namespace sweep
