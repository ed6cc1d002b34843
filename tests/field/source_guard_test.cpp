#include <arpa/inet.h>
#include <bcm/error.h>
#include <swsdk/fault.h>

#include <string>

#include "field/steps.h"
#include "support/start.h"

namespace {

using field::Step;
using field::Steps;

class SourceGuard : public field::Scene {
 protected:
  SourceGuard() { use_group(sai_ipsg_init); }

  int32_t guard(int32_t vlan, int32_t port, int32_t* entry) {
    return sai_ipsg_verify_config(group, vlan, 99, port, entry);
  }

  int32_t bind(uint32_t src_ip, int32_t vlan, int32_t port, int32_t* entry) {
    return sai_ipsg_parameter_config(group, src_ip, 0xFFFFFF00, vlan, 99, port, entry);
  }

  /// What `expected` is, with the id that the chip chose, when `seen` is observed.
  std::string as_seen(const std::string& expected, const std::string& seen) const {
    return filled(expected, ids_in(seen).at(0));
  }
};

const uint32_t source = inet_addr("10.1.2.3");

Step guarding(const std::string& call, const std::string& id = "$id") {
  return {call, "sai_ipsg_verify_config bcm_field_entry_reinstall group $group entry " + id + " failed"};
}

const Steps drop = {
    guarding("bcm_field_entry_create(0, $group, &$id)", "-1"),
    guarding("bcm_field_qualify_clear(0, $id)"),
    guarding("bcm_field_qualify_InPort(0, $id, 3, -1)"),
    guarding("bcm_field_qualify_EtherType(0, $id, 0x800, 0xffff)"),
    guarding("bcm_field_qualify_OuterVlan(0, $id, 10, 4095)"),
    guarding("bcm_field_entry_prio_set(0, $id, 1)"),
    guarding("bcm_field_action_add(0, $id, 39, 0, 0)"),
    guarding("bcm_field_entry_install(0, $id)"),
};
constexpr size_t drop_priority = 5;

Step binding(const std::string& call, std::string named = "") {
  if (named.empty()) named = call.substr(0, call.find('('));
  return {call, "sai_ipsg_parameter_config " + named + " group $group entry $id failed"};
}

const Steps permit = {
    {"bcm_field_entry_create(0, $group, &$id)", ""},
    binding("bcm_field_qualify_clear(0, $id)"),
    binding("bcm_field_qualify_InPort(0, $id, 3, -1)", "bcm_field_qualify_InPorts"),
    binding("bcm_field_qualify_EtherType(0, $id, 0x800, 0xffff)"),
    binding("bcm_field_qualify_OuterVlan(0, $id, 10, 4095)"),
    binding("bcm_field_qualify_SrcIp(0, $id, 10.1.2.3, 255.255.255.0)"),
    binding("bcm_field_entry_prio_set(0, $id, 3)"),
    binding("bcm_field_action_add(0, $id, 40, 0, 0)"),
    binding("bcm_field_entry_install(0, $id)"),
};
constexpr size_t permit_priority = 6;

/// The steps without the one at `index`.
Steps without(Steps steps, size_t index) {
  steps.erase(steps.begin() + static_cast<Steps::difference_type>(index));
  return steps;
}

TEST_F(SourceGuard, AGuardedPortDropsIpv4OfAVlan) {
  untouched = 0;
  const auto call = [this](int32_t* entry) { return guard(10, 3, entry); };
  expect_success(drop, call);
  for (size_t failing = 0; failing < drop.size(); ++failing)
    if (failing != drop_priority) expect_failure(drop, failing, Told::on_success, call);
}

TEST_F(SourceGuard, AGuardedPortIsComparedWithVlanZeroToo) {
  int32_t entry = 0;
  const std::string seen = observe([&] { return guard(0, 3, &entry); });
  EXPECT_NE(seen.find(as_seen("bcm_field_qualify_OuterVlan(0, $id, 0, 4095) = 0\n", seen)), std::string::npos) << seen;
}

TEST_F(SourceGuard, AGuardWhosePriorityIsRefusedTakesTheNext) {
  int32_t entry = 0;
  const std::string seen =
      observe_failing("bcm_field_entry_prio_set", BCM_E_FULL, [&] { return guard(10, 3, &entry); });
  EXPECT_EQ(seen, as_seen("bcm_field_entry_create(0, $group, &$id) = 0\n"
                          "bcm_field_qualify_clear(0, $id) = 0\n"
                          "bcm_field_qualify_InPort(0, $id, 3, -1) = 0\n"
                          "bcm_field_qualify_EtherType(0, $id, 0x800, 0xffff) = 0\n"
                          "bcm_field_qualify_OuterVlan(0, $id, 10, 4095) = 0\n"
                          "bcm_field_entry_prio_set(0, $id, 1) = -6\n"
                          "bcm_field_entry_prio_set(0, $id, 2) = 0\n"
                          "bcm_field_action_add(0, $id, 39, 0, 0) = 0\n"
                          "bcm_field_entry_install(0, $id) = 0\n"
                          "log: errors: NONE: sai_ipsg_verify_config bcm_field_entry_reinstall group $group entry $id "
                          "failed: Table is full\n"
                          "returned 0\n",
                          seen));
  EXPECT_EQ(std::to_string(entry), ids_in(seen).at(0));
}

TEST_F(SourceGuard, AGuardWithoutAPriorityIsGivenUp) {
  int32_t entry = 0;
  const std::string seen = observe_failing(
      "bcm_field_entry_prio_set", BCM_E_FULL, [&] { return guard(10, 3, &entry); }, SWSDK_FAULT_EVERY_CALL);
  EXPECT_TRUE(
      seen.ends_with(as_seen("bcm_field_entry_prio_set(0, $id, 1) = -6\n"
                             "bcm_field_entry_prio_set(0, $id, 2) = -6\n"
                             "log: errors: NONE: sai_ipsg_verify_config bcm_field_entry_reinstall group $group "
                             "entry $id failed: Table is full\n"
                             "log: errors: NONE: sai_ipsg_verify_config bcm_field_entry_reinstall group $group "
                             "entry $id failed: Table is full\n"
                             "returned -13\n",
                             seen)))
      << seen;
  EXPECT_EQ(entry, 0);
}

TEST_F(SourceGuard, AGuardMovesToAnotherPortAndKeepsItsVlan) {
  int32_t entry = 0;
  ASSERT_EQ(guard(10, 3, &entry), 0);
  const std::string id = std::to_string(entry);
  const auto move = [&] { return guard(20, 4, &entry); };
  EXPECT_EQ(observe(move), filled("bcm_field_qualify_InPort(0, $id, 4, -1) = 0\n"
                                  "bcm_field_entry_reinstall(0, $id) = 0\n"
                                  "returned 0\n",
                                  id));
  EXPECT_EQ(observe_failing("bcm_field_qualify_InPort", BCM_E_PORT, move),
            filled("bcm_field_qualify_InPort(0, $id, 4, -1) = -18\n"
                   "log: errors: NONE: sai_ipsg_verify_config bcm_field_entry_reinstall group $group entry $id "
                   "failed: Invalid port\n"
                   "returned -9\n",
                   id));
  EXPECT_EQ(observe_failing("bcm_field_entry_reinstall", BCM_E_FULL, move),
            filled("bcm_field_qualify_InPort(0, $id, 4, -1) = 0\n"
                   "bcm_field_entry_reinstall(0, $id) = -6\n"
                   "log: errors: NONE: sai_ipsg_verify_config bcm_field_entry_reinstall group $group entry $id "
                   "failed: Table is full\n"
                   "returned -13\n",
                   id));
  EXPECT_EQ(std::to_string(entry), id);
}

TEST_F(SourceGuard, ANegativeIdIsAnEntryOfAGuard) {
  int32_t entry = -1;
  EXPECT_EQ(observe_failing("bcm_field_qualify_InPort", BCM_E_NOT_FOUND, [&] { return guard(10, 3, &entry); }),
            filled("bcm_field_qualify_InPort(0, -1, 3, -1) = -7\n"
                   "log: errors: NONE: sai_ipsg_verify_config bcm_field_entry_reinstall group $group entry -1 failed: "
                   "Entry not found\n"
                   "returned -7\n",
                   ""));
  EXPECT_EQ(entry, -1);
}

TEST_F(SourceGuard, ABindingPermitsIpv4OfASource) {
  untouched = 0;
  const auto call = [this](int32_t* entry) { return bind(source, 10, 3, entry); };
  expect_success(permit, call);
  for (size_t failing = 1; failing < permit.size(); ++failing)
    if (failing != permit_priority) expect_failure(permit, failing, Told::on_success, call);
}

TEST_F(SourceGuard, ABindingThatCannotBeCreatedIsLoggedWithoutATextOfTheSdks) {
  int32_t entry = -5;
  EXPECT_EQ(observe_failing("bcm_field_entry_create", BCM_E_FULL, [&] { return bind(source, 10, 3, &entry); }),
            filled("bcm_field_entry_create(0, $group, &?) = -6\n"
                   "log: errors: NONE: sai_ipsg_parameter_config system creates one entry for ipsg from group $group "
                   "failed!\n"
                   "returned -13\n",
                   ""));
  EXPECT_EQ(entry, -5);
}

TEST_F(SourceGuard, AnyIdBelowOneHasABindingCreated) {
  untouched = -1;
  expect_success(permit, [this](int32_t* entry) { return bind(source, 10, 3, entry); });
}

TEST_F(SourceGuard, ABindingWithoutAVlanIsOnEveryVlan) {
  untouched = 0;
  for (const int32_t vlan : {0, -1})
    expect_success(without(permit, 4), [=, this](int32_t* entry) { return bind(source, vlan, 3, entry); });
}

TEST_F(SourceGuard, ABindingWithoutASourceIsForAll) {
  untouched = 0;
  expect_success(without(permit, 5), [this](int32_t* entry) { return bind(0, 10, 3, entry); });
}

TEST_F(SourceGuard, ABindingWhosePriorityIsRefusedTakesTheNext) {
  int32_t entry = 0;
  const std::string seen =
      observe_failing("bcm_field_entry_prio_set", BCM_E_FULL, [&] { return bind(source, 10, 3, &entry); });
  EXPECT_TRUE(
      seen.ends_with(as_seen("bcm_field_entry_prio_set(0, $id, 3) = -6\n"
                             "bcm_field_entry_prio_set(0, $id, 4) = 0\n"
                             "bcm_field_action_add(0, $id, 40, 0, 0) = 0\n"
                             "bcm_field_entry_install(0, $id) = 0\n"
                             "log: errors: NONE: sai_ipsg_parameter_config bcm_field_entry_prio_set group "
                             "$group entry $id priority set failed: Table is full\n"
                             "returned 0\n",
                             seen)))
      << seen;
  EXPECT_EQ(std::to_string(entry), ids_in(seen).at(0));
}

TEST_F(SourceGuard, ABindingWithoutAPriorityIsGivenUp) {
  int32_t entry = 0;
  const std::string seen = observe_failing(
      "bcm_field_entry_prio_set", BCM_E_FULL, [&] { return bind(source, 10, 3, &entry); }, SWSDK_FAULT_EVERY_CALL);
  EXPECT_TRUE(
      seen.ends_with(as_seen("bcm_field_entry_prio_set(0, $id, 3) = -6\n"
                             "bcm_field_entry_prio_set(0, $id, 4) = -6\n"
                             "log: errors: NONE: sai_ipsg_parameter_config bcm_field_entry_prio_set group "
                             "$group entry $id priority set failed: Table is full\n"
                             "log: errors: NONE: sai_ipsg_parameter_config bcm_field_entry_prio_set group "
                             "$group entry $id failed: Table is full\n"
                             "returned -13\n",
                             seen)))
      << seen;
  EXPECT_EQ(entry, 0);
}

TEST_F(SourceGuard, ABindingMovesToAnotherPortAndKeepsItsVlanAndItsSource) {
  int32_t entry = 0;
  ASSERT_EQ(bind(source, 10, 3, &entry), 0);
  const std::string id = std::to_string(entry);
  const auto move = [&] { return bind(0, 20, 4, &entry); };
  EXPECT_EQ(observe(move), filled("bcm_field_qualify_InPort(0, $id, 4, -1) = 0\n"
                                  "bcm_field_entry_reinstall(0, $id) = 0\n"
                                  "returned 0\n",
                                  id));
  EXPECT_EQ(observe_failing("bcm_field_qualify_InPort", BCM_E_PORT, move),
            filled("bcm_field_qualify_InPort(0, $id, 4, -1) = -18\n"
                   "log: errors: NONE: sai_ipsg_parameter_config bcm_field_qualify_InPorts group $group entry $id "
                   "failed: Invalid port\n"
                   "returned -9\n",
                   id));
  EXPECT_EQ(observe_failing("bcm_field_entry_reinstall", BCM_E_FULL, move),
            filled("bcm_field_qualify_InPort(0, $id, 4, -1) = 0\n"
                   "bcm_field_entry_reinstall(0, $id) = -6\n"
                   "log: errors: NONE: sai_ipsg_parameter_config bcm_field_entry_reinstall group $group entry $id "
                   "failed: Table is full\n"
                   "returned -13\n",
                   id));
  EXPECT_EQ(std::to_string(entry), id);
}

TEST_F(SourceGuard, APositiveResultIsNoneOfAGuardsButOneOfABindings) {
  int32_t entry = 0;
  const auto drop_ipv4 = [&] { return guard(10, 3, &entry); };
  std::string seen = observe_failing("bcm_field_entry_install", 1, drop_ipv4);
  EXPECT_TRUE(seen.ends_with(as_seen("bcm_field_entry_install(0, $id) = 1\nreturned 0\n", seen))) << seen;
  EXPECT_EQ(std::to_string(entry), ids_in(seen).at(0));
  seen = observe_failing("bcm_field_entry_reinstall", 1, drop_ipv4);
  EXPECT_TRUE(seen.ends_with(filled("bcm_field_entry_reinstall(0, $id) = 1\nreturned 0\n", std::to_string(entry))))
      << seen;

  entry = 0;
  const auto permit_source = [&] { return bind(source, 10, 3, &entry); };
  seen = observe_failing("bcm_field_entry_install", 1, permit_source);
  EXPECT_TRUE(seen.ends_with(as_seen("bcm_field_entry_install(0, $id) = 1\nreturned -1\n", seen))) << seen;
  EXPECT_EQ(entry, 0);
  ASSERT_EQ(permit_source(), 0);
  seen = observe_failing("bcm_field_entry_reinstall", 1, permit_source);
  EXPECT_TRUE(seen.ends_with(filled("bcm_field_entry_reinstall(0, $id) = 1\nreturned -1\n", std::to_string(entry))))
      << seen;
}

TEST_F(SourceGuard, EntriesGoToUnitZeroWhateverUnitTheirGroupIsOn) {
  support::start_chip(2);
  ASSERT_EQ(sai_ipsg_init(1, &group), 0);
  const auto begins = [](const std::string& seen, const std::string& call) {
    EXPECT_TRUE(seen.starts_with(call)) << seen;
  };
  int32_t entry = 0;
  const auto drop_ipv4 = [&] { return guard(10, 3, &entry); };
  const auto permit_source = [&] { return bind(source, 10, 3, &entry); };
  begins(observe(drop_ipv4), filled("bcm_field_entry_create(0, $group, ", ""));
  begins(observe(permit_source), filled("bcm_field_entry_create(0, $group, ", ""));
  entry = 5;
  begins(observe(drop_ipv4), "bcm_field_qualify_InPort(0, 5, 3, -1)");
  begins(observe(permit_source), "bcm_field_qualify_InPort(0, 5, 3, -1)");
  // and each step after the creation, on a chip whose unit 0 has a group of that number
  use_group(sai_ipsg_init);
  untouched = 0;
  expect_success(drop, [this](int32_t* id) { return guard(10, 3, id); });
  expect_success(permit, [this](int32_t* id) { return bind(source, 10, 3, id); });
}

}  // namespace
