#include "ratios.h"

#include <algorithm>
#include <ctime>
#include <limits>

namespace {

constexpr int rounds = 400;
constexpr double round_ns = 5000;

double measure(const bench::Repeat& work, int times) {
  timespec start{};
  timespec end{};
  clock_gettime(CLOCK_MONOTONIC, &start);
  work(times);
  clock_gettime(CLOCK_MONOTONIC, &end);
  return static_cast<double>(end.tv_sec - start.tv_sec) * 1e9 + static_cast<double>(end.tv_nsec - start.tv_nsec);
}

/// How often the work is done in a round.
int times_of(const bench::Repeat& work) {
  int times = 1;
  // The best of several: a single slow run must not make the rounds short.
  const auto best = [&] {
    double ns = measure(work, times);
    for (int i = 0; i < 5; ++i) ns = std::min(ns, measure(work, times));
    return ns;
  };
  while (best() < round_ns) times *= 2;
  return times;
}

}  // namespace

std::vector<double> bench::nanoseconds(const std::vector<Repeat>& works) {
  std::vector<int> times;
  times.reserve(works.size());
  for (const Repeat& work : works) times.push_back(times_of(work));
  std::vector<double> best(works.size(), std::numeric_limits<double>::infinity());
  for (int round = 0; round < rounds; ++round)
    for (std::size_t i = 0; i < works.size(); ++i) best[i] = std::min(best[i], measure(works[i], times[i]) / times[i]);
  return best;
}
