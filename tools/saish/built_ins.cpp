#include "built_ins.h"

#include <bcm/stat.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/field.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <string>

#include "expectation.h"
#include "frame_commands.h"
#include "frame_text.h"
#include "help.h"
#include "library.h"
#include "session.h"
#include "tables.h"

namespace saish {

namespace {

constexpr int any_length = 1000;
constexpr int highest_vlan = 4095;

int unit_number(const std::string& word) {
  const std::optional<int> unit = number<int>(word);
  if (!unit || *unit < 0 || *unit > 15) throw BadInput("unit: \"" + word + "\" is not a number from 0 to 15");
  return *unit;
}

/// The unit that a word at the end names; 0 when it is left out.
int unit_at(const Words& arguments, std::size_t index) {
  return arguments.size() > index ? unit_number(arguments[index]) : 0;
}

}  // namespace

int initialized_unit_at(const Words& arguments, std::size_t index) {
  const int unit = unit_at(arguments, index);
  if (unit >= soc_ndev) throw BadInput("unit " + std::to_string(unit) + " is not attached");
  if (swsdk_phy_register_get(unit, 0, SWSDK_PHY_CLAUSE22, 0) < 0)
    throw BadInput("unit " + std::to_string(unit) + " is not initialized");
  return unit;
}

BadInput no_port(int unit, int port) {
  return BadInput("unit " + std::to_string(unit) + " has no port " + std::to_string(port));
}

namespace {

template <class T>
T value(const std::string& where, const std::string& word) {
  T result;
  read(where, word, result);
  return result;
}

/// What `show` takes in this session.
std::string table_names(const Session& session) {
  std::string result;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) result += (i > 0 ? ", " : "") + std::string(swsdk_show_table(i));
  for (const auto& [name, text] : session.more_tables) result += ", " + name;
  return result;
}

void help(Session& session, const Words& arguments) { print_help(arguments, table_names(session)); }

void show(Session& session, const Words& arguments) {
  if (const auto more = session.more_tables.find(arguments[0]); more != session.more_tables.end()) {
    std::fputs(more->second().c_str(), stdout);
    return;
  }
  bool known = false;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) known = known || arguments[0] == swsdk_show_table(i);
  if (!known) throw BadInput("there is no table \"" + arguments[0] + "\"; the tables are " + table_names(session));
  const int unit = unit_at(arguments, 1);

  std::fputs(shown_table(unit, arguments[0]).c_str(), stdout);
}

void check(Session& /*session*/, const Words& arguments) {
  const std::string text = leftovers(initialized_unit_at(arguments, 0));
  if (text.empty()) return static_cast<void>(std::printf("  nothing is left over\n"));
  std::fputs(text.c_str(), stdout);
  throw Unexpected("calls have left something on the chip that nothing uses");
}

void fail(Session& /*session*/, const Words& arguments) {
  if (arguments[0] == "clear" && arguments.size() == 1) return swsdk_fault_clear();
  if (arguments.size() < 2) throw BadInput("a code is missing; the form is fail FUNCTION CODE [NTH] or fail clear");

  const std::optional<int> code = named_number<int>(arguments[1], "BCM_E_");
  if (!code) throw BadInput("code: \"" + arguments[1] + "\" is neither a number nor a BCM_E_ name");
  const bool every = arguments.size() == 3 && arguments[2] == "every";
  const std::optional<int> nth = every ? SWSDK_FAULT_EVERY_CALL : arguments.size() == 3 ? number<int>(arguments[2]) : 1;
  if (!nth || *nth < (every ? 0 : 1))
    throw BadInput("nth: \"" + arguments[2] + "\" is neither a number from 1 on nor \"every\"");
  if (swsdk_fault_inject(arguments[0].c_str(), *code, *nth) != 0)
    throw BadInput("the Chip SDK has no function \"" + arguments[0] + "\"");
}

