// A call that the recorder writes, against the same call and line written by hand. Run with the recorder before it.
#include <bcm/l2.h>
#include <bcm/vlan.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "ratios.h"

namespace {

/// How much longer than by hand a call may take, in nanoseconds.
constexpr double allowed = 1000;

/// The SDK's function, past the recorder.
template <class Function>
Function* past_recorder(Function* /*type*/, const char* name) {
  void* const sdk = dlopen("libswsdk.so", RTLD_LAZY | RTLD_NOLOAD);
  return sdk == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(sdk, name));
}

}  // namespace

int main() {
  if (std::getenv("SWSDK_RECORD") == nullptr) {
    std::printf("no recorder: nothing to measure\n");
    return EXIT_FAILURE;
  }
  const auto create = past_recorder(&bcm_vlan_create, "bcm_vlan_create");
  const auto add = past_recorder(&bcm_l2_addr_add, "bcm_l2_addr_add");
  char name[] = "record_bench.XXXXXX";
  const int file = mkstemp(name);
  if (create == nullptr || add == nullptr || create == &bcm_vlan_create || file < 0) return EXIT_FAILURE;
  std::remove(name);
  fcntl(file, F_SETFL, O_APPEND);

  static bcm_l2_addr_t address{};
  address.mac[5] = 7;
  address.vid = 10;
  address.port = 3;
  const auto write_line = [=](const char* line, int length) {
    if (write(file, line, static_cast<std::size_t>(length)) != length) std::abort();
  };
  const auto repeat = [](auto work) {
    return [work](int times) {
      for (; times > 0; --times) work();
    };
  };
  const std::vector<double> ns = bench::nanoseconds({
      repeat([=] {
        const int result = create(0, 10);
        char line[128];
        write_line(line, std::snprintf(line, sizeof line, "call bcm_vlan_create(%d, %d) = %d @%.6f %d\n", 0, 10, result,
                                       0.123456, 1));
      }),
      repeat([] { bcm_vlan_create(0, 10); }),
      repeat([=] {
        const int result = add(0, &address);
        const auto& mac = address.mac;
        char line[256];
        write_line(line,
                   std::snprintf(line, sizeof line,
                                 "call bcm_l2_addr_add(%d, {mac=%02x:%02x:%02x:%02x:%02x:%02x, vid=%d, port=%d}) = "
                                 "%d @%.6f %d\n",
                                 0, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5], address.vid, address.port, result,
                                 0.123456, 1));
      }),
      repeat([] { bcm_l2_addr_add(0, &address); }),
  });
  bool good = true;
  const char* const names[] = {"bcm_vlan_create", "bcm_l2_addr_add"};
  for (std::size_t i = 0; i < 2; ++i) {
    const double by_hand = ns[2 * i];
    const double recorded = ns[2 * i + 1];
    std::printf("%-16s recorded %7.0f ns, by hand %7.0f ns: %.2f times, %.0f ns more\n", names[i], recorded, by_hand,
                recorded / by_hand, recorded - by_hand);
    good = good && recorded - by_hand <= allowed;
  }
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
