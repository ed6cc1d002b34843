#include "api/recording_lines.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "api/calls/parse.h"

using api::Kind;
using api::RecordedLine;
using api::Say;
using api::Unreadable;

namespace {

constexpr uint64_t nanoseconds_per_second = 1'000'000'000;

/// What stands before the stamp of a line, or all of it.
std::string_view without_stamp(std::string_view text) {
  constexpr std::size_t longest_stamp = 40;  // lines of frames are long
  const std::size_t from = text.size() - std::min(text.size(), longest_stamp);
  const std::size_t mark = text.substr(from).rfind(api::stamp_mark);
  if (mark == std::string_view::npos ||
      text.find_first_not_of("0123456789. ", from + mark + api::stamp_mark.size()) != std::string_view::npos)
    return text;
  return text.substr(0, from + mark);
}

/// The nanoseconds of a stamp " @0.000123 1".
uint64_t time_of(std::string_view stamp) {
  const std::string text(stamp.substr(api::stamp_mark.size()));
  return static_cast<uint64_t>(std::strtod(text.c_str(), nullptr) * static_cast<double>(nanoseconds_per_second));
}

/// Nothing, with a notice, when the line has a kind or a function that this chip does not know.
std::optional<RecordedLine> parsed_line(std::string_view text, const Say& notice) {
  const std::string_view whole = text;
  const std::string_view word = text.substr(0, text.find(' '));
  if (word == api::state_mark) return std::nullopt;  // its lines are like any others
  const std::optional<Kind> kind = api::kind_of(word);
  if (!kind || *kind == Kind::question) {
    notice("skipped: there is no kind \"" + std::string(word) + "\" here");
    return std::nullopt;
  }
  text.remove_prefix(std::min(word.size() + 1, text.size()));
  const std::string_view with_stamp = text;
  text = without_stamp(text);
  const std::string_view stamp = with_stamp.substr(text.size());
  const bool is_event = *kind == Kind::event;
  const std::size_t open = text.find('(');
  const std::size_t close = is_event ? text.rfind(')') : text.rfind(") = ");
  if (open == std::string_view::npos || close == std::string_view::npos || close < open)
    throw Unreadable(text, is_event ? "event such as bcm_linkscan_handler_t(<callback 1>, 0, 3, {linkstatus=1})"
                                    : "call such as bcm_vlan_create(0, 10) = 0");
  const std::string_view name = text.substr(0, open);
  RecordedLine line{.whole = whole,
                    .kind = *kind,
                    .text = text,
                    .name = name,
                    .function = nullptr,
                    .arguments = {},
                    .result = 0,
                    .time = {}};
  if (!stamp.empty()) line.time = time_of(stamp);
  if (is_event) return line;  // most are frames, of which only the text counts
  line.arguments = api::items(text.substr(open, close - open + 1), '(', ')');
  const api::Replayable* const function = api::find_replayable(name);
  if (function == nullptr) {
    notice("skipped: there is no function \"" + std::string(name) + "\" here");
    return std::nullopt;
  }
  line.function = function;
  api::parse_value(text.substr(close + 4), line.result);
  return line;
}

/// The version that a recording's first line names.
int version_of(std::string_view text) {
  constexpr std::string_view header = api::recording_header;
  const std::string newest = std::to_string(api::recording_version);
  if (!text.starts_with(header))
    throw Unreadable("not a recording: its first line is not \"" + std::string(header) + newest + '"');
  for (int version = api::oldest_recording_version; version <= api::recording_version; ++version)
    if (text.substr(header.size()) == std::to_string(version)) return version;
  throw Unreadable("version " + std::string(text.substr(header.size())) +
                   " of the format; this chip reads versions up to " + newest);
}

}  // namespace

int api::read_recording(const char* path, swsdk_line_t tell, void* data, const TakeLine& take) {
  std::string text;
  int number = 0;
  const Say say = [&](const std::string& what) {
    tell((std::string(path) + ':' + (number > 0 ? std::to_string(number) + ":" : "") + ' ' + what).c_str(), data);
  };
  std::ifstream file(path);
  if (!std::getline(file, text)) {
    say(file.eof() && !file.bad() ? "is empty, so it is no recording" : "cannot be read");
    return SWSDK_REPLAY_UNREADABLE;
  }
  number = 1;
  try {
    const int version = version_of(text);
    bool ended = version < api::first_version_with_end;
    const bool marks_its_end = !ended;
    while (std::getline(file, text)) {
      ++number;
      if (text.empty()) continue;
      if (marks_its_end && ended && version < api::first_version_with_children)
        throw Unreadable("stands behind the end of the recording");
      ended = ended && !marks_its_end;
      if (marks_its_end && text == api::recording_end) {
        ended = true;
        continue;
      }
      if (marks_its_end && file.eof()) {
        say("the recording was cut in this line");
        return SWSDK_REPLAY_INCOMPLETE;
      }
      const std::optional<RecordedLine> line = parsed_line(text, say);
      if (line && !take(*line, number, say)) return SWSDK_REPLAY_SAME;
    }
    if (ended) return SWSDK_REPLAY_SAME;
    say("the recording ends here without its end mark: it was cut, or its process was");
    return SWSDK_REPLAY_INCOMPLETE;
  } catch (const Unreadable& error) {
    say(error.what());
    return SWSDK_REPLAY_UNREADABLE;
  }
}

std::string api::text_of(const RecordedLine& line) {
  return api::kind_names[static_cast<int>(line.kind)] + (' ' + std::string(line.text));
}

uint64_t api::RecordingTime::after(const RecordedLine& line) {
  if (line.time) return now_ = *line.time;
  if (line.name == "swsdk_power_off") now_ = 0;
  const bool in_seconds = line.name == "swsdk_clock_step";
  if (in_seconds || line.name == "swsdk_clock_advance") {
    uint64_t passed = 0;
    if (line.arguments.size() == 2) parse_value(line.arguments[1], passed);
    now_ += in_seconds ? passed * nanoseconds_per_second : passed;
  }
  return now_;
}
