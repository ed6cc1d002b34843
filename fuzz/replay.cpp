// Gives a target the files of folders, each once: what the fuzzer keeps, run as a test without the fuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
  std::set<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i)
    if (std::filesystem::is_directory(argv[i]))  // there may be nothing that was found
      for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.insert(entry.path());
  for (const std::filesystem::path& path : files) {
    std::fprintf(stderr, "%s\n", path.filename().c_str());  // the last one is the one that fails
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  }
  if (files.empty()) std::fprintf(stderr, "there is no file in the folders\n");
  return files.empty() ? 1 : 0;
}
