#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/fault.h>
#include <swsdk/recording.h>
#include <swsdk/state.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "api/chosen_id.h"
#include "api/comparison.h"
#include "api/recording.h"
#include "api/repeat.h"
#include "chip/slots.h"

using api::Comparison;
using api::Kind;
using api::RecordedLine;
using api::RecordingTime;
using api::Say;
using api::text_of;

namespace {

/// The calls that registered the callbacks which are registered: a chip's state does not have them.
class Registrations {
 public:
  void follow(const RecordedLine& line) {
    if (line.name == "swsdk_power_off") lines_.clear();
    const bool adds = line.name == "bcm_linkscan_register" || line.name == "bcm_l2_addr_register";
    const bool removes = line.name == "bcm_linkscan_unregister" || line.name == "bcm_l2_addr_unregister";
    if (line.kind != Kind::call || line.result != BCM_E_NONE || !(adds || removes)) return;
    const std::string arguments(line.text.substr(line.name.size()));
    if (adds)
      lines_.push_back("call " + std::string(line.text));
    else
      std::erase(lines_, "call " +
                             std::string(line.name == "bcm_linkscan_unregister" ? "bcm_linkscan_register"
                                                                                : "bcm_l2_addr_register") +
                             arguments);
  }

  const std::vector<std::string>& lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

}  // namespace

std::string api::repeated(const RecordedLine& line) {
  callback_answer = std::min(line.result, 0);
  if (line.kind == Kind::fault) swsdk_fault_inject(line.function->name, line.result, 1);
  take_captured();
  const chip::WantedSlot wanted(chosen_slot(line));
  call_with(*line.function, line.arguments);
  swsdk_events_drain();
  return take_captured();
}

void api::begin_replay() {
  swsdk_power_off();
  forget_pointer_numbers();
  capture_recording(true);
}

int swsdk_replay(const char* path, swsdk_line_t tell, void* data) {
  if (path == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  api::begin_replay();
  bool same = true;
  const int outcome =
      api::read_recording(path, tell, data, [&](const RecordedLine& line, int /*number*/, const Say& say) {
        if (line.kind == Kind::event) return true;
        const std::string recorded = text_of(line);
        const std::string now = api::repeated(line);
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

int swsdk_replay_all(const char* path, unsigned long long until, swsdk_difference_t differs, swsdk_line_t tell,
                     void* data, swsdk_replayed* replayed) {
  if (path == nullptr || differs == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  Comparison comparison([&](const swsdk_difference& difference) { differs(&difference, data); });
  RecordingTime time;
  const int outcome = api::read_recording(path, tell, data, [&](const RecordedLine& line, int number, const Say& say) {
    if (time.after(line) > until) return false;
    comparison.repeat(line, number, say);
    return true;
  });
  const swsdk_replayed counts = comparison.end();
  if (outcome == SWSDK_REPLAY_UNREADABLE) return outcome;
  if (replayed != nullptr) *replayed = counts;
  return comparison.has_differences() ? SWSDK_REPLAY_DIFFERENT : outcome;
}

int swsdk_recording_cut(const char* path, unsigned long long nanoseconds, const char* state, swsdk_line_t write,
                        swsdk_line_t tell, void* data) {
  if (path == nullptr || state == nullptr || write == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  Comparison comparison([](const swsdk_difference&) {});
  bool is_later = false;
  bool is_saved = true;
  RecordingTime time;
  Registrations registrations;
  const auto begin_cut = [&] {
    is_later = true;
    is_saved = swsdk_state_save(state) == SWSDK_STATE_DONE;
    if (!is_saved) tell((std::string(state) + ": cannot be written").c_str(), data);
    write((std::string(api::recording_header) + std::to_string(api::recording_version)).c_str(), data);
    std::error_code error;
    const std::string whole_path = std::filesystem::absolute(state, error).string();  // as the call itself is recorded
    write(("action swsdk_state_restore(" + api::quoted(whole_path) + ") = 0").c_str(), data);
    for (const std::string& line : registrations.lines()) write(line.c_str(), data);
  };
  const int outcome = api::read_recording(path, tell, data, [&](const RecordedLine& line, int number, const Say& say) {
    if (!is_later && time.after(line) > nanoseconds) begin_cut();
    if (is_later) {
      write(std::string(line.whole).c_str(), data);
    } else {
      comparison.repeat(line, number, say);
      registrations.follow(line);
    }
    return is_saved;
  });
  if (outcome == SWSDK_REPLAY_UNREADABLE || !is_saved) return SWSDK_REPLAY_UNREADABLE;
  if (!is_later) begin_cut();
  if (outcome == SWSDK_REPLAY_SAME) write(api::recording_end.data(), data);
  return is_saved ? outcome : SWSDK_REPLAY_UNREADABLE;
}
