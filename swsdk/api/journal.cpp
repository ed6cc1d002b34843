#include "api/journal.h"

#include <swsdk/journal.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

namespace {

std::atomic<bool> recording = false;
std::mutex lines_lock;
std::string lines;  // guarded by `lines_lock`

}  // namespace

bool api::journal_is_recording() { return recording.load(std::memory_order_relaxed); }

void api::journal_add(std::string_view line) {
  const std::lock_guard guard(lines_lock);
  lines += line;
  lines += '\n';
}

std::size_t api::copy_out(std::string_view text, char* buffer, std::size_t size) {
  if (size > 0) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
  }
  return text.size();
}

void swsdk_journal_record(int on) { recording = on != 0; }

int swsdk_journal_recording() { return api::journal_is_recording(); }

void swsdk_journal_clear() {
  const std::lock_guard guard(lines_lock);
  lines.clear();
}

size_t swsdk_journal_read(char* buffer, size_t size) { return swsdk_journal_read_from(0, buffer, size); }

size_t swsdk_journal_read_from(size_t position, char* buffer, size_t size) {
  const std::lock_guard guard(lines_lock);
  return api::copy_out(std::string_view(lines).substr(std::min(position, lines.size())), buffer, size);
}
