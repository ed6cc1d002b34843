#include "sweep/sweep.h"

namespace sweep {

Rows field() {
  return {};
}

}  // namespace sweep
