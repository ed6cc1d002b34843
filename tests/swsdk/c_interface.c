/* The control interface and the library from plain C99. */
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <sai.h>
#include <stdio.h>
#include <string.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

int sdk_main(int argc, char** argv);

static int failures = 0;

static void check(int holds, const char* what) {
  if (holds) return;
  printf("failed: %s\n", what);
  ++failures;
}

int main(void) {
  char journal[256];
  swsdk_board board;
  swsdk_board_get(&board);
  board.ports = 4;
  check(swsdk_board_set(&board) == 0, "the board is set");
  check(sdk_main(0, NULL) == 0 && system_init(0) == 0, "the chip starts");

  sai_log_default = open_sai_log("c_interface", 0, 0, 0);
  swsdk_journal_record(1);
  check(swsdk_fault_inject("bcm_vlan_port_add", BCM_E_FULL, 1) == 0, "a fault is injected");
  check(sai_vlan_create(sai_unit_get(), 10) == SAI_E_FULL, "the fault is met");
  check(swsdk_journal_read(journal, sizeof journal) < sizeof journal, "the journal fits");
  check(strcmp(journal, "bcm_vlan_create(0, 10) = 0\nbcm_vlan_port_add(0, 10, {0}, {}) = -6\n") == 0,
        "the journal has both calls");
  close_sai_log(sai_log_default);
  sai_log_default = NULL;
  swsdk_power_off();
  printf("%d failures\n", failures);
  return failures != 0;
}
