// Which frames a port takes at all.
#include "pipeline_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class Admission : public support::PipelineTest {};

TEST_F(Admission, APortWithoutLinkHearsNothingNotEvenWhatIsMalformed) {
  chip.port_macs.set_partner(1, false);
  EXPECT_EQ(send(1, Bytes(5)), "dropped: port down\n");
  const uint64_t* const octets = chip.counters.find(1, 0);
  ASSERT_NE(octets, nullptr);
  EXPECT_EQ(*octets, 0U);
  EXPECT_EQ(drops(Drop::malformed), 0U);
}

TEST_F(Admission, TheHostSendsNoFrameThatNoPortWouldTake) {
  vlan(10, {0, 1});
  EXPECT_EQ(send(0, Frame(1, 2).tag(10).type(0x9000).length(9216)), "1: 01>02 [10] 9000\n");
  EXPECT_EQ(send(0, Frame(1, 2).tag(10).type(0x9000).length(9217)), "dropped: too long\n");
}

}  // namespace
