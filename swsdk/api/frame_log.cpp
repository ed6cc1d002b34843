#include "api/frame_log.h"

#include <swsdk/watch.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <utility>
#include <vector>

#include "api/call.h"
#include "api/caller.h"

namespace {

constexpr std::string_view end_of_block = "\n\n";

std::atomic<int> watches_of_all = 0;

/// Never destroyed: frames can come in while the process exits.
api::Watches& watches_of_this_process() {
  static api::Watches& instance = *new api::Watches;
  return instance;
}

api::Watches& own_watches() {
  return api::present_caller() == nullptr ? watches_of_this_process() : api::present_caller()->watches;
}

std::string head_of(int unit) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  char text[64];
  std::snprintf(text, sizeof text, "at %lld.%09ld unit %d\n", static_cast<long long>(now.tv_sec), now.tv_nsec, unit);
  return text;
}

}  // namespace

void api::FrameLog::add(std::string_view head, std::string_view way) {
  const std::lock_guard guard(lock_);
  blocks_ += head;
  while (!way.empty()) {
    const std::string_view line = way.substr(0, std::min(way.find('\n'), way.size() - 1) + 1);
    if (detail == Way::Detail::all || Way::is_of_ends(line)) blocks_ += line;
    way.remove_prefix(line.size());
  }
  blocks_ += '\n';
  if (blocks_.size() > max_size) give_up_oldest();
}

/// A quarter of them, so that this is rare.
void api::FrameLog::give_up_oldest() {
  std::size_t end = blocks_.find(end_of_block, max_size / 4);
  end = end == std::string::npos ? blocks_.size() : end + end_of_block.size();
  for (std::size_t at = 0; (at = blocks_.find(end_of_block, at)) < end; at += end_of_block.size()) ++lost_;
  blocks_.erase(0, end);
}

std::size_t api::FrameLog::take(char* buffer, std::size_t size) {
  const std::lock_guard guard(lock_);
  if (lost_ > 0) blocks_.insert(0, std::string(cut_) + "lost " + std::to_string(std::exchange(lost_, 0)) + "\n\n");
  std::size_t length = std::min(blocks_.size(), size - 1);
  if (length < blocks_.size() && length >= end_of_block.size())
    if (const std::size_t end = blocks_.rfind(end_of_block, length - end_of_block.size()); end != std::string::npos)
      length = end + end_of_block.size();
  copy_out(std::string_view(blocks_).substr(0, length), buffer, size);
  if (const std::string_view taken = std::string_view(blocks_).substr(0, length); !taken.empty())
    cut_ = taken.ends_with(end_of_block) ? "" : taken.ends_with('\n') ? "\n" : end_of_block;
  blocks_.erase(0, length);
  return length;
}

api::Watches::~Watches() { watches_of_all -= static_cast<int>(logs_.size()); }

int api::Watches::begin(Way::Detail detail, PacketFilter filter) {
  const std::lock_guard guard(lock_);
  if (logs_.size() == SWSDK_WATCHES) return -1;
  int number = 0;
  while (logs_.contains(number)) ++number;
  logs_[number] = std::make_shared<FrameLog>(detail, std::move(filter));
  ++watches_of_all;
  return number;
}

std::shared_ptr<api::FrameLog> api::Watches::find(int number) {
  const std::lock_guard guard(lock_);
  const auto found = logs_.find(number);
  return found == logs_.end() ? nullptr : found->second;
}

bool api::Watches::end(int number) {
  const std::lock_guard guard(lock_);
  if (logs_.erase(number) == 0) return false;
  --watches_of_all;
  return true;
}

void api::Watches::append_wanting(std::span<const uint8_t> frame, std::vector<std::shared_ptr<FrameLog>>& logs) {
  const std::lock_guard guard(lock_);
  for (const auto& [number, log] : logs_)
    if (log->filter.takes(frame)) logs.push_back(log);
}

bool api::Watches::any() { return watches_of_all.load(std::memory_order_relaxed) > 0; }

chip::Drop api::receive_watched(int unit, chip::Port port, std::span<const uint8_t> frame, chip::Wire& wire) {
  chip::Pipeline& pipeline = *find_unit(unit)->pipeline;
  if (!Watches::any()) return pipeline.receive(port, frame, wire);
  std::vector<std::shared_ptr<FrameLog>> logs;
  watches_of_this_process().append_wanting(frame, logs);
  for_each_caller([&](Caller& caller) { caller.watches.append_wanting(frame, logs); });
  if (logs.empty()) return pipeline.receive(port, frame, wire);
  const bool wants_all =
      std::any_of(logs.begin(), logs.end(), [](const auto& log) { return log->detail == Way::Detail::all; });
  Way way(wants_all ? Way::Detail::all : Way::Detail::ends, "", &wire);
  const std::string head = head_of(unit);
  const chip::Drop drop = pipeline.receive(port, frame, way, &way);
  for (const std::shared_ptr<FrameLog>& log : logs) log->add(head, way.text());
  return drop;
}

int swsdk_watch_begin(int detail, const void* filter, size_t length) {
  const auto* const bytes = static_cast<const uint8_t*>(filter);
  const auto begin = [=] {
    std::optional<api::PacketFilter> program = api::PacketFilter::of({bytes, length});
    if (!program) return -1;
    return own_watches().begin(detail == SWSDK_WATCH_WAYS ? api::Way::Detail::all : api::Way::Detail::ends,
                               *std::move(program));
  };
  if ((detail != SWSDK_WATCH_ENDS && detail != SWSDK_WATCH_WAYS) || (bytes == nullptr && length > 0)) return -1;
  constexpr uint8_t nothing = 0;
  return api::ask(__func__, begin, -1, detail,
                  api::bytes(bytes == nullptr ? &nothing : bytes, static_cast<unsigned>(length)), length);
}

size_t swsdk_watch_take(int watch, char* buffer, size_t size) {
  const std::size_t room = std::min(size, api::max_text);
  const auto take = [=] {
    const std::shared_ptr<api::FrameLog> log = own_watches().find(watch);
    return log == nullptr ? 0 : log->take(buffer, room);
  };
  if (buffer == nullptr || room < 2) return 0;
  return api::ask(__func__, take, std::size_t{0}, watch, api::text_out(buffer, room), room);
}

int swsdk_watch_end(int watch) {
  const auto end = [=] { return own_watches().end(watch) ? 0 : -1; };
  return api::ask(__func__, end, -1, watch);
}
