// States, actions, policers and the table of the field processor, through the SDK's calls and the control interface.
#include <bcm/policer.h>
#include <swsdk/journal.h>

#include <string>

#include "support/scene.h"
#include "swsdk/field_fixture.h"

namespace {

using support::Field;

TEST_F(Field, RefusesWhatIsNotOnTheChip) {
  const int id = entry(group({bcmFieldQualifyStageIngress, bcmFieldQualifyInPort, bcmFieldQualifyL4DstPort}));
  EXPECT_EQ(bcm_field_qualify_InPort(unit, id, 13, exact), BCM_E_PORT);
  EXPECT_EQ(bcm_field_qualify_InPort(unit, id, -1, exact), BCM_E_PORT);
  EXPECT_EQ(bcm_field_qualify_L4DstPort(unit, id, 0x10000, exact), BCM_E_PARAM);
  EXPECT_EQ(bcm_field_qualify_L4DstPort(unit, id, -1, exact), BCM_E_PARAM);
  EXPECT_EQ(bcm_field_qualify_SrcMac(unit, id, nullptr, nullptr), BCM_E_PARAM);
  EXPECT_EQ(bcm_field_qualify_IcmpType(unit, id, 1, 0xFF), BCM_E_PARAM);
  EXPECT_EQ(bcm_field_qualify_InPorts(unit, id, {}, {}), BCM_E_PARAM);
}

TEST_F(Field, EntriesActOnFrames) {
  const int id = entry(group({bcmFieldQualifyStageIngress}));
  bcm_field_action_add(unit, id, bcmFieldActionPrioPktNew, 6, 0);
  bcm_field_action_add(unit, id, bcmFieldActionCopyToCpu, 0, 0);
  bcm_field_action_add(unit, id, bcmFieldActionRedirectPort, 0, 9);
  bcm_field_entry_install(unit, id);
  const swsdk_verdict seen = classify({});
  EXPECT_EQ(seen.hits, 1);
  EXPECT_EQ(seen.groups[0], 1);
  EXPECT_EQ(seen.entries[0], id);
  EXPECT_EQ(seen.priority, 6);
  EXPECT_EQ(seen.copied_to_cpu, 1);
  EXPECT_EQ(seen.redirect_port, 9);
  EXPECT_EQ(seen.dropped, 0);

  const int egress = entry(group({bcmFieldQualifyStageEgress}));
  bcm_field_action_add(unit, egress, bcmFieldActionDrop, 0, 0);
  bcm_field_action_add(unit, egress, bcmFieldActionRpDrop, 0, 0);
  bcm_field_entry_install(unit, egress);
  const swsdk_verdict dropped = classify({}, SWSDK_FIELD_EGRESS);
  EXPECT_EQ(dropped.dropped, 1);
  EXPECT_EQ(dropped.drop_cancelled, 0);
  EXPECT_EQ(dropped.red_dropped, 1);
  EXPECT_EQ(dropped.priority, -1);
  EXPECT_EQ(dropped.redirect_port, -1);
  EXPECT_EQ(dropped.copied_to_cpu, 0);
}

TEST_F(Field, EntriesOfHigherPriorityPermitWhatOthersDrop) {
  const int guard = group({bcmFieldQualifyStageIngress, bcmFieldQualifyInPort, bcmFieldQualifySrcIp});
  const int drop = entry(guard);
  bcm_field_qualify_InPort(unit, drop, 1, exact);
  bcm_field_entry_prio_set(unit, drop, 1);
  bcm_field_action_add(unit, drop, bcmFieldActionDrop, 0, 0);
  bcm_field_entry_install(unit, drop);
  const int permit = entry(guard);
  bcm_field_qualify_InPort(unit, permit, 1, exact);
  bcm_field_qualify_SrcIp(unit, permit, 0x0A000001, 0xFFFFFFFF);
  bcm_field_entry_prio_set(unit, permit, 3);
  bcm_field_action_add(unit, permit, bcmFieldActionDropCancel, 0, 0);
  bcm_field_entry_install(unit, permit);

  const auto from = [](int port, uint32_t address) {
    return frame([=](swsdk_frame& f) { f.in_port = port, f.ether_type = ip4, f.src_ip = address; });
  };
  EXPECT_EQ(classify(from(1, 0x0A000001)).drop_cancelled, 1);
  EXPECT_EQ(classify(from(1, 0x0A000001)).dropped, 0);
  EXPECT_EQ(classify(from(1, 0x0A000002)).dropped, 1);
  EXPECT_EQ(classify(from(2, 0x0A000002)).hits, 0);
  EXPECT_EQ(swsdk_field_hits(unit, drop), 1);
  EXPECT_EQ(swsdk_field_hits(unit, permit), 2);

  bcm_field_qualify_InPort(unit, permit, 2, exact);
  EXPECT_EQ(classify(from(1, 0x0A000001)).drop_cancelled, 1) << "not reinstalled yet";
  EXPECT_EQ(bcm_field_entry_reinstall(unit, permit), BCM_E_NONE);
  EXPECT_EQ(classify(from(1, 0x0A000001)).dropped, 1);
  EXPECT_EQ(classify(from(2, 0x0A000001)).drop_cancelled, 1);
}

TEST_F(Field, EntriesAreRemovedAndDestroyedInThatOrder) {
  const int id = entry(group({bcmFieldQualifyStageIngress}));
  EXPECT_EQ(bcm_field_entry_remove(unit, id), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_reinstall(unit, id), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_field_entry_install(unit, id), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_install(unit, id), BCM_E_EXISTS);
  EXPECT_EQ(bcm_field_entry_destroy(unit, id), BCM_E_BUSY);
  EXPECT_EQ(bcm_field_entry_remove(unit, id), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_destroy(unit, id), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_remove(unit, id), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_field_entry_create_id(unit, 1, 7), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_create_id(unit, 1, 7), BCM_E_EXISTS);
}

TEST_F(Field, GroupsTakeTheNumberOfTheirPriority) {
  const int id = group({bcmFieldQualifyStageIngress});
  EXPECT_EQ(bcm_field_group_priority_set(unit, id, id), BCM_E_NONE);
  EXPECT_EQ(bcm_field_group_priority_set(unit, id, -1), BCM_E_PARAM);
  EXPECT_EQ(bcm_field_group_priority_set(unit, id + 1, 1), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_field_group_enable_set(unit, id + 1, 1), BCM_E_NOT_FOUND);
}

TEST_F(Field, EntriesHavePolicers) {
  const int id = entry(group({bcmFieldQualifyStageEgress}));
  bcm_policer_config_t config;
  bcm_policer_config_t_init(&config);
  int policer = -1;
  EXPECT_EQ(bcm_policer_create(unit, &config, &policer), BCM_E_NONE);
  config.flags = 0x74;
  config.mode = bcmPolicerModeTrTcm;
  config.ckbits_sec = 64;
  config.ckbits_burst = 8;
  config.cbits_burst_lower = 4000;
  config.pkbits_sec = 128;
  config.pkbits_burst = 16;
  config.pbits_burst_lower = 992;
  EXPECT_EQ(bcm_policer_set(unit, policer, &config), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_policer_attach(unit, id, 0, policer), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_policer_attach(unit, id, 0, policer), BCM_E_EXISTS);
  EXPECT_EQ(bcm_field_entry_policer_attach(unit, id, 2, policer), BCM_E_PARAM);
  EXPECT_EQ(bcm_policer_destroy(unit, policer), BCM_E_BUSY);
  EXPECT_EQ(bcm_field_entry_install(unit, id), BCM_E_NONE);
  EXPECT_EQ(classify({}, SWSDK_FIELD_EGRESS).policers[0], policer);
  EXPECT_EQ(classify({}, SWSDK_FIELD_EGRESS).policers[1], 0);

  int found = -1;
  bcm_policer_config_t kept;
  EXPECT_EQ(bcm_field_entry_policer_get(unit, id, 0, &found), BCM_E_NONE);
  EXPECT_EQ(found, policer);
  swsdk_journal_record(1);
  EXPECT_EQ(bcm_policer_get(unit, found, &kept), BCM_E_NONE);
  EXPECT_EQ(support::journal(),
            "bcm_policer_get(0, 1, &{flags=0x74, mode=3, ckbits_sec=64, ckbits_burst=8, cbits_burst_lower=4000, "
            "pkbits_sec=128, pkbits_burst=16, pbits_burst_lower=992}) = 0\n");

  EXPECT_EQ(bcm_field_entry_policer_detach(unit, id, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_field_entry_policer_detach(unit, id, 0), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_policer_destroy(unit, policer), BCM_E_NONE);
  EXPECT_EQ(bcm_policer_get(unit, policer, &kept), BCM_E_NOT_FOUND);
}

TEST_F(Field, EntriesLosePolicersThatAreAllForgotten) {
  const int id = entry(group({bcmFieldQualifyStageEgress}));
  bcm_policer_config_t config;
  bcm_policer_config_t_init(&config);
  int policer = -1;
  bcm_policer_create(unit, &config, &policer);
  bcm_field_entry_policer_attach(unit, id, 0, policer);
  EXPECT_EQ(bcm_policer_init(unit), BCM_E_NONE);
  EXPECT_EQ(bcm_policer_get(unit, policer, &config), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_field_entry_policer_get(unit, id, 0, &policer), BCM_E_NOT_FOUND);
}

TEST_F(Field, IsLookedUpOnUnitsAndStagesThatThereAreWithAFrameAndAPlaceForTheAnswer) {
  const swsdk_frame any{};
  swsdk_verdict verdict;
  EXPECT_EQ(swsdk_field_classify(1, SWSDK_FIELD_INGRESS, &any, &verdict), -1);
  EXPECT_EQ(swsdk_field_classify(unit, 2, &any, &verdict), -1);
  EXPECT_EQ(swsdk_field_classify(unit, -1, &any, &verdict), -1);
  EXPECT_EQ(swsdk_field_classify(unit, SWSDK_FIELD_INGRESS, nullptr, &verdict), -1);
  EXPECT_EQ(swsdk_field_classify(unit, SWSDK_FIELD_INGRESS, &any, nullptr), -1);
  EXPECT_EQ(swsdk_field_hits(1, 1), -1);
  EXPECT_EQ(swsdk_field_hits(unit, 1), -1);
  support::attach_chip();
  EXPECT_EQ(swsdk_field_classify(unit, SWSDK_FIELD_INGRESS, &any, &verdict), -1);
  EXPECT_EQ(swsdk_field_hits(unit, 1), -1);
}

TEST_F(Field, IsEmptyAfterTheSystemIsInitializedAnew) {
  entry(group({bcmFieldQualifyStageIngress}));
  support::start_chip();
  EXPECT_EQ(bcm_field_entry_install(unit, 1), BCM_E_NOT_FOUND);
  EXPECT_EQ(group({bcmFieldQualifyStageIngress}), 1);
}

TEST_F(Field, ShowsItsGroupsAndEntries) {
  uint8 mac[] = {0x02, 0, 0, 0, 0, 0x01};
  uint8 all[16] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  uint8 address[16] = {0x20, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01};
  group({bcmFieldQualifyStageEgress});
  const int in =
      group({bcmFieldQualifyStageIngress, bcmFieldQualifyInPort, bcmFieldQualifyOuterVlan, bcmFieldQualifyIpType,
             bcmFieldQualifyEtherType, bcmFieldQualifySrcMac, bcmFieldQualifySrcIp, bcmFieldQualifySrcIp6});
  bcm_field_group_priority_set(unit, in, in);
  const int first = entry(in);
  bcm_field_qualify_InPort(unit, first, 1, exact);
  bcm_field_qualify_OuterVlan(unit, first, 10, 0xFFF);
  bcm_field_qualify_IpType(unit, first, bcmFieldIpTypeIp);
  bcm_field_action_add(unit, first, bcmFieldActionPrioPktNew, 7, 0);
  bcm_field_action_add(unit, first, bcmFieldActionRedirectPort, 0, 0);
  bcm_field_entry_prio_set(unit, first, 3);
  bcm_field_entry_install(unit, first);
  classify(frame([](swsdk_frame& f) { f.in_port = 1, f.outer_tag = 10, f.ether_type = ip4; }));
  const int second = entry(in);
  bcm_field_qualify_SrcMac(unit, second, mac, all);
  bcm_field_qualify_EtherType(unit, second, 0x806, 0xFFFF);
  bcm_field_qualify_SrcIp(unit, second, 0x0A000000, 0xFF000000);
  bcm_field_qualify_SrcIp6(unit, second, address, all);
  bcm_field_action_add(unit, second, bcmFieldActionCopyToCpu, 0, 0);
  bcm_field_action_add(unit, second, bcmFieldActionDropCancel, 0, 0);
  const int third = entry(in);
  bcm_field_entry_install(unit, third);
  bcm_field_action_add(unit, third, bcmFieldActionDrop, 0, 0);
  bcm_field_action_add(unit, third, bcmFieldActionRpDrop, 0, 0);
  bcm_policer_config_t config;
  bcm_policer_config_t_init(&config);
  int policer = 0;
  bcm_policer_create(unit, &config, &policer);
  bcm_field_entry_policer_attach(unit, third, 0, policer);

  char text[2048];
  ASSERT_GT(swsdk_show(unit, "field", text, sizeof text), 0);
  EXPECT_STREQ(
      text,
      "group  stage    rank  enabled  entry  priority  installed      hits  actions                         matches\n"
      "1      egress   any   yes      -      -         -              -     -                               -\n"
      "2      ingress  2     yes      1      3         yes            1     priority 7, redirect to port 0  "
      "InPort=1 OuterVlan=10/0xfff IpType=IP\n"
      "2      ingress  2     yes      2      default   no             0     copy to CPU, permit             "
      "SrcIp6=2001::1/ffff:ffff:ffff:: SrcMac=02:00:00:00:00:01 SrcIp=10.0.0.0/255.0.0.0 EtherType=0x806\n"
      "2      ingress  2     yes      3      default   changed since  0     drop, drop red, policer 1       all\n");
}

}  // namespace
