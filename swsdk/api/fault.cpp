#include "api/fault.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <swsdk/fault.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace {

struct Fault {
  int code;
  int calls_to_go;  // 1: the next call fails; SWSDK_FAULT_EVERY_CALL: all do
};

std::mutex faults_lock;
std::map<std::string, Fault, std::less<>> faults;  // guarded by `faults_lock`
std::atomic<bool> any_fault = false;               // so that a call without faults takes no lock

/// Whether this library exports an SDK function of that name that calls are made of.
bool is_entry_point(std::string_view name) {
  if (name.starts_with("swsdk_") || name.ends_with("_t_init")) return false;
  Dl_info self;
  if (dladdr(reinterpret_cast<void*>(&swsdk_fault_inject), &self) == 0) return false;
  void* const library = dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  if (library == nullptr) return false;
  void* const symbol = dlsym(library, std::string(name).c_str());
  Dl_info where;
  void* entry = nullptr;
  const bool is_function = symbol != nullptr && dladdr1(symbol, &where, &entry, RTLD_DL_SYMENT) != 0 &&
                           where.dli_fbase == self.dli_fbase && entry != nullptr &&
                           ELF64_ST_TYPE(static_cast<const ElfW(Sym)*>(entry)->st_info) == STT_FUNC;
  dlclose(library);
  return is_function;
}

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
  if (function == nullptr || nth < 0 || !is_entry_point(function)) return -1;
  const std::lock_guard guard(faults_lock);
  faults.insert_or_assign(function, Fault{.code = code, .calls_to_go = nth});
  any_fault = true;
  return 0;
}

void swsdk_fault_clear() {
  const std::lock_guard guard(faults_lock);
  faults.clear();
  any_fault = false;
}
