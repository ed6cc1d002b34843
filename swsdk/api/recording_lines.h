// The lines of a recording, as those who repeat it or write it otherwise get them.
#pragma once

#include <swsdk/recording.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "api/calls/recording_format.h"
#include "api/replay.h"

namespace api {

/// Reports something about a line, with file and number.
using Say = std::function<void(const std::string&)>;

/// A line of a recording whose function is known; that of an event is not one to call.
struct RecordedLine {
  std::string_view whole;  // as the file has it
  Kind kind;
  std::string_view text;  // without its kind and its stamp
  std::string_view name;
  const Replayable* function;
  Texts arguments;
  int result;
  std::optional<uint64_t> time;  // that a recorder has stamped it with, which writes events, too
};

/// Takes a line with its number; false ends the reading.
using TakeLine = std::function<bool(const RecordedLine& line, int number, const Say& say)>;

/// Passes each line of a recording to `take`. Errors are reported to `tell` with file and line. Returns one of the
/// SWSDK_REPLAY_ values, as if all answers had been the same.
int read_recording(const char* path, swsdk_line_t tell, void* data, const TakeLine& take);

/// A line as the file has it, without its stamp.
std::string text_of(const RecordedLine& line);

/// The time of a recording's lines: of their stamps, or of the virtual chip's clock, which its own recordings move.
class RecordingTime {
 public:
  /// In nanoseconds, after a line.
  uint64_t after(const RecordedLine& line);

 private:
  uint64_t now_ = 0;
};

}  // namespace api
