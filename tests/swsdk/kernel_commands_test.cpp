// The commands that the kernel module was sent.
#include <bcm/error.h>
#include <soc/knet.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

#include <cstring>
#include <thread>
#include <vector>

#include "support/chip_test.h"
#include "support/scene.h"

namespace {

class KernelCommands : public support::ChipTest {
 protected:
  static int send(uint8 opcode, unsigned length = sizeof(kcom_msg_hdr_t)) {
    kcom_msg_t message{};
    message.hdr.type = 1;
    message.hdr.opcode = opcode;
    message.bytes[sizeof message.bytes - 1] = 0xEE;
    return soc_knet_cmd_req(&message, length, sizeof message);
  }

  /// The opcode of the command of that index; -1 when there is none.
  static int opcode(int index) {
    kcom_msg_t message;
    return swsdk_kernel_command(index, &message, sizeof message) == 0 ? -1 : message.hdr.opcode;
  }
};

TEST_F(KernelCommands, AreNoneAtFirst) {
  EXPECT_EQ(opcode(0), -1);
  EXPECT_EQ(swsdk_kernel_command(0, nullptr, 0), 0U);
}

TEST_F(KernelCommands, AreReadFromTheNewestOn) {
  for (const uint8 code : {uint8{7}, uint8{8}, uint8{9}}) EXPECT_EQ(send(code), BCM_E_NONE);
  EXPECT_EQ(opcode(0), 9);
  EXPECT_EQ(opcode(1), 8);
  EXPECT_EQ(opcode(2), 7);
  for (const int index : {3, -1, INT32_MAX, INT32_MIN}) EXPECT_EQ(opcode(index), -1) << index;
}

TEST_F(KernelCommands, AreKeptWhole) {
  EXPECT_EQ(send(7, 512), BCM_E_NONE);
  kcom_msg_t message{};
  EXPECT_EQ(swsdk_kernel_command(0, &message, sizeof message), 512U);
  EXPECT_EQ(message.hdr.type, 1);
  EXPECT_EQ(message.bytes[511], 0xEE);
}

TEST_F(KernelCommands, AreReadAsFarAsTheyFit) {
  send(7);
  uint8 bytes[4] = {0xAA, 0xAA, 0xAA, 0xAA};
  EXPECT_EQ(swsdk_kernel_command(0, bytes, 0), 8U);
  EXPECT_EQ(bytes[0], 0xAA);
  EXPECT_EQ(swsdk_kernel_command(0, bytes, 2), 8U);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(bytes[1], 7);
  EXPECT_EQ(bytes[2], 0xAA);
  EXPECT_EQ(swsdk_kernel_command(0, nullptr, 0), 8U);
}

TEST_F(KernelCommands, AreKeptUpToTheLast64) {
  for (uint8 code = 0; code < 64; ++code) send(code);
  EXPECT_EQ(opcode(63), 0);
  for (uint8 code = 64; code < 100; ++code) send(code);
  for (int index = 0; index < 64; ++index) EXPECT_EQ(opcode(index), 99 - index);
  EXPECT_EQ(opcode(64), -1);
}

TEST_F(KernelCommands, ThatAreNoneAreRefusedAndNotKept) {
  EXPECT_EQ(send(7, sizeof(kcom_msg_hdr_t) - 1), BCM_E_PARAM);
  EXPECT_EQ(send(7, sizeof(kcom_msg_t) + 1), BCM_E_PARAM);
  EXPECT_EQ(send(7, 0), BCM_E_PARAM);
  kcom_msg_t message{};
  EXPECT_EQ(soc_knet_cmd_req(&message, 16, 15), BCM_E_PARAM);
  EXPECT_EQ(soc_knet_cmd_req(nullptr, 8, 512), BCM_E_PARAM);
  EXPECT_EQ(opcode(0), -1);
  EXPECT_EQ(soc_knet_cmd_req(&message, 16, 16), BCM_E_NONE);
}

TEST_F(KernelCommands, ThatMeetAFaultAreNotKept) {
  ASSERT_EQ(swsdk_fault_inject("soc_knet_cmd_req", BCM_E_TIMEOUT, 1), 0);
  EXPECT_EQ(send(7), BCM_E_TIMEOUT);
  EXPECT_EQ(opcode(0), -1);
}

TEST_F(KernelCommands, ShowInTheJournal) {
  swsdk_journal_record(1);
  send(7);
  soc_knet_cmd_req(nullptr, 8, 512);
  EXPECT_EQ(support::journal(),
            "soc_knet_cmd_req([01 07 00 00 00 00 00 00], 8, 512) = 0\n"
            "soc_knet_cmd_req(NULL, 8, 512) = -4\n");
}

TEST_F(KernelCommands, AreForgottenAtPowerOff) {
  send(7);
  support::start_chip();
  EXPECT_EQ(opcode(0), -1);
}

TEST_F(KernelCommands, FromManyThreadsAtOnceAreAllKept) {
  std::vector<std::thread> senders;
  for (uint8 sender = 0; sender < 8; ++sender)
    senders.emplace_back([sender] {
      for (int i = 0; i < 8; ++i) send(sender);
    });
  for (std::thread& sender : senders) sender.join();
  int sent[8] = {};
  for (int index = 0; index < 64; ++index) ++sent[opcode(index)];
  for (const int count : sent) EXPECT_EQ(count, 8);
}

}  // namespace
