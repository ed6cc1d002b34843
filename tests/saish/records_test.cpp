// Records as arguments, with functions of our own in place of the library's.
#include "sample.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <vector>

#include "library.h"

namespace {

sample_entry taken;
sample_inner taken_inner;
uint32_t kept[3];

}  // namespace

int32_t sample_take(int32_t /*unit*/, const sample_entry* entry) {
  taken = *entry;
  return entry->port;
}

int32_t sample_take_value(sample_inner inner) {
  taken_inner = inner;
  return 0;
}

int32_t sample_change(int32_t /*unit*/, sample_entry* entry) {
  entry->port *= 2;
  return 0;
}

int32_t sample_fail(sample_inner* inner) {
  inner->vid = 1;
  return -1;
}

int32_t sample_find() { return -1; }

void sample_forget() {}

int32_t sample_numbers(uint16_t numbers[3]) {
  for (uint16_t i = 0; i < 3; ++i) numbers[i] = static_cast<uint16_t>(i + 7);
  return 0;
}

int32_t sample_text(int32_t unit, char* name_buf, int32_t name_len) {
  return std::snprintf(name_buf, static_cast<size_t>(name_len), "unit %d\n", unit);
}

int32_t sample_table(sample_inner* entries) {
  entries[0].vid = 10;
  entries[2].tos = 4;
  return 0;
}

int32_t sample_addresses(const uint8_t* group, const uint8_t source[16], uint32_t ip) {
  return group[15] + source[15] + static_cast<int32_t>(ip & 0xFF);
}

int32_t sample_next(int32_t* id, int32_t* last) {
  *last = (*id)++;
  return 0;
}

int32_t sample_orders(uint32_t source, uint32_t mask, uint32_t subnet) {
  kept[0] = source;
  kept[1] = mask;
  kept[2] = subnet;
  return 0;
}

namespace saish {
#include "sample_commands.inc"
}  // namespace saish