void log(Session& /*session*/, const Words& arguments) {
  const std::string& word = arguments[0];
  const std::optional<int32_t> given = named_number<int32_t>(word, "SAI_LOG_");
  const int32_t level = word == "off"                                                   ? SAI_LOG_OFF
                        : given && *given >= SAI_LOG_OFF && *given <= SAI_LOG_DEBUGGING ? *given
                                                                                        : sai_level_match(word.c_str());
  if (level == -1 && word != "off" && given != -1)
    throw BadInput("level: \"" + word +
                   "\" is neither off, a number from 0 to 7, nor a level such as errors or debugging");
  if (sai_log_default == nullptr) sai_log_default = open_sai_log("saish", 0, 0, 0);
  if (sai_log_default == nullptr) throw BadInput("no memory for a log");
  sai_log_set_level(nullptr, SAI_LOG_CONSOLE, level);
}

void journal(Session& session, const Words& arguments) {
  const std::string& word = arguments[0];
  if (word == "follow") {
    const std::optional<int> seconds = arguments.size() > 1 ? number<int>(arguments[1]) : std::nullopt;
    if (arguments.size() > 1 && (!seconds || *seconds < 0))
      throw BadInput("seconds: \"" + arguments[1] + "\" is not a number from 0 on");
    return Session::print_calls_of_all(seconds);
  }
  if (arguments.size() > 1) throw BadInput("only follow takes a number of seconds");
  if (word == "on" || word == "off")
    session.follow_journal(word == "on");
  else if (word == "clear")
    session.clear_journal();
  else if (word == "show")
    std::fputs(journal_text().c_str(), stdout);
  else
    throw BadInput("\"" + word + "\" is not on, off, show, clear or follow");
}

void link(Session& /*session*/, const Words& arguments) {
  const std::optional<int> port = number<int>(arguments[0]);
  const bool up = arguments[1] == "up";
  if (!up && arguments[1] != "down") throw BadInput("\"" + arguments[1] + "\" is neither up nor down");
  const int unit = initialized_unit_at(arguments, 2);
  if (!port || *port < 0 || swsdk_link_event(unit, *port, up) != 0)
    throw BadInput("port: unit " + std::to_string(unit) + " has no Ethernet port \"" + arguments[0] + "\"");
  swsdk_events_drain();
}

void learn(Session& /*session*/, const Words& arguments) {
  uint8_t mac[6];
  read("mac", arguments[0], mac);
  const int vlan = value<int>("vlan", arguments[1]);
  const int port = value<int>("port", arguments[2]);
  if (vlan < 1 || vlan > highest_vlan)
    throw BadInput("vlan: " + std::to_string(vlan) + " is not between 1 and " + std::to_string(highest_vlan));
  const int unit = initialized_unit_at(arguments, 3);
  const int learned = swsdk_l2_learn(unit, vlan, mac, port, 0);
  if (learned < 0) throw no_port(unit, port);
  swsdk_events_drain();
  std::printf("  %s\n", learned != 0 ? "learned" : "not learned; \"help learn\" lists the reasons");
}

void age(Session& /*session*/, const Words& arguments) {
  const int seconds = value<int>("seconds", arguments[0]);
  if (seconds < 0) throw BadInput("seconds: time does not go back");
  swsdk_clock_step(initialized_unit_at(arguments, 1), seconds);
  swsdk_events_drain();
}

void hit(Session& /*session*/, const Words& arguments) {
  const std::string& target = arguments[0];
  const std::size_t slash = std::min(target.find('/'), target.size());
  const bool is_route = slash != target.size();
  const uint32_t address = read_ip4("address", target.substr(0, slash));
  const unsigned length = is_route ? value<unsigned>("length", target.substr(slash + 1)) : 32;
  if (length > 32) throw BadInput("length: " + std::to_string(length) + " is more than the 32 bits of an address");
  if (arguments[1] != "source" && arguments[1] != "destination")
    throw BadInput("\"" + arguments[1] + "\" is neither source nor destination");
  const unsigned as = arguments[1] == "source" ? 0x4 : 0x8;  // the two bits of BCM_L3_HIT
  const int unit = initialized_unit_at(arguments, 2);
  const uint32_t mask = length == 0 ? 0 : ~uint32_t{0} << (32 - length);
  if ((is_route ? swsdk_l3_route_hit(unit, address, mask, as) : swsdk_l3_host_hit(unit, address, as)) != 0)
    throw BadInput("unit " + std::to_string(unit) + " has no " + (is_route ? "route" : "host") + " " + target);
}

