// Frames through a switch that is set up in many ways: what leaves is a frame that came in, where it may leave, and
// every frame is counted.
#include <bcm/port.h>
#include <bcm/stat.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>
#include <swsdk/tables.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "calls.h"
#include "frames.h"

extern "C" int sdk_main(int argc, char** argv);

namespace fuzz {

namespace {

using support::Bytes;

constexpr int ports = front_ports;
constexpr std::size_t addresses = 12;
constexpr std::size_t tag = 4;
constexpr std::size_t checksum = 4;
constexpr std::size_t shortest = 60;

bool is_port(int port) { return port >= 0 && port <= ports; }

unsigned word(const Bytes& bytes, std::size_t at) {
  return at + 2 <= bytes.size() ? static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]) : 0;
}

struct Out {
  int port;
  uint32_t cpu;
  Bytes bytes;
};
std::vector<Out> outs;

/// All copies that have left, and how many frames were forwarded.
struct Stream {
  std::string copies;
  int forwarded = 0;
  bool operator==(const Stream&) const = default;
};
Stream stream;

std::string journal() {
  std::string text(swsdk_journal_read(nullptr, 0), '\0');
  swsdk_journal_read(text.data(), text.size() + 1);
  return text;
}

void take(int unit, const swsdk_out* out, void* in_port) {
  require(unit == 0 && (out->cpu != 0) == (out->port == 0), "a copy leaves that is not for where it leaves");
  outs.push_back({out->port, out->cpu, {out->data, out->data + out->length}});
  stream.copies +=
      std::to_string(out->port) + ' ' + std::to_string(out->in_port) + ' ' + std::to_string(out->cpu) + ' ';
  stream.copies.append(reinterpret_cast<const char*>(out->data), out->length);
  if (in_port != nullptr) require(out->in_port == *static_cast<int*>(in_port), "a copy came in elsewhere");
}

/// What a port has counted.
struct Counted {
  uint64_t in = 0;
  uint64_t out = 0;
  uint64_t dropped = 0;
};
std::array<Counted, ports + 1> counted() {
  std::array<Counted, ports + 1> result;
  swsdk_journal_record(0);  // which is for calls that change something
  for (int port = 0; port <= ports; ++port) {
    std::array<bcm_stat_val_t, 8> counters{
        snmpIfHCInUcastPkts,      snmpIfHCInMulticastPkts,   snmpIfHCInBroadcastPkts, snmpIfHCOutUcastPkts,
        snmpIfHCOutMulticastPkts, snmpIfHCOutBroadcastPckts, snmpIfInDiscards,        snmpIfInErrors};
    std::array<uint64, 8> values{};
    require(bcm_stat_multi_get(0, port, counters.size(), counters.data(), values.data()) == 0, "a port does not count");
    result[static_cast<std::size_t>(port)] = {values[0] + values[1] + values[2], values[3] + values[4] + values[5],
                                              values[6] + values[7]};
  }
  swsdk_journal_record(1);
  return result;
}

std::vector<long long> dropped() {
  std::vector<long long> result{0};
  for (int reason = 1; swsdk_drop_name(reason) != nullptr; ++reason) result.push_back(swsdk_drops(0, reason));
  return result;
}

/// Whether a reason is one of copies on their way out.
bool is_of_copies(int reason) {
  const std::string_view name = swsdk_drop_name(reason);
  return name.starts_with("egress") || name == "no interface" || name == "ttl threshold";
}

bool is_dropped_for(int result, const char* reason) {
  return result > 0 && std::strcmp(swsdk_drop_name(result), reason) == 0;
}

/// Where the ether type of a frame stands, behind the tags of the type that the chip knows.
std::size_t ether_type_at(const Bytes& frame) {
  std::size_t at = addresses;
  for (int tags = 0; tags < 2; ++tags, at += tag)
    if (word(frame, at) != 0x8100) break;
  return at;
}

