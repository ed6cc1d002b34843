#include "ratios.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace {

/// Keeps the median of each benchmark and prints nothing meanwhile.
class Medians : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
  }

  std::map<std::string, double> medians;
};

}  // namespace

int bench::run(int argc, char** argv) {
  // Defaults that the command line may overrule: short rounds in random order, so that noise meets both sides alike.
  std::vector<char*> arguments(argv, argv + argc);
  std::string defaults[] = {"--benchmark_repetitions=15", "--benchmark_enable_random_interleaving=true",
                            "--benchmark_min_time=0.02", "--benchmark_report_aggregates_only=true"};
  for (std::string& option : defaults) arguments.insert(arguments.begin() + 1, option.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());

  Medians reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::vector<double> ratios;
  std::printf("%-32s %12s %12s %8s\n", "", "library ns", "direct ns", "ratio");
  for (const auto& [name, library] : reporter.medians) {
    constexpr std::string_view suffix = "/library";
    if (!name.ends_with(suffix)) continue;
    const std::string pair = name.substr(0, name.size() - suffix.size());
    const double direct = reporter.medians[pair + "/direct"];
    ratios.push_back(library / direct);
    std::printf("%-32s %12.1f %12.1f %8.2f\n", pair.c_str(), library, direct, library / direct);
  }
  if (ratios.empty()) return 1;
  std::sort(ratios.begin(), ratios.end());
  std::printf("median ratio %.2f, worst %.2f\n", ratios[ratios.size() / 2], ratios.back());
  return 0;
}