void counter(Session& /*session*/, const Words& arguments) {
  constexpr const char* names[] = BCM_STAT_NAME_INITIALIZER;
  const int port = value<int>("port", arguments[0]);
  const auto stat = std::find(std::begin(names), std::end(names), arguments[1]);
  if (stat == std::end(names))
    throw BadInput("there is no counter \"" + arguments[1] + "\"; sai_port_stat_show 0 1 shows them all");
  const auto count = value<unsigned long long>("value", arguments[2]);
  const int unit = initialized_unit_at(arguments, 3);
  if (swsdk_counter_set(unit, port, static_cast<int>(stat - names), count) != 0) throw no_port(unit, port);
}

/// Degrees Celsius, as tenths.
int tenths(const std::string& word) {
  constexpr double most = 1000;
  double degrees = 0;
  const char* const end = word.data() + word.size();
  const auto [read_to, error] = std::from_chars(word.data(), end, degrees);
  if (error != std::errc{} || read_to != end || !(std::abs(degrees) <= most))
    throw BadInput("temperature: \"" + word + "\" is not a number of degrees such as 41.5");
  return static_cast<int>(std::lround(degrees * 10));
}

void temperature(Session& /*session*/, const Words& arguments) {
  std::vector<swsdk_temperature> readings;
  for (const std::string& word : arguments) {
    const std::size_t slash = std::min(word.find('/'), word.size());
    const int current = tenths(word.substr(0, slash));
    readings.push_back({current, slash == word.size() ? current : tenths(word.substr(slash + 1))});
  }
  swsdk_temperatures_set(initialized_unit_at({}, 0), readings.data(), static_cast<int>(readings.size()));
}

constexpr Field frame_fields[] = {
    field<&swsdk_frame::in_port>("in_port"),
    field<&swsdk_frame::out_port>("out_port"),
    field<&swsdk_frame::src_mac>("src_mac"),
    field<&swsdk_frame::dst_mac>("dst_mac"),
    field<&swsdk_frame::vlan_format>("vlan_format"),
    field<&swsdk_frame::outer_tag>("outer_tag"),
    field<&swsdk_frame::inner_tag>("inner_tag"),
    field<&swsdk_frame::ether_type>("ether_type"),
    field<&swsdk_frame::src_ip, Form::ip4>("src_ip"),
    field<&swsdk_frame::dst_ip, Form::ip4>("dst_ip"),
    field<&swsdk_frame::src_ip6>("src_ip6"),
    field<&swsdk_frame::dst_ip6>("dst_ip6"),
    field<&swsdk_frame::ip_protocol>("ip_protocol"),
    field<&swsdk_frame::tos>("tos"),
    field<&swsdk_frame::ttl>("ttl"),
    field<&swsdk_frame::l4_src_port>("l4_src_port"),
    field<&swsdk_frame::l4_dst_port>("l4_dst_port"),
    field<&swsdk_frame::icmp_type>("icmp_type"),
    field<&swsdk_frame::icmp_code>("icmp_code"),
    field<&swsdk_frame::arp_target_ip, Form::ip4>("arp_target_ip"),
};

std::string verdict_text(const swsdk_verdict& verdict) {
  std::string text = verdict.dropped != 0          ? "dropped"
                     : verdict.redirect_port >= 0  ? "goes to port " + std::to_string(verdict.redirect_port) + " alone"
                     : verdict.drop_cancelled != 0 ? "passes, whatever else would drop it"
                                                   : "passes";
  if (verdict.copied_to_cpu != 0) text += ", copied to the CPU";
  if (verdict.priority >= 0) text += ", with priority " + std::to_string(verdict.priority);
  for (const int policer : verdict.policers)
    if (policer != 0) text += ", metered by policer " + std::to_string(policer);
  if (verdict.red_dropped != 0) text += ", dropped if red";
  if (verdict.hits == 0) return text + ": no entry";
  for (int i = 0; i < verdict.hits; ++i)
    text += (i == 0 ? ": entry " : ", entry ") + std::to_string(verdict.entries[i]) + " of group " +
            std::to_string(verdict.groups[i]);
  return text;
}

