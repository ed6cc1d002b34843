// Gives a target the named files: what the fuzzer keeps, run as a test without the fuzzer.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
  for (int i = 1; i < argc; ++i) {
    std::fprintf(stderr, "%s\n", argv[i]);  // the last one is the one that fails
    std::ifstream file(argv[i], std::ios::binary);
    if (!file) return 1;
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  }
  if (argc < 2) std::fprintf(stderr, "no file is named\n");
  return argc < 2 ? 1 : 0;
}
