// Each function of the library against the SDK calls that it makes, made directly. Goal: at most 1.10 times.
#include <appl/diag/shell.h>
#include <bcm/vlan.h>
#include <sai.h>
#include <soc/drv.h>

#include "ratios.h"

namespace {

// Volatile: neither side may know its arguments when it is compiled.
volatile int unit = 0;
volatile bcm_vlan_t vid = 10;
volatile uint16_t port = 3;

bcm_pbmp_t none() {
  bcm_pbmp_t ports;
  BCM_PBMP_CLEAR(ports);
  return ports;
}

bcm_pbmp_t only(int member) {
  bcm_pbmp_t ports = none();
  BCM_PBMP_PORT_ADD(ports, member);
  return ports;
}

template <class Change>
void change_flags(Change change) {
  bcm_vlan_control_vlan_t control;
  bcm_vlan_control_vlan_t_init(&control);
  benchmark::DoNotOptimize(bcm_vlan_control_vlan_get(unit, vid, &control));
  change(control.flags);
  benchmark::DoNotOptimize(bcm_vlan_control_vlan_set(unit, vid, control));
}

using benchmark::DoNotOptimize;

}  // namespace

int main(int argc, char** argv) {
  sai_log_default = open_sai_log("call_bench", 0, 0, 0);
  static char command[] = "help";

  bench::compare(
      "sai_sh_process_command", [] { DoNotOptimize(sai_sh_process_command(unit, command)); },
      [] { DoNotOptimize(sh_process_command(unit, command)); });
  bench::compare(
      "sai_vlan_init", [] { DoNotOptimize(sai_vlan_init(unit)); }, [] { DoNotOptimize(bcm_vlan_init(unit)); });
  bench::compare(
      "sai_vlan_create", [] { DoNotOptimize(sai_vlan_create(unit, vid)); },
      [] {
        DoNotOptimize(bcm_vlan_create(unit, vid));
        DoNotOptimize(bcm_vlan_port_add(unit, vid, only(CMIC_PORT(unit)), none()));
      });
  bench::compare(
      "sai_vlan_destroy", [] { DoNotOptimize(sai_vlan_destroy(unit, vid)); },
      [] { DoNotOptimize(bcm_vlan_destroy(unit, vid)); });
  bench::compare(
      "sai_vlan_destroy_all", [] { DoNotOptimize(sai_vlan_destroy_all(unit)); },
      [] { DoNotOptimize(bcm_vlan_destroy_all(unit)); });
  bench::compare(
      "sai_vlan_port_add", [] { DoNotOptimize(sai_vlan_port_add(unit, vid, port, 0)); },
      [] { DoNotOptimize(bcm_vlan_port_add(unit, vid, only(port), only(port))); });
  bench::compare(
      "sai_vlan_port_remove", [] { DoNotOptimize(sai_vlan_port_remove(unit, vid, port)); },
      [] { DoNotOptimize(bcm_vlan_port_remove(unit, vid, only(port))); });
  bench::compare(
      "sai_vlan_l2_learn_set", [] { DoNotOptimize(sai_vlan_l2_learn_set(unit, vid, 1)); },
      [] { change_flags([](uint32& flags) { flags &= ~uint32{BCM_VLAN_LEARN_DISABLE}; }); });
  bench::compare(
      "sai_vlan_l2_lookup_set", [] { DoNotOptimize(sai_vlan_l2_lookup_set(unit, vid, 1)); },
      [] { change_flags([](uint32& flags) { flags |= BCM_VLAN_L2_LOOKUP_DISABLE; }); });
  return bench::run(argc, argv);
}
