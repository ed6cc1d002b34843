#include <swsdk/recording.h>

#include <set>
#include <vector>

#include "api/recording_lines.h"

using api::Kind;
using api::RecordedLine;
using api::Say;

namespace {

/// The C program's beginning; the virtual chip's own headers follow only when a line needs them.
constexpr const char* c_beginning[] = {"#include <appl/diag/shell.h>",
                                       "#include <appl/diag/system.h>",
                                       "#include <bcm/cosq.h>",
                                       "#include <bcm/field.h>",
                                       "#include <bcm/init.h>",
                                       "#include <bcm/ipmc.h>",
                                       "#include <bcm/knet.h>",
                                       "#include <bcm/l2.h>",
                                       "#include <bcm/l3.h>",
                                       "#include <bcm/link.h>",
                                       "#include <bcm/mcast.h>",
                                       "#include <bcm/mirror.h>",
                                       "#include <bcm/multicast.h>",
                                       "#include <bcm/policer.h>",
                                       "#include <bcm/port.h>",
                                       "#include <bcm/rate.h>",
                                       "#include <bcm/stack.h>",
                                       "#include <bcm/stat.h>",
                                       "#include <bcm/stg.h>",
                                       "#include <bcm/switch.h>",
                                       "#include <bcm/trunk.h>",
                                       "#include <bcm/vlan.h>",
                                       "#include <soc/cmic.h>",
                                       "#include <soc/drv.h>",
                                       "#include <soc/knet.h>",
                                       "#include <stdio.h>",
                                       "#include <string.h>",
                                       "",
                                       "int sdk_main(int argc, char** argv);",
                                       "int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);",
                                       "int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);",
                                       "",
                                       "/* What callbacks answer during the present call. */",
                                       "static int callback_answer;",
                                       ""};

constexpr const char* c_end[] = {"    {0, 0, 0, 0}};",
                                 "",
                                 "int main(void) {",
                                 "  const struct step* step;",
                                 "  for (step = steps; step->run != 0; ++step) {",
                                 "    int result;",
                                 "    callback_answer = step->result < 0 ? step->result : 0;",
                                 "    result = step->run();",
                                 "    if (result == step->result) continue;",
                                 "    printf(\"line %d: %s\\n  now: %d\\n\", step->line, step->recorded, result);",
                                 "    return 1;",
                                 "  }",
                                 "  return 0;",
                                 "}"};

/// The call in C, as the body of a function that returns the call's result, or 0.
api::CCall as_c(const api::Replayable& function, const api::Texts& texts) {
  api::CCall call;
  std::string list;
  int index = 0;
  for (const std::unique_ptr<api::AnyGiven>& argument : api::all_given(function, texts)) {
    list += (index > 0 ? ", " : "") + argument->c("a" + std::to_string(index), call);
    ++index;
  }
  const std::string made = function.name + ('(' + list + ");\n");
  call.statements += function.returns_nothing ? "  " + made + "  return 0;\n" : "  return " + made;
  return call;
}

/// The text, changed so that it does not end the comment that it is in.
std::string in_comment(std::string_view text) {
  std::string result(text);
  for (std::size_t found = 0; (found = result.find("*/", found)) != std::string::npos;)
    result.insert(found + 1, 1, ' ');
  return result;
}

}  // namespace

int swsdk_replay_as_c(const char* path, swsdk_line_t write, swsdk_line_t tell, void* data) {
  if (path == nullptr || write == nullptr || tell == nullptr) return SWSDK_REPLAY_UNREADABLE;
  std::set<std::string> written;
  const auto write_once = [&](const std::string& text) {
    if (written.insert(text).second) write(text.c_str(), data);
  };
  std::vector<std::string> steps;
  write(("/* The SDK calls of the recording " + std::string(path) + ". */").c_str(), data);
  for (const char* const text : c_beginning) write(text, data);
  const int outcome =
      api::read_recording(path, tell, data, [&](const RecordedLine& line, int number, const Say& /*say*/) {
        if (line.kind == Kind::event) return true;
        const char* const name = line.function->name;
        const api::CCall call = as_c(*line.function, line.arguments);
        const std::string result = std::to_string(line.result);
        const std::string step = "line_" + std::to_string(number);
        std::string before;
        if (line.kind == Kind::fault) write_once("#include <swsdk/fault.h>\n");
        if (line.kind == Kind::action)
          write_once("#include <swsdk/chip.h>\n#include <swsdk/field.h>\n#include <swsdk/frames.h>\n");
        if (line.kind == Kind::fault)
          before = "  swsdk_fault_inject(" + api::c_string(name) + ", " + result + ", 1);\n";
        for (const std::string& definition : call.definitions) write_once(definition);
        write(("/* " + in_comment(line.text) + " */").c_str(), data);
        write(("static int " + step + "(void) {\n" + before + call.statements + "}\n").c_str(), data);
        steps.push_back("    {" + std::to_string(number) + ", " + api::c_string(line.text) + ", " + step + ", " +
                        result + "},");
        return true;
      });
  write(
      "static const struct step {\n  int line;\n  const char* recorded;\n  int (*run)(void);\n  int result;\n} steps[] "
      "= {",
      data);
  for (const std::string& step : steps) write(step.c_str(), data);
  for (const char* const text : c_end) write(text, data);
  return outcome;
}
