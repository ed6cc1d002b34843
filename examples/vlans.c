/* Two VLANs on a switch: the same as vlans.sai, from C.
 *
 *     cc vlans.c $(pkg-config --cflags --libs sai)
 */
#include <appl/diag/system.h>
#include <sai.h>
#include <stdio.h>
#include <stdlib.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

int sdk_main(int argc, char** argv); /* the SDK has no header for it */

/* Ends the program when a call did not return what it should. */
static void expect(int32_t wanted, int32_t came, const char* what) {
  if (wanted == came) return;
  fprintf(stderr, "%s: expected %d, came %d\n", what, wanted, came);
  exit(EXIT_FAILURE);
}

/* Prints what a function of the virtual chip writes into a buffer. */
static void print_journal(void) {
  static char text[8192];
  swsdk_journal_read(text, sizeof text);
  printf("The chip saw these calls:\n%s", text);
}

static void print_vlans(int unit) {
  static char text[8192];
  swsdk_show(unit, "vlan", text, sizeof text);
  printf("\nIt holds these VLANs:\n%s", text);
}

int main(void) {
  const int32_t unit = sai_unit_get();

  expect(0, sdk_main(0, NULL), "sdk_main");
  expect(0, system_init(unit), "system_init");
  sai_log_default = open_sai_log("vlans", 0, 0, 8);
  if (sai_log_default == NULL) return EXIT_FAILURE;
  sai_log_set_level(sai_log_default, SAI_LOG_CONSOLE, SAI_LOG_ERRORS);
  swsdk_journal_record(1);

  /* A new VLAN gets the CPU port as a tagged member; creating it again is not an error. */
  expect(SAI_E_NONE, sai_vlan_create(unit, 10), "create VLAN 10");
  expect(SAI_E_NONE, sai_vlan_create(unit, 10), "create VLAN 10 again");
  expect(SAI_E_NONE, sai_vlan_create(unit, 20), "create VLAN 20");

  /* Ports 1 and 3 serve hosts, untagged; port 9 leads to the next switch, tagged. */
  expect(SAI_E_NONE, sai_vlan_port_add(unit, 10, 1, 0), "add port 1");
  expect(SAI_E_NONE, sai_vlan_port_add(unit, 20, 3, 0), "add port 3");
  expect(SAI_E_NONE, sai_vlan_port_add(unit, 10, 9, 1), "add port 9");
  expect(SAI_E_NONE, sai_vlan_l2_learn_set(unit, 20, 0), "stop learning in VLAN 20");

  /* Failures show in the log and in the result, both the chip's own and injected ones. */
  expect(SAI_E_NOT_FOUND, sai_vlan_port_add(unit, 30, 4, 1), "add a port to an absent VLAN");
  swsdk_fault_inject("bcm_vlan_port_add", -6, 1);
  expect(SAI_E_FULL, sai_vlan_port_add(unit, 10, 6, 1), "add a port to a full table");

  print_journal();
  print_vlans(unit);

  close_sai_log(sai_log_default);
  sai_log_default = NULL;
  return EXIT_SUCCESS;
}
