// Each function of the library against the SDK calls that it makes, made directly, on an SDK that does nothing; with
// debug lines off, and on to a file.
//
// Both sides are compiled like an application: calls by name, through the application's procedure linkage table, with
// arguments that are known only at run time, and a check of each result. recorder.cpp writes which calls a function
// makes; so each function of sai.h is measured, without a list to maintain.
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include "core/sdk.h"
#include "invoke.h"
#include "median.h"
#include "ratios.h"

namespace {

constexpr double median_goal = 1.05;
constexpr double worst_goal = 1.25;
/// Above this something is broken: one call frame over an empty function is 1.5 to 2 times that function.
constexpr double median_limit = 2;

int failures = 0;

template <class Result, class... Args>
[[gnu::always_inline]] inline void make(Result (*function)(Args...)) {
  if constexpr (std::is_void_v<Result>)
    bench::invoke(function);
  else if (static_cast<int>(bench::invoke(function)) < 0) [[unlikely]]
    ++failures;
}

/// A braced list keeps the order of the calls and may be of any length: compilers limit how deeply a fold nests.
template <auto... functions>
void repeat(int times) {
  for (; times > 0; --times) static_cast<void>(std::initializer_list<int>{(make(functions), 0)...});
}

struct Row {
  const char* name;
  int calls;
  void (*library)(int times);
  void (*direct)(int times);
};

template <auto function, auto... sdk_calls>
constexpr Row row(const char* name) {
  return {name, sizeof...(sdk_calls), repeat<function>, repeat<sdk_calls...>};
}

constexpr Row rows[] = {
#include "rows.inc"
};

/// The ratios of the functions that make this number of SDK calls.
struct Group {
  const char* name;
  int least;
  int most;
};

constexpr Group groups[] = {{"one SDK call", 1, 1}, {"two or three", 2, 3}, {"more", 4, 1 << 20}, {"all", 1, 1 << 20}};

struct Measured {
  const Row* row;
  bool fails;
  double library;
  double direct;
  double loud;

  double ratio() const { return library / direct; }
  double loud_ratio() const { return loud / direct; }
};

std::vector<Measured> measure() {
  std::vector<Measured> result;
  for (const Row& row : rows) {
    if (row.calls == 0) continue;
    if (std::string_view(row.name).ends_with("stat_show")) continue;  // printing takes much longer than its calls
    failures = 0;
    row.library(1);
    const bool fails = failures != 0;
    const std::vector<double> off = bench::nanoseconds({row.library, row.direct});
    sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_DEBUGGING);
    const std::vector<double> on = bench::nanoseconds({row.library});
    sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_OFF);
    std::rewind(sai_log_default->file);
    result.push_back({&row, fails, off[0], off[1], on[0]});
  }
  return result;
}

/// Prints the line of one group.
void print(const Group& group, const std::vector<Measured>& all) {
  std::vector<double> off;
  std::vector<double> added;
  std::vector<double> on;
  const Measured* worst = nullptr;
  for (const Measured& one : all) {
    if (one.fails || one.row->calls < group.least || one.row->calls > group.most) continue;
    off.push_back(one.ratio());
    on.push_back(one.loud_ratio());
    added.push_back(one.library - one.direct);
    if (worst == nullptr || one.ratio() > worst->ratio()) worst = &one;
  }
  if (worst == nullptr) return;
  std::printf("%-24s %9zu %8.2f %8.2f %8.2f %8.2f  %s\n", group.name, off.size(), bench::median(off), worst->ratio(),
              bench::median(added), bench::median(on), worst->row->name);
}

}  // namespace

int main(int argc, char** argv) {
  sai_log_default = open_sai_log("call_bench", 0, 0, 0);
  sai_log_default->file = std::tmpfile();
  if (sai_log_default->file == nullptr) return EXIT_FAILURE;

  const std::vector<Measured> all = measure();
  if (argc > 1 && std::string_view(argv[1]) == "--each") {
    std::printf("%-36s %5s %10s %10s %8s %10s %8s\n", "", "calls", "library ns", "direct ns", "ratio", "debug ns",
                "ratio");
    for (const Measured& one : all)
      std::printf("%-36s %5d %10.2f %10.2f %8.2f %10.2f %8.2f%s\n", one.row->name, one.row->calls, one.library,
                  one.direct, one.ratio(), one.loud, one.loud_ratio(), one.fails ? "  fails" : "");
  }

  std::printf("%-24s %9s %8s %8s %8s %8s\n", "functions that make", "functions", "median", "worst", "ns more", "debug");
  for (const Group& group : groups) print(group, all);

  std::vector<double> ratios;
  for (const Measured& one : all)
    if (!one.fails) ratios.push_back(one.ratio());
  const double median = bench::median(ratios);
  std::size_t above = 0;
  for (const double ratio : ratios) above += ratio > worst_goal ? 1 : 0;
  std::printf("median %.2f of %.2f: %s; above %.2f: %zu functions of %zu; %zu fail here and are left out\n", median,
              median_goal, median <= median_goal ? "met" : "missed", worst_goal, above, ratios.size(),
              all.size() - ratios.size());
  return median <= median_limit ? EXIT_SUCCESS : EXIT_FAILURE;
}