void classify(Session& /*session*/, const Words& arguments) {
  if (arguments[0] != "ingress" && arguments[0] != "egress")
    throw BadInput("\"" + arguments[0] + "\" is neither ingress nor egress");
  swsdk_frame frame{};
  read_fields(frame_fields, "frame", arguments[1], &frame);
  const int unit = initialized_unit_at(arguments, 2);
  swsdk_verdict verdict{};
  swsdk_field_classify(unit, arguments[0] == "ingress" ? SWSDK_FIELD_INGRESS : SWSDK_FIELD_EGRESS, &frame, &verdict);
  std::printf("  %s\n", verdict_text(verdict).c_str());
}

void save(Session& /*session*/, const Words& arguments) {
  if (swsdk_state_save(arguments[0].c_str()) != SWSDK_STATE_DONE)
    throw BadInput('"' + arguments[0] + "\" cannot be written");
}

void restore(Session& /*session*/, const Words& arguments) {
  const int result = swsdk_state_restore(arguments[0].c_str());
  if (result == SWSDK_STATE_NO_FILE) throw BadInput('"' + arguments[0] + "\" cannot be read");
  if (result != SWSDK_STATE_DONE)
    throw BadInput('"' + arguments[0] + "\" is no saved state, or a damaged one, or of another version");
}

bool is_state(const std::string& path) {
  std::string word(std::string_view(SWSDK_STATE_HEADING).size(), '\0');
  return std::ifstream(path, std::ios::binary).read(word.data(), static_cast<std::streamsize>(word.size())) &&
         word == SWSDK_STATE_HEADING;
}

void diff(Session& session, const Words& arguments) {
  if (session.is_compared())
    throw BadInput("a script whose tables are compared or printed can have no diff; remove this line");
  if (is_state(arguments[0]))
    compare_with_state(arguments[0]);
  else
    compare_with(arguments[0]);
  std::printf("  no difference\n");
}

void source(Session& session, const Words& arguments) { session.run_script(arguments[0]); }

void quit(Session& session, const Words& /*arguments*/) { session.end(); }

/// Only for help: the session itself does what it says.
void expect(Session& /*session*/, const Words& /*arguments*/) {}

constexpr const char* send_notes[] = {frame_form};

constexpr const char* learn_notes[] = {
    "Not learned is an address",
    "- that is a multicast address or all zeros",
    "- that has a static entry elsewhere",
    "- whose VLAN does not exist or does not learn",
    "- whose port does not learn: sai_port_learn_set, or its spanning-tree state in the VLAN",
    "- that is beyond a learn limit, of the chip, the VLAN, the port or the trunk",
    "- whose bucket of the table is full: 4 addresses with its hash",
};

