#include "api/fault.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <swsdk/fault.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "api/call.h"
#include "api/replay.h"

namespace {

constexpr int spent = -1;

std::mutex faults_lock;
std::map<std::string, swsdk_fault, std::less<>> faults;  // guarded by `faults_lock`
std::atomic<bool> any_fault = false;  // one that can still hit a call, so that a call without takes no lock

/// After a change of the faults, which are locked.
void look_for_any() {
  any_fault = std::any_of(faults.begin(), faults.end(), [](const auto& one) { return one.second.nth != spent; });
}

/// The control interface acts on the chip from outside, so no fault applies to it.
bool is_entry_point(std::string_view name) { return !name.starts_with("swsdk_"); }

/// The exported function of libsai.so by which the application entered it, on this thread's stack. Callbacks of walks
/// run in the library too, below frames of this one. A function that ends with a jump has no frame.
std::string function_of_library() {
  void* frames[64];
  const int count = backtrace(frames, static_cast<int>(std::size(frames)));
  std::string name = "-";
  for (int i = 0; i < count; ++i) {
    Dl_info info;
    // The address is that of the instruction behind the call.
    if (dladdr(static_cast<char*>(frames[i]) - 1, &info) == 0) break;
    const std::string_view path = info.dli_fname;
    const std::string_view file = path.substr(path.rfind('/') + 1);
    if (file.starts_with("libsai.so")) {
      if (info.dli_sname != nullptr) name = info.dli_sname;
    } else if (!file.starts_with("libswsdk.so")) {
      break;
    }
  }
  return name;
}

}  // namespace

std::optional<int> api::next_fault(const char* function) {
  if (!any_fault) return std::nullopt;
  const std::lock_guard guard(faults_lock);
  const auto found = faults.find(function);
  if (found == faults.end()) return std::nullopt;
  swsdk_fault& fault = found->second;
  if (fault.nth == spent) return std::nullopt;
  if (fault.nth != SWSDK_FAULT_EVERY_CALL) {
    if (--fault.nth > 0) return std::nullopt;
    fault.nth = spent;
    look_for_any();
  }
  ++fault.hits;
  return fault.code;
}

int swsdk_fault_inject(const char* function, int code, int nth) {
  if (function == nullptr || nth < 0 || !is_entry_point(function) || api::find_replayable(function) == nullptr)
    return -1;
  const auto inject = [=] {
    const std::lock_guard guard(faults_lock);
    faults.insert_or_assign(function, swsdk_fault{.code = code, .nth = nth, .hits = 0});
    any_fault = true;
    return 0;
  };
  return api::ask(__func__, inject, -1, function, code, nth);
}

void api::log_fault(const char* function) {
  const char* const path = std::getenv(SWSDK_FAULT_LOG_VARIABLE);
  if (path == nullptr || *path == '\0') return;
  std::FILE* const file = std::fopen(path, "ae");
  if (file == nullptr) return;
  std::fprintf(file, "%s %s\n", function, function_of_library().c_str());
  std::fclose(file);
}

int swsdk_fault_get(const char* function, swsdk_fault* fault) {
  if (function == nullptr || fault == nullptr) return -1;
  const auto get = [=] {
    const std::lock_guard guard(faults_lock);
    const auto found = faults.find(function);
    if (found == faults.end()) return -1;
    *fault = found->second;
    return 0;
  };
  return api::ask(__func__, get, -1, function, api::out(fault));
}

int swsdk_fault_remove(const char* function) {
  if (function == nullptr) return -1;
  const auto remove = [=] {
    const std::lock_guard guard(faults_lock);
    const auto found = faults.find(function);
    if (found == faults.end()) return -1;
    faults.erase(found);
    look_for_any();
    return 0;
  };
  return api::ask(__func__, remove, -1, function);
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
    if (index >= 0 && is_entry_point(one.name) && index-- == 0) return one.name;
  return nullptr;
}
