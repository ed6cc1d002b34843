#include <swsdk/chip.h>

#include <limits>
#include <map>
#include <sstream>

#include "library.h"
#include "saish/shell.h"

namespace {

using saish::Function;
using saish::functions;

class ShellArguments : public support::Shell {
 protected:
  /// What the shell says of `word` as the last argument of `beginning`, without the form.
  std::string complaint(const std::string& beginning, const std::string& word) {
    const std::string text = refused(beginning + " " + word);
    const std::string name = beginning.substr(0, beginning.find(' '));
    const std::string form = "; the form is " + saish::usage(*saish::find_function(name));
    EXPECT_TRUE(text.ends_with(form)) << text;
    return text.substr(0, text.size() - std::min(form.size(), text.size()));
  }
};

struct Range {
  int64_t lowest;
  int64_t highest;
};

template <class T>
constexpr Range range = {std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};

/// The integer types that the library's signatures may have.
const std::map<std::string, Range> ranges = {
    {"int8_t", range<int8_t>},     {"uint8_t", range<uint8_t>}, {"int16_t", range<int16_t>},
    {"uint16_t", range<uint16_t>}, {"int32_t", range<int32_t>}, {"uint32_t", range<uint32_t>},
};

/// The types of a function's parameters, as its prototype has them.
std::vector<std::string> types(const Function& function) {
  const std::string prototype = function.prototype;
  const std::size_t begin = prototype.find('(') + 1;
  std::istringstream list(prototype.substr(begin, prototype.rfind(')') - begin));
  std::vector<std::string> result;
  for (std::string parameter; std::getline(list, parameter, ',');) {
    parameter.erase(0, parameter.find_first_not_of(' '));
    if (parameter != "void" && parameter != "...") result.push_back(parameter.substr(0, parameter.rfind(' ')));
  }
  return result;
}

bool takes_log(const Function& function) {
  return std::string(function.prototype).find("(sai_log_handle*") != std::string::npos;
}

/// A good word for an argument of a type that is no integer.
const std::map<std::string, std::string> good_words = {
    {"sai_log_handle*", "default"},
    {"const uint8_t*", "00:00:00:00:00:00"},
    {"bcm_linkscan_handler_t", "null"},
    {"sai_l2_event_cb", "null"},
    {"const bcm_ip6_t*", "::1"},
    {"const char*", "text"},
    {"char*", "text"},
    {"const int32_t*", "0"},
    {"int32_t*", "0"},
};

/// The command with a word of the right kind for each parameter that takes one, but `word` for parameter number
/// `place`.
std::string command(const Function& function, std::size_t place, const std::string& word) {
  std::string result = function.name;
  const std::vector<std::string> all = types(function);
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!function.parameters[i].given) continue;
    const bool is_ip6 = function.parameters[i].count == 16;
    const auto good = good_words.find(is_ip6 ? "const bcm_ip6_t*" : all[i]);
    const std::string usual = function.parameters[i].fields.empty() ? "0" : "{}";
    result += " " + (i == place ? word : good == good_words.end() ? usual : good->second);
  }
  return result;
}

TEST_F(ShellArguments, EveryIntegerOfEveryFunctionIsRefusedOutsideItsTypesRange) {
  int integers = 0;
  for (const Function& function : functions()) {
    if (takes_log(function) && sai_log_default == nullptr) run("open_sai_log test 0 0 0");
    const std::vector<std::string> all = types(function);
    ASSERT_EQ(all.size(), function.parameters.size()) << function.name;
    for (std::size_t i = 0; i < all.size(); ++i) {
      const saish::Parameter& parameter = function.parameters[i];
      if (!parameter.given) continue;
      const auto found = ranges.find(all[i]);
      if (found == ranges.end()) {
        EXPECT_TRUE(!parameter.fields.empty() || good_words.contains(all[i]))
            << function.name << ": what is a " << all[i] << "?";
        continue;
      }
      ++integers;
      const auto [lowest, highest] = found->second;
      for (const std::string& word :
           {std::to_string(lowest - 1), std::to_string(highest + 1), std::string("4294967296"),
            std::string("18446744073709551616"), std::string("-9223372036854775809"), std::string("junk")}) {
        const std::string text = refused(command(function, i, word));
        EXPECT_TRUE(
            text.starts_with(std::string(function.parameters[i].name) + ": \"" + word + "\" is not a number from "))
            << text;
      }
    }
  }
  EXPECT_GE(integers, 20);  // the prototypes are still read rightly
}

