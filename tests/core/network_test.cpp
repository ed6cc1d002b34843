#include <bcm/error.h>
#include <swsdk/chip.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/scene.h"

namespace {

constexpr uint8_t mac[6] = {0x02, 0x00, 0x00, 0xAA, 0xBB, 0xCC};

class Network : public support::Scene {
 protected:
  /// The newest command to the kernel module.
  static std::vector<uint8_t> command() {
    std::vector<uint8_t> bytes(swsdk_kernel_command(0, nullptr, 0));
    swsdk_kernel_command(0, bytes.data(), bytes.size());
    return bytes;
  }

  /// A command of that size with the opcode and the words, and zeros elsewhere.
  static std::vector<uint8_t> bytes(size_t size, uint8_t opcode, std::initializer_list<uint32_t> words) {
    std::vector<uint8_t> result(size);
    result[1] = opcode;
    size_t offset = 8;
    for (const uint32_t word : words) {
      std::memcpy(&result[offset], &word, sizeof word);
      offset += sizeof word;
    }
    return result;
  }
};

TEST_F(Network, AnInterfaceKeepsTagsAndSendsIntoTheCpuPortsIngress) {
  EXPECT_EQ(observe([] { return sai_knet_netif_init(unit, 1, "ethv0", mac); }),
            "bcm_knet_netif_create(0, {id=1, type=1, flags=0x4, mac_addr=02:00:00:aa:bb:cc, name=\"ethv0\"}) = 0\n"
            "returned 0\n");
}

TEST_F(Network, ANameIsCutToFifteenCharacters) {
  for (const char* name : {"abcdefghijklmno", "abcdefghijklmnop", "abcdefghijklmnopqrst"})
    EXPECT_TRUE(observe([=] { return sai_knet_netif_init(unit, 1, name, mac); })
                    .starts_with("bcm_knet_netif_create(0, {id=1, type=1, flags=0x4, mac_addr=02:00:00:aa:bb:cc, "
                                 "name=\"abcdefghijklmno\"}"));
  EXPECT_NE(observe([] { return sai_knet_netif_init(unit, 1, "abcdefghijklmn", mac); }).find("\"abcdefghijklmn\"}"),
            std::string::npos);
}

TEST_F(Network, AnInterfaceThatFailsIsLogged) {
  EXPECT_EQ(
      observe_failing("bcm_knet_netif_create", BCM_E_FULL, [] { return sai_knet_netif_init(unit, 2, "ethv1", mac); }),
      "bcm_knet_netif_create(0, {id=2, type=1, flags=0x4, mac_addr=02:00:00:aa:bb:cc, name=\"ethv1\"}) = -6\n"
      "log: errors: NONE: bcm_knet_netif_create failed: Table is full\n"
      "returned -13\n");
}

TEST_F(Network, ATagCommandHasTwentyBytesAndTheOpcodeOfItsSelector) {
  for (int32_t selector = 36990; selector <= 37020; ++selector) {
    uint8_t opcode = 0;
    if (selector == 36996) opcode = 33;
    if (selector == 36998) opcode = 35;
    if (selector == 36999) opcode = 34;
    if (selector == 37009) opcode = 32;
    if (selector == 37010) opcode = 36;
    if (selector == 37011) opcode = 37;
    EXPECT_EQ(sai_knet_ktag_set(selector, 0x01020304), 0);
    EXPECT_EQ(command(), bytes(20, opcode, {0x01020304, 0, 0})) << selector;
  }
  for (const int32_t selector : {INT32_MIN, -1, 0, INT32_MAX}) {
    EXPECT_EQ(sai_knet_ktag_set(selector, 7), 0);
    EXPECT_EQ(command(), bytes(20, 0, {7, 0, 0})) << selector;
  }
}

TEST_F(Network, AVlanCommandHasSixteenBytesAndTwoValues) {
  const struct {
    int32_t selector;
    uint8_t opcode;
  } commands[] = {{37008, 39}, {37009, 38}, {37007, 0}, {37010, 0}, {0, 0}, {-1, 0}};
  for (const auto& [selector, opcode] : commands) {
    EXPECT_EQ(sai_knet_vlan_set(selector, 0xA1A2A3A4, 0xB1B2B3B4), 0);
    EXPECT_EQ(command(), bytes(16, opcode, {0xA1A2A3A4, 0xB1B2B3B4})) << selector;
  }
}

TEST_F(Network, ACommandThatIsNotSentGivesMinusOneWhateverTheCode) {
  for (const int code : {BCM_E_FULL, BCM_E_MEMORY, BCM_E_NOT_FOUND}) {
    EXPECT_TRUE(observe_failing("soc_knet_cmd_req", code, [] {
                  return sai_knet_ktag_set(36996, 1);
                }).ends_with("returned -1\n"));
    EXPECT_TRUE(observe_failing("soc_knet_cmd_req", code, [] {
                  return sai_knet_vlan_set(37008, 1, 2);
                }).ends_with("returned -1\n"));
  }
  EXPECT_NE(observe_failing("soc_knet_cmd_req", BCM_E_TIMEOUT, [] { return sai_knet_vlan_set(37008, 1, 2); })
                .find("log: errors: NONE: Failed to soc_knet_cmd_req: Operation took too long\n"),
            std::string::npos);
}

TEST_F(Network, ACommandNeedsNoUnit) {
  swsdk_power_off();
  EXPECT_EQ(sai_knet_ktag_set(36996, 1), 0);
  EXPECT_EQ(command(), bytes(20, 33, {1, 0, 0}));
}

}  // namespace
