#include "support/scene.h"

#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

#include <sstream>
#include <stdexcept>

#include "support/start.h"

namespace support {

std::string journal() {
  std::string text(swsdk_journal_read(nullptr, 0), '\0');
  swsdk_journal_read(text.data(), text.size() + 1);
  return text;
}

Scene::Scene() {
  start_chip();
  sai_log_default = open_sai_log("test", 0, 0, 0);
  sai_log_default->file = open_memstream(&log_text_, &log_size_);
  sai_log_default->show_priority = 1;
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_DEBUGGING);
}

Scene::~Scene() {
  close_sai_log(sai_log_default);
  sai_log_default = nullptr;
  free(log_text_);
  swsdk_power_off();
}

std::string Scene::take_log() {
  fflush(sai_log_default->file);
  std::istringstream lines(std::string(log_text_, log_size_));
  rewind(sai_log_default->file);

  constexpr size_t stamp_length = sizeof "2026/11/21 09:05:00 " - 1;
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    const bool goes_on = line.empty();  // a message with a newline of its own
    result += goes_on ? "log, next line\n" : "log: " + line.substr(stamp_length) + '\n';
  }
  return result;
}

std::string Scene::observe(const std::function<int32_t()>& call) {
  take_log();
  swsdk_journal_clear();
  swsdk_journal_record(1);
  const int32_t result = call();
  swsdk_journal_record(0);
  return journal() + take_log() + "returned " + std::to_string(result) + '\n';
}

std::string Scene::observe_failing(const char* function, int code, const std::function<int32_t()>& call, int nth) {
  if (swsdk_fault_inject(function, code, nth) != 0) throw std::invalid_argument(function);
  const std::string result = observe(call);
  swsdk_fault_clear();
  return result;
}

}  // namespace support
