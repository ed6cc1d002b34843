#include "api/journal.h"

#include <swsdk/journal.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include "api/call.h"
#include "api/caller.h"

namespace {

std::atomic<int> recording_journals = 0;

/// Never destroyed: calls can occur while the process exits.
api::Journal& journal_of_this_process() {
  static api::Journal& instance = *new api::Journal("");
  return instance;
}

}  // namespace

api::Journal::~Journal() { record(0); }

void api::Journal::record(int on) {
  const std::lock_guard guard(lock_);
  recording_journals += (on != 0 ? 1 : 0) - (recording_ != 0 ? 1 : 0);
  recording_ = on;
}

int api::Journal::recording() const {
  const std::lock_guard guard(lock_);
  return recording_;
}

void api::Journal::clear() {
  const std::lock_guard guard(lock_);
  lines_.clear();
  full_ = false;
}

std::size_t api::Journal::read_from(std::size_t position, char* buffer, std::size_t size) const {
  const std::lock_guard guard(lock_);
  return copy_out(std::string_view(lines_).substr(std::min(position, lines_.size())), buffer, size);
}

std::size_t api::Journal::take(char* buffer, std::size_t size) {
  const std::lock_guard guard(lock_);
  std::size_t length = std::min(lines_.size(), size - 1);
  if (const std::size_t end = lines_.rfind('\n', length == 0 ? 0 : length - 1); length > 0 && end != std::string::npos)
    length = end + 1;
  copy_out(std::string_view(lines_).substr(0, length), buffer, size);
  lines_.erase(0, length);
  full_ = full_ && !lines_.empty();
  return length;
}

void api::Journal::add(const Journal& of, std::string_view line) {
  const std::lock_guard guard(lock_);
  const bool own = &of == this;
  if (full_ || recording_ == 0 || (!own && recording_ != SWSDK_JOURNAL_OF_ALL)) return;
  full_ = !owner_.empty() && lines_.size() + line.size() > max_size_of_client;
  if (full_)
    lines_ += "(lines are left out from here on: this journal is full; swsdk_journal_clear empties it)";
  else
    lines_.append(own ? "" : of.owner_.empty() ? "chip: " : of.owner_).append(line);
  lines_ += '\n';
}

bool api::any_journal_is_recording() { return recording_journals.load(std::memory_order_relaxed) > 0; }

void api::journal_add(std::string_view line) {
  const Journal& own = own_journal();
  journal_of_this_process().add(own, line);
  for_each_caller([&](Caller& caller) { caller.journal.add(own, line); });
}

api::Journal& api::own_journal() {
  return present_caller() == nullptr ? journal_of_this_process() : present_caller()->journal;
}

void swsdk_journal_record(int on) {
  const auto record = [=] {
    api::own_journal().record(on);
    return 0;
  };
  api::ask(__func__, record, 0, on);
}

int swsdk_journal_recording() {
  return api::ask(
      __func__, [] { return api::own_journal().recording() != 0 ? 1 : 0; }, 0);
}

void swsdk_journal_clear() {
  const auto clear = [] {
    api::own_journal().clear();
    return 0;
  };
  api::ask(__func__, clear, 0);
}

size_t swsdk_journal_read(char* buffer, size_t size) { return swsdk_journal_read_from(0, buffer, size); }

size_t swsdk_journal_read_from(size_t position, char* buffer, size_t size) {
  const std::size_t room = std::min(size, api::max_text);
  const auto read = [=] { return api::own_journal().read_from(position, buffer, room); };
  return api::ask(__func__, read, std::size_t{0}, position, api::text_out(buffer, room), room);
}

size_t swsdk_journal_take(char* buffer, size_t size) {
  const std::size_t room = std::min(size, api::max_text);
  const auto take = [=] { return api::own_journal().take(buffer, room); };
  if (buffer == nullptr || room < 2) return 0;
  return api::ask(__func__, take, std::size_t{0}, api::text_out(buffer, room), room);
}
