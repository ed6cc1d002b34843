#include "api/replay.h"

#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/fault.h>
#include <swsdk/recording.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "api/differences.h"
#include "api/events.h"

using api::Kind;
using api::Unreadable;

namespace {

/// Reports something about a line, with file and number.
using Say = std::function<void(const std::string&)>;

/// A line of a recording whose function is known; that of an event is not one to call.
struct Line {
  Kind kind;
  std::string_view text;  // without its kind and its stamp
  std::string_view name;
  const api::Replayable* function;
  api::Texts arguments;
  int result;
  std::optional<uint64_t> time;  // that a recorder has stamped it with, which writes events, too
};

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

constexpr uint64_t second = 1'000'000'000;

/// The nanoseconds of a stamp " @0.000123 1".
uint64_t time_of(std::string_view stamp) {
  const std::string text(stamp.substr(api::stamp_mark.size()));
  return static_cast<uint64_t>(std::strtod(text.c_str(), nullptr) * static_cast<double>(second));
}

/// Nothing, with a notice, when the line has a kind or a function that this chip does not know.
std::optional<Line> parsed_line(std::string_view text, const Say& notice) {
  const std::string_view word = text.substr(0, text.find(' '));
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
  Line line{.kind = *kind, .text = text, .name = name, .function = nullptr, .arguments = {}, .result = 0, .time = {}};
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

/// Passes each line of a recording to `take`, with its number, until `take` ends it. Errors are reported with file and
/// line. Returns one of the SWSDK_REPLAY_ values, as if all answers had been the same.
template <class Take>
int read_recording(const char* path, swsdk_line_t tell, void* data, Take take) {
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
      const std::optional<Line> line = parsed_line(text, say);
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

/// Arguments that are arrays, from the first to the last, and the argument with their number of items.
struct CountedArrays {
  std::string_view function;
  std::size_t count;
  std::size_t first;
  std::size_t last;
};

constexpr CountedArrays all_counted_arrays[] = {
    {"bcm_multicast_egress_get", 2, 3, 4},
    {"bcm_stat_multi_get", 2, 3, 4},
    {"bcm_switch_ipv6_reserved_multicast_addr_multi_set", 2, 3, 4},
    {"bcm_switch_object_count_multi_get", 1, 2, 3},
    {"bcm_switch_temperature_monitor_get", 1, 2, 2},
    {"bcm_trunk_set", 3, 4, 4},
    {"swsdk_check", 2, 1, 1},
    {"swsdk_frame_send", 3, 2, 2},
    {"swsdk_journal_read_from", 2, 1, 1},
    {"swsdk_journal_take", 1, 0, 0},
    {"swsdk_show", 3, 2, 2},
    {"swsdk_temperatures_set", 2, 1, 1},
};

/// The call trusts the count; a recording may be damaged.
void check_counts(std::string_view function, const api::AllGiven& arguments) {
  for (const CountedArrays& arrays : all_counted_arrays) {
    if (arrays.function != function) continue;
    const std::size_t count = arguments[arrays.count]->asked_items();
    for (std::size_t i = arrays.first; i <= arrays.last; ++i) {
      const std::size_t there = arguments[i]->items_there().value_or(count);
      if (there != count)
        throw Unreadable("argument " + std::to_string(i + 1) + ": " + std::to_string(there) + " items in place of " +
                         std::to_string(count));
    }
  }
}

/// The arguments, parsed from their texts.
api::AllGiven all_given(const api::Replayable& function, const api::Texts& texts) {
  const auto& parameters = function.parameters;
  if (texts.size() != parameters.size())
    throw Unreadable(std::to_string(texts.size()) + " arguments in place of " + std::to_string(parameters.size()));
  api::AllGiven arguments;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    try {
      arguments.push_back(parameters[i](texts[i]));
    } catch (const Unreadable& error) {
      throw Unreadable("argument " + std::to_string(i + 1) + ": " + error.what());
    }
  }
  check_counts(function.name, arguments);
  return arguments;
}

/// Repeats the call and returns the line that it has in a new recording.
std::string repeated(const Line& line) {
  api::callback_answer = std::min(line.result, 0);
  if (line.kind == Kind::fault) swsdk_fault_inject(line.function->name, line.result, 1);
  api::take_captured();
  call_with(*line.function, line.arguments);
  swsdk_events_drain();
  return api::take_captured();
}

void begin_replay() {
  swsdk_power_off();
  api::forget_pointer_numbers();
  api::capture_recording(true);
}

/// A line without its stamp.
std::string recorded_text(const Line& line) {
  return api::kind_names[static_cast<int>(line.kind)] + (' ' + std::string(line.text));
}

/// The time of a recording's lines: of their stamps, or of the virtual chip's clock, which its own recordings move.
class Time {
 public:
  /// In nanoseconds, after a line.
  uint64_t after(const Line& line) {
    if (line.time) return now_ = *line.time;
    if (line.name == "swsdk_power_off") now_ = 0;
    const bool in_seconds = line.name == "swsdk_clock_step";
    if (in_seconds || line.name == "swsdk_clock_advance") {
      uint64_t passed = 0;
      if (line.arguments.size() == 2) api::parse_value(line.arguments[1], passed);
      now_ += in_seconds ? passed * second : passed;
    }
    return now_;
  }

 private:
  uint64_t now_ = 0;
};

/// The answers and events of a recording beside those that come now.
class Comparison {
 public:
  using Differs = std::function<void(const swsdk_difference&)>;

  explicit Comparison(Differs differs) : differs_(std::move(differs)) {}

  void compare_answer(const Line& line, int number) {
    const std::string recorded = recorded_text(line);
    const std::string now = repeated(line);
    take_events();
    has_events_ = has_events_ || line.time.has_value();
    settle_frames();
    ++counts_.answers;
    if (now == recorded) {
      ++counts_.the_same;
      return;
    }
    for (const std::string& kind : api::differences(recorded, now)) tell(number, line.name, kind, recorded, now);
  }

  /// An event that the chip has not raised came from outside, so it is raised.
  void compare_event(const Line& line, int number, const Say& say) {
    std::string text(line.text);
    if (line.name == api::frame_callback) {
      frames_.emplace_back(number, std::move(text));  // the frame that led to it comes next
      return;
    }
    if (std::find(events_.begin(), events_.end(), text) == events_.end()) {
      raise(line, say);
      swsdk_events_drain();
      take_events();
    }
    settle(number, text);
  }

  /// Reports the events that the recording does not have, if it has those of its chip.
  swsdk_replayed end() {
    settle_frames();
    if (!has_events_) std::erase_if(events_, [](const std::string& event) { return !is_frame(event); });
    if (!has_frames_) std::erase_if(events_, is_frame);
    for (const std::string& event : events_) tell(0, name_of(event), "event", "", "event " + event);
    return counts_;
  }

  bool has_differences() const { return has_differences_; }

 private:
  static std::string name_of(const std::string& event) { return event.substr(0, event.find('(')); }
  static bool is_frame(const std::string& event) { return event.starts_with(api::frame_callback); }

  /// Compares an event with those that came.
  void settle(int number, const std::string& text) {
    ++counts_.answers;
    const auto found = std::find(events_.begin(), events_.end(), text);
    if (found == events_.end()) return tell(number, name_of(text), "event", "event " + text, "");
    events_.erase(found);
    ++counts_.the_same;
  }

  void settle_frames() {
    has_frames_ = has_frames_ || !frames_.empty();
    for (const auto& [number, text] : frames_) settle(number, text);
    frames_.clear();
  }

  void take_events() {
    for (std::string& event : api::take_captured_events()) events_.push_back(std::move(event));
  }

  static void raise(const Line& line, const Say& say) {
    const api::Texts arguments = api::items(line.text.substr(line.name.size()), '(', ')');
    int unit = 0;
    if (line.name == api::link_callback && arguments.size() == 4) {
      int port = 0;
      bcm_port_info_t info{};
      api::parse_value(arguments[1], unit);
      api::parse_value(arguments[2], port);
      api::parse_value(arguments[3], info);
      swsdk_link_event(unit, port, info.linkstatus);
    } else if (line.name == api::l2_callback && arguments.size() == 5) {
      bcm_l2_addr_t address{};
      int operation = 0;
      api::parse_value(arguments[1], unit);
      api::parse_value(arguments[2], address);
      api::parse_value(arguments[3], operation);
      if (operation == BCM_L2_CALLBACK_ADD && (address.flags & BCM_L2_TRUNK_MEMBER) != 0)
        bcm_l2_addr_add(unit, &address);
      else if (operation == BCM_L2_CALLBACK_ADD)
        swsdk_l2_learn(unit, address.vid, address.mac, address.port, 0);
      else if (bcm_l2_addr_delete(unit, address.mac, address.vid) != BCM_E_NONE)
        swsdk_l2_event(unit, operation, address.vid, address.mac, address.port);
    } else {
      say("skipped: there is no callback \"" + std::string(line.name) + "\" here");
    }
  }

  void tell(int line, std::string_view function, const std::string& kind, const std::string& recorded,
            const std::string& now) {
    has_differences_ = true;
    const std::string name(function);
    differs_({line, name.c_str(), kind.c_str(), recorded.c_str(), now.c_str()});
  }

  const Differs differs_;
  std::vector<std::string> events_;                  // that came and were not compared yet
  std::vector<std::pair<int, std::string>> frames_;  // of the recording, with their lines, that did not come yet
  swsdk_replayed counts_{};
  bool has_events_ = false;
  bool has_frames_ = false;
  bool has_differences_ = false;
};

/// The C program's beginning; the virtual chip's own headers follow only when a line needs them.
constexpr const char* c_beginning[] = {"#include <appl/diag/shell.h>",
                                       "#include <appl/diag/system.h>",
                                       "#include <bcm/cosq.h>",
                                       "#include <bcm/field.h>",
                                       "#include <bcm/init.h>",
                                       "#include <bcm/ipmc.h>",
                                       "#include <bcm/knet.h>",
                                       "#include <bcm/l2.h>",
                                       "#include <bcm/l3.h>",
                                       "#include <bcm/link.h>",
                                       "#include <bcm/mcast.h>",
                                       "#include <bcm/mirror.h>",
                                       "#include <bcm/multicast.h>",
                                       "#include <bcm/policer.h>",
                                       "#include <bcm/port.h>",
                                       "#include <bcm/rate.h>",
                                       "#include <bcm/stack.h>",
                                       "#include <bcm/stat.h>",
                                       "#include <bcm/stg.h>",
                                       "#include <bcm/switch.h>",
                                       "#include <bcm/trunk.h>",
                                       "#include <bcm/vlan.h>",
                                       "#include <soc/cmic.h>",
                                       "#include <soc/drv.h>",
                                       "#include <soc/knet.h>",
                                       "#include <stdio.h>",
                                       "#include <string.h>",
                                       "",
                                       "int sdk_main(int argc, char** argv);",
                                       "int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);",
                                       "int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);",
                                       "",
                                       "/* What callbacks answer during the present call. */",
                                       "static int callback_answer;",
                                       ""};

constexpr const char* c_end[] = {"    {0, 0, 0, 0}};",
                                 "",
                                 "int main(void) {",
                                 "  const struct step* step;",
                                 "  for (step = steps; step->run != 0; ++step) {",
                                 "    int result;",
                                 "    callback_answer = step->result < 0 ? step->result : 0;",
                                 "    result = step->run();",
                                 "    if (result == step->result) continue;",
                                 "    printf(\"line %d: %s\\n  now: %d\\n\", step->line, step->recorded, result);",
                                 "    return 1;",
                                 "  }",
                                 "  return 0;",
                                 "}"};

/// The call in C, as the body of a function that returns the call's result, or 0.
api::CCall as_c(const api::Replayable& function, const api::Texts& texts) {
  api::CCall call;
  std::string list;
  int index = 0;
  for (const std::unique_ptr<api::AnyGiven>& argument : all_given(function, texts)) {
    list += (index > 0 ? ", " : "") + argument->c("a" + std::to_string(index), call);
    ++index;
  }
  const std::string made = function.name + ('(' + list + ");\n");
  call.statements += function.returns_nothing ? "  " + made + "  return 0;\n" : "  return " + made;
  return call;
}

/// The text, changed so that it does not end the comment that it is in.
std::string in_comment(std::string_view text) {
  std::string result(text);
  for (std::size_t found = 0; (found = result.find("*/", found)) != std::string::npos;)
    result.insert(found + 1, 1, ' ');
  return result;
}

}  // namespace

long long api::call_with(const Replayable& function, const Texts& arguments) {
  return function.call(function.function, all_given(function, arguments));
}

int swsdk_replay(const char* path, swsdk_line_t tell, void* data) {
  return swsdk_replay_until(path, UINT64_MAX, tell, data);
}

int swsdk_replay_until(const char* path, unsigned long long nanoseconds, swsdk_line_t tell, void* data) {
  if (path == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  begin_replay();
  bool same = true;
  Time time;
  const int outcome = read_recording(path, tell, data, [&](const Line& line, int /*number*/, const Say& say) {
    if (time.after(line) > nanoseconds) return false;
    if (line.kind == Kind::event) return true;
    const std::string recorded = recorded_text(line);
    const std::string now = repeated(line);
    same = now == recorded;
    if (same) return true;
    say("the answer differs");
    tell(("  recorded: " + recorded).c_str(), data);
    tell(("  now:      " + now).c_str(), data);
    return false;
  });
  api::capture_recording(false);
  return same ? outcome : SWSDK_REPLAY_DIFFERENT;
}

int swsdk_replay_all(const char* path, swsdk_difference_t differs, swsdk_line_t tell, void* data,
                     swsdk_replayed* replayed) {
  if (path == nullptr || differs == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  begin_replay();
  api::capture_events(true);
  Comparison comparison([&](const swsdk_difference& difference) { differs(&difference, data); });
  const int outcome = read_recording(path, tell, data, [&](const Line& line, int number, const Say& say) {
    if (line.kind == Kind::event)
      comparison.compare_event(line, number, say);
    else
      comparison.compare_answer(line, number);
    return true;
  });
  api::capture_recording(false);
  const swsdk_replayed counts = comparison.end();
  api::capture_events(false);
  if (outcome == SWSDK_REPLAY_UNREADABLE) return outcome;
  if (replayed != nullptr) *replayed = counts;
  return comparison.has_differences() ? SWSDK_REPLAY_DIFFERENT : outcome;
}

int swsdk_replay_as_c(const char* path, swsdk_line_t write, swsdk_line_t tell, void* data) {
  if (path == nullptr || write == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  std::set<std::string> written;
  const auto write_once = [&](const std::string& text) {
    if (written.insert(text).second) write(text.c_str(), data);
  };
  std::vector<std::string> steps;
  write(("/* The SDK calls of the recording " + std::string(path) + ". */").c_str(), data);
  for (const char* const text : c_beginning) write(text, data);
  const int outcome = read_recording(path, tell, data, [&](const Line& line, int number, const Say& /*say*/) {
    if (line.kind == Kind::event) return true;
    const char* const name = line.function->name;
    const api::CCall call = as_c(*line.function, line.arguments);
    const std::string result = std::to_string(line.result);
    const std::string step = "line_" + std::to_string(number);
    std::string before;
    if (line.kind == Kind::fault) write_once("#include <swsdk/fault.h>\n");
    if (line.kind == Kind::action)
      write_once("#include <swsdk/chip.h>\n#include <swsdk/field.h>\n#include <swsdk/frames.h>\n");
    if (line.kind == Kind::fault) before = "  swsdk_fault_inject(" + api::c_string(name) + ", " + result + ", 1);\n";
    for (const std::string& definition : call.definitions) write_once(definition);
    write(("/* " + in_comment(line.text) + " */").c_str(), data);
    write(("static int " + step + "(void) {\n" + before + call.statements + "}\n").c_str(), data);
    steps.push_back("    {" + std::to_string(number) + ", " + api::c_string(line.text) + ", " + step + ", " + result +
                    "},");
    return true;
  });
  write(
      "static const struct step {\n  int line;\n  const char* recorded;\n  int (*run)(void);\n  int result;\n} steps[] "
      "= {",
      data);
  for (const std::string& step : steps) write(step.c_str(), data);
  for (const char* const text : c_end) write(text, data);
  return outcome;
}
