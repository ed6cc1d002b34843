/* A small application with a planted fault that swsdk-sweep has to find: the first argument names it. With "nothing" it
   is correct. */
#include <fcntl.h>
#include <sai.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { unit = 0, group = 2, vlan = 10, port = 3 };

static const char* planted = "nothing";
static int has(const char* fault) { return strcmp(planted, fault) == 0; }

static int32_t set_up(void) {
  static const uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};
  int32_t rv = sai_stg_create(unit, group);
  if (rv == SAI_E_NONE) rv = sai_vlan_create(unit, vlan);
  if (rv == SAI_E_NONE) {
    rv = sai_vlan_port_add(unit, vlan, port, 0);
    if (has("ignored result")) rv = SAI_E_NONE;
  }
  if (rv == SAI_E_NONE && has("ignored flush")) {
    const sai_l2_mac_entry_t of_port = {.port = port};
    sai_l2_mac_entry_del(unit, &of_port, SAI_L2_DELETE_BY_PORT);
    sai_l2_mac_entry_del(unit, &of_port, 0); /* the library ignores all failures but that of the last port */
  }
  if (rv == SAI_E_NONE) rv = sai_l3_intf_create(unit, router, vlan);
  if (rv == SAI_E_NONE) rv = sai_stg_vlan_add(unit, group, vlan);
  return rv;
}

static void tear_down(void) {
  sai_l3_intf_delete(unit, vlan);
  sai_vlan_destroy(unit, vlan);
  sai_stg_destroy(unit, group);
}

static int fail(void) {
  void* volatile text = malloc(100);
  int* volatile nowhere = NULL;
  if (!has("missing log")) fprintf(stderr, "sample: cannot set the chip up\n");
  if (!has("leak")) tear_down();
  free(text);
  if (has("double free")) free(text);
  if (has("crash")) *nowhere = 1;
  if (has("hang")) pause();
  return has("wrong code") ? 3 : 1;
}

int main(int argc, char** argv) {
  if (argc > 1) planted = argv[1];
  /* With a file that only the first run finds missing, the others make another call first. */
  if (argc > 2 && open(argv[2], O_CREAT | O_EXCL | O_WRONLY, 0600) < 0) sai_vlan_init(unit);
  if (has("missing log")) sai_log_default = open_sai_log("sample", 0, 0, 0);
  if (set_up() != SAI_E_NONE) return fail();
  printf("ready\n");
  fflush(stdout);
  if (has("daemon")) pause();
  return 0;
}
