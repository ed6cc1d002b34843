#include <bcm/mirror.h>

#include <string>

#include "support/one_call.h"

namespace {

class MirroringOfTheChip : public support::OneCall {
 protected:
  MirroringOfTheChip() { EXPECT_EQ(sai_mirror_init(unit), 0); }

  /// The gport of session 2's destination; 0 when it has none.
  static int destination() {
    bcm_mirror_destination_t found;
    bcm_mirror_destination_t_init(&found);
    return bcm_mirror_destination_get(unit, 0x3C000002, &found) == BCM_E_NONE ? found.gport : 0;
  }
};

TEST_F(MirroringOfTheChip, ASecondDestinationTakesThePlaceOfTheFirst) {
  EXPECT_EQ(sai_mirror_dest_port_set(unit, 2, 5), 0);
  EXPECT_EQ(destination(), 0x8000005);
  EXPECT_EQ(sai_mirror_dest_port_set(unit, 2, 0x8000006), 0);
  EXPECT_EQ(destination(), 0x8000006);
}

TEST_F(MirroringOfTheChip, SourcesComeAndGo) {
  ASSERT_EQ(sai_mirror_dest_port_set(unit, 2, 5), 0);
  const std::string found =
      "bcm_mirror_destination_get(0, 1006632962, &{mirror_dest_id=1006632962, gport=134217733}) = 0\n";
  EXPECT_EQ(observe([] { return sai_mirror_source_port_set(unit, 2, 7, 3); }),
            found + "bcm_mirror_port_dest_add(0, 7, 0x7, 1006632962) = 0\nreturned 0\n");
  EXPECT_EQ(observe([] { return sai_mirror_source_port_unset(unit, 2, 7, 3); }),
            found + "bcm_mirror_port_dest_delete(0, 7, 0x7, 1006632962) = 0\nreturned 0\n");
  EXPECT_EQ(observe([] { return sai_mirror_dest_port_unset(unit, 2, 99); }),
            found + "bcm_mirror_destination_destroy(0, 1006632962) = 0\nreturned 0\n");
  EXPECT_EQ(destination(), 0);
  EXPECT_EQ(observe([] { return sai_mirror_dest_port_unset(unit, 2, 99); }),
            "bcm_mirror_destination_get(0, 1006632962, &?) = -7\n"
            "log: errors: NONE: Failed to get mirror session [2] port [99]: Entry not found\n"
            "returned -7\n");
}

}  // namespace
