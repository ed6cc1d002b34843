// Opening the log allocates, and nothing else in the library does: counted on Chip SDKs that do not allocate either,
// one that answers 0 and one that fails.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "invoke.h"

namespace {

int allocations = 0;

}  // namespace

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);

// They take the place of libc's for every library of this program. What else allocates builds on them, or on these two.
void* malloc(size_t size) {
  ++allocations;
  return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}

void* realloc(void* old, size_t size) {
  ++allocations;
  return __libc_realloc(old, size);
}

void* aligned_alloc(size_t, size_t size) { return malloc(size); }

int posix_memalign(void** memory, size_t, size_t size) { return (*memory = malloc(size)) == nullptr; }
}

namespace {

/// A log that takes everything, and streams that have their buffers already.
void prepare() {
  static char buffer[BUFSIZ];
  static char output_buffer[BUFSIZ];
  ASSERT_NE(std::freopen("/dev/null", "w", stdout), nullptr);
  std::setvbuf(stdout, output_buffer, _IOFBF, sizeof output_buffer);
  sai_log_default = open_sai_log("allocations", 0, 0, 0);
  sai_log_default->file = std::fopen("/dev/null", "w");
  ASSERT_NE(sai_log_default->file, nullptr);
  std::setvbuf(sai_log_default->file, buffer, _IOFBF, sizeof buffer);
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_DEBUGGING);
  sai_err("The first date makes libc read the time zone.");
}

}  // namespace

TEST(Allocations, OfTheLogAreCountedAndNoOtherFunctionHasAny) {
  const int before = allocations;
  sai_log_handle* const log = open_sai_log("allocations", 0, 0, 0);
  ASSERT_EQ(allocations, before + 1);
  close_sai_log(log);

  const int output = dup(STDOUT_FILENO);  // what the test says is seen
  prepare();
  std::string allocating;
  for (const bench::Function& function : bench::functions) {
    allocations = 0;
    function.call();
    const int counted = allocations;
    if (counted != 0) allocating += std::string(" ") + function.name;
  }
  std::fflush(stdout);
  dup2(output, STDOUT_FILENO);
  EXPECT_EQ(allocating, "");
}
