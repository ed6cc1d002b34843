#include "scale.h"

#include <sai.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

extern "C" {
#include <appl/diag/system.h>

int sdk_main(int argc, char** argv);
}

#include "median.h"
#include "thread_clock.h"

namespace {

constexpr double bound = 1.5;
constexpr int runs = 3;
constexpr int rounds = 9;

/// The nanoseconds per entry of one step at one size, by round.
struct Costs {
  std::vector<double> library;
  std::vector<double> direct;
};

/// Runs the steps of one side on all entries, a given number at a time, and notes the time per entry. Every size uses
/// the same entries: their share of the machine's caches does not count as growth.
void measure(const std::vector<bench::Step>& steps, bench::Work bench::Step::*side, std::vector<double> Costs::*cost,
             std::size_t count, std::size_t all, std::vector<Costs>& costs) {
  std::vector<double> spent(steps.size());
  for (std::size_t first = 0; first < all; first += count)
    for (std::size_t i = 0; i < steps.size(); ++i) {
      const double start = bench::thread_nanoseconds();
      bench::need((steps[i].*side)({first, count}), steps[i].name);
      spent[i] += bench::thread_nanoseconds() - start;
    }
  for (std::size_t i = 0; i < steps.size(); ++i) (costs[i].*cost).push_back(spent[i] / static_cast<double>(all));
}

/// Prints the table and its closing line.
///
/// @return the worst growth: of a size's cost over that of any smaller one
double print(const std::vector<std::size_t>& sizes, const std::vector<bench::Step>& steps,
             const std::vector<std::vector<Costs>>& costs) {
  double worst_growth = 0;
  double worst_ratio = 0;
  std::printf("%-24s %8s %12s %12s %8s %8s\n", "", "entries", "library ns", "direct ns", "ratio", "growth");
  for (std::size_t step = 0; step < steps.size(); ++step) {
    double cheapest = 0;
    for (std::size_t size = 0; size < sizes.size(); ++size) {
      const double library = bench::median(costs[size][step].library);
      const double direct = bench::median(costs[size][step].direct);
      const double ratio = library / direct;
      cheapest = size == 0 ? library : std::min(cheapest, library);
      const double growth = library / cheapest;
      std::printf("%-24s %8zu %12.1f %12.1f %8.2f %8.2f\n", steps[step].name, sizes[size], library, direct, ratio,
                  growth);
      worst_growth = std::max(worst_growth, growth);
      worst_ratio = std::max(worst_ratio, ratio);
    }
  }
  std::printf("worst growth %.2f of %.2f, worst ratio %.2f\n", worst_growth, bound, worst_ratio);
  return worst_growth;
}

}  // namespace

void bench::need(bool good, const char* what) {
  if (good) return;
  std::fprintf(stderr, "%s failed\n", what);
  std::exit(2);
}

void bench::start_chip() {
  sai_log_default = open_sai_log("bench", 0, 0, 0);
  sai_log_default->file = stderr;
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);
  need(sdk_main(0, nullptr) == 0 && system_init(unit) == 0, "start of the chip");
}

int bench::scale(const std::vector<std::size_t>& sizes, const std::vector<Step>& steps) {
  for (int run = 0; run < runs; ++run) {
    std::vector<std::vector<Costs>> costs(sizes.size(), std::vector<Costs>(steps.size()));
    for (int round = 0; round < rounds; ++round)
      for (std::size_t size = 0; size < sizes.size(); ++size) {
        measure(steps, &Step::library, &Costs::library, sizes[size], sizes.back(), costs[size]);
        measure(steps, &Step::direct, &Costs::direct, sizes[size], sizes.back(), costs[size]);
      }
    if (print(sizes, steps, costs) <= bound) return EXIT_SUCCESS;
  }
  return EXIT_FAILURE;
}
