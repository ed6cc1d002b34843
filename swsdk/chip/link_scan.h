// The link scan: which changes of links are reported, and when.
#pragma once

#include "chip/port_set.h"
#include "chip/status.h"

namespace chip {

class LinkScan {
 public:
  /// Every quarter of a second after a reset, not paused, and as if every link were down.
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

  /// The ports whose links have changed since it last looked; those of a pause come after it.
  PortSet look(const PortSet& links) {
    if (!watches()) return {};
    PortSet changed = links - known_;
    changed |= known_ - links;
    known_ = links;
    return changed;
  }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(interval_, pauses_, known_);
  }

 private:
  int interval_ = 250000;
  int pauses_ = 0;
  PortSet known_;  // the links that were up when it last looked
};

}  // namespace chip
