// Sequences of calls of the library on the virtual chip, with faults and with events of the board in between.
#include <appl/diag/system.h>
#include <dirent.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>
#include <swsdk/recording.h>
#include <syslog.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <map>
#include <set>

#include "calls.h"
#include "recordings.h"

extern "C" int sdk_main(int argc, char** argv);

namespace fuzz {

namespace {

constexpr const char* sdk_functions[] = {
#include "sdk_functions.inc"
};

/// The SDK functions that each function of the library was seen to call, so that faults meet it.
std::map<const Function*, std::vector<std::string>> sdk_functions_of;

const Function* called = nullptr;

/// Up to two faults, mostly of what the function is going to call.
void inject_faults(Input& input) {
  const auto kind = input.any<uint8_t>();
  for (int faults = kind < 160 ? 0 : kind < 240 ? 1 : 2; faults > 0; --faults) {
    const std::vector<std::string>& usual = sdk_functions_of[called];
    const auto number = input.any<uint16_t>();
    const bool any = usual.empty() || (number & 0x8000) != 0;
    const std::string name = any ? sdk_functions[number % std::size(sdk_functions)] : usual[number % usual.size()];
    const int code = -input.from(1, 19);
    swsdk_fault_inject(name.c_str(), code, input.from(0, 3));
  }
}

/// The codes of sai.h, and what the few functions return that answer a number of their own.
bool is_documented(const Function& function, int32_t result) {
  const std::string_view name = function.name;
  if (name == "sai_level_match") return result >= -1 && result <= SAI_LOG_DEBUGGING;
  if (function.result == Result::number) return result >= 0;
  if (name.ends_with("_hit_get") && result == 1) return true;
  return result == 0 || is_code(result);
}

void call_function(Input& input) {
  called = &any_function(input);
  const Made result = called->run(called->parameters, input, inject_faults);
  swsdk_fault_clear();
  if (result && !is_documented(*called, *result)) {
    std::fprintf(stderr, "%s returned %d\n", called->name, *result);
    require(false, "a function returned what is not documented");
  }
}

void show(int index) {
  int tables = 0;
  while (swsdk_show_table(tables) != nullptr) ++tables;
  const char* const table = swsdk_show_table(index % tables);
  const long length = swsdk_show(0, table, nullptr, 0);
  std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
  require(swsdk_show(0, table, text.data(), text.size() + 1) == length, "a table shows differently the second time");
  require(swsdk_check(0, nullptr, 0) == swsdk_check(0, text.data(), text.size()),
          "a check finds something else the second time");
}

/// What happens to a chip beside the calls.
void happen(int kind, Input& input) {
  uint8_t mac[6];
  switch (kind) {
    case 0:
      fill("mac", input, mac);
      swsdk_l2_learn(0, number_for("vlan", input), mac, number_for("port", input), input.any<uint8_t>());
      break;
    case 1:
      swsdk_link_event(0, number_for("port", input), input.flag());
      break;
    case 2:
      swsdk_clock_step(0, input.from(0, 2000));
      break;
    case 3:
      swsdk_counter_set(0, number_for("port", input), input.near(0, 199), input.any<uint64_t>());
      break;
    case 4: {
      std::vector<swsdk_temperature> readings(input.any<uint8_t>());
      for (swsdk_temperature& reading : readings) reading = {input.any<int16_t>(), input.any<int16_t>()};
      swsdk_temperatures_set(0, readings.data(), static_cast<int>(readings.size()));
      break;
    }
    case 5:
      swsdk_l3_host_hit(0, static_cast<unsigned>(number_for("ip", input)), input.any<uint8_t>());
      break;
    default:
      show(input.any<uint8_t>());
  }
}

void start(int kind) {
  constexpr uint8_t mac[6] = {0, 0x11, 0x22, 0x33, 0x44, 0x55};
  if (kind == 0) return;  // a chip that is off
  sdk_main(0, nullptr);
  if (kind == 1) return;
  if (kind < 128) {
    system_init(0);
  } else {
    sai_switch_chip_init(mac);
  }
}

int open_files() {
  DIR* const folder = opendir("/proc/self/fd");
  int count = 0;
  while (readdir(folder) != nullptr) ++count;
  closedir(folder);
  return count;
}

/// The log that the calls write to.
class Log {
 public:
  explicit Log(Input& input) {
    if (input.any<uint8_t>() >= 250) return;  // there is none: standard error takes all
    sai_log_default = open_sai_log("fuzz", input.from(0, 1), 0, LOG_USER);
    sai_log_default->file = open_memstream(&text_, &size_);
    sai_log_default->show_priority = input.flag();
    sai_log_default->time_precision = input.near(0, 20);
    for (int32_t& level : sai_log_default->max_level) level = input.near(SAI_LOG_OFF, SAI_LOG_DEBUGGING);
  }
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  ~Log() {
    if (sai_log_default == nullptr) return;
    close_sai_log(sai_log_default);
    sai_log_default = nullptr;
    require(size_ == 0 || text_[size_ - 1] == '\n', "the log does not end with a whole line");
    std::free(text_);
  }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
};

void run_sequence(Input& input, int most_steps) {
  const Log log(input);
  start(input.any<uint8_t>());
  for (int step = 0; step < most_steps && !input.is_empty(); ++step) {
    const auto kind = input.any<uint8_t>();
    if (kind < 224)
      call_function(input);
    else
      happen(kind % 8, input);
  }
  swsdk_events_drain();
  swsdk_power_off();
}

/// Requires that what the chip recorded of itself gives the same answers when it is repeated.
void require_repeatable(const RecordingFile& file) {
  const Replayed again = replayed(file);
  if (again.outcome != SWSDK_REPLAY_SAME) std::fprintf(stderr, "%s%s", file.text().c_str(), again.told.c_str());
  require(again.outcome == SWSDK_REPLAY_SAME, "a recording of what the chip did does not repeat");
  swsdk_power_off();
}

/// Calls each function on a chip that is up, once with small arguments and once with zeros.
void learn_sdk_functions() {
  for (const Function& function : functions())
    for (const uint8_t small : {uint8_t{0}, uint8_t{3}}) {
      const std::array<uint8_t, 200> bytes = [&] {
        std::array<uint8_t, 200> filled;
        filled.fill(small);
        return filled;
      }();
      Input input(bytes.data(), bytes.size());
      called = &function;
      const Log log(input);
      start(2);
      swsdk_journal_record(1);
      function.run(function.parameters, input, [](Input&) {});
      std::string journal(swsdk_journal_read(nullptr, 0), '\0');
      swsdk_journal_read(journal.data(), journal.size() + 1);
      swsdk_power_off();
      std::set<std::string> seen;
      for (std::size_t at = 0; at < journal.size(); at = journal.find('\n', at) + 1)
        seen.insert(journal.substr(at, journal.find('(', at) - at));
      std::vector<std::string>& known = sdk_functions_of[&function];
      for (const std::string& name : seen)
        if (std::find(known.begin(), known.end(), name) == known.end()) known.push_back(name);
    }
}

}  // namespace

}  // namespace fuzz

extern "C" {

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  fuzz::learn_sdk_functions();
  return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr int most_steps = 40;
  static const fuzz::RecordingFile recording("recording");
  const int before = fuzz::open_files();
  fuzz::Input input(data, size);
  fuzz::require(swsdk_record_start(recording.path()) == 0, "the recording does not start");
  fuzz::run_sequence(input, most_steps);
  fuzz::require(swsdk_record_stop() == 0, "the recording does not end");
  fuzz::require_repeatable(recording);
  fuzz::require(fuzz::open_files() == before, "a file stayed open");
  return 0;
}
}
