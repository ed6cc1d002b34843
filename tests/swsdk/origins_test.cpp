// The calls to which traces say that entries are due: repeated up to such a call, a chip has the entry.
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/port.h>
#include <bcm/stg.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>
#include <swsdk/tables.h>

#include <array>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/frames.h"
#include "support/start.h"

namespace {

using support::Bytes;
using support::Frame;

constexpr int router = 0xE0;
constexpr int ports = 4;

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

/// The entries of a table as a trace tells them: "VLAN 10, tagged {1-2}".
std::set<std::string> entries(const std::string& table) {
  const std::vector<std::string> lines = lines_of(support::table(table.c_str()));
  std::vector<std::size_t> starts{0};
  for (std::size_t i = 2; i < lines[0].size(); ++i)
    if (lines[0].compare(i - 2, 2, "  ") == 0 && lines[0][i] != ' ') starts.push_back(i);
  const auto cell = [&](const std::string& line, std::size_t column) {
    const std::size_t end = column + 1 < starts.size() ? starts[column + 1] : std::string::npos;
    std::string text = starts[column] < line.size() ? line.substr(starts[column], end - starts[column]) : "";
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
  };
  std::set<std::string> result;
  for (std::size_t row = 1; row < lines.size(); ++row) {
    std::string entry;
    for (std::size_t column = 0; column < starts.size(); ++column) {
      const std::string heading = cell(lines[0], column);
      const std::string text = cell(lines[row], column);
      if (text != "-" && text != "{}" && !heading.starts_with("hit"))
        entry += (entry.empty() ? "" : ", ") + heading + ' ' + text;
    }
    result.insert(entry);
  }
  return result;
}

/// Calls of the SDK, one each, that can be made again.
using Call = std::function<void()>;

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  int from(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }

  Call call() {
    const int port = from(1, ports);
    const int vlan = 10 * from(1, 3);
    const int last = from(1, 4);
    const int choice = from(0, 3);
    bcm_pbmp_t members;
    BCM_PBMP_CLEAR(members);
    BCM_PBMP_PORT_ADD(members, port);
    bcm_pbmp_t untagged;
    BCM_PBMP_CLEAR(untagged);
    if (choice == 0) BCM_PBMP_PORT_ADD(untagged, port);
    const Bytes mac = support::mac(last);
    switch (from(0, 13)) {
      case 0:
      case 1:
        return [=] { bcm_vlan_create(0, static_cast<bcm_vlan_t>(vlan)); };
      case 2:
      case 3:
      case 4:
        return [=] { bcm_vlan_port_add(0, static_cast<bcm_vlan_t>(vlan), members, untagged); };
      case 5:
        return [=] { bcm_vlan_port_remove(0, static_cast<bcm_vlan_t>(vlan), members); };
      case 6:
        return [=] { bcm_port_untagged_vlan_set(0, port, static_cast<bcm_vlan_t>(vlan)); };
      case 7:
        return [=] {
          bcm_l2_addr_t address;
          bcm_l2_addr_t_init(&address, mac.data(), static_cast<bcm_vlan_t>(vlan));
          address.port = port;
          address.flags = BCM_L2_STATIC;
          bcm_l2_addr_add(0, &address);
        };
      case 8:
        return [=] { bcm_stg_stp_set(0, 1, port, choice == 0 ? BCM_STG_STP_BLOCK : BCM_STG_STP_FORWARD); };
      case 9:
        return [=] { bcm_port_enable_set(0, port, choice == 0 ? 0 : 1); };
      case 10:
        return [=] {
          bcm_l3_intf_t interface;
          bcm_l3_intf_t_init(&interface);
          const Bytes own = support::mac(router);
          std::copy(own.begin(), own.end(), interface.l3a_mac_addr);
          interface.l3a_vid = static_cast<bcm_vlan_t>(vlan);
          interface.l3a_flags = BCM_L3_ADD_TO_ARL;
          bcm_l3_intf_create(0, &interface);
        };
      case 11:
        return [=] {
          bcm_l3_host_t host;
          bcm_l3_host_t_init(&host);
          host.l3a_ip_addr = support::ip4("20.0.0.1") + static_cast<unsigned>(last) - 1;
          host.l3a_intf = choice + 1;
          host.l3a_port_tgid = port;
          std::copy(mac.begin(), mac.end(), host.l3a_nexthop_mac);
          host.l3a_flags = choice == 0 ? BCM_L3_REPLACE : 0;
          bcm_l3_host_add(0, &host);
        };
      case 12:
        return [=] {
          bcm_l3_route_t route;
          bcm_l3_route_t_init(&route);
          route.l3a_subnet = support::ip4("20.0.0.0");
          route.l3a_ip_mask = 0xFFFFFF00U << choice;
          route.l3a_intf = last;
          route.l3a_port_tgid = port;
          std::copy(mac.begin(), mac.end(), route.l3a_nexthop_mac);
          bcm_l3_route_add(0, &route);
        };
      default:
        return [=] { bcm_switch_control_set(0, bcmSwitchL3EgressMode, 0); };
    }
  }

