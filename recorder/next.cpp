#include "next.h"

#include <dlfcn.h>
#include <link.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> loaded_libraries() {
  std::vector<std::string> names;
  const auto add = [](dl_phdr_info* info, std::size_t /*size*/, void* to) {
    if (info->dlpi_name != nullptr && *info->dlpi_name != '\0')
      static_cast<std::vector<std::string>*>(to)->emplace_back(info->dlpi_name);
    return 0;
  };
  dl_iterate_phdr(add, &names);
  return names;
}

}  // namespace

void* recorder::find_next(const char* name, const void* own) {
  if (void* const found = dlsym(RTLD_NEXT, name); found != nullptr) return found;
  // A library that dlopen() has loaded is not in the search order.
  for (const std::string& library : loaded_libraries()) {
    void* const handle = dlopen(library.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) continue;
    void* const found = dlsym(handle, name);
    dlclose(handle);
    if (found != nullptr && found != own) return found;
  }
  return nullptr;
}
