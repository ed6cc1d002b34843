#include "api/call.h"

#include <atomic>

#include "api/recording.h"

namespace {

std::atomic<api::RemoteChip*> chip_elsewhere = nullptr;
std::atomic<long long> calls_answered = 0;

}  // namespace

api::RemoteChip* api::remote_chip() { return chip_elsewhere.load(std::memory_order_acquire); }

void api::set_remote_chip(RemoteChip* chip) { chip_elsewhere = chip; }

void api::record(Kind kind, const char* function, int rv, Arguments arguments) {
  if (kind == Kind::fault && present_caller() == nullptr) log_fault(function);
  const bool is_sdk_call = kind == Kind::call || kind == Kind::fault;
  // The journal of a chip in another process is there.
  const bool in_journal = is_sdk_call && any_journal_is_recording() && remote_chip() == nullptr;
  const bool is_answered_here = is_sdk_call && remote_chip() == nullptr;
  const long long number = is_answered_here ? ++calls_answered : 0;
  chip::CallInProgress* const in_progress = chip::CallInProgress::present();
  const bool has_made_entries = is_answered_here && in_progress != nullptr && in_progress->has_made_entries();
  const bool in_recording = is_recording() && kind != Kind::question;
  const std::shared_ptr<Caller>& caller = present_caller();
  if (!in_journal && !in_recording && !has_made_entries && caller == nullptr) return;

  const std::string result = " = " + std::to_string(rv);
  // A fault writes no outputs, whatever its code.
  const int outputs = kind == Kind::fault ? BCM_E_INTERNAL : rv;
  if (in_journal || has_made_entries) {
    const std::string line = call_text(function, arguments, Form::journal, rv) + result;
    if (in_journal) journal_add(line);
    if (has_made_entries) *in_progress->cause() = {number, own_journal().owner(), line};
  }
  if (in_recording) add_to_recording(kind, call_text(function, arguments, Form::recording, outputs) + result);
  if (caller != nullptr)
    caller->answered = std::string(kind_names[static_cast<int>(kind)]) + ' ' + outputs_text(arguments, outputs);
}

long long api::call_remote(Kind kind, const char* function, Arguments arguments, long long if_gone) {
  const std::optional<Answer> answer = remote_chip()->call(function, arguments);
  if (!answer) return if_gone;
  if (answer->kind)
    record(*answer->kind == Kind::fault ? Kind::fault : kind, function, static_cast<int>(answer->result), arguments);
  return answer->result;
}

api::Entrance api::enter(const char* function, int unit, int of_arguments) {
  Entrance entrance;
  Unit* const attached = find_unit(unit);
  if (attached == nullptr) {
    entrance.refusal = BCM_E_UNIT;
    return entrance;
  }
  entrance.guard = std::unique_lock(attached->lock);
  if (!attached->chip) {
    entrance.refusal = BCM_E_UNIT;  // switched off meanwhile
  } else if (const std::optional<int> fault = next_fault(function)) {
    entrance.refusal = *fault;
    entrance.kind = Kind::fault;
  } else if (!attached->initialized) {
    entrance.refusal = BCM_E_INIT;
  } else if (of_arguments != BCM_E_NONE) {
    entrance.refusal = of_arguments;
  } else {
    entrance.chip = &*attached->chip;
  }
  return entrance;
}
