#include "help.h"

#include <sstream>

#include "built_ins.h"
#include "descriptions.h"
#include "library.h"
#include "saish/shell.h"

namespace {

using ShellHelp = support::Shell;

bool has_line(const std::string& text, const std::string& begin, const std::string& end) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with("  " + begin + " ") && line.ends_with(" " + end)) return true;
  return false;
}

/// The first words of the lines.
std::vector<std::string> names_in(const std::string& text) {
  std::vector<std::string> names;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    words >> names.emplace_back();
  }
  return names;
}

TEST_F(ShellHelp, ShowsTheCommandsAndTheFamiliesInOneScreen) {
  const std::string text = run("help");
  for (const saish::BuiltIn& built_in : saish::built_ins())
    EXPECT_NE(text.find("  " + std::string(built_in.name)), std::string::npos) << built_in.name;
  for (const std::string_view family : saish::families())
    EXPECT_NE(text.find("  " + std::string(family)), std::string::npos) << family;
  const std::size_t screen = 24;
  std::istringstream lines(text);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_LT(count, screen);
}

TEST_F(ShellHelp, ListsEveryCommandAndEveryFunctionWhenAskedForAll) {
  const std::string text = run("help all");
  for (const saish::BuiltIn& built_in : saish::built_ins())
    EXPECT_TRUE(has_line(text, built_in.usage, built_in.summary)) << built_in.name;
  for (const saish::Function& function : saish::functions())
    EXPECT_TRUE(has_line(text, function.name, function.summary)) << function.name;
}

TEST_F(ShellHelp, ListsTheCommandsOfTheShell) {
  const std::string text = run("help shell");
  EXPECT_TRUE(has_line(text, "learn MAC VLAN PORT [UNIT]", "as from a frame that came in.")) << text;
  EXPECT_EQ(names_in(text).size(), saish::built_ins().size());
}

TEST_F(ShellHelp, ListsAFamilyOfFunctionsWhateverItsCase) {
  const std::vector<std::string> trunks = {"sai_trunk_init",    "sai_trunk_detach", "sai_trunk_create",
                                           "sai_trunk_destroy", "sai_trunk_set",    "sai_trunk_psc_set"};
  EXPECT_EQ(names_in(run("help Trunks")), trunks);
  EXPECT_EQ(names_in(run("help trunks")), trunks);
  EXPECT_EQ(names_in(run("help mac table")).front(), "sai_l2_init");
}

TEST_F(ShellHelp, EveryFunctionHasAFamily) {
  for (const saish::Function& function : saish::functions())
    EXPECT_FALSE(saish::family_of(function.name).empty()) << function.name;
}

TEST_F(ShellHelp, FindsWordsInNamesAndInWhatIsSaidOfThem) {
  const std::string text = run("help sensor");
  EXPECT_EQ(names_in(text), (std::vector<std::string>{"temperature", "sai_switch_temperature_monitor_get"})) << text;
  const std::vector<std::string> names = names_in(run("help mac AGE"));
  EXPECT_NE(std::find(names.begin(), names.end(), "sai_l2_mac_age_time_set"), names.end());
  EXPECT_EQ(std::find(names.begin(), names.end(), "sai_l2_mac_entry_add"), names.end());
}

TEST_F(ShellHelp, RefusesWhatIsFoundNowhereWithTheNearestName) {
  EXPECT_EQ(refused("help nonsense"), "no such command \"nonsense\"; help lists them all");
  EXPECT_EQ(refused("help sai_vlan_craete"), "no such command \"sai_vlan_craete\"; did you mean sai_vlan_create?");
}

TEST_F(ShellHelp, OnAFunctionShowsItsPrototypeItsSentenceAndItsForm) {
  EXPECT_EQ(run("help sai_vlan_create"),
            "int32_t sai_vlan_create(int32_t unit, uint16_t vid)\n"
            "Creates a VLAN with the CPU port as a tagged member.\n"
            "Here: sai_vlan_create unit vid\n");
  EXPECT_EQ(run("help sai_unit_get"),
            "int32_t sai_unit_get(void)\n"
            "Gives the number of the unit that the library drives: always 0.\n"
            "Here: sai_unit_get\n");
  EXPECT_EQ(run("help sai_err"),
            "void sai_err(const char* format, ...)\n"
            "Logs a message at level 3, \"errors\"; none without a format.\n"
            "Here: sai_err format\n");
}

TEST_F(ShellHelp, OnAFunctionShowsTheConstantsOfItsArguments) {
  const std::string text = run("help sai_mirror_source_port_set");
  EXPECT_TRUE(text.ends_with("unit session port mode\n  mode: SAI_MIRROR_INGRESS, SAI_MIRROR_EGRESS\n")) << text;
  const std::string codes = run("help sdk_to_sai");
  EXPECT_NE(codes.find("\n  rv: BCM_E_NONE, BCM_E_INTERNAL, "), std::string::npos) << codes;
}

TEST_F(ShellHelp, OnAFunctionOfRecordsShowsTheirFieldsWithTypesAndConstants) {
  const std::string text = run("help sai_acl_ext_l3_entry_install");
  for (const std::string line :
       {"  direction: SAI_ACL_INGRESS, SAI_ACL_EGRESS", "  rule is {field=value, ...} of",
        "    action            int8_t        1: permit; any other value: deny (sai_acl_action)",
        "                                    SAI_ACL_DENY, SAI_ACL_PERMIT", "    src_mac           MAC address",
        "    src_ip            IPv4 address  IPv4 address in network byte order", "    src_ip6           IPv6 address",
        "    vlan_id           uint16_t      outer VLAN id, the low 12 bits"})
    EXPECT_NE(text.find('\n' + line + '\n'), std::string::npos) << line << " is not in\n" << text;
}

TEST_F(ShellHelp, OnACommandOfTheShellShowsItsFormAndItsFields) {
  EXPECT_EQ(run("help link"), "link PORT up|down [UNIT]\nTakes a port's link up or down; who is registered is told.\n");
  EXPECT_NE(run("help learn").find("\n  - that is beyond a learn limit"), std::string::npos);
  const std::string notes = run("help expect");
  EXPECT_TRUE(notes.starts_with("expect CODE|out|cpu|dropped|nothing ...\n")) << notes;
  for (const std::string form : {"CODE COMMAND: ", "out PORT [FRAME]: ", "dropped REASON: ", "nothing: "})
    EXPECT_NE(notes.find("\n  expect " + form), std::string::npos) << notes;
  const std::string text = run("help classify");
  EXPECT_NE(text.find("\n  FRAME is {field=value, ...} of\n    in_port "), std::string::npos) << text;
  EXPECT_NE(text.find("\n    src_mac        MAC address\n"), std::string::npos) << text;
}

TEST_F(ShellHelp, OnShowListsTheTablesOfTheChipAndOfTheProgramAroundTheShell) {
  const std::string form = "show TABLE [UNIT]\nShows one of the chip's tables.\n  TABLE: attribute, clock, ";
  const std::string text = run("help show");
  EXPECT_TRUE(text.starts_with(form)) << text;
  EXPECT_TRUE(text.ends_with(", vlan, vport\n")) << text;
  session().more_tables["plug"] = [] { return ""; };
  EXPECT_TRUE(run("help show").ends_with(", vlan, vport, plug\n"));
}

}  // namespace
