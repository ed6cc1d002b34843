// The link scan: whether link changes are reported.
#pragma once

#include "chip/status.h"

namespace chip {

class LinkScan {
 public:
  /// Every quarter of a second after a reset, and not paused.
  void reset() { *this = {}; }

  /// Scans every so many microseconds, or with 0 never.
  Status set_interval(int microseconds) {
    if (microseconds < 0) return Status::bad_parameter;
    interval_ = microseconds;
    return Status::ok;
  }
  int interval() const { return interval_; }

  /// Pauses nest: each needs a resume of its own.
  void pause() { ++pauses_; }
  void resume() {
    if (pauses_ > 0) --pauses_;
  }

  bool watches() const { return interval_ > 0 && pauses_ == 0; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(interval_, pauses_);
  }

 private:
  int interval_ = 250000;
  int pauses_ = 0;
};

}  // namespace chip