/// Whether a copy says what the frame said, whatever became of addresses and tags, and of the time to live.
bool is_copy(const Bytes& copy, const Bytes& frame) {
  const std::size_t from = ether_type_at(frame);
  const std::size_t length = frame.size() - from;
  for (std::size_t at = addresses; at <= addresses + 2 * tag; at += tag) {
    if (at > addresses && word(copy, at - tag) != 0x8100) return false;
    if (copy.size() != std::max(at + length, shortest)) continue;
    Bytes payload(copy.begin() + static_cast<std::ptrdiff_t>(at), copy.end());
    Bytes expected(frame.begin() + static_cast<std::ptrdiff_t>(from), frame.end());
    expected.resize(payload.size());
    if (payload == expected) return true;
    const std::size_t ip = word(expected, 0) < 0x600 ? 10 : 2;  // behind what says that it is SNAP
    const bool is_ip6 = expected[ip] >> 4 == 6;
    --expected[ip + (is_ip6 ? 7 : 8)];
    if (!is_ip6)
      std::copy_n(payload.begin() + static_cast<std::ptrdiff_t>(ip) + 10, 2,
                  expected.begin() + static_cast<std::ptrdiff_t>(ip) + 10);
    if (payload == expected) return true;
  }
  return false;
}

void check_copy(const Out& out, int in_port, const Bytes& frame, const Allowed& allowed) {
  require(is_port(out.port), "a copy leaves where there is no port");
  require(out.port != in_port || allowed.hairpin, "a copy goes back");
  int longest = longest_frame + 2 * static_cast<int>(tag);
  if (out.port == 0) {
    require(word(out.bytes, addresses) == 0x8100, "the CPU does not see the VLAN");
  } else {
    int up = 0;
    require(bcm_port_link_status_get(0, out.port, &up) == 0 && up != 0, "a copy leaves where nobody is");
    longest = allowed.longest[static_cast<std::size_t>(out.port)] + static_cast<int>(tag - checksum);
  }
  require(out.bytes.size() >= shortest, "a copy is too short");
  require(static_cast<int>(out.bytes.size()) <= longest, "a copy is too long");
  Bytes padded = frame;
  padded.resize(std::max(frame.size(), shortest));
  // What a loop brings in again can lose another tag.
  require(allowed.loop || out.bytes == padded || is_copy(out.bytes, frame), "a copy says something else");
}

/// Each frame is counted where it came in, and each copy where it left.
void check_counters(int in_port, int result, const std::array<Counted, ports + 1>& before) {
  const std::array<Counted, ports + 1> after = counted();
  const bool heard = !is_dropped_for(result, "port down");
  const bool lost = result > 0 && heard && !is_of_copies(result) && !is_dropped_for(result, "trapped to the cpu");
  std::array<uint64_t, ports + 1> left{};
  for (const Out& out : outs) ++left[static_cast<std::size_t>(out.port)];
  for (std::size_t port = 0; port <= ports; ++port) {
    const bool is_in = static_cast<int>(port) == in_port;
    require(after[port].in - before[port].in == (is_in && heard ? 1 : 0), "other frames came in than are counted");
    require(after[port].out - before[port].out == left[port], "other copies left than are counted");
    require(after[port].dropped - before[port].dropped == (is_in && lost ? 1 : 0), "a drop is counted otherwise");
  }
}

/// A frame that is nowhere else than in its own block, so that a sanitizer sees who reads past its end.
int send(int port, const Bytes& frame) {
  const std::unique_ptr<uint8_t[]> own(new uint8_t[frame.size()]);
  std::copy(frame.begin(), frame.end(), own.get());
  outs.clear();
  return swsdk_frame_send(0, port, own.get(), frame.size());
}

std::string table(const char* name) {
  std::string text(static_cast<std::size_t>(swsdk_show(0, name, nullptr, 0)), '\0');
  swsdk_show(0, name, text.data(), text.size() + 1);
  return text;
}

/// What frames can change.
std::string changeable() {
  std::string result;
  for (const char* const name : {"counters", "drops", "field", "host", "mac", "route"}) result += table(name);
  return result;
}

std::string trace_of(int port, const Bytes& frame) {
  static std::string text(std::size_t{1} << 22, '\0');  // room for what a loop makes of a long frame
  const long length = swsdk_frame_trace(0, port, frame.data(), frame.size(), text.data(), text.size());
  require(length < static_cast<long>(text.size()), "a trace is longer than its frames can make it");
  return text.substr(0, static_cast<std::size_t>(std::max(0L, length)));
}

std::string hexadecimal(const Bytes& bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result;
  result.reserve(2 * bytes.size());
  for (const uint8_t byte : bytes) {
    result += digits[byte >> 4];
    result += digits[byte & 0xF];
  }
  return result;
}

