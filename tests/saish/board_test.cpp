#include "board.h"

#include <appl/diag/system.h>
#include <gtest/gtest.h>
#include <soc/drv.h>
#include <swsdk/chip.h>

#include <string>

#include "words.h"

extern "C" int sdk_main(int argc, char** argv);

namespace {

class Board : public testing::Test {
 protected:
  ~Board() override { swsdk_power_off(); }

  /// What is wrong with the text; empty when nothing is.
  static std::string fault(const std::string& text) {
    try {
      saish::set_board(text);
      return "";
    } catch (const saish::BadInput& bad) {
      return bad.what();
    }
  }
};

TEST_F(Board, IsWhatIsNamedAndOtherwiseStaysAsItIs) {
  EXPECT_EQ(saish::board_text(), "ports=12,units=1,chip_type=0");
  EXPECT_EQ(fault("ports=64"), "");
  EXPECT_EQ(fault("chip_type=0x10, units=2"), "");
  EXPECT_EQ(saish::board_text(), "ports=64,units=2,chip_type=16");
}

TEST_F(Board, IsWhatTheChipStartsWith) {
  EXPECT_EQ(fault("ports=255,units=2"), "");
  sdk_main(0, nullptr);
  EXPECT_EQ(soc_ndev, 2);
  EXPECT_EQ(system_init(1), 0);
  EXPECT_EQ(swsdk_link_event(1, 255, 1), 0);
  EXPECT_EQ(fault("ports=1"), "board: it can be chosen only before the chip starts");
}

TEST_F(Board, IsRefusedWithWhatWouldBeRight) {
  const std::string right = "ports=1 to 255, units=0 to 16, chip_type=0 to 2147483647";
  for (const std::string wrong : {"ports", "ports=", "ports=0", "ports=256", "ports=-1", "ports=x", "units=17",
                                  "size=3", "chip_type=-1", "64", "="})
    EXPECT_EQ(fault(wrong), "board: \"" + wrong + "\" is none of " + right);
  EXPECT_EQ(fault("ports=4,oops=1"), "board: \"oops=1\" is none of " + right);
  EXPECT_EQ(fault("ports=4,ports=5"), "board: ports is given twice");
  EXPECT_EQ(fault(""), "board: nothing is given; it takes " + right);
  EXPECT_EQ(saish::board_text(), "ports=12,units=1,chip_type=0");
}

}  // namespace
