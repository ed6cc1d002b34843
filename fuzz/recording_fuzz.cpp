// Recordings, mutated: what one makes the chip do is recorded again, and that recording repeats without a difference.
#include <swsdk/chip.h>
#include <swsdk/recording.h>

#include <algorithm>
#include <cstdint>

#include "input.h"
#include "recordings.h"

using fuzz::RecordingFile;
using fuzz::Replayed;
using fuzz::require;

namespace {

constexpr char header[] = "swsdk recording ";
/// Of the version that needs no mark at its end.
constexpr char started_chip[] = "swsdk recording 1\ncall sdk_main(0, NULL) = 0\ncall system_init(0) = 0\n";

/// Where the line behind the first so many begins.
std::size_t line_start(const std::string& text, int lines) {
  std::size_t at = 0;
  for (; lines > 0 && at < text.size(); --lines) at = std::min(text.find('\n', at), text.size() - 1) + 1;
  return at;
}

/// Repeats a recording, and records what it does: what was told.
Replayed recorded(const RecordingFile& given, const RecordingFile& made) {
  swsdk_power_off();
  require(swsdk_record_start(made.path()) == 0, "the recording does not start");
  Replayed result = fuzz::replayed(given);
  require(swsdk_record_stop() == 0, "the recording does not end");
  return result;
}

/// Whether the SDK's shell may be told to read a file, of which some are without end. Nothing else has a slash.
bool names_a_file(const std::string& text) { return text.find('/') != std::string::npos; }

}  // namespace

extern "C" {

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const RecordingFile given("given");
  static const RecordingFile made("made");
  constexpr int most_repetitions = 6;
  std::string text(reinterpret_cast<const char*>(data), size);
  if (names_a_file(text)) return 0;
  if (!text.starts_with(header)) text.insert(0, started_chip);

  // A repetition ends at the first line that cannot be read or has another answer. The next one is of what was recorded
  // up to there, which has to repeat, and of the lines behind, before the mark of the recording's end.
  std::ptrdiff_t recorded_lines = 0;
  for (int repetition = 1;; ++repetition) {
    given.write(text);
    const bool becomes_c = fuzz::becomes_c(given);
    const Replayed result = recorded(given, made);
    if (result.outcome == SWSDK_REPLAY_SAME) {
      require(becomes_c, "a recording that repeats does not become a C program");
      break;
    }
    require(result.line > recorded_lines, "a recording of what the chip did does not repeat");
    std::string rest = text.substr(line_start(text, result.line));
    if (!rest.empty() && !rest.ends_with('\n')) rest += '\n';
    text = made.text();
    recorded_lines = std::count(text.begin(), text.end(), '\n') - 1;
    if (repetition < most_repetitions) text.insert(line_start(text, static_cast<int>(recorded_lines)), rest);
  }
  swsdk_power_off();
  return 0;
}
}