TEST_F(ShellArguments, SixteenUnsignedBitsRunFrom0To65535) {
  EXPECT_EQ(complaint("sai_vlan_create 0", "-1"), "vid: \"-1\" is not a number from 0 to 65535");
  EXPECT_EQ(complaint("sai_vlan_create 0", "65536"), "vid: \"65536\" is not a number from 0 to 65535");
  run("open_sai_log test 0 0 0");
  run("sai_vlan_create 0 0", "sai_vlan_create 0 65535");
  EXPECT_EQ(saish::journal_text(), "bcm_vlan_create(0, 0) = -4\nbcm_vlan_create(0, 65535) = -4\n");
}

TEST_F(ShellArguments, ThirtyTwoSignedBitsRunFromTheirLowestToTheirHighest) {
  EXPECT_EQ(complaint("sdk_to_sai", "-2147483649"),
            "rv: \"-2147483649\" is not a number from -2147483648 to 2147483647");
  EXPECT_EQ(complaint("sdk_to_sai", "2147483648"), "rv: \"2147483648\" is not a number from -2147483648 to 2147483647");
  run("open_sai_log test 0 0 0");
  run("sai_vlan_init -2147483648", "sai_vlan_init 2147483647");
  EXPECT_EQ(saish::journal_text(), "bcm_vlan_init(-2147483648) = -3\nbcm_vlan_init(2147483647) = -3\n");
}

TEST_F(ShellArguments, ThirtyTwoUnsignedBitsRunFrom0To4294967295) {
  EXPECT_EQ(complaint("sai_hash_to_sdk", "-1"), "selector: \"-1\" is not a number from 0 to 4294967295");
  EXPECT_EQ(complaint("sai_hash_to_sdk", "4294967296"),
            "selector: \"4294967296\" is not a number from 0 to 4294967295");
  EXPECT_EQ(run("sai_hash_to_sdk 0"), "  = 4\n");
  EXPECT_EQ(run("sai_hash_to_sdk 19"), "  = 3\n");
  EXPECT_EQ(run("sai_hash_to_sdk 4294967295"), "  = 0\n");
}

TEST(ShellNumber, SixtyFourBitsRunFromTheirLowestToTheirHighest) {
  const auto said = []<class T>(T /*kind*/, const std::string& word) -> std::string {
    try {
      return std::to_string(saish::Argument<T>(saish::Parameter{{"value"}}, word).get());
    } catch (const saish::BadInput& bad) {
      return bad.what();
    }
  };
  EXPECT_EQ(said(uint64_t{}, "18446744073709551615"), "18446744073709551615");
  EXPECT_EQ(said(uint64_t{}, "0xffffffffffffffff"), "18446744073709551615");
  EXPECT_EQ(said(uint64_t{}, "9223372036854775808"), "9223372036854775808");
  for (const std::string word : {"-1", "18446744073709551616"})
    EXPECT_EQ(said(uint64_t{}, word), "value: \"" + word + "\" is not a number from 0 to 18446744073709551615");
  EXPECT_EQ(said(int64_t{}, "-9223372036854775808"), "-9223372036854775808");
  EXPECT_EQ(said(int64_t{}, "9223372036854775807"), "9223372036854775807");
  for (const std::string word : {"-9223372036854775809", "9223372036854775808", "-18446744073709551615"})
    EXPECT_EQ(said(int64_t{}, word),
              "value: \"" + word + "\" is not a number from -9223372036854775808 to 9223372036854775807");
}

TEST_F(ShellArguments, ANumberIsDecimalOrHexadecimalWithASign) {
  run("open_sai_log test 0 0 0");
  run("sai_vlan_destroy 0 0x3e8", "sai_vlan_destroy 0 0XFFF", "sai_vlan_destroy 0 0xfFfF", "sai_vlan_destroy 0 010",
      "sai_vlan_destroy 0 -0", "sai_vlan_destroy -0x1 1");
  EXPECT_EQ(saish::journal_text(),
            "bcm_vlan_destroy(0, 1000) = -7\n"
            "bcm_vlan_destroy(0, 4095) = -7\n"
            "bcm_vlan_destroy(0, 65535) = -4\n"
            "bcm_vlan_destroy(0, 10) = -7\n"
            "bcm_vlan_destroy(0, 0) = -4\n"
            "bcm_vlan_destroy(-1, 1) = -3\n");
  EXPECT_EQ(complaint("sai_vlan_destroy 0", "0x10000"), "vid: \"0x10000\" is not a number from 0 to 65535");
}

TEST_F(ShellArguments, WhatIsNoNumberIsRefused) {
  for (const std::string word : {"ten", "10x", "x10", "1.5", "1e3", "+1", "-", "--1", "0x", "0xg", "-0x", "0x-1", "1,",
                                 "0b1", "99999999999999999999999"})
    EXPECT_EQ(complaint("sai_vlan_create 0", word), "vid: \"" + word + "\" is not a number from 0 to 65535");
  EXPECT_EQ(complaint("sai_vlan_create 0", "\"\""), "vid: \"\" is not a number from 0 to 65535");
  EXPECT_EQ(complaint("sai_vlan_create 0", "\" 10\""), "vid: \" 10\" is not a number from 0 to 65535");
}

