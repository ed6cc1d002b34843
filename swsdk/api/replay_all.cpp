#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/recording.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "api/differences.h"
#include "api/events.h"
#include "api/recording.h"
#include "api/recording_lines.h"
#include "api/repeat.h"

using api::Kind;
using api::RecordedLine;
using api::Say;
using api::text_of;

namespace {

/// The answers and events of a recording beside those that come now.
class Comparison {
 public:
  using Differs = std::function<void(const swsdk_difference&)>;

  explicit Comparison(Differs differs) : differs_(std::move(differs)) {}

  void compare_answer(const RecordedLine& line, int number) {
    const std::string recorded = text_of(line);
    const std::string now = api::repeated(line);
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
  void compare_event(const RecordedLine& line, int number, const Say& say) {
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
    settle(events_, number, text);
  }

  /// Reports the events that the recording does not have, if it has those of its chip.
  swsdk_replayed end() {
    settle_frames();
    if (!has_events_) events_.clear();
    for (const Texts& came : {events_, sent_})
      for (const std::string& event : came) tell(0, name_of(event), "event", "", "event " + event);
    return counts_;
  }

  bool has_differences() const { return has_differences_; }

 private:
  using Texts = std::vector<std::string>;

  static std::string name_of(const std::string& event) { return event.substr(0, event.find('(')); }
  static bool is_frame(const std::string& event) { return event.starts_with(api::frame_callback); }

  /// Compares an event with those that came.
  void settle(Texts& came, int number, const std::string& text) {
    ++counts_.answers;
    const auto found = std::find(came.begin(), came.end(), text);
    if (found == came.end()) return tell(number, name_of(text), "event", "event " + text, "");
    came.erase(found);
    ++counts_.the_same;
  }

  void settle_frames() {
    has_frames_ = has_frames_ || !frames_.empty();
    for (const auto& [number, text] : frames_) settle(sent_, number, text);
    frames_.clear();
    if (!has_frames_) sent_.clear();  // older recordings have none
  }

  void take_events() {
    for (std::string& event : api::take_captured_events())
      (is_frame(event) ? sent_ : events_).push_back(std::move(event));
  }

  static void raise(const RecordedLine& line, const Say& say) {
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
  Texts events_;                                     // of callbacks, that came and were not compared yet
  Texts sent_;                                       // the frames that came, apart from the events, which can be many
  std::vector<std::pair<int, std::string>> frames_;  // of the recording, with their lines, that did not come yet
  swsdk_replayed counts_{};
  bool has_events_ = false;
  bool has_frames_ = false;
  bool has_differences_ = false;
};

}  // namespace

int swsdk_replay_all(const char* path, swsdk_difference_t differs, swsdk_line_t tell, void* data,
                     swsdk_replayed* replayed) {
  if (path == nullptr || differs == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  api::begin_replay();
  api::capture_events(true);
  Comparison comparison([&](const swsdk_difference& difference) { differs(&difference, data); });
  const int outcome = api::read_recording(path, tell, data, [&](const RecordedLine& line, int number, const Say& say) {
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
