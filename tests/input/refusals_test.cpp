// What every function refuses by itself, or has refused by the chip, without any fault: the rows of the manual's
// tables of results that a caller meets.
#include <bcm/error.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "input/all_functions.h"
#include "support/kept.h"
#include "support/start.h"

namespace {

using input::Bad;
using input::chosen;
using input::Function;

/// The SDK call that decided, or "library", its code, the result, and the errors of the log without their
/// values.
struct Refusal {
  std::string call = "library";
  int code = 0;
  int32_t result = 0;
  std::string done;  ///< the other calls of the SDK, all of which succeeded
  std::string lines;
  auto operator<=>(const Refusal&) const = default;
};

class Refusals : public input::AllFunctions {
 protected:
  /// Nothing when the function accepts what it gets.
  std::optional<Refusal> refusal(const Function& function, const Bad& bad = {}) {
    return refusal(function, [&] { return input::quietly(function, bad).result.value_or(0); });
  }

  std::optional<Refusal> refusal(const Function& function, const std::function<int32_t()>& call_it) {
    int32_t result = 0;
    const std::string seen = observe([&] { return result = call_it(); });
    Refusal refusal;
    refusal.result = result;
    std::set<std::string> done;
    std::istringstream lines(seen);
    for (std::string line; std::getline(lines, line);) {
      static const std::string error = "log: errors: NONE: ";
      if (line.starts_with(error)) {
        refusal.lines += "\tlog " + support::without_values(line.substr(error.size()));
      } else if (const size_t at = line.rfind(" = "); at != std::string::npos && !line.starts_with("log")) {
        const std::string call = line.substr(0, line.find('('));
        const int code = std::atoi(line.c_str() + at + 3);
        if (code < 0) answers_[function.name].insert(call + '\t' + std::to_string(code));
        if (code < 0 && sdk_to_sai(code) == result) {
          refusal.call = call;
          refusal.code = code;
        } else if (code == 0 && !call.starts_with("soc_linkscan") && done.insert(call).second) {
          refusal.done += (refusal.done.empty() ? "" : " ") + call;
        }
      }
    }
    return result < 0 ? std::optional(refusal) : std::nullopt;
  }

  void keep(const Function& function, const std::string& what, const std::string& value,
            const std::optional<Refusal>& refusal) {
    if (refusal) kept_[function.name][*refusal][what].push_back(value);
  }

  /// Lines of the kept file: function, call, code, result, what was so, the other calls, the log's lines.
  /// Before them, each failure of an SDK call that was seen: function, call, code.
  std::string kept() const {
    std::ostringstream text;
    for (const auto& [function, answers] : answers_)
      for (const std::string& answer : answers) text << function << '\t' << answer << '\n';
    for (const auto& [function, refusals] : kept_)
      for (const auto& [refusal, reasons] : refusals) {
        text << function << '\t' << refusal.call << '\t' << refusal.code << '\t' << refusal.result << '\t';
        const char* between = "";
        for (const auto& [what, values] : reasons) {
          text << between << what;
          for (const std::string& value : values) text << (value.empty() ? "" : " ") << value;
          between = "; ";
        }
        text << '\t' << refusal.done << refusal.lines << '\n';
      }
    return text.str();
  }

