#include "api/comparison.h"

#include <swsdk/chip.h>
#include <swsdk/events.h>

#include <algorithm>

#include "api/differences.h"
#include "api/events.h"
#include "api/recording.h"
#include "api/repeat.h"

using api::Comparison;
using api::RecordedLine;
using api::Say;

namespace {

std::string name_of(const std::string& event) { return event.substr(0, event.find('(')); }
bool is_frame(const std::string& event) { return event.starts_with(api::frame_callback); }

/// Does what raised the event of a line.
void raise(const RecordedLine& line, const Say& say) {
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

}  // namespace

Comparison::Comparison(Differs differs) : differs_(std::move(differs)) {
  api::begin_replay();
  api::capture_events(true);
}

Comparison::~Comparison() {
  api::capture_recording(false);
  api::capture_events(false);
}

void Comparison::repeat(const RecordedLine& line, int number, const Say& say) {
  if (line.kind == Kind::event)
    compare_event(line, number, say);
  else
    compare_answer(line, number);
}

void Comparison::compare_answer(const RecordedLine& line, int number) {
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

void Comparison::compare_event(const RecordedLine& line, int number, const Say& say) {
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

swsdk_replayed Comparison::end() {
  settle_frames();
  if (!has_events_) events_.clear();
  for (const Texts& came : {events_, sent_})
    for (const std::string& event : came) tell(0, name_of(event), "event", "", "event " + event);
  return counts_;
}

void Comparison::settle(Texts& came, int number, const std::string& text) {
  ++counts_.answers;
  const auto found = std::find(came.begin(), came.end(), text);
  if (found == came.end()) return tell(number, name_of(text), "event", "event " + text, "");
  came.erase(found);
  ++counts_.the_same;
}

void Comparison::settle_frames() {
  has_frames_ = has_frames_ || !frames_.empty();
  for (const auto& [number, text] : frames_) settle(sent_, number, text);
  frames_.clear();
  if (!has_frames_) sent_.clear();  // older recordings have none
}

void Comparison::take_events() {
  for (std::string& event : api::take_captured_events())
    (is_frame(event) ? sent_ : events_).push_back(std::move(event));
}

void Comparison::tell(int line, std::string_view function, const std::string& kind, const std::string& recorded,
                      const std::string& now) {
  has_differences_ = true;
  const std::string name(function);
  differs_({line, name.c_str(), kind.c_str(), recorded.c_str(), now.c_str()});
}
