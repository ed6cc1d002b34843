// Each function of the library against the SDK calls that it makes, made directly. Goal: at most 1.10 times.
//
// Both sides run on an SDK that does nothing. Which calls a function makes is found by running this program once more
// on an SDK that prints the name of every call; so each function of sai.h is measured, without a list to keep up.
#include <dlfcn.h>
#include <sai.h>
#include <soc/drv.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "ratios.h"

namespace {

// Volatile: neither side may know its arguments when it is compiled.
volatile int number = 1;

/// What every pointer points to. Zeros are a good record, address, name and bitmap to an SDK that does nothing.
alignas(64) std::array<char, 65536> memory;

template <class T>
T argument() {
  if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>)
    return nullptr;
  else if constexpr (std::is_pointer_v<T>)
    return reinterpret_cast<T>(memory.data());
  else if constexpr (std::is_integral_v<T>)
    return static_cast<T>(number);
  else {
    T record;
    static_assert(sizeof record % sizeof number == 0 && std::is_trivially_copyable_v<T>);
    for (std::size_t i = 0; i < sizeof record; i += sizeof number) {
      const int word = number;
      std::memcpy(reinterpret_cast<char*>(&record) + i, &word, sizeof word);
    }
    return record;
  }
}

template <class... Args>
void invoke(int32_t (*function)(Args...)) {
  benchmark::DoNotOptimize(function(argument<Args>()...));
}

template <class... Args>
void invoke(void (*function)(Args...)) {
  function(argument<Args>()...);
}

struct Function {
  const char* name;
  void (*call)();
};

constexpr Function functions[] = {
#include "functions.inc"
};

using SdkCall = int (*)(...);

/// Makes the calls behind one call of its own, as the library does.
[[gnu::noinline]] void replay(const std::vector<SdkCall>& calls) {
  for (const SdkCall call : calls) benchmark::DoNotOptimize(call(number, number, number, number));
}

/// The SDK calls of each function that makes some, as the recording run of this program prints them.
std::map<std::string, std::vector<SdkCall>> recorded(const char* self) {
  const std::string command = std::string("LD_LIBRARY_PATH=" RECORDING_SDK " ") + self + " --record";
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
  std::map<std::string, std::vector<SdkCall>> result;
  std::string function;
  for (char line[256]; output != nullptr && std::fgets(line, sizeof line, output.get()) != nullptr;) {
    std::istringstream words(line);
    std::string kind;
    std::string name;
    words >> kind >> name;
    if (kind == "function") function = name;
    if (kind != "call") continue;
    if (void* const symbol = dlsym(RTLD_DEFAULT, name.c_str()))
      result[function].push_back(reinterpret_cast<SdkCall>(symbol));
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  sai_log_default = open_sai_log("call_bench", 0, 0, 0);
  if (argc > 1 && std::string(argv[1]) == "--record") {
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    for (const Function& function : functions) {
      std::printf("function %s\n", function.name);
      function.call();
    }
    return EXIT_SUCCESS;
  }
  const std::map<std::string, std::vector<SdkCall>> calls = recorded(argv[0]);
  for (const Function& function : functions) {
    const auto found = calls.find(function.name);
    if (found == calls.end()) {
      std::printf("%s makes no SDK call with these arguments\n", function.name);
      continue;
    }
    if (std::string(function.name).ends_with("_show")) continue;  // it prints, which takes much longer than its calls
    bench::compare(function.name, function.call, [sdk_calls = found->second] { replay(sdk_calls); });
  }
  return bench::run(argc, argv);
}
