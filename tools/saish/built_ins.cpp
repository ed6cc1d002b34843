#include "built_ins.h"

#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <string>

#include "library.h"
#include "session.h"

namespace saish {

namespace {

constexpr int any_length = 1000;

void help_on(std::string_view name) {
  if (const BuiltIn* built_in = find_built_in(name)) {
    std::printf("%s\n%s\n", built_in->usage, built_in->summary);
  } else if (const Function* function = find_function(name)) {
    std::printf("%s\n%s\nHere: %s\n", function->prototype, function->summary, usage(*function).c_str());
    for (const Parameter& parameter : function->parameters)
      if (!parameter.fields.empty())
        std::printf("  %s is {field=value, ...} of %s\n", parameter.name, names_text(parameter.fields).c_str());
  } else {
    throw unknown_command(name);
  }
}

void help(Session& /*session*/, const Words& arguments) {
  if (!arguments.empty()) return help_on(arguments[0]);
  std::printf("Commands of the shell:\n");
  for (const BuiltIn& built_in : built_ins()) std::printf("  %-28s %s\n", built_in.usage, built_in.summary);
  std::printf("\nFunctions of the library; help NAME tells more:\n");
  for (const Function& function : functions()) std::printf("  %-28s %s\n", function.name, function.summary);
}

int unit_number(const std::string& word) {
  const std::optional<int> unit = number<int>(word);
  if (!unit || *unit < 0 || *unit > 15) throw BadInput("unit: \"" + word + "\" is not a number from 0 to 15");
  return *unit;
}

std::string table_names() {
  std::string result;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) result += (i > 0 ? ", " : "") + std::string(swsdk_show_table(i));
  return result;
}

void show(Session& /*session*/, const Words& arguments) {
  bool known = false;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) known = known || arguments[0] == swsdk_show_table(i);
  if (!known) throw BadInput("there is no table \"" + arguments[0] + "\"; the tables are " + table_names());
  const int unit = arguments.size() > 1 ? unit_number(arguments[1]) : 0;

  const long length = swsdk_show(unit, arguments[0].c_str(), nullptr, 0);
  if (length < 0) throw BadInput("unit " + std::to_string(unit) + " is not attached");
  std::string text(static_cast<std::size_t>(length), '\0');
  swsdk_show(unit, arguments[0].c_str(), text.data(), text.size() + 1);
  std::fputs(text.c_str(), stdout);
}

void fail(Session& /*session*/, const Words& arguments) {
  if (arguments[0] == "clear" && arguments.size() == 1) return swsdk_fault_clear();
  if (arguments.size() < 2) throw BadInput("a code is missing; the form is fail NAME CODE [NTH] or fail clear");

  const std::optional<int> code = named_number<int>(arguments[1], "BCM_E_");
  if (!code) throw BadInput("code: \"" + arguments[1] + "\" is neither a number nor a BCM_E_ name");
  const bool every = arguments.size() == 3 && arguments[2] == "every";
  const std::optional<int> nth = every ? SWSDK_FAULT_EVERY_CALL : arguments.size() == 3 ? number<int>(arguments[2]) : 1;
  if (!nth || *nth < (every ? 0 : 1))
    throw BadInput("nth: \"" + arguments[2] + "\" is neither a number from 1 on nor \"every\"");
  if (swsdk_fault_inject(arguments[0].c_str(), *code, *nth) != 0)
    throw BadInput("the Chip SDK has no function \"" + arguments[0] + "\"");
}

void log(Session& /*session*/, const Words& arguments) {
  const std::string& word = arguments[0];
  const std::optional<int32_t> given = named_number<int32_t>(word, "SAI_LOG_");
  const int32_t level = word == "off"                                                   ? SAI_LOG_OFF
                        : given && *given >= SAI_LOG_OFF && *given <= SAI_LOG_DEBUGGING ? *given
                                                                                        : sai_level_match(word.c_str());
  if (level == -1 && word != "off" && given != -1)
    throw BadInput("level: \"" + word +
                   "\" is neither off, a number from 0 to 7, nor a level such as errors or debugging");
  if (sai_log_default == nullptr) sai_log_default = open_sai_log("saish", 0, 0, 0);
  if (sai_log_default == nullptr) throw BadInput("no memory for a log");
  sai_log_set_level(nullptr, SAI_LOG_CONSOLE, level);
}

