// Tests of what is made step by step: a list of SDK calls, each with what the log says when it fails.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/scene.h"

namespace field {

/// In both texts "$id" stands for the id that the chip chose and "$group" for that of the group in use.
struct Step {
  std::string call;
  std::string message;  ///< up to the SDK's text; empty: the failure is ignored
};

using Steps = std::vector<Step>;

class Scene : public support::Scene {
 protected:
  /// When a call tells its caller the id.
  enum class Told { at_once, on_success };

  /// Makes the group that "$group" stands for.
  void use_group(int32_t (*create)(int32_t unit, int32_t* group));

  using Call = std::function<int32_t(int32_t* id)>;

  /// Expects `call` to take all of `steps` and to tell the id.
  void expect_success(const Steps& steps, const Call& call);
  /// Expects `call` to stop at the step of index `failing`, when that fails.
  void expect_failure(const Steps& steps, size_t failing, Told told, const Call& call);
  /// Both, with a failure of each step.
  void expect_steps(const Steps& steps, Told told, const Call& call);

  /// The journal of `steps` when the one at index `failing` does fail, with `id` for "$id".
  std::string journal_of(const Steps& steps, const std::string& id, size_t failing = SIZE_MAX) const;

  std::string filled(std::string text, const std::string& id) const;

  /// The ids that the chip chose in an observed text, one for each creation; "-1" for one that failed.
  static std::vector<std::string> ids_in(const std::string& seen);

  static std::string function_of(const Step& step) { return step.call.substr(0, step.call.find('(')); }
  /// How many steps up to and with the one at `index` call its function.
  static int nth_of(const Steps& steps, size_t index);

  /// Runs before each call that is expected to do something.
  virtual void prepare() {}

  int32_t group = -1;
  int32_t untouched = 7777;  ///< the caller's id before a call
};

}  // namespace field
