// Logs, control frames, CPU interfaces, LEDs, events.
#include <swsdk/chip.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "soak.h"

namespace {

using soak::expect;
using soak::made;
using soak::must;
using soak::unit;

std::atomic<uint64_t> told = 0;

void on_address(uint16_t, int32_t, uint8_t*, int32_t) { ++told; }
void on_link(int, bcm_port_t, bcm_port_info_t*) { ++told; }

class Core : public soak::Family {
 public:
  Core() {
    // Nothing in the library ends these.
    must("sai_register_link_service", sai_register_link_service(on_link));
    must("sai_knet_netif_init", sai_knet_netif_init(unit, 2, "soak", soak::mac_of(1).bytes));
    must("sai_lldp_set", sai_lldp_set(unit));
    must("sai_lldp_unset", sai_lldp_unset(unit));
  }

  void work(soak::Random& random) override {
    switch (random.below(12)) {
      case 0:
      case 1:
        if (captures_.size() < 16) {
          int32_t index = -1;
          if (made(sai_bpdu_set(unit, soak::mac_of(random.below(64)).bytes, &index)) == 0) captures_[index] = true;
        } else {
          drop_capture(random.key_of(captures_));
        }
        break;
      case 2:
        expect(false, "sai_bpdu_unset", sai_bpdu_unset(unit, -1));
        break;
      case 3:
        must("sai_lldp_set or sai_lldp_unset", lldp_ ? sai_lldp_unset(unit) : sai_lldp_set(unit));
        lldp_ = !lldp_;
        break;
      case 4: {
        const int32_t weights[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        must("sai_cosq_sched_set", sai_cosq_sched_set(unit, random.between(0, 2), weights, 0));
        break;
      }
      case 5:
        made(sai_knet_ktag_set(random.between(36990, 37015), random.below(100)));
        made(sai_knet_vlan_set(random.between(37005, 37010), random.below(100), random.below(100)));
        break;
      case 6:
        expect(false, "sai_knet_netif_init", sai_knet_netif_init(unit, 3, "soak", soak::mac_of(1).bytes));
        break;
      case 7:
        use_log(random);
        break;
      case 8:
        listen(random);
        break;
      case 9:
        sdk_to_sai(-random.between(0, 20));
        sai_hash_to_sdk(random.below(20));
        must("sai_unit_get", sai_unit_get());
        break;
      case 10:
        if (random.one_in(20)) {
          run("led 0 auto on");
          sai_serial_led_config(unit);
        }
        break;
      default:
        swsdk_link_event(unit, random.between(1, soak::ports), random.flag());
    }
  }

  void tear_down() override {
    while (!captures_.empty()) drop_capture(captures_.begin()->first);
    if (lldp_) must("sai_lldp_unset", sai_lldp_unset(unit));
    lldp_ = false;
    const int32_t weights[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    must("sai_cosq_sched_set", sai_cosq_sched_set(unit, SAI_COSQ_WEIGHTED_ROUND_ROBIN, weights, 0));
    for (int port = 1; port <= soak::ports; ++port) swsdk_link_event(unit, port, 0);
    run("led 0 auto off");
    swsdk_events_drain();
  }

 private:
  static void run(const char* command) {
    char line[32];
    snprintf(line, sizeof line, "%s", command);
    must("sai_sh_process_command", sai_sh_process_command(unit, line));
  }

  void drop_capture(int32_t index) {
    must("sai_bpdu_unset", sai_bpdu_unset(unit, index));
    captures_.erase(index);
  }

  /// A log of its own, opened, written and closed.
  static void use_log(soak::Random& random) {
    sai_log_handle* const old = sai_log_default;
    sai_log_handle* const log = open_sai_log("soak", random.flag(), 0, 0);
    log->file = fopen("/dev/null", "w");
    log->file_name = strdup("/dev/null");
    log->time_precision = random.between(-1, 19);
    log->show_priority = random.flag();
    sai_log_set_level(log, SAI_LOG_FILE, sai_level_match(sai_log_priority[random.below(8)]));
    sai_log_default = log;
    sai_err("error %d", random.between(0, 9));
    sai_warn("warning %s", "text");
    sai_notice("notice");
    sai_info("information");
    sai_debug("trace");
    sai_log_default = old;
    close_sai_log(log);
    soak::tally.calls += 9;
  }

  static void listen(soak::Random& random) {
    must("sai_register_l2_service", sai_register_l2_service(unit, on_address));
    for (int i = 0; i < 8; ++i)
      swsdk_l2_event(unit, random.flag(), 10, soak::mac_of(random.below(64)).bytes, random.between(1, soak::ports));
    swsdk_events_drain();
    must("sai_unregister_l2_service", sai_unregister_l2_service(unit, on_address));
  }

  std::map<int32_t, bool> captures_;
  bool lldp_ = false;
};

}  // namespace

std::unique_ptr<soak::Family> soak::core_family() { return std::make_unique<Core>(); }
