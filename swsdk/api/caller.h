// Whose calls a thread makes: those of this process itself, or of a client of the chip's process.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "api/frame_log.h"
#include "api/journal.h"

namespace api {

/// A client: another process that works on the chip of this one.
class Caller {
 public:
  /// @param name     what the program is called
  /// @param process  its id
  Caller(const std::string& name, int process)
      : journal(name + '[' + std::to_string(process) + "]: "), process_(process) {}
  virtual ~Caller() = default;
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  int process() const { return process_; }

  /// Sends an event, a line of text. Never blocks: one that finds no room is counted as lost.
  virtual void tell(std::string_view event) = 0;

  /// Adds a line to the answer of the call that the client has made.
  virtual void add_to_answer(std::string_view line) = 0;

  Journal journal;
  Watches watches;

  /// How the present call was answered: its kind, a blank and its outputs. Empty while it has no answer.
  std::string answered;

  /// Set while the client tells how a walk ended whose entries it has been given.
  std::optional<int> walk_result;

 private:
  const int process_;
};

/// The client for which this thread works; null when it works for this process.
const std::shared_ptr<Caller>& present_caller();

/// Makes this thread work for a client during its own lifetime.
class WorksFor {
 public:
  explicit WorksFor(std::shared_ptr<Caller> caller);
  ~WorksFor();
  WorksFor(const WorksFor&) = delete;
  WorksFor& operator=(const WorksFor&) = delete;

 private:
  const std::shared_ptr<Caller> caller_;
};

/// Prints on the standard output of the process whose call this is.
void print_for_caller(std::string_view text);

/// A path that the process whose call this is has named.
std::string path_of_caller(const std::string& path);

/// Tells a client what happens: with the answer, before that, if the client itself causes it; otherwise as an event.
void inform(Caller& caller, std::string_view line);

/// The clients that there are.
void add_caller(const std::shared_ptr<Caller>& caller);
void remove_caller(const std::shared_ptr<Caller>& caller);
void for_each_caller(const std::function<void(Caller&)>& work);

}  // namespace api