namespace {

using saish::Outcome;
using saish::words;

/// What came of a line that calls one of the functions above.
Outcome run(const std::string& line) {
  saish::Words given = words(line);
  for (const saish::Function& function : saish::function_table)
    if (given.at(0) == function.name) {
      given.erase(given.begin());
      return function.run(function.parameters, given);
    }
  throw std::runtime_error("no function " + given[0]);
}

std::string complaint(const std::string& line) {
  taken = {};
  taken.flags = 4711;
  try {
    run(line);
  } catch (const saish::BadInput& bad) {
    EXPECT_EQ(taken.flags, 4711) << line << ": was called";
    return bad.what();
  }
  return "";
}

TEST(Functions, ReturnWhatTheirPrototypesAndCommentsSay) {
  std::map<std::string, saish::Result> results;
  for (const saish::Function& function : saish::function_table) results[function.name] = function.result;
  for (const char* name : {"sample_take", "sample_take_value", "sample_change", "sample_fail"})
    EXPECT_EQ(results.at(name), saish::Result::code) << name;
  EXPECT_EQ(results.at("sample_find"), saish::Result::number);
  EXPECT_EQ(results.at("sample_forget"), saish::Result::none);
}

TEST(Records, FieldsThatAreNotGivenAre0) {
  std::memset(&taken, 0xFF, sizeof taken);
  EXPECT_EQ(run("sample_take 0 {}").result, 0);
  EXPECT_EQ(saish::text(taken),
            "{flags=0, mac=00:00:00:00:00:00, port=0, octets=0, ip=0.0.0.0, net_mask=0.0.0.0, ip_type=0, ip6=::, "
            "reserved=[0, 0, 0, 0, 0, 0, 0, 0], weights=[0, 0, 0], inner={vid=0, tos=0}}");
}

TEST(Records, EachFieldIsWrittenAsItsShapeAsks) {
  EXPECT_EQ(run("sample_take 0 {flags=0xffffffff, mac=01:80:c2:00:00:0E, port=-3, octets=18446744073709551615,"
                " ip=10.0.0.1, net_mask=255.255.0.0, ip_type=3, ip6=ff02::1, reserved=[1,2], weights=[ 7 , -8 ],"
                " inner={vid=SAI_LOG_DEBUGGING, tos=-1}}")
                .result,
            -3);
  EXPECT_EQ(taken.flags, 0xFFFFFFFF);
  EXPECT_EQ(std::memcmp(taken.mac, "\x01\x80\xC2\0\0\x0E", 6), 0);
  EXPECT_EQ(taken.port, -3);
  EXPECT_EQ(taken.octets, UINT64_MAX);
  EXPECT_EQ(taken.ip, 0x0A000001);
  EXPECT_EQ(std::memcmp(&taken.net_mask, "\xFF\xFF\0\0", 4), 0);
  EXPECT_EQ(taken.ip_type, 3);
  EXPECT_EQ(std::memcmp(taken.ip6, "\xFF\x02\0\0\0\0\0\0\0\0\0\0\0\0\0\x01", 16), 0);
  EXPECT_EQ(std::memcmp(taken.reserved, "\1\2\0\0\0\0\0\0", 8), 0);
  EXPECT_EQ(std::vector<int32_t>(taken.weights, taken.weights + 3), (std::vector<int32_t>{7, -8, 0}));
  EXPECT_EQ(taken.inner.vid, 7);
  EXPECT_EQ(taken.inner.tos, -1);
}

TEST(Records, AnAddressMayBeANumber) {
  run("sample_take 0 {ip=0x0a000001, net_mask=0xffff0000}");
  EXPECT_EQ(taken.ip, 0x0A000001);
  EXPECT_EQ(std::memcmp(&taken.net_mask, "\xFF\xFF\0\0", 4), 0);
}

TEST(Records, GoByValueToo) {
  EXPECT_EQ(run("sample_take_value {vid=10,tos=-128}").result, 0);
  EXPECT_EQ(taken_inner.vid, 10);
  EXPECT_EQ(taken_inner.tos, -128);
}

TEST(Records, WhatAFunctionMayChangeIsShownAsItCouldBeGiven) {
  const std::string rest =
      ", octets=5, ip=10.0.0.1, net_mask=255.0.0.0, ip_type=2, ip6=fe80::1, reserved=[1, 2, 3, 4, 5, 6, 7, 8], "
      "weights=[-1, 0, 1], inner={vid=4095, tos=-1}}";
  const std::string begin = "{flags=1, mac=00:11:22:33:44:55, port=";
  EXPECT_EQ(run("sample_change 0 " + begin + "-21" + rest).answers,
            std::vector<std::string>{"entry = " + begin + "-42" + rest});
}

TEST(Records, AfterAFailureNoneIsShown) {
  const Outcome outcome = run("sample_fail {}");
  EXPECT_EQ(outcome.result, -1);
  EXPECT_TRUE(outcome.answers.empty());
}

TEST(Records, WhatIsOnlyReadIsNotShown) { EXPECT_TRUE(run("sample_take 0 {port=1}").answers.empty()); }

TEST(Records, AFieldThatThereIsNotIsRefusedWithThoseThatThereAre) {
  const std::string fields =
      "the fields are flags, mac, port, octets, ip, net_mask, ip_type, ip6, reserved, weights, inner";
  for (const std::string name : {"vlan", "Port", "port ip"})
    EXPECT_EQ(complaint("sample_take 0 {flags=1, " + name + "=2}"),
              "entry: there is no field \"" + name + "\"; " + fields);
  for (const std::string word : {"{=1}", "{port=1,}", "{,}", "{port=1,,ip=1}"})
    EXPECT_EQ(complaint("sample_take 0 " + word), "entry: there is no field \"\"; " + fields);
  EXPECT_EQ(complaint("sample_take 0 {inner={flags=1}}"),
            "entry.inner: there is no field \"flags\"; the fields are vid, tos");
}

TEST(Records, AValueThatDoesNotFitItsFieldIsRefused) {
  const auto refused = [](const std::string& field) { return complaint("sample_take 0 {" + field + "}"); };
  EXPECT_EQ(refused("flags=-1"), "entry.flags: \"-1\" is not a number from 0 to 4294967295");
  EXPECT_EQ(refused("port="), "entry.port: \"\" is not a number from -2147483648 to 2147483647");
  EXPECT_EQ(refused("ip_type=10.0.0.1"), "entry.ip_type: \"10.0.0.1\" is not a number from 0 to 4294967295");
  EXPECT_EQ(refused("inner={tos=128}"), "entry.inner.tos: \"128\" is not a number from -128 to 127");
  for (const std::string mac :
       {"0", "00:11:22:33:44", "00:11:22:33:44:55:66", "00-11-22-33-44-55", "00:11:22:33:44:5g"})
    EXPECT_EQ(refused("mac=" + mac), "entry.mac: \"" + mac + "\" is not a MAC address such as 00:11:22:33:44:55");
  for (const std::string ip : {"10.0.0", "10.0.0.256", "4294967296", "-1", "host"})
    EXPECT_EQ(refused("ip=" + ip), "entry.ip: \"" + ip + "\" is not an IPv4 address such as 10.0.0.1");
  for (const std::string ip : {"1", "10.0.0.1", "ff02:::1", "ff02::1/8"})
    EXPECT_EQ(refused("ip6=" + ip), "entry.ip6: \"" + ip + "\" is not an IPv6 address such as ff02::1");
  for (const std::string list : {"1", "[1,2,3,4]", "[1", "1]"})
    EXPECT_EQ(refused("weights=" + list),
              "entry.weights: \"" + list + "\" is not a list of up to 3 numbers such as [1, 2]");
  EXPECT_EQ(refused("reserved=[256]"), "entry.reserved: \"256\" is not a number from 0 to 255");
}

TEST(Records, WhatIsNoRecordIsRefused) {
  for (const std::string word : {"0", "port=1", "{port=1}x", "[port=1]"})
    EXPECT_EQ(complaint("sample_take 0 " + word), "entry: \"" + word + "\" is not a record such as {flags=0}");
  EXPECT_EQ(complaint("sample_take 0 {port}"), "entry.port has no value; write port=VALUE");
  EXPECT_EQ(complaint("sample_take 0 {port=1, ip=2, port=1}"), "entry.port is given twice");
}

TEST(Records, OneWithAFieldThatNobodyCanWriteHasNoFields) {
  EXPECT_TRUE(saish::fields_of<const sample_list*>().empty());
  EXPECT_EQ(saish::names_text(saish::fields_of<sample_inner>()), "vid, tos");
}

TEST(Answers, OfAKnownLengthAreAList) {
  EXPECT_EQ(run("sample_numbers").answers, std::vector<std::string>{"numbers = [7, 8, 9]"});
}

TEST(Answers, ToWhatIsTakenAsWellAreGiven) {
  EXPECT_EQ(run("sample_next 7").answers, (std::vector<std::string>{"id = 8", "last = 7"}));
  EXPECT_THROW(run("sample_next seven"), saish::BadInput);
}

TEST(Answers, ATextComesInABufferOfTheShells) {
  EXPECT_EQ(run("sample_text 3").answers, std::vector<std::string>{"name_buf = \"unit 3\\n\""});
}

TEST(Answers, ATableIsShownWithoutWhatIsEmpty) {
  EXPECT_EQ(run("sample_table").answers,
            std::vector<std::string>{"entries =\n    {vid=10, tos=0}\n    {vid=0, tos=4}"});
}

TEST(Addresses, AreTakenAsPeopleWriteThem) {
  EXPECT_EQ(run("sample_addresses ff02::5 ::1 10.0.0.7").result, 13);
  EXPECT_THROW(run("sample_addresses 00:11:22:33:44:55 ::1 10.0.0.7"), saish::BadInput);
  EXPECT_THROW(run("sample_addresses ff02::5 00:11:22:33:44:55 10.0.0.7"), saish::BadInput);
  EXPECT_THROW(run("sample_addresses ff02::5 ::1 10.0.0"), saish::BadInput);
}

TEST(Addresses, AreInTheOrderThatTheFunctionTakes) {
  run("sample_orders 10.0.0.7 255.255.0.0 10.1.0.0");
  EXPECT_EQ(std::memcmp(&kept[0], "\x0A\0\0\x07", 4), 0);
  EXPECT_EQ(kept[1], 0xFFFF0000);
  EXPECT_EQ(std::memcmp(&kept[2], "\x0A\x01\0\0", 4), 0);
  run("sample_orders 0x0a000007 0xffff0000 0");
  EXPECT_EQ(kept[0], 0x0A000007);
  EXPECT_EQ(kept[2], 0U);
}

}  // namespace