/// What a trace tells is what happened: the same copies in the same order, and the same reason.
void check_trace(const std::string& trace, int result) {
  const std::string calls = journal();
  std::string left;
  std::string outcome;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = trace.find('\n', begin)) != std::string::npos; begin = end + 1) {
    const std::string_view line = std::string_view(trace).substr(begin, end - begin);
    const std::size_t colon = line.starts_with("cpu ") ? line.find("): ") + 1 : line.find(": ");
    if (line.starts_with("out ") && colon != std::string::npos)
      left.append(line.substr(4, colon - 4)).append(1, ' ').append(line.substr(colon + 2)) += '\n';
    if (line.starts_with("cpu ")) left.append("0 ").append(line.substr(colon + 2)) += '\n';
    if (outcome.empty() &&
        (line.starts_with("dropped: ") || line.starts_with("passed on") || line.starts_with("trapped")))
      outcome = line;
    if (line.starts_with("    call ")) {
      const std::string call = std::string(line.substr(line.find(": ") + 2)) + '\n';
      require(calls.find(call) != std::string::npos, "an entry is due to a call that nobody made");
    }
  }
  std::string expected;
  for (const Out& out : outs) expected += std::to_string(out.port) + ' ' + hexadecimal(out.bytes) + '\n';
  require(left == expected, "other copies leave than the trace tells");
  const std::string reason = result == 0 ? "passed on"
                             : is_dropped_for(result, "trapped to the cpu")
                                 ? swsdk_drop_name(result)
                                 : "dropped: " + std::string(swsdk_drop_name(result)) + ';';
  require(outcome.starts_with(reason), "the trace tells another outcome");
}

void pass_frame(Input& input, const Allowed& allowed) {
  int port = input.near(0, 6);
  const Bytes frame = frame_from(input);
  const bool compares_tables = input.from(0, 15) == 0;
  swsdk_events_drain();  // addresses age there
  const std::string tables_before = compares_tables ? changeable() : "";
  const std::string trace = trace_of(port, frame);
  require(!compares_tables || changeable() == tables_before, "a trace changes tables");
  const auto before = counted();
  const std::vector<long long> drops_before = dropped();
  swsdk_frame_handle(0, take, &port);
  if (allowed.loop) swsdk_frame_handle(0, take, nullptr);
  const int result = send(port, frame);
  if (result == 0) ++stream.forwarded;
  require((result == -1) == !is_port(port), "a frame came in where there is no port, or none where there is one");
  if (result == -1) require(outs.empty(), "copies leave of a frame that did not come in");
  if (result >= 0) check_trace(trace, result);

  // A pass through the chip makes mirrored copies of what comes in, and of each copy that goes out.
  constexpr std::size_t passes = 17;
  constexpr std::size_t mirrors = 4;
  const std::size_t places = static_cast<std::size_t>(1 + ports + allowed.members);
  const std::size_t most = mirrors + 1 + places * (1 + mirrors);
  require(outs.size() <= (allowed.loop ? passes : 1) * most, "there are too many copies");
  for (const Out& out : outs) check_copy(out, port, frame, allowed);

  std::vector<long long> drops = dropped();
  for (std::size_t i = 0; i < drops.size(); ++i) drops[i] -= drops_before[i];
  long long frames = 0;
  for (std::size_t i = 1; i < drops.size(); ++i)
    if (!is_of_copies(static_cast<int>(i))) frames += drops[i];
  if (result > 0) require(drops[static_cast<std::size_t>(result)] >= 1, "a drop is not counted");
  for (const char* reason : {"malformed", "port down", "too long", "port rate"})
    require(outs.empty() || !is_dropped_for(result, reason), "copies leave of a frame that was not let in");
  if (allowed.loop) return;
  const bool is_too_much = is_dropped_for(result, "policer") || is_dropped_for(result, "storm control");
  if (result > 0 && !allowed.mirror)
    for (const Out& out : outs) require(out.port == 0 && !is_too_much, "copies leave of a frame that was dropped");
  require(frames == (result > 0 && !is_of_copies(result) ? 1 : 0), "a drop is not counted once");
  check_counters(port, result, before);
}

/// Frames that are to be sent together, each in its own block.
class Batch {
 public:
  void add(Input& input) {
    const int port = input.near(0, 6);
    const Bytes frame = frame_from(input);
    input.from(0, 15);  // as in pass_frame()
    blocks_.emplace_back(new uint8_t[frame.size()]);
    std::copy(frame.begin(), frame.end(), blocks_.back().get());
    frames_.push_back({port, blocks_.back().get(), frame.size(), nullptr});
  }
  void send() {
    if (frames_.empty()) return;
    swsdk_events_drain();
    swsdk_frame_handle(0, take, nullptr);
    outs.clear();
    stream.forwarded += swsdk_frames_send(0, frames_.data(), static_cast<int>(frames_.size()));
    frames_.clear();
    blocks_.clear();
  }