TEST_F(ShellArguments, EnumeratorsAndSdkCodesAreNumbersByTheirNames) {
  EXPECT_EQ(run("expect -13 sdk_to_sai BCM_E_FULL"), "  = -13 SAI_E_FULL\n");
  EXPECT_EQ(run("expect -9 sdk_to_sai BCM_E_PORT"), "  = -9 SAI_E_PORT\n");
  EXPECT_EQ(run("sdk_to_sai BCM_E_NONE"), "  = 0\n");
  EXPECT_EQ(run("sdk_to_sai SAI_E_NONE"), "  = 0\n");
  run("open_sai_log test 0 0 0", "sai_log_set_level default SAI_LOG_FILE SAI_LOG_DEBUGGING");
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_FILE], SAI_LOG_DEBUGGING);
  run("sai_log_set_level default SAI_LOG_FILE SAI_LOG_OFF");
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_FILE], SAI_LOG_OFF);
}

TEST_F(ShellArguments, ANameThatIsUnknownOrOutOfRangeIsRefused) {
  EXPECT_EQ(complaint("sdk_to_sai", "SAI_E_NONSENSE"),
            "rv: \"SAI_E_NONSENSE\" is not a number from -2147483648 to 2147483647");
  EXPECT_EQ(complaint("sdk_to_sai", "sai_e_full"), "rv: \"sai_e_full\" is not a number from -2147483648 to 2147483647");
  EXPECT_EQ(complaint("sai_vlan_create 0", "SAI_LOG_OFF"), "vid: \"SAI_LOG_OFF\" is not a number from 0 to 65535");
}

TEST_F(ShellArguments, ALogIsTheDefaultOneOrNull) {
  run("open_sai_log test 0 0 0");
  run("sai_log_set_level default SAI_LOG_FILE 3", "sai_log_set_level null SAI_LOG_SYSLOG 2");
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_FILE], 3);
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_SYSLOG], 2);
  for (const std::string word : {"0", "Default", "test", "\"\""}) {
    const std::string text = refused("sai_log_set_level " + word + " 2 7");
    EXPECT_TRUE(
        text.ends_with("is neither \"default\" nor \"null\"; the form is "
                       "sai_log_set_level log destination level"))
        << text;
  }
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_FILE], 3);
}

TEST_F(ShellArguments, ALogThatIsNotOpenIsRefused) {
  for (const std::string line :
       {"sai_log_set_level default 1 7", "sai_log_set_level null 1 7", "close_sai_log default"})
    EXPECT_TRUE(refused(line).starts_with("log: no log is open; open_sai_log opens one")) << line;
}

TEST_F(ShellArguments, ATextIsTakenAsItStands) {
  run("open_sai_log \"two words\" 0 0 0", "sai_log_set_level default SAI_LOG_CONSOLE 7");
  EXPECT_STREQ(sai_log_default->ident, "two words");
  EXPECT_EQ(run("sai_warn \"100% of %s and %n\""), "2026/11/21 09:05:00 NONE: 100% of %s and %n\n");
  run("expect -1 sai_sh_process_command 0 \"ps xe0\"");
  EXPECT_EQ(saish::journal_text(), "sh_process_command(0, \"ps xe0\") = -3\n");
}

TEST_F(ShellArguments, TooFewOrTooManyForAnyFunctionAreRefusedWithItsForm) {
  run("open_sai_log test 0 0 0");
  for (const Function& function : functions()) {
    const std::string form = "the form is " + saish::usage(function);
    const std::string full = command(function, function.parameters.size(), "");
    EXPECT_EQ(refused(full + " 0"), "too many arguments; " + form);
    if (saish::given_parameters(function).empty()) continue;
    EXPECT_EQ(refused(full.substr(0, full.rfind(' '))), "too few arguments; " + form);
  }
  EXPECT_NE(sai_log_default, nullptr);
}

TEST_F(ShellArguments, OneBadWordAmongGoodOnesChangesNothing) {
  run("sai_vlan_create 0 10");
  const std::string before = run("show vlan");
  refused("sai_vlan_port_add 0 10 1 maybe");
  refused("sai_vlan_port_add 0 10 65536 0");
  refused("sai_vlan_port_add 0 x 1 0");
  refused("sai_vlan_destroy 0 10 10");
  refused("expect 0 sai_vlan_destroy 0 x");
  EXPECT_EQ(run("show vlan"), before);
}

}  // namespace
