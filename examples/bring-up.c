/* From power-on to a switch that forwards and reports its events: the same as bring-up.sai, from C.
 *
 *     cc bring-up.c $(pkg-config --cflags --libs sai)
 */
#include <bcm/l2.h>
#include <sai.h>
#include <stdio.h>
#include <stdlib.h>
#include <swsdk/chip.h>

/* Ends the program when a call did not return what it should. */
static void expect(int32_t wanted, int32_t came, const char* what) {
  if (wanted == came) return;
  fprintf(stderr, "%s: expected %d, came %d\n", what, wanted, came);
  exit(EXIT_FAILURE);
}

static int links_down = 0;
static int addresses_learned = 0;

/* These two run on the Chip SDK's threads. */
static void on_link(int unit, bcm_port_t port, bcm_port_info_t* info) {
  printf("unit %d: the link of port %d is %s\n", unit, port, info->linkstatus ? "up" : "down");
  if (!info->linkstatus) links_down++;
}

static void on_address(uint16_t vid, int32_t port, uint8_t* mac, int32_t operation) {
  /* The six bytes are valid only during the call. */
  printf("VLAN %d: %02x:%02x:%02x:%02x:%02x:%02x is on port %d\n", vid, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5],
         port);
  if (operation == BCM_L2_CALLBACK_ADD) addresses_learned++;
}

static void print_table(int unit, const char* table) {
  static char text[8192];
  swsdk_show(unit, table, text, sizeof text);
  printf("\n%s", text);
}

int main(void) {
  static const uint8_t system_mac[6] = {0x02, 0, 0, 0, 0, 0x01};
  static const uint8_t host_mac[6] = {0x02, 0, 0, 0, 0, 0x2A};

  /* 1. The log. */
  sai_log_default = open_sai_log("bring-up", 0, 0, 8);
  if (sai_log_default == NULL) return EXIT_FAILURE;
  sai_log_set_level(sai_log_default, SAI_LOG_CONSOLE, SAI_LOG_ERRORS);

  /* 2. The unit. 3. The chip. */
  const int32_t unit = sai_unit_get();
  expect(SAI_E_NONE, sai_switch_chip_init(system_mac), "chip start-up");
  print_table(unit, "control");
  print_table(unit, "netif");
  printf("\n");

  /* 4. The callbacks. */
  expect(SAI_E_NONE, sai_register_link_service(on_link), "link service");
  expect(SAI_E_NONE, sai_register_l2_service(unit, on_address), "L2 service");

  /* On a board, a cable is pulled and a frame arrives; here the virtual chip simulates both. */
  swsdk_link_event(unit, 1, 1);
  swsdk_link_event(unit, 1, 0);
  swsdk_l2_event(unit, BCM_L2_CALLBACK_ADD, 1, host_mac, 3);
  swsdk_events_drain();
  expect(1, links_down, "link-down events");
  expect(1, addresses_learned, "learned addresses");

  expect(SAI_E_NONE, sai_unregister_l2_service(unit, on_address), "end of the L2 service");
  close_sai_log(sai_log_default);
  sai_log_default = NULL;
  return EXIT_SUCCESS;
}
