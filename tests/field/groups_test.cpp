#include <bcm/error.h>
#include <bcm/field.h>

#include <initializer_list>
#include <string>

#include "field/steps.h"
#include "support/start.h"

namespace {

/// The legend of the qualifiers, by number.
enum Qualifier {
  SrcIp6 = 0,
  DstIp6 = 1,
  SrcMac = 6,
  DstMac = 7,
  SrcIp = 9,
  DstIp = 10,
  InPort = 12,
  OuterVlan = 17,
  OuterVlanPri = 19,
  InnerVlan = 21,
  InnerVlanPri = 23,
  L4SrcPort = 27,
  L4DstPort = 28,
  EtherType = 29,
  IpProtocol = 30,
  DSCP = 31,
  Ttl = 32,
  IpType = 61,
  ingress = 68,
  egress = 72,
  OutPort = 86,
  VlanFormat = 90,
  IcmpTypeCode = 125,
  ArpTargetIp4 = 288,
};

class FieldGroups : public field::Scene {
 protected:
  /// A chip has room for a few groups only.
  void prepare() override { support::start_chip(); }

  using Create = int32_t (*)(int32_t unit, int32_t* group);

  /// The journal's text of a set with these qualifiers, as the SDK itself writes it.
  std::string set_of(std::initializer_list<int> qualifiers) {
    bcm_field_qset_t set{};
    for (const int qualifier : qualifiers) set.w[qualifier / 32] |= 1U << qualifier % 32;
    const std::string seen = observe_failing("bcm_field_group_create", BCM_E_FULL, [&] {
      bcm_field_group_t id = 0;
      return bcm_field_group_create(unit, set, 0, &id);
    });
    const size_t begin = seen.find('{');
    return seen.substr(begin, seen.rfind('}') - begin + 1);
  }

  field::Step creation(std::initializer_list<int> qualifiers, const std::string& message) {
    return {"bcm_field_group_create(0, " + set_of(qualifiers) + ", -2147483647, &$id)", message};
  }

  static field::Step enabling(const std::string& message) { return {"bcm_field_group_enable_set(0, $id, 1)", message}; }

  void expect_acl_group(Create create, std::initializer_list<int> qualifiers, const std::string& creating,
                        const std::string& enabling_message) {
    expect_steps({creation(qualifiers, creating),
                  {"bcm_field_group_priority_set(0, $id, $id)", "unit 0 set group $id priority $id failed"},
                  enabling(enabling_message)},
                 Told::on_success, [=](int32_t* id) { return create(unit, id); });
  }

  void expect_traced_group(Create create, std::initializer_list<int> qualifiers, const std::string& creating,
                           const std::string& enabling_message) {
    int32_t id = untouched;
    const std::string seen = observe([&] { return create(unit, &id); });
    EXPECT_TRUE(seen.ends_with("log: debugging: NONE: any group_id " + std::to_string(id) + "\nreturned 0\n")) << seen;

    sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);
    expect_steps({creation(qualifiers, creating), enabling(enabling_message)}, Told::on_success,
                 [=](int32_t* made) { return create(unit, made); });
  }
};

TEST_F(FieldGroups, L2Ingress) {
  expect_acl_group(sai_ifp_l2_group_create,
                   {SrcMac, DstMac, InPort, OuterVlan, OuterVlanPri, InnerVlan, InnerVlanPri, EtherType, ingress},
                   "unit 0 create l2 ingress group 0 failed", "unit 0 enable any group $id failed");
}

TEST_F(FieldGroups, L2Egress) {
  expect_acl_group(sai_efp_l2_group_create, {SrcMac, DstMac, OuterVlan, OuterVlanPri, EtherType, OutPort, egress},
                   "unit 0 create l2 egress group 0 failed", "unit 0 enable l2 egress group $id failed");
}

TEST_F(FieldGroups, Ipv4Ingress) {
  expect_acl_group(sai_ifp_mac_ipv4_group_create,
                   {SrcMac, DstMac, SrcIp, DstIp, InPort, OuterVlan, OuterVlanPri, InnerVlan, InnerVlanPri, L4SrcPort,
                    L4DstPort, EtherType, IpProtocol, DSCP, IpType, ingress},
                   "unit 0 create ipv4 l2-l4 ingress group 0 failed",
                   "unit 0 enable ipv4 l2-l4 ingress group $id failed");
}

