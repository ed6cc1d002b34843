#include "field/steps.h"

#include <bcm/error.h>
#include <bcm/field.h>

#include <sstream>

namespace field {

namespace {

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
}

}  // namespace

void Scene::use_group(int32_t (*create)(int32_t unit, int32_t* group)) {
  ASSERT_EQ(create(unit, &group), 0);
  constexpr int spare_entries = 5;  // so that no entry of a test has its group's number
  for (int i = 0; i < spare_entries; ++i) {
    bcm_field_entry_t entry = 0;
    ASSERT_EQ(bcm_field_entry_create(unit, group, &entry), BCM_E_NONE);
  }
}

std::string Scene::filled(std::string text, const std::string& id) const {
  replace_all(text, "$id", id);
  replace_all(text, "$group", std::to_string(group));
  return text;
}

std::vector<std::string> Scene::ids_in(const std::string& seen) {
  std::vector<std::string> ids;
  std::istringstream lines(seen);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("_create(") == std::string::npos || line.starts_with("log: ")) continue;
    const size_t id = line.find('&') + 1;
    ids.push_back(line.ends_with(" = 0") ? line.substr(id, line.find(')', id) - id) : "-1");
  }
  return ids;
}

int Scene::nth_of(const Steps& steps, size_t index) {
  int count = 0;
  for (size_t i = 0; i <= index; ++i) count += function_of(steps[i]) == function_of(steps[index]);
  return count;
}

std::string Scene::journal_of(const Steps& steps, const std::string& id, size_t failing) const {
  std::string result;
  for (size_t i = 0; i < steps.size(); ++i) {
    if (i != failing) {
      result += filled(steps[i].call, id) + " = 0\n";
      continue;
    }
    std::string call = steps[i].call;
    replace_all(call, "&$id", "&?");
    result += filled(call, id) + " = -6\n";
    if (!steps[i].message.empty()) break;
  }
  return result;
}

void Scene::expect_success(const Steps& steps, const Call& call) {
  prepare();
  int32_t id = untouched;
  const std::string seen = observe([&] { return call(&id); });
  const std::string chosen = ids_in(seen).at(0);
  EXPECT_EQ(seen, journal_of(steps, chosen) + "returned 0\n");
  EXPECT_EQ(std::to_string(id), chosen);
  EXPECT_NE(id, group);
}

void Scene::expect_failure(const Steps& steps, size_t failing, Told told, const Call& call) {
  const Step& step = steps[failing];
  SCOPED_TRACE(step.call);
  prepare();
  int32_t id = untouched;
  const std::string seen = observe_failing(
      function_of(step).c_str(), BCM_E_FULL, [&] { return call(&id); }, nth_of(steps, failing));
  const std::string chosen = ids_in(seen).at(0);
  const bool ignored = step.message.empty();
  const std::string end =
      ignored ? "returned 0\n"
              : "log: errors: NONE: " + filled(step.message, chosen) + ": Table is full\nreturned -13\n";
  EXPECT_EQ(seen, journal_of(steps, chosen, failing) + end);
  EXPECT_EQ(std::to_string(id), told == Told::at_once || ignored ? chosen : std::to_string(untouched));
}

void Scene::expect_steps(const Steps& steps, Told told, const Call& call) {
  expect_success(steps, call);
  for (size_t failing = 0; failing < steps.size(); ++failing) expect_failure(steps, failing, told, call);
}

}  // namespace field
