// Translation and double tagging: a customer's frames come in with their tags, and the answers leave with them.
#include <bcm/vlan.h>

#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class TranslatedVlans : public support::ForwardingTest {
 protected:
  static constexpr uint16_t customers = 1;
  static constexpr uint16_t network = 2;

  TranslatedVlans() { vlan(10, {customers, network}); }

  /// The tags with which a frame leaves: "[10p3 5]".
  static std::string tags(const std::string& out) {
    const std::size_t tag = out.find('[');
    return tag == std::string::npos ? out : out.substr(tag, out.find(']') + 1 - tag);
  }
  /// Those of a customer's frame in the network.
  std::string inwards(const Frame& frame) { return tags(send(customers, Frame(frame).type(0x9000))); }
  /// Those of an answer at the customer.
  std::string outwards(const Frame& frame) { return tags(send(network, Frame(frame).type(0x9000))); }

  static Frame customer(int tag, int priority = 0) { return Frame(1, 2).tag(tag, priority); }
  static Frame answer() { return {2, 1}; }
  static constexpr const char* unknown = "dropped: no such vlan\n";
};

TEST_F(TranslatedVlans, TranslateBothWays) {
  EXPECT_EQ(inwards(customer(5)), unknown);
  EXPECT_EQ(outwards(answer().tag(10)), "[10]");
  EXPECT_EQ(sai_vlan_translate_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(inwards(customer(5, 1)), "[10p6]");
  EXPECT_EQ(outwards(answer().tag(10, 1)), "[5p3]");
}

TEST_F(TranslatedVlans, AreDeletedBothWays) {
  EXPECT_EQ(sai_vlan_translate_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(inwards(customer(5)) + outwards(answer().tag(10)), "[10p6][5p3]");
  EXPECT_EQ(sai_vlan_translate_delete(0, customers, 5, 10), 0);
  EXPECT_EQ(inwards(customer(5)), unknown);
  EXPECT_EQ(outwards(answer().tag(10)), "[10]");
}

TEST_F(TranslatedVlans, TranslateOnceStartUpHasSwitchedThatOn) {
  EXPECT_EQ(sai_vlan_translate_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 0), 0);
  EXPECT_EQ(inwards(customer(5)), unknown);
  EXPECT_EQ(outwards(answer().tag(10)), "[10]");
  EXPECT_EQ(sai_port_vlan_translate_init(0), 0);
  EXPECT_EQ(inwards(customer(5)), "[10p6]");
  EXPECT_EQ(outwards(answer().tag(10)), "[5p3]");
}

TEST_F(TranslatedVlans, HaveTheirPortsSwitchedToThatByTheModeOfVirtualPorts) {
  EXPECT_EQ(sai_vlan_translate_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, customers, bcmVlanTranslateIngressEnable, 0), 0);
  EXPECT_EQ(bcm_vlan_control_port_set(0, customers, bcmVlanTranslateEgressEnable, 0), 0);
  EXPECT_EQ(inwards(customer(5)) + outwards(answer().tag(10)), std::string(unknown) + "[10]");
  EXPECT_EQ(sai_vlan_vport_init(0), 0);
  EXPECT_EQ(inwards(customer(5)) + outwards(answer().tag(10)), "[10p6][5p3]");
}

TEST_F(TranslatedVlans, ATagInFrontComesOffAgain) {
  EXPECT_EQ(inwards(customer(5)), unknown);
  EXPECT_EQ(sai_vlan_dtag_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(inwards(customer(5, 1)), "[10p6 5p1]");
  EXPECT_EQ(outwards(answer().tag(10).tag(5)), "[5p3]");
  EXPECT_EQ(outwards(answer().tag(10).tag(6)), "[10 6]") << "of another customer";
}

TEST_F(TranslatedVlans, ATagInFrontIsNoMoreOnceItIsDeleted) {
  EXPECT_EQ(sai_vlan_dtag_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(inwards(customer(5)) + outwards(answer().tag(10).tag(5)), "[10p6 5][5p3]");
  EXPECT_EQ(sai_vlan_dtag_delete(0, customers, 5, 10), 0);
  EXPECT_EQ(inwards(customer(5)), unknown);
  EXPECT_EQ(outwards(answer().tag(10).tag(5)), "[10 5]");
}

TEST_F(TranslatedVlans, ATagInFrontOfARangeComesOffAgain) {
  EXPECT_EQ(inwards(customer(100)), unknown);
  EXPECT_EQ(sai_vlan_dtag_range_add(0, customers, 100, 199, 7, 10, 6), 0);
  for (const int tag : {100, 150, 199}) {
    EXPECT_EQ(inwards(customer(tag, 1)), "[10p6 " + std::to_string(tag) + "p1]");
    EXPECT_EQ(outwards(answer().tag(10).tag(tag, 2)), '[' + std::to_string(tag) + "p2]");
  }
  EXPECT_EQ(inwards(customer(99)), unknown);
  EXPECT_EQ(inwards(customer(200)), unknown);
}

TEST_F(TranslatedVlans, ATagInFrontOfARangeIsNoMoreOnceItIsDeleted) {
  EXPECT_EQ(sai_vlan_dtag_range_add(0, customers, 100, 199, 7, 10, 6), 0);
  EXPECT_EQ(inwards(customer(150)) + outwards(answer().tag(10).tag(150)), "[10p6 150][150]");
  EXPECT_EQ(sai_vlan_dtag_range_delete(0, customers, 100, 199, 10), 0);
  EXPECT_EQ(inwards(customer(150)), unknown);
  EXPECT_EQ(outwards(answer().tag(10).tag(150)), "[10 150]");
}

TEST_F(TranslatedVlans, AllKindsLiveTogetherInOneVlan) {
  EXPECT_EQ(sai_vlan_translate_add(0, customers, 4, 1, 10, 0), 0);
  EXPECT_EQ(sai_vlan_dtag_add(0, customers, 5, 2, 10, 0), 0);
  EXPECT_EQ(sai_vlan_dtag_range_add(0, customers, 100, 199, 0, 10, 0), 0);
  EXPECT_EQ(inwards(customer(4)) + inwards(customer(5)) + inwards(customer(100)), "[10][10 5][10 100]");
  EXPECT_EQ(outwards(answer().tag(10)), "[4p1]");
  EXPECT_EQ(outwards(answer().tag(10).tag(5)), "[5p2]");
  EXPECT_EQ(outwards(answer().tag(10).tag(100, 3)), "[100p3]");
}

TEST_F(TranslatedVlans, AnUntaggedMemberGetsItsAnswersUntagged) {
  EXPECT_EQ(sai_vlan_translate_add(0, customers, 5, 3, 10, 6), 0);
  EXPECT_EQ(sai_vlan_port_add(0, 10, customers, 0), 0);
  EXPECT_EQ(send(network, answer().tag(10).type(0x9000)), "1: 02>01 9000\n");
}

}  // namespace
