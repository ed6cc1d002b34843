#include "api/caller.h"

#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

#include "api/calls/call_text.h"
#include "api/events.h"

namespace {

/// Of who works for a client; without a constructor, as every call asks for it.
constinit thread_local const std::shared_ptr<api::Caller>* worked_for = nullptr;
const std::shared_ptr<api::Caller> nobody;

std::mutex callers_lock;
/// Guarded by `callers_lock`. Never destroyed: clients can be there when the process exits.
auto& callers = *new std::vector<std::shared_ptr<api::Caller>>;

}  // namespace

const std::shared_ptr<api::Caller>& api::present_caller() { return worked_for == nullptr ? nobody : *worked_for; }

api::WorksFor::WorksFor(std::shared_ptr<Caller> caller) : caller_(std::move(caller)) { worked_for = &caller_; }

api::WorksFor::~WorksFor() { worked_for = nullptr; }

void api::print_for_caller(std::string_view text) {
  if (present_caller() == nullptr)
    std::fwrite(text.data(), 1, text.size(), stdout);
  else
    present_caller()->add_to_answer(call_text(print_event, {std::string(text).c_str()}, Form::wire, 0));
}

std::string api::path_of_caller(const std::string& path) {
  if (present_caller() == nullptr || path.starts_with('/')) return path;
  return "/proc/" + std::to_string(present_caller()->process()) + "/cwd/" + path;
}

void api::inform(Caller& caller, std::string_view line) {
  if (&caller == present_caller().get())
    caller.add_to_answer(line);
  else
    caller.tell(line);
}

void api::add_caller(const std::shared_ptr<Caller>& caller) {
  const std::lock_guard guard(callers_lock);
  callers.push_back(caller);
}

void api::remove_caller(const std::shared_ptr<Caller>& caller) {
  const std::lock_guard guard(callers_lock);
  std::erase(callers, caller);
}

void api::for_each_caller(const std::function<void(Caller&)>& work) {
  const std::lock_guard guard(callers_lock);
  for (const std::shared_ptr<Caller>& caller : callers) work(*caller);
}