constexpr BuiltIn all_built_ins[] = {
    {"help", "help [WORD...]", "Tells about a command, lists a family of them, or finds some by words.", 0, any_length,
     help},
    {"show", "show TABLE [UNIT]", "Shows one of the chip's tables.", 1, 2, show},
    {"check", "check [UNIT]", "Shows what calls have left on the chip and nothing uses, and fails if there is any.", 0,
     1, check},
    {"journal", "journal on|off|show|clear|follow [SECONDS]",
     "Shows the SDK calls of each command, of all since the last clear, or of all programs on the chip as they happen.",
     1, 2, journal},
    {"fail", "fail FUNCTION CODE [NTH|every]", "Makes the nth call of an SDK function fail; \"fail clear\" ends all.",
     1, 3, fail},
    {"log", "log LEVEL", "Shows log messages up to a level on the console; off: none.", 1, 1, log},
    {"expect",
     "expect CODE|out|cpu|dropped|nothing ...",
     "Runs a command that has to return that code, or says what has to become of a frame.",
     1,
     any_length,
     expect,
     {},
     expectation_notes},
    {"link", "link PORT up|down [UNIT]", "Takes a port's link up or down; who is registered is told.", 2, 3, link},
    {"learn",
     "learn MAC VLAN PORT [UNIT]",
     "Lets the chip learn an address, as from a frame that came in.",
     3,
     4,
     learn,
     {},
     learn_notes},
    {"age", "age SECONDS [UNIT]", "Lets time pass on the chip, so that addresses that are not seen again age.", 1, 2,
     age},
    {"hit", "hit IP[/LENGTH] source|destination [UNIT]", "Marks a host or a route as used, as by frames.", 2, 3, hit},
    {"counter", "counter PORT COUNTER VALUE [UNIT]", "Sets one of a port's counters, as frames do.", 3, 4, counter},
    {"temperature", "temperature NOW[/PEAK]...", "Sets the chip's temperature sensors, in degrees Celsius.", 1, 256,
     temperature},
    {"classify", "classify ingress|egress FRAME [UNIT]", "Says what the field entries do with a frame.", 2, 3, classify,
     frame_fields},
    {"send",
     "send [--trace] PORT FRAME",
     "Lets a frame come in at a port, or at 0 from the host, and says whether it was passed on, or which way it took.",
     2,
     any_length,
     send,
     {},
     send_notes,
     true},
    {"trace",
     "trace PORT FRAME",
     "Tells the way that a frame would take if it came in: what decides, which calls made that so, and what leaves.",
     2,
     any_length,
     trace,
     {},
     send_notes},
    {"watch", "watch [--trace] [--seconds N] [FILTER]",
     "Prints the frames that pass through the chip as they pass, or those that libpcap's FILTER takes.", 0, any_length,
     watch},
    {"path", "path start [FILTER]|summary|stop",
     "Counts the ways that frames take from the start on, and prints them, the most frequent first.", 1, any_length,
     path},
    {"capture", "capture [FILE.pcapng|start [--trace] [--seconds N] [FILTER]]",
     "Shows what left the chip since the last time, or writes the frames that pass into a file for Wireshark.", 0,
     any_length, capture},
    {"diff", "diff FILE",
     "Compares the chip's tables with a saved state, clock included, or with a script's in a fresh chip.", 1, 1, diff},
    {"save", "save FILE", "Saves the state of the chips: all tables, counters, meters and the clock.", 1, 1, save},
    {"restore", "restore FILE", "Puts the chips into a saved state.", 1, 1, restore},
    {"source", "source FILE", "Runs a script.", 1, 1, source},
    {"quit", "quit", "Ends the shell.", 0, 0, quit},
    {"exit", "exit", "Ends the shell, as quit does.", 0, 0, quit},
};

}  // namespace

std::span<const BuiltIn> built_ins() { return all_built_ins; }

const BuiltIn* find_built_in(std::string_view name) {
  for (const BuiltIn& built_in : all_built_ins)
    if (name == built_in.name) return &built_in;
  return nullptr;
}

std::vector<std::string> command_names() {
  std::vector<std::string> names;
  for (const BuiltIn& built_in : built_ins()) names.emplace_back(built_in.name);
  for (const Function& function : functions()) names.emplace_back(function.name);
  return names;
}

namespace {

/// The edit distance: how many letters to insert, delete or change to turn one text into the other.
std::size_t distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);  // distances from what is read of one to each prefix of the other
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : one) {
    std::size_t diagonal = row[0]++;
    for (std::size_t i = 1; i < row.size(); ++i) {
      const std::size_t changed = diagonal + (letter == other[i - 1] ? 0 : 1);
      diagonal = row[i];
      row[i] = std::min({changed, row[i] + 1, row[i - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

BadInput unknown_command(std::string_view name) {
  std::string nearest;
  std::size_t least = name.size() / 4 + 2;  // more than a typing error
  for (const std::string& other : command_names())
    if (const std::size_t far = distance(name, other); far < std::min(least, name.size())) {
      nearest = other;
      least = far;
    }
  return BadInput("no such command \"" + std::string(name) + "\"; " +
                  (nearest.empty() ? "help lists them all" : "did you mean " + nearest + "?"));
}

}  // namespace saish