void journal(Session& session, const Words& arguments) {
  const std::string& word = arguments[0];
  if (word == "on" || word == "off")
    session.follow_journal(word == "on");
  else if (word == "clear")
    session.clear_journal();
  else if (word == "show")
    std::fputs(journal_text().c_str(), stdout);
  else
    throw BadInput("\"" + word + "\" is not on, off, show or clear");
}

void link(Session& /*session*/, const Words& arguments) {
  const std::optional<int> port = number<int>(arguments[0]);
  const bool up = arguments[1] == "up";
  if (!up && arguments[1] != "down") throw BadInput("\"" + arguments[1] + "\" is neither up nor down");
  const int unit = arguments.size() > 2 ? unit_number(arguments[2]) : 0;
  if (!port || *port < 0 || swsdk_link_event(unit, *port, up) != 0)
    throw BadInput("port: unit " + std::to_string(unit) + " has no Ethernet port \"" + arguments[0] + "\"");
  swsdk_events_drain();
}

void source(Session& session, const Words& arguments) { session.run_script(arguments[0]); }

void quit(Session& session, const Words& /*arguments*/) { session.end(); }

/// Only for help: the session itself runs the command behind it.
void expect(Session& /*session*/, const Words& /*arguments*/) {}

constexpr BuiltIn table[] = {
    {"help", "help [NAME]", "Lists the commands, or tells about one.", 0, 1, help},
    {"show", "show TABLE [UNIT]", "Shows one of the chip's tables.", 1, 2, show},
    {"journal", "journal on|off|show|clear", "Shows the SDK calls of each command, or of all since the last clear.", 1,
     1, journal},
    {"fail", "fail NAME CODE [NTH|every]", "Makes the nth call of an SDK function fail; \"fail clear\" ends all.", 1, 3,
     fail},
    {"log", "log LEVEL", "Shows log messages up to a level on the console; off: none.", 1, 1, log},
    {"expect", "expect CODE COMMAND", "Runs a command that has to return that code.", 2, any_length, expect},
    {"link", "link PORT up|down [UNIT]", "Takes a port's link up or down; who is registered is told.", 2, 3, link},
    {"source", "source FILE", "Runs a script.", 1, 1, source},
    {"quit", "quit", "Ends the shell.", 0, 0, quit},
};

}  // namespace

std::span<const BuiltIn> built_ins() { return table; }

const BuiltIn* find_built_in(std::string_view name) {
  for (const BuiltIn& built_in : table)
    if (name == built_in.name) return &built_in;
  return nullptr;
}

std::vector<std::string> command_names() {
  std::vector<std::string> names;
  for (const BuiltIn& built_in : built_ins()) names.emplace_back(built_in.name);
  for (const Function& function : functions()) names.emplace_back(function.name);
  return names;
}

namespace {

/// How many letters have to be put in, taken out or changed to make one text the other.
std::size_t distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);  // from what is read of one to each beginning of the other
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : one) {
    std::size_t diagonal = row[0]++;
    for (std::size_t i = 1; i < row.size(); ++i) {
      const std::size_t changed = diagonal + (letter == other[i - 1] ? 0 : 1);
      diagonal = row[i];
      row[i] = std::min({changed, row[i] + 1, row[i - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

BadInput unknown_command(std::string_view name) {
  std::string nearest;
  std::size_t least = name.size() / 4 + 2;  // farther than what a slip of the hand makes
  for (const std::string& other : command_names())
    if (const std::size_t far = distance(name, other); far < std::min(least, name.size())) {
      nearest = other;
      least = far;
    }
  return BadInput("no such command \"" + std::string(name) + "\"; " +
                  (nearest.empty() ? "help lists them all" : "did you mean " + nearest + "?"));
}

}  // namespace saish