TEST_F(FieldGroups, Ipv4Egress) {
  expect_acl_group(sai_efp_mac_ipv4_group_create,
                   {SrcMac, DstMac, SrcIp, DstIp, OuterVlan, OuterVlanPri, L4SrcPort, L4DstPort, EtherType, IpProtocol,
                    DSCP, IpType, OutPort, egress},
                   "unit 0 create ipv4 l2-l4 egress group 0 failed",
                   "unit 0 enable ipv4 l2-l4 egress group $id failed");
}

TEST_F(FieldGroups, Ipv6Ingress) {
  expect_acl_group(sai_ifp_mac_ipv6_group_create,
                   {SrcIp6, DstIp6, SrcMac, DstMac, InPort, OuterVlan, OuterVlanPri, InnerVlan, InnerVlanPri, L4SrcPort,
                    L4DstPort, EtherType, IpProtocol, DSCP, IpType, ingress},
                   "unit 0 create ipv6 l2-l4 inress group 0 failed",
                   "unit 0 enable ipv6 l2-l4 inress group $id failed");
}

TEST_F(FieldGroups, Ipv6Egress) {
  expect_acl_group(sai_efp_mac_ipv6_group_create,
                   {SrcIp6, DstIp6, SrcMac, DstMac, OuterVlan, OuterVlanPri, L4SrcPort, L4DstPort, EtherType,
                    IpProtocol, DSCP, IpType, OutPort, egress},
                   "unit 0 create ipv6 l2-l4 egress group 0 failed",
                   "unit 0 enable ipv6 l2-l4 egress group $id failed");
}

TEST_F(FieldGroups, SystemIpv4) {
  expect_traced_group(sai_system_ipv4_fp_create,
                      {SrcMac, DstMac, DstIp, InPort, OuterVlan, L4SrcPort, L4DstPort, EtherType, IpProtocol, Ttl,
                       IpType, VlanFormat, ArpTargetIp4, ingress},
                      "unit 0 create ipv4 any group 0 failed", "unit 0 enable ipv4 any group $id failed");
}

TEST_F(FieldGroups, SystemIpv6) {
  expect_traced_group(sai_system_ipv6_fp_create,
                      {DstIp6, SrcMac, DstMac, InPort, OuterVlan, L4SrcPort, L4DstPort, EtherType, IpProtocol, Ttl,
                       IpType, VlanFormat, IcmpTypeCode, ingress},
                      "unit 0 create ipv6 any group 0 failed", "unit 0 enable ipv6 any group $id failed");
}

TEST_F(FieldGroups, Mld) {
  expect_traced_group(sai_fp_mld_group_create, {DstMac, InPort, IpProtocol, ingress},
                      "unit 0 create mld group 0 failed", "unit 0 enable mld group $id failed");
}

TEST_F(FieldGroups, VirtualPorts) {
  expect_traced_group(sai_fp_vport_group_create, {OuterVlan, OutPort, egress}, "unit 0 create vp group 0 failed",
                      "unit 0 enable any group $id failed");
}

TEST_F(FieldGroups, MldExclude) {
  expect_traced_group(sai_fp_mld_exclude_group_create, {SrcIp6, DstIp6, OuterVlan, OutPort, egress},
                      "unit 0 create any group 0 failed", "unit 0 enable any group $id failed");
}

TEST_F(FieldGroups, SourceGuardIsNotTracedAndDoesNotNameTheGroupThatItCannotCreate) {
  expect_steps(
      {creation({SrcMac, SrcIp, InPort, OuterVlan, L4SrcPort, L4DstPort, EtherType, IpProtocol, Ttl, IpType, ingress},
                "unit 0 create any group failed"),
       enabling("unit 0 enable any group $id failed")},
      Told::on_success, [](int32_t* id) { return sai_ipsg_init(unit, id); });
}

TEST_F(FieldGroups, AreMadeOnTheUnitThatIsGiven) {
  support::start_chip(2);
  int32_t id = untouched;
  const std::string seen =
      observe_failing("bcm_field_group_priority_set", BCM_E_UNAVAIL, [&] { return sai_ifp_l2_group_create(1, &id); });
  EXPECT_TRUE(seen.starts_with("bcm_field_group_create(1, ")) << seen;
  const std::string chosen = ids_in(seen).at(0);
  EXPECT_TRUE(
      seen.ends_with(filled("bcm_field_group_priority_set(1, $id, $id) = -16\n"
                            "log: errors: NONE: unit 1 set group $id priority $id failed: Not available on this chip\n"
                            "returned -2\n",
                            chosen)))
      << seen;
  EXPECT_EQ(id, untouched);
}

}  // namespace
