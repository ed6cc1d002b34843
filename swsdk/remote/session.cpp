#include "remote/session.h"

#include <system_error>

#include "api/call.h"
#include "api/replay.h"
#include "api/system.h"
#include "remote/protocol.h"

namespace remote {

Session::Session(const std::string& name, int process, LineStream calls, LineStream events)
    : Caller(name, process), calls_(std::move(calls)), events_(std::move(events)) {}

Session::~Session() {
  end();
  if (sender_.joinable()) sender_.join();
}

void Session::run() {
  const auto self = shared_from_this();
  try {
    sender_ = std::thread([this] { send_events(); });
  } catch (const std::system_error&) {
    return end();  // no room for a thread
  }
  {
    const api::WorksFor works_for(self);
    api::add_caller(self);
    if (calls_.write(units()))
      for (auto line = calls_.read(); line && answer_line(*line); line = calls_.read()) continue;
    api::remove_caller(self);
  }
  api::forget_caller(self);
  end();
}

/// What the SDK exports, which the client knows then.
std::string Session::units() {
  const api::UnitData data = api::present_unit_data();
  told_version_ = data.version;
  return text_of(data) + '\n';
}

void Session::end() {
  calls_.shut_down();
  events_.shut_down();
  const std::lock_guard guard(lock_);
  ending_ = true;
  changed_.notify_all();
}

void Session::tell(std::string_view event) {
  const std::lock_guard guard(lock_);
  if (ending_) return;
  ++events_told_;
  if (lost_ > 0 || waiting_.size() + event.size() > max_waiting_events) {
    ++lost_;
    return;
  }
  waiting_.append(event) += '\n';
  changed_.notify_all();
}

void Session::send_events() {
  std::unique_lock guard(lock_);
  while (true) {
    changed_.wait(guard, [this] { return ending_ || !waiting_.empty(); });
    if (ending_) return;
    std::string events = std::exchange(waiting_, {});
    const long long lost = std::exchange(lost_, 0);
    if (lost > 0) ++events_told_;  // what the SDK exports, which may be among the lost
    guard.unlock();
    if (lost > 0)
      events +=
          api::call_text(lost_event, {lost}, api::Form::wire, 0) + '\n' + text_of(api::present_unit_data()) + '\n';
    const bool sent = events_.write(events);
    guard.lock();
    if (!sent) ending_ = true;
  }
}

void Session::add_to_answer(std::string_view line) { answer_.append(line) += '\n'; }

/// Takes what follows a call: nothing, or " = " with what the client's walk has come to.
bool Session::walk_result_of(std::string_view rest) {
  constexpr std::string_view equals = " = ";
  if (rest.empty()) return true;
  if (!rest.starts_with(equals)) return false;
  try {
    api::parse_value(rest.substr(equals.size()), walk_result.emplace());
    return true;
  } catch (const api::Unreadable&) {
    walk_result.reset();
    return false;
  }
}

/// False when the line is nothing that a client of this version says.
bool Session::answer_line(std::string_view line) {
  const std::size_t open = line.find('(');
  const std::size_t close = line.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return false;
  const std::string_view name = line.substr(0, open);
  const api::Replayable* const function = api::find_replayable(name);
  if (function == nullptr) return false;
  try {
    if (!walk_result_of(line.substr(close + 1))) return false;
    answered.clear();
    answer_.clear();
    long long result = api::call_with(*function, api::items(line.substr(open, close - open + 1), '(', ')'));
    if (walk_result.has_value()) {
      walk_result.reset();
      return true;
    }
    if (name == "swsdk_events_drain" || name == "swsdk_power_off") {  // the client waits for what it was told before
      const std::lock_guard guard(lock_);
      result = events_told_;
    }
    answer_ += std::string(result_mark) + std::to_string(result) + (answered.empty() ? "" : ' ' + answered) + '\n';
  } catch (const api::Unreadable& error) {
    walk_result.reset();
    answer_ = std::string(error_mark) + error.what() + '\n';
  }
  if (told_version_ != api::unit_data_version()) answer_.insert(0, units());
  const bool sent = calls_.write(answer_);
  constexpr std::size_t usual_size = 65536;
  if (answer_.capacity() > usual_size) answer_ = {};
  return sent;
}

}  // namespace remote
