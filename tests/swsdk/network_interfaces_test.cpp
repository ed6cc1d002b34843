// The host's network interfaces.
#include <bcm/error.h>
#include <bcm/knet.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>

#include <cstring>

#include "support/chip_test.h"
#include "support/scene.h"

namespace {

class NetworkInterfaces : public support::ChipTest {
 protected:
  static bcm_knet_netif_t netif(const char* name, int type = BCM_KNET_NETIF_T_TX_CPU_INGRESS) {
    bcm_knet_netif_t result;
    bcm_knet_netif_t_init(&result);
    result.id = 77;
    result.type = type;
    result.mac_addr[0] = 2;
    std::memcpy(result.name, name, std::strlen(name));  // a name that fills its room has no zero byte
    return result;
  }

  /// The id of the new interface, or the code.
  static int create(bcm_knet_netif_t wanted) {
    const int rv = bcm_knet_netif_create(0, &wanted);
    if (rv == BCM_E_NONE) return wanted.id;
    EXPECT_EQ(wanted.id, 77);
    return rv;
  }
};

TEST_F(NetworkInterfaces, AreCreatedUnderTheLowestFreeId) {
  EXPECT_EQ(create(netif("ethv0")), 1);
  bcm_knet_netif_t tagged = netif("cpu", BCM_KNET_NETIF_T_TX_LOCAL_PORT);
  tagged.flags = BCM_KNET_NETIF_F_KEEP_RX_TAG;
  tagged.mac_addr[5] = 0xAB;
  EXPECT_EQ(create(tagged), 2);
  EXPECT_EQ(create(netif("all", 0)), 3);
  EXPECT_EQ(shown("netif"),
            "1   ethv0  02:00:00:00:00:00  1     0x0\n"
            "2   cpu    02:00:00:00:00:ab  2     0x4\n"
            "3   all    02:00:00:00:00:00  0     0x0\n");
}

TEST_F(NetworkInterfaces, HaveANameOfTheirOwnOrNone) {
  EXPECT_EQ(create(netif("ethv0")), 1);
  EXPECT_EQ(create(netif("ethv0")), BCM_E_EXISTS);
  EXPECT_EQ(create(netif("ethv")), 2);
  EXPECT_EQ(create(netif("")), 3);
  EXPECT_EQ(create(netif("")), 4);
}

TEST_F(NetworkInterfaces, TakeANameThatFillsItsRoom) {
  bcm_knet_netif_t wanted = netif("sixteen letters!");
  wanted.cb_user_data = 0x41414141;  // stands behind the name
  swsdk_journal_record(1);
  EXPECT_EQ(create(wanted), BCM_E_UNAVAIL);
  EXPECT_NE(support::journal().find("name=\"sixteen letters!\", "), std::string::npos) << support::journal();
  wanted.cb_user_data = 0;
  EXPECT_EQ(create(wanted), 1);
  EXPECT_EQ(shown("netif"), "1   sixteen letters!  02:00:00:00:00:00  1     0x0\n");
  EXPECT_EQ(create(wanted), BCM_E_EXISTS);
}

TEST_F(NetworkInterfaces, RefuseTypesThatTheChipDoesNotHave) {
  for (const int type : {-1, 3, INT32_MAX}) EXPECT_EQ(create(netif("ethv0", type)), BCM_E_PARAM) << type;
  EXPECT_EQ(bcm_knet_netif_create(0, nullptr), BCM_E_PARAM);
  EXPECT_EQ(shown("netif"), "");
}

TEST_F(NetworkInterfaces, AnswerFullAfter128) {
  for (int id = 1; id <= 128; ++id) ASSERT_EQ(create(netif("")), id);
  EXPECT_EQ(create(netif("")), BCM_E_FULL);
}

TEST_F(NetworkInterfaces, AreToldToWhoPassesFrames) {
  swsdk_netif told{};
  EXPECT_EQ(swsdk_netif_get(0, 0, &told), -1);
  create(netif("ethv0"));
  bcm_knet_netif_t tagged = netif("sixteen letters!");
  tagged.flags = BCM_KNET_NETIF_F_KEEP_RX_TAG;
  tagged.mac_addr[5] = 0xAB;
  create(tagged);
  ASSERT_EQ(swsdk_netif_get(0, 0, &told), 0);
  EXPECT_STREQ(told.name, "ethv0");
  EXPECT_EQ(told.keeps_tag, 0);
  ASSERT_EQ(swsdk_netif_get(0, 1, &told), 0);
  EXPECT_STREQ(told.name, "sixteen letters");
  EXPECT_EQ(told.mac[5], 0xAB);
  EXPECT_EQ(told.keeps_tag, 1);
  EXPECT_EQ(swsdk_netif_get(0, 2, &told), -1);
  EXPECT_EQ(swsdk_netif_get(0, -1, &told), -1);
  EXPECT_EQ(swsdk_netif_get(1, 0, &told), -1);
  EXPECT_EQ(swsdk_netif_get(0, 0, nullptr), -1);
}

}  // namespace