 private:
  std::map<std::string, std::set<std::string>> answers_;
  std::map<std::string, std::map<Refusal, std::map<std::string, std::vector<std::string>>>> kept_;
};

/// What takes the last room behind a function: the arguments that differ from call to call. But for the last, each
/// takes 120 values. Or a call with a number of its own.
struct Filling {
  std::string_view function;
  std::vector<const char*> differing = {};
  int step = 2;
  int32_t (*call)(int i) = nullptr;
};

int32_t call_next(const Function& function, const Filling& filling, int64_t number) {
  for (const char* const name : filling.differing) {
    const bool is_last = name == filling.differing.back();
    chosen[name] = 2 + (is_last ? number : number % 120) * filling.step;
    number /= 120;
  }
  return input::quietly(function).result.value_or(0);
}

constexpr uint8_t mac[6] = {2};

const Filling fillings[] = {
    {"sai_bpdu_set", {"mac"}},
    {"sai_lldp_set"},
    {.function = "sai_knet_netif_init",
     .call = [](int i) { return sai_knet_netif_init(0, i, std::to_string(i).c_str(), mac); }},
    {"sai_l2_mac_entry_add", {"mac", "vlan"}},
    {.function = "sai_trunk_create",
     .call =
         [](int) {
           int32_t tid = 0;
           return sai_trunk_create(0, 0, &tid);
         }},
    {.function = "sai_vlan_translate_add",
     .call = [](int i) { return sai_vlan_translate_add(0, 1 + i % 8, 2 + i / 8, 0, 2 + i / 8, 0); }},
    {"sai_mirror_dest_port_set", {"session"}},
    {"sai_l3_host_route_create", {"ip"}},
    {"sai_l3_subnet_route_create", {"subnet"}, 0x10000},
    {"sai_ipmc_add", {"group_ip"}},
    {"sai_vport_fp_policer_set"},
    {"sai_ifp_l2_group_create"},
    {"sai_efp_l2_group_create"},
    {"sai_ifp_mac_ipv4_group_create"},
    {"sai_efp_mac_ipv4_group_create"},
    {"sai_ifp_mac_ipv6_group_create"},
    {"sai_efp_mac_ipv6_group_create"},
    {"sai_system_ipv4_fp_create"},
    {"sai_system_ipv6_fp_create"},
    {"sai_fp_mld_group_create"},
    {"sai_fp_mld_exclude_group_create"},
    {"sai_fp_vport_group_create"},
    {"sai_ipsg_init"},
    {"sai_acl_l2_entry_install"},
    {"sai_acl_std_l3_entry_install"},
    {"sai_acl_ext_l3_entry_install"},
    {"sai_acl_l2_l3_entry_install"},
    {"sai_fp_ospf_ttl1_set"},
    {"sai_fp_loopd_packet_to_cpu_set"},
    {"sai_fp_dhcp_requeset_to_cpu_set"},
    {"sai_fp_dhcp_response_to_cpu_set"},
    {"sai_fp_dhcpv6_req_to_cpu_set"},
    {"sai_fp_igmp_packet_to_cpu"},
    {"sai_fp_arp_packet_vlan_qualify_set"},
    {"sai_fp_arp_packet_cpu_qualify_set"},
    {"sai_fp_arp_packet_port_qualify_set"},
    {"sai_fp_mld_packet_exclude_filter_set"},
    {"sai_fp_vport_qualify_set"},
    {"sai_ipsg_verify_config"},
    {"sai_ipsg_parameter_config"},
};

TEST_F(Refusals, AreThoseOfTheManual) {
  for (const Function& function : input::functions()) {
    if (function.kind != input::Result::code) continue;
    bool is_new = false;
    for (const Bad& bad : input::all_bad(function)) {
      if (!is_new) set_scene();
      const std::optional<Refusal> seen = refusal(function, bad);
      const std::string name = input::name_of(function, bad);
      keep(function, name.substr(name.find(' ') + 1), bad.text != nullptr ? "text" : input::value_of(bad), seen);
      is_new = seen.has_value();
    }
    set_scene();
    input::quietly(function);
    keep(function, "(again)", "", refusal(function));
    support::start_chip();
    keep(function, "(alone)", "", refusal(function));
    support::attach_chip();
    keep(function, "(attached)", "", refusal(function));
    swsdk_power_off();
    keep(function, "(off)", "", refusal(function));
    for (const Filling& filling : fillings) {
      if (filling.function != function.name) continue;
      set_scene();
      int i = 0;
      const auto next = [&] {
        ++i;
        return filling.call != nullptr ? filling.call(i) : call_next(function, filling, i);
      };
      for (int32_t result = 0; i < 20000 && result != SAI_E_FULL && result != SAI_E_FAIL;) result = next();
      const std::optional<Refusal> seen = refusal(function, next);
      EXPECT_TRUE(seen && (seen->code == BCM_E_FULL || seen->code == BCM_E_RESOURCE))
          << function.name << " fills nothing";
      keep(function, "(full)", "", seen);
    }
  }
  support::compare_with_kept(RESULTS "/refusals", kept());
}

}  // namespace