 private:
  std::vector<swsdk_in> frames_;
  std::vector<std::unique_ptr<uint8_t[]>> blocks_;
};

void call_function(Input& input, Allowed& allowed) {
  const Function& function = any_function(input);
  const std::string_view name = function.name;
  constexpr std::string_view ways_back[] = {"vport_create", "host_route_create", "subnet_route_create",
                                            "egress_add",   "ipmc_add",          "mirror_source_port",
                                            "loopback_set", "arp_packet_port"};
  for (const std::string_view way : ways_back) allowed.hairpin |= name.find(way) != std::string_view::npos;
  allowed.mirror |= name.find("mirror_source_port") != std::string_view::npos;
  allowed.loop |= name.find("loopback_set") != std::string_view::npos;
  if (name.ends_with("frame_max_set") || name.ends_with("chip_init")) allowed.longest = Allowed().longest;
  ++allowed.members;
  function.run(function.parameters, input, [](Input&) {});
}

void happen(Input& input) {
  uint8_t mac[6];
  switch (input.from(0, 3)) {
    case 0:
      swsdk_link_event(0, number_for("port", input), input.flag());
      break;
    case 1:
      swsdk_clock_step(0, input.from(0, 400));
      break;
    case 2:
      swsdk_clock_advance(0, input.any<uint32_t>());
      break;
    default:
      fill("mac", input, mac);
      swsdk_l2_learn(0, number_for("vlan", input), mac, number_for("port", input), 0);
  }
}

/// Takes the steps of the input on a new switch; `pass` gets the input of a frame, and `before_change` is called before
/// anything else happens and at the end.
template <class Pass, class BeforeChange>
Stream take_steps(Input input, Pass pass, BeforeChange before_change) {
  constexpr int most_steps = 60;
  constexpr uint8_t mac[6] = {0, 0x11, 0x22, 0x33, 0x44, 0x55};
  stream = {};
  swsdk_journal_clear();
  swsdk_journal_record(1);
  sdk_main(0, nullptr);
  sai_switch_chip_init(mac);
  Allowed allowed = set_up(input);
  for (int step = 0; step < most_steps && !input.is_empty(); ++step) {
    const auto kind = input.any<uint8_t>();
    if (kind >= 80) {
      pass(input, allowed);
      continue;
    }
    before_change();
    if (kind < 64)
      call_function(input, allowed);
    else
      happen(input);
  }
  before_change();
  swsdk_events_drain();
  stream.copies += changeable();
  swsdk_power_off();
  return stream;
}

/// Saves the state of the chip, and puts it back into it.
void save_and_restore() {
  static const std::string path = "/dev/shm/frames_fuzz." + std::to_string(getpid());
  require(swsdk_state_save(path.c_str()) == SWSDK_STATE_DONE, "the state cannot be saved");
  require(swsdk_state_restore(path.c_str()) == SWSDK_STATE_DONE, "the state cannot be restored");
  std::remove(path.c_str());
}

}  // namespace

}  // namespace fuzz

extern "C" {

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const fuzz::Input input(data, size);
  sai_log_default = open_sai_log("fuzz", 0, 0, LOG_USER);
  for (int32_t& level : sai_log_default->max_level) level = SAI_LOG_OFF;
  const fuzz::Stream one_by_one = fuzz::take_steps(input, fuzz::pass_frame, [] {});
  fuzz::Batch batch;
  const fuzz::Stream together = fuzz::take_steps(
      input, [&](fuzz::Input& of_frame, const fuzz::Allowed&) { batch.add(of_frame); }, [&] { batch.send(); });
  fuzz::require(together == one_by_one, "frames that are sent together leave otherwise than one by one");
  if (size % 8 == 0) {  // it takes longer than the rest
    int times = 3;
    const fuzz::Stream restored = fuzz::take_steps(input, fuzz::pass_frame, [&] {
      if (times-- > 0) fuzz::save_and_restore();
    });
    fuzz::require(restored == one_by_one, "after its state is put back, the chip goes on otherwise");
  }
  close_sai_log(sai_log_default);
  sai_log_default = nullptr;
  return 0;
}
}
