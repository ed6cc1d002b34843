// The frames that pass through the switch, written into a file as they pass.
#pragma once

#include <atomic>
#include <string>
#include <thread>

#include "pcapng.h"
#include "watch.h"

namespace vswitch {

/// Writes from its construction to its end. A file that can no longer be written is told of once; the switch goes on.
class Capturing {
 public:
  /// @param detail  SWSDK_WATCH_ENDS or SWSDK_WATCH_WAYS
  /// Throws BadInput when the file cannot be made.
  Capturing(const std::string& path, int detail);
  ~Capturing();
  Capturing(const Capturing&) = delete;
  Capturing& operator=(const Capturing&) = delete;

  /// Writes what has been recorded up to now, and ends.
  void finish();

  /// Whether the file could no longer be written.
  bool had_trouble() const { return had_trouble_; }

 private:
  void run();

  saish::PcapngFile file_;
  saish::Watch watch_;
  std::atomic<bool> ending_ = false;
  std::atomic<bool> had_trouble_ = false;
  std::thread writer_;
};

}  // namespace vswitch
