#include "completion.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

using Texts = std::vector<std::string>;

Texts after(const std::string& line) { return saish::completion_of(line).candidates; }

bool has(const Texts& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

TEST(Completion, OfTheFirstWordIsEveryCommand) {
  EXPECT_EQ(after("sai_trunk_p"), Texts{"sai_trunk_psc_set"});
  EXPECT_EQ(after("  sou"), Texts{"source"});
  EXPECT_TRUE(has(after(""), "help"));
  EXPECT_EQ(after("nothing"), Texts{});
}

TEST(Completion, OfACodeIsTheCodesThatFit) {
  EXPECT_EQ(after("expect SAI_E_F"), (Texts{"SAI_E_FAIL", "SAI_E_FULL"}));
  EXPECT_EQ(after("expect BCM_"), Texts{});
  EXPECT_EQ(after("fail bcm_vlan_create BCM_E_FU"), Texts{"BCM_E_FULL"});
  EXPECT_EQ(after("fail bcm_vlan_create SAI_"), Texts{});
  EXPECT_EQ(after("sdk_to_sai BCM_E_T"), Texts{"BCM_E_TIMEOUT"});
}

TEST(Completion, BehindExpectIsThatOfTheCommand) {
  EXPECT_EQ(after("expect SAI_E_FULL sai_trunk_p"), Texts{"sai_trunk_psc_set"});
  EXPECT_EQ(after("expect 0 sai_mirror_source_port_set 0 0 1 "), (Texts{"SAI_MIRROR_EGRESS", "SAI_MIRROR_INGRESS"}));
}

TEST(Completion, BehindExpectIsWhatIsExpectedOfAFrame) {
  const Texts all = after("expect ");
  for (const std::string word : {"out", "cpu", "dropped", "nothing", "SAI_E_FULL"}) EXPECT_TRUE(has(all, word)) << word;
  EXPECT_EQ(after("expect cpu l"), (Texts{"l2-cache", "l3-error", "l3-miss", "learning"}));
  EXPECT_EQ(after("expect cpu a"), Texts{"any"});
  EXPECT_EQ(after("expect dropped not-a"), Texts{"not-a-member-of-the-vlan"});
  EXPECT_EQ(after("expect dropped not-a-member-of-the-vlan "), Texts{});
  EXPECT_EQ(after("expect out "), Texts{});
  EXPECT_EQ(saish::completion_of("expect out ").hint, "PORT");
  EXPECT_EQ(saish::completion_of("expect out 2 ").hint, "FRAME");
  EXPECT_EQ(saish::completion_of("expect cpu any ").hint, "FRAME");
  EXPECT_EQ(saish::completion_of("expect nothing ").hint, "");
}

TEST(Completion, OfWhatShallFailIsEverySdkFunction) {
  EXPECT_EQ(after("fail bcm_vlan_port_a"), Texts{"bcm_vlan_port_add"});
  EXPECT_EQ(after("fail cl"), Texts{"clear"});
  EXPECT_EQ(after("fail sai_"), Texts{});
  EXPECT_EQ(after("fail bcm_vlan_create BCM_E_FULL "), Texts{"every"});
}

TEST(Completion, OfAnArgumentIsTheConstantsThatItTakes) {
  EXPECT_EQ(after("sai_acl_std_l3_entry_install 0 1 SAI"), (Texts{"SAI_ACL_EGRESS", "SAI_ACL_INGRESS"}));
  EXPECT_EQ(after("sai_log_set_level default SAI_LOG_S"), Texts{"SAI_LOG_SYSLOG"});
  EXPECT_EQ(after("sai_log_set_level default 1 SAI_LOG_E"), (Texts{"SAI_LOG_EMERGENCIES", "SAI_LOG_ERRORS"}));
  EXPECT_EQ(after("sai_vlan_create 0 "), Texts{});
  EXPECT_EQ(after("sai_vlan_create 0 10 "), Texts{});
}

TEST(Completion, OfARecordIsItsFieldsAndTheirConstants) {
  const std::string add = "sai_l2_mac_entry_add 0 ";
  EXPECT_EQ(after(add), Texts{"{"});
  EXPECT_EQ(after(add + "{ma"), Texts{"mac="});
  EXPECT_EQ(after(add + "{mac=00:00:00:00:00:01, ma"), Texts{});
  EXPECT_EQ(after(add + "{mac=00:00:00:00:00:01,po"), (Texts{"port=", "port_out="}));
  EXPECT_EQ(after(add + "{port_out=1, po"), Texts{"port="});
  EXPECT_EQ(after(add + "{flags=SAI_L2_MAC_S"), Texts{"SAI_L2_MAC_STATIC"});
  EXPECT_EQ(after(add + "{flags=SAI_L2_MAC_STATIC}"), Texts{});
  EXPECT_EQ(after("classify ingress {in_p"), Texts{"in_port="});
}

TEST(Completion, OfTheShellsOwnWordsIsInTheirForms) {
  EXPECT_EQ(after("journal "), (Texts{"clear", "follow", "off", "on", "show"}));
  EXPECT_EQ(after("link 1 "), (Texts{"down", "up"}));
  EXPECT_EQ(after("hit 10.0.0.1 s"), Texts{"source"});
  EXPECT_EQ(after("classify "), (Texts{"egress", "ingress"}));
  EXPECT_EQ(after("show vl"), Texts{"vlan"});
  EXPECT_EQ(after("counter 1 snmpIfInE"), Texts{"snmpIfInErrors"});
  EXPECT_EQ(after("log debu"), Texts{"debugging"});
  EXPECT_EQ(after("log SAI_LOG_O"), Texts{"SAI_LOG_OFF"});
  EXPECT_EQ(after("help sai_trunk_p"), Texts{"sai_trunk_psc_set"});
  EXPECT_EQ(after("help vlan sai_trunk_p"), Texts{"sai_trunk_psc_set"});
  EXPECT_EQ(after("quit "), Texts{});
}

TEST(Completion, HintsAtWhatCannotBeListed) {
  EXPECT_EQ(saish::completion_of("sai_vlan_create 0 ").hint, "vid");
  EXPECT_EQ(saish::completion_of("learn ").hint, "MAC");
  EXPECT_EQ(saish::completion_of("temperature 40 ").hint, "NOW/PEAK");
  EXPECT_EQ(saish::completion_of("sai_l2_mac_entry_add 0 {mac=").hint, "MAC address");
  EXPECT_EQ(saish::completion_of("sai_vlan_create 0 10 ").hint, "");
}

TEST(Completion, InsideQuotesIsNothing) {
  EXPECT_EQ(after("sai_err \"show "), Texts{});
  EXPECT_EQ(after("sai_err \"{"), Texts{});
}

TEST(Completion, OfAFileIsTheNamesInItsFolder) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::temp_directory_path() / ("saish_completion_test." + std::to_string(getpid()));
  fs::create_directories(folder / "intended");
  for (const char* name : {"in.sai", "other.sai", "in two words.sai", ".in"}) std::ofstream(folder / name) << "";
  const std::string at = folder.string() + "/";
  EXPECT_EQ(after("source " + at + "i"), (Texts{at + "in.sai", at + "intended/"}));
  EXPECT_EQ(after("diff " + at), (Texts{at + "in.sai", at + "intended/", at + "other.sai"}));
  EXPECT_EQ(after("source " + at + ".i"), Texts{at + ".in"});
  EXPECT_EQ(after("source " + at + "nowhere/"), Texts{});
  fs::remove_all(folder);
}

}  // namespace
