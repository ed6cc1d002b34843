// usage: soak [--seconds SECONDS] [--calls CALLS] [--round CALLS] [--seed SEED] [--work CALLS]
// Random work through the whole library on a virtual chip, in rounds. After each everything is given back: then every
// table of the chip has to read as at the start, the process has to have as many open files, and no more memory in use
// than after the first round. Ends after so many seconds or calls, whichever comes first. With --work, only makes so
// many calls and leaves the chip as they left it.
#include "soak.h"

#include <malloc.h>
#include <swsdk/chip.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>

soak::Tally soak::tally;

namespace {

using Clock = std::chrono::steady_clock;

/// Beyond the memory of the first round: tables whose buckets grew once, and pages that came to be used in part.
constexpr std::size_t heap_slack = 128 * 1024;
constexpr std::size_t resident_slack = 4 * 1024 * 1024;

#ifdef SANITIZED
constexpr bool own_allocator = false;  // theirs keeps what was freed; one of them tells of leaks itself
#else
constexpr bool own_allocator = true;
#endif

/// The real standard output; the library prints counters to the one that it knows.
FILE* report = nullptr;

struct Options {
  double seconds = 1e9;
  uint64_t calls = UINT64_MAX;
  uint64_t round = 250000;
  uint32_t seed = 1;
  uint64_t work = 0;
};

struct Figures {
  std::size_t files;
  std::size_t heap;
  std::size_t resident;
};

Figures measure() {
  malloc_trim(0);
  const auto files = std::filesystem::directory_iterator("/proc/self/fd");
  std::ifstream statm("/proc/self/statm");
  std::size_t size = 0;
  std::size_t resident = 0;
  statm >> size >> resident;
  const auto memory = mallinfo2();
  return {.files = static_cast<std::size_t>(std::distance(begin(files), end(files))),
          .heap = memory.uordblks + memory.hblkhd,
          .resident = resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE))};
}

std::string table(const char* name) {
  std::string text(static_cast<std::size_t>(swsdk_show(soak::unit, name, nullptr, 0)), '\0');
  swsdk_show(soak::unit, name, text.data(), text.size() + 1);
  return text;
}

using Tables = std::map<std::string, std::string>;

Tables all_tables() {
  Tables result;
  for (int i = 0; const char* const name = swsdk_show_table(i); ++i) result[name] = table(name);
  result.erase("clock");  // time passes
  return result;
}

/// The lines that one of the texts has and the other has not, a few of them.
std::string difference(const std::string& before, const std::string& after) {
  const auto lines_of = [](const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    std::ranges::sort(lines);
    return lines;
  };
  const auto old_lines = lines_of(before);
  const auto new_lines = lines_of(after);
  std::vector<std::string> shown;
  std::ranges::set_difference(old_lines, new_lines, std::back_inserter(shown));
  for (std::string& line : shown) line.insert(0, "  lost: ");
  const std::size_t lost = shown.size();
  std::ranges::set_difference(new_lines, old_lines, std::back_inserter(shown));
  for (std::size_t i = lost; i < shown.size(); ++i) shown[i].insert(0, "  left: ");
  std::string result =
      std::to_string(old_lines.size() - 1) + " entries at the start, " + std::to_string(new_lines.size() - 1) + " now";
  for (std::size_t i = 0; i < std::min<std::size_t>(shown.size(), 8); ++i) result += '\n' + shown[i];
  return result;
}

void compare(const Tables& start) {
  std::string differences;
  for (const auto& [name, text] : all_tables())
    if (text != start.at(name)) differences += "\ntable " + name + ": " + difference(start.at(name), text);
  if (!differences.empty()) soak::fail("tables differ from those at the start:" + differences);
}

std::string signed_kilobytes(std::size_t now, std::size_t then) {
  const auto difference = static_cast<long long>(now) - static_cast<long long>(then);
  return (difference < 0 ? "-" : "+") + std::to_string(std::abs(difference) / 1024) + " KiB";
}

void check(const Figures& now, const Figures& plateau) {
  if (now.files != plateau.files)
    soak::fail("open files: " + std::to_string(now.files) + ", not " + std::to_string(plateau.files));
  if (!own_allocator) return;
  if (now.heap > plateau.heap + heap_slack)
    soak::fail("memory in use grew by " + signed_kilobytes(now.heap, plateau.heap));
  if (now.resident > plateau.resident + resident_slack)
    soak::fail("resident memory grew by " + signed_kilobytes(now.resident, plateau.resident));
}

template <class Number>
Number number_of(const char* text) {
  Number number{};
  const std::string_view whole(text);
  const auto [end, error] = std::from_chars(whole.data(), whole.data() + whole.size(), number);
  if (error != std::errc() || end != whole.data() + whole.size()) soak::fail(std::string("no number: ") + text);
  return number;
}

