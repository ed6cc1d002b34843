#include "api/fault.h"

#include <swsdk/fault.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "api/call.h"
#include "api/replay.h"

namespace {

struct Fault {
  int code;
  int calls_to_go;  // 1: the next call fails; SWSDK_FAULT_EVERY_CALL: all do
};

std::mutex faults_lock;
std::map<std::string, Fault, std::less<>> faults;  // guarded by `faults_lock`
std::atomic<bool> any_fault = false;               // so that a call without faults takes no lock

/// The control interface acts on the chip from outside, so no fault applies to it.
bool is_entry_point(std::string_view name) { return !name.starts_with("swsdk_"); }

}  // namespace

std::optional<int> api::next_fault(const char* function) {
  if (!any_fault) return std::nullopt;
  const std::lock_guard guard(faults_lock);
  const auto found = faults.find(function);
  if (found == faults.end()) return std::nullopt;
  Fault& fault = found->second;
  const int code = fault.code;
  if (fault.calls_to_go == SWSDK_FAULT_EVERY_CALL) return code;
  if (--fault.calls_to_go > 0) return std::nullopt;
  faults.erase(found);
  any_fault = !faults.empty();
  return code;
}

int swsdk_fault_inject(const char* function, int code, int nth) {
  if (function == nullptr || nth < 0 || !is_entry_point(function) || api::find_replayable(function) == nullptr)
    return -1;
  const auto inject = [=] {
    const std::lock_guard guard(faults_lock);
    faults.insert_or_assign(function, Fault{.code = code, .calls_to_go = nth});
    any_fault = true;
    return 0;
  };
  return api::ask(__func__, inject, -1, function, code, nth);
}

void api::clear_faults() {
  const std::lock_guard guard(faults_lock);
  faults.clear();
  any_fault = false;
}

void swsdk_fault_clear() {
  const auto clear = [] {
    api::clear_faults();
    return 0;
  };
  api::ask(__func__, clear, -1);
}

const char* swsdk_fault_function(int index) {
  for (const api::Replayable& one : api::replayables())
    if (is_entry_point(one.name) && index-- == 0) return one.name;
  return nullptr;
}
