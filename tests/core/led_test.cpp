#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

class Led : public support::Scene {
 protected:
  static int32_t configure() {
    sai_serial_led_config(unit);
    return 0;
  }
};

TEST_F(Led, LoadsArmsAndStartsBothProcessors) {
  ASSERT_EQ(swsdk_fault_inject("sh_process_command", 0, SWSDK_FAULT_EVERY_CALL), 0);
  EXPECT_EQ(observe(configure),
            "sh_process_command(0, \"led 0 load /usr/sbin/bcm956275k.hex\") = 0\n"
            "sh_process_command(0, \"led 0 auto on\") = 0\n"
            "sh_process_command(0, \"led 0 start\") = 0\n"
            "sh_process_command(0, \"led 1 load /usr/sbin/bcm956275k.hex\") = 0\n"
            "sh_process_command(0, \"led 1 auto on\") = 0\n"
            "sh_process_command(0, \"led 1 start\") = 0\n"
            "returned 0\n");
}

TEST_F(Led, AProcessorWhoseProgramIsNotLoadedIsLeftAloneAndTheOtherIsTried) {
  ASSERT_EQ(swsdk_fault_inject("sh_process_command", -1, SWSDK_FAULT_EVERY_CALL), 0);
  EXPECT_EQ(observe(configure),
            "sh_process_command(0, \"led 0 load /usr/sbin/bcm956275k.hex\") = -1\n"
            "sh_process_command(0, \"led 1 load /usr/sbin/bcm956275k.hex\") = -1\n"
            "log: errors: NONE: switch cmd [ led 0 load /usr/sbin/bcm956275k.hex ] error\n"
            "log, next line\n"
            "log: errors: NONE: switch cmd [ led 1 load /usr/sbin/bcm956275k.hex ] error\n"
            "log, next line\n"
            "returned 0\n");
}

TEST_F(Led, AnyResultButZeroStopsAProcessor) {
  for (const int code : {1, -2, -4}) {
    ASSERT_EQ(swsdk_fault_inject("sh_process_command", code, SWSDK_FAULT_EVERY_CALL), 0);
    EXPECT_EQ(observe(configure).find("auto on"), std::string::npos) << code;
  }
}

}  // namespace