  Bytes frame() {
    Frame result(from(1, 4), from(0, 3) == 0 ? router : from(1, 4));
    if (from(0, 3) != 0) result.tag(10 * from(1, 3));
    if (from(0, 1) == 0) return result.type(0x9000);
    return result.ip("10.0.0.1", "20.0.0." + std::to_string(from(1, 4))).udp(5, 6);
  }

 private:
  std::mt19937 engine_;
};

void start() {
  support::start_chip();
  for (int port = 1; port <= ports; ++port) swsdk_link_event(0, port, 1);
  swsdk_events_drain();
  bcm_l3_enable_set(0, 1);
}

/// An entry that a trace has told of, and the call that made it so.
struct Told {
  std::string table;
  std::string entry;
  long number;
  std::string call;
};

std::vector<Told> told_of(int port, const Bytes& frame) {
  std::string text(65536, '\0');
  const long length = swsdk_frame_trace(0, port, frame.data(), frame.size(), text.data(), text.size());
  text.resize(static_cast<std::size_t>(length));
  std::vector<Told> result;
  const std::vector<std::string> lines = lines_of(text);
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::string call = "    call ";
    if (!lines[i].starts_with(call)) continue;
    const std::string& entry = lines[i - 1];
    const std::size_t colon = entry.find(": ");
    const std::size_t end = lines[i].find(": ");
    result.push_back({entry.substr(2, colon - 2), entry.substr(colon + 2),
                      std::stol(lines[i].substr(call.size(), end - call.size())), lines[i].substr(end + 2)});
  }
  return result;
}

TEST(Origins, AreTheCallsThatMadeTheEntries) {
  // In the other tables a row has several settings, each with a call of its own.
  const std::set<std::string> of_one_call{"vlan", "mac", "interface", "host", "route"};
  int checked = 0;
  std::set<std::string> tables;
  for (unsigned seed = 0; seed < 40; ++seed) {
    Random random(seed);
    std::vector<Call> calls;
    start();
    swsdk_journal_clear();
    swsdk_journal_record(1);
    for (int i = 0; i < 60; ++i) {
      calls.push_back(random.call());
      calls.back()();
    }
    swsdk_journal_record(0);
    std::string journal(swsdk_journal_read(nullptr, 0), '\0');
    swsdk_journal_read(journal.data(), journal.size() + 1);
    const std::vector<std::string> lines = lines_of(journal);
    ASSERT_EQ(lines.size(), calls.size());

    std::vector<Told> all;
    for (int i = 0; i < 20; ++i)
      for (const Told& told : told_of(random.from(1, ports), random.frame())) all.push_back(told);
    std::optional<long> first;  // the number of the first of these calls
    for (const Told& told : all) {
      // A call that was made before belongs to start-up.
      std::optional<std::size_t> index;
      for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i] == told.call && (!first || *first + static_cast<long>(i) == told.number)) index = i;
      if (!index) {
        EXPECT_TRUE(!first || told.number < *first) << told.call;
        continue;
      }
      // Equal lines can stand in the journal several times; the last one gives an upper bound for the first number.
      if (!first && std::count(lines.begin(), lines.end(), told.call) == 1)
        first = told.number - static_cast<long>(*index);
      if (!first || !of_one_call.contains(told.table)) continue;
      start();
      for (std::size_t i = 0; i <= *index; ++i) calls[i]();
      EXPECT_TRUE(entries(told.table).contains(told.entry)) << told.table << ": " << told.entry << "\nby " << told.call;
      tables.insert(told.table);
      ++checked;
    }
    swsdk_power_off();
  }
  EXPECT_GT(checked, 500);
  EXPECT_EQ(tables, of_one_call) << "each kind is reached";
}

}  // namespace
