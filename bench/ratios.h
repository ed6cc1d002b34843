// Pairs of benchmarks that are measured side by side in one run, of which the ratio is what counts.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace bench {

/// Registers a pair: what the library does, and the same work done without it.
template <class Library, class Direct>
void compare(const std::string& name, Library library, Direct direct) {
  const auto loop = [](auto work) {
    return [work](benchmark::State& state) {
      for (auto _ : state) work();
    };
  };
  benchmark::RegisterBenchmark((name + "/library").c_str(), loop(library));
  benchmark::RegisterBenchmark((name + "/direct").c_str(), loop(direct));
}

/// Runs all pairs several times in turn and prints the medians, the ratio of each pair, and the median and worst ratio.
int run(int argc, char** argv);

}  // namespace bench