Options options_of(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; i += 2) {
    const std::string_view name = argv[i];
    if (i + 1 == argc) soak::fail("no value for " + std::string(name));
    if (name == "--seconds")
      options.seconds = number_of<double>(argv[i + 1]);
    else if (name == "--calls")
      options.calls = number_of<uint64_t>(argv[i + 1]);
    else if (name == "--round")
      options.round = number_of<uint64_t>(argv[i + 1]);
    else if (name == "--work")
      options.work = number_of<uint64_t>(argv[i + 1]);
    else if (name == "--seed")
      options.seed = number_of<uint32_t>(argv[i + 1]);
    else
      soak::fail("no such option: " + std::string(name));
  }
  return options;
}

/// As an application has it: errors are formatted and written.
void open_log() {
  sai_log_default = open_sai_log("soak", 0, 0, 0);
  sai_log_default->file = fopen("/dev/null", "w");
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);
}

}  // namespace

void soak::fail(const std::string& what) {
  std::fprintf(stderr, "after %llu calls: %s\n", static_cast<unsigned long long>(tally.calls), what.c_str());
  std::exit(EXIT_FAILURE);
}

std::vector<int> soak::ids_in(const char* name) {
  std::vector<int> ids;
  std::istringstream lines(table(name));
  std::string line;
  std::getline(lines, line);  // headings
  while (std::getline(lines, line)) ids.push_back(std::atoi(line.c_str()));
  return ids;
}

int main(int argc, char** argv) {
  // What is freed counts as free at once: libc's caches by thread fill up for as long as new sizes come by.
  if (std::getenv("GLIBC_TUNABLES") == nullptr) {
    setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0", 1);
    execv("/proc/self/exe", argv);
  }
  const Options options = options_of(argc, argv);
  report = fdopen(dup(STDOUT_FILENO), "w");
  if (report == nullptr || freopen("/dev/null", "w", stdout) == nullptr) soak::fail("no standard output");

  open_log();
  soak::must("sai_switch_chip_init", sai_switch_chip_init(soak::mac_of(0xFFFF).bytes));
  std::vector<std::unique_ptr<soak::Family>> families;
  for (const auto make : {soak::core_family, soak::port_family, soak::phy_family, soak::field_family, soak::l2_family,
                          soak::vlan_family, soak::route_family, soak::multicast_family, soak::vport_family})
    families.push_back(make());
  const auto prepare = [&] { std::ranges::for_each(families, [](auto& family) { family->prepare(); }); };
  const auto tear_down = [&] { std::for_each(families.rbegin(), families.rend(), [](auto& f) { f->tear_down(); }); };

  soak::Random random(options.seed);
  const auto work = [&] { families[random.below(static_cast<uint32_t>(families.size()))]->work(random); };
  if (options.work > 0) {
    prepare();
    while (soak::tally.calls < options.work) work();
    return EXIT_SUCCESS;
  }

  // Once without any work: what is one and the same in every round does not count.
  prepare();
  tear_down();
  const Tables start = all_tables();

  const auto begin = Clock::now();
  const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - begin).count(); };
  Figures plateau{};
  Figures peak{};
  Figures now{};
  int rounds = 0;
  // A leak needs a second round to show, however slow the machine.
  const auto goes_on = [&] { return rounds < 2 || elapsed() < options.seconds; };
  while (soak::tally.calls < options.calls && goes_on()) {
    prepare();
    const uint64_t end = std::min(soak::tally.calls + options.round, options.calls);
    while (soak::tally.calls < end && goes_on())
      for (int i = 0; i < 100; ++i) work();
    tear_down();
    compare(start);
    now = measure();
    if (rounds++ == 0) plateau = peak = now;
    check(now, plateau);
    peak.heap = std::max(peak.heap, now.heap);
    peak.resident = std::max(peak.resident, now.resident);
  }

  if (rounds < 2) soak::fail("one round shows no growth; there were too few calls for a second one");
  std::fprintf(report,
               "%llu calls, %llu of them refused, %.0f a second\n"
               "%d checkpoints, %zu tables as at the start at each, %zu open files at each\n"
               "memory in use: %zu KiB after the first round, %s at most since, %s at the end\n"
               "resident: %zu KiB after the first round, %s at most since, %s at the end\n",
               static_cast<unsigned long long>(soak::tally.calls), static_cast<unsigned long long>(soak::tally.refused),
               static_cast<double>(soak::tally.calls) / elapsed(), rounds, start.size(), now.files, plateau.heap / 1024,
               signed_kilobytes(peak.heap, plateau.heap).c_str(), signed_kilobytes(now.heap, plateau.heap).c_str(),
               plateau.resident / 1024, signed_kilobytes(peak.resident, plateau.resident).c_str(),
               signed_kilobytes(now.resident, plateau.resident).c_str());
  return std::fclose(report) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
