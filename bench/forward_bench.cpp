// Frames of 64 bytes from port to port on one core, against a bare loop that looks up a hash table and copies the
// frame. What a frame may cost at most, in times of the bare loop, is a column of the settings. Further goals: from 1 K
// to 32 K MAC entries at most 1.5 times as much per frame, with full slices of many masks at most 8 times as much as
// with an empty field processor, a copy of a broadcast no more than a bridged frame, and no memory allocated for a
// frame. Last, frames through the C interface one by one and in batches.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include <bcm/vlan.h>
#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/frames.h>

#include "chip/chip.h"
#include "chip/hash.h"
#include "chip/pipeline/pipeline.h"
#include "median.h"
#include "thread_clock.h"

extern "C" {
#include <appl/diag/system.h>

int sdk_main(int argc, char** argv);
}

namespace {

std::size_t allocations = 0;

}  // namespace

// They take the place of the C++ library's in this program.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

constexpr std::size_t frame_size = 60;  // and the checksum
constexpr int vlan = 10;
constexpr int ports = 12;
constexpr uint32_t routed_net = 0x0B000000;  // hosts behind the router
constexpr std::size_t frames_per_round = 1 << 16;
constexpr int rounds = 15;

using Frame = std::array<uint8_t, frame_size>;

chip::Mac mac(uint32_t number) {
  return {0x02,
          0,
          static_cast<uint8_t>(number >> 24),
          static_cast<uint8_t>(number >> 16),
          static_cast<uint8_t>(number >> 8),
          static_cast<uint8_t>(number)};
}
chip::Port port_of(uint32_t number) { return chip::Port::of(static_cast<int>(number % ports) + 1); }

/// From one host to another, tagged, with an IPv4 packet of UDP.
Frame make_frame(uint32_t from, const chip::Mac& to, uint32_t to_ip) {
  Frame frame{};
  const chip::Mac source = mac(from);
  std::copy(to.begin(), to.end(), frame.begin());
  std::copy(source.begin(), source.end(), frame.begin() + 6);
  constexpr std::array<uint8_t, 18> headers{0x81, 0, 0, vlan, 8, 0, 0x45, 0, 0, 42, 0, 0, 0, 0, 64, 17, 0, 0};
  std::copy(headers.begin(), headers.end(), frame.begin() + 12);
  for (int i = 0; i < 4; ++i) {
    frame[30 + static_cast<std::size_t>(i)] = static_cast<uint8_t>((0x0A000000U + from) >> (24 - 8 * i));
    frame[34 + static_cast<std::size_t>(i)] = static_cast<uint8_t>(to_ip >> (24 - 8 * i));
  }
  unsigned sum = 0;
  for (std::size_t at = 18; at < 38; at += 2) sum += static_cast<unsigned>(frame[at] << 8 | frame[at + 1]);
  const unsigned checksum = ~((sum & 0xFFFF) + (sum >> 16));
  frame[28] = static_cast<uint8_t>(checksum >> 8);
  frame[29] = static_cast<uint8_t>(checksum);
  return frame;
}

/// Where frames leave in memory.
class Memory final : public chip::Wire {
 public:
  void transmit(chip::Port port, std::span<const uint8_t> frame) override {
    std::copy(frame.begin(), frame.end(), slots_[port.index()].begin());
    ++count_;
  }
  void deliver(const chip::CpuFrame&) override {}
  std::size_t count() const { return count_; }

 private:
  std::array<std::array<uint8_t, 2048>, ports + 1> slots_{};
  std::size_t count_ = 0;
};

/// What a frame costs at the least: open addressing by what says where it goes, and a copy.
class BareLoop {
 public:
  /// `key_at`: where the four bytes stand that tell a host.
  BareLoop(const std::vector<uint32_t>& hosts, std::size_t key_at, uint32_t first) : key_at_(key_at), slots_(1 << 16) {
    for (const uint32_t host : hosts) {
      std::size_t slot = slot_of(first + host);
      while (slots_[slot].key != 0) slot = (slot + 1) % slots_.size();
      slots_[slot] = {first + host, port_of(host)};
    }
  }
  void pass(const Frame& frame) {
    const uint8_t* const at = frame.data() + key_at_;
    const uint32_t key = static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
                         static_cast<uint32_t>(at[2]) << 8 | at[3];
    std::size_t slot = slot_of(key);
    while (slots_[slot].key != key) slot = (slot + 1) % slots_.size();
    std::memcpy(out_[slots_[slot].port.index()].data(), frame.data(), frame.size());
    asm volatile("" : : "r"(out_.data()) : "memory");  // the copies are wanted
  }

 private:
  struct Slot {
    uint32_t key = 0;
    chip::Port port;
  };
  std::size_t slot_of(uint32_t key) const { return (chip::hash_of(key) >> 32) % slots_.size(); }

  const std::size_t key_at_;
  std::vector<Slot> slots_;
  std::array<std::array<uint8_t, 2048>, ports + 1> out_{};
};

struct Setting {
  const char* name;
  std::size_t hosts;
  enum Rules { no_rules, one_mask, many_masks } rules;
  enum Way { bridged, routed, broadcast } way;
  double most;  // times the bare loop; 0: any

  std::size_t copies() const { return way == broadcast ? ports - 1 : 1; }
};

/// A switch with its hosts learned, and frames between them in random order.
struct Scene {
  explicit Scene(const Setting& setting) {
    chip::PortSet members;
    for (const chip::Port port : chip->ports.ethernet()) {
      members.add(port);
      chip->port_macs.set_partner(port, true);
    }
    chip->vlans.create(vlan);
    chip->vlans.add_ports(vlan, members, {});
    chip->switch_controls.set(static_cast<int>(chip::SwitchControlOfChip::l2_destination_hit_enable), 1);
    for (uint32_t number = 0; hosts.size() < setting.hosts; ++number)
      if (chip->mac_table.add({.mac = mac(number), .vlan = vlan, .place = port_of(number)}) == chip::Status::ok)
        hosts.push_back(number);  // otherwise its bucket is full
    if (setting.rules == Setting::one_mask) add_entries_of_one_mask();
    if (setting.rules == Setting::many_masks) add_entries_of_many_masks();
    if (setting.way == Setting::routed) add_routes();

    std::mt19937 random;
    for (std::size_t i = 0; i < 4096; ++i) {
      const uint32_t from = hosts[random() % hosts.size()];
      uint32_t to = from;
      while (port_of(to) == port_of(from)) to = hosts[random() % hosts.size()];
      frames.push_back(make_frame(from, destination(setting.way, to), routed_net + to));
      in_ports.push_back(port_of(from));
    }
  }

  static chip::Mac destination(Setting::Way way, uint32_t host) {
    switch (way) {
      case Setting::routed:
        return router;
      case Setting::broadcast:
        return {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
      case Setting::bridged:
        break;
    }
    return mac(host);
  }

  int add_group(chip::FieldQualifier one, chip::FieldQualifier other) {
    int group = 0;
    chip->field_processor.create_group(
        {chip::FieldProcessor::ingress_stage, static_cast<int>(one), static_cast<int>(other)}, 0, group);
    chip->field_processor.enable_group(group, true);
    return group;
  }

  void add_entry(int group, chip::FieldQualifier one, const chip::FieldMatch& of_one, chip::FieldQualifier other,
                 const chip::FieldMatch& of_other) {
    int entry = 0;
    chip->field_processor.create_entry(group, entry);
    chip->field_processor.qualify(entry, one, of_one);
    chip->field_processor.qualify(entry, other, of_other);
    chip->field_processor.add_action(entry, static_cast<int>(chip::FieldAction::drop), 0, 0);
    chip->field_processor.install(entry);
  }

  // No frame meets any of the entries.

  void add_entries_of_one_mask() {
    using enum chip::FieldQualifier;
    const int group = add_group(source_ip, l4_destination_port);
    for (uint32_t i = 0; i < chip::FieldProcessor::slice_entries; ++i)
      add_entry(group, source_ip, {0xC0A80000U + i, 0xFFFFFFFFU}, l4_destination_port, {80U, 0xFFFFU});
  }

  /// Fills all slices, each with 64 masks: subnets of the sources, to subnets that no destination is in, of which each
  /// differs from the destinations in its last bit.
  void add_entries_of_many_masks() {
    using enum chip::FieldQualifier;
    constexpr uint32_t lengths = 8;
    constexpr uint32_t shortest = 15;
    std::mt19937 random;
    for (int slice = 0; slice < chip::FieldProcessor::ingress_slices; ++slice) {
      const int group = add_group(source_ip, destination_ip);
      for (uint32_t i = 0; i < chip::FieldProcessor::slice_entries; ++i) {
        const uint32_t source_mask = ~uint32_t{0} << (32 - shortest - i % lengths);
        const uint32_t last_bit = 1U << (32 - shortest - i / lengths % lengths);
        const uint32_t subnet = routed_net + (static_cast<uint32_t>(random()) % 0x40000 | last_bit);
        add_entry(group, source_ip, {0x0A000000U, source_mask}, destination_ip, {subnet, ~(last_bit - 1)});
      }
    }
  }

  void add_routes() {
    int interface = 0;
    chip->unicast_routing = true;
    chip->l3_interfaces.create({.flags = chip::L3Interface::in_mac_table, .mac = router, .vlan = vlan}, interface);
    for (const uint32_t host : hosts) {
      int egress = 0;
      chip->egress_objects.create({.interface = interface, .mac = mac(host), .vlan = vlan, .place = port_of(host)},
                                  egress);
      chip->hosts.add({0, routed_net + host}, {.interface = egress}, false);
    }
  }

  static constexpr chip::Mac router{0x02, 0xFF, 0, 0, 0, 1};
  std::unique_ptr<chip::Chip> chip = std::make_unique<chip::Chip>(ports);
  std::vector<uint32_t> hosts;
  std::vector<Frame> frames;
  std::vector<chip::Port> in_ports;
};

/// Nanoseconds per frame.
template <class Pass>
double measure(const Scene& scene, Pass pass) {
  const double start = bench::thread_nanoseconds();
  for (std::size_t i = 0; i < frames_per_round; ++i) pass(i % scene.frames.size());
  return (bench::thread_nanoseconds() - start) / frames_per_round;
}

/// Whether something is as good as it has to be; tells why not.
bool is_met(bool met, const char* otherwise) {
  if (!met) std::printf("  missed: %s\n", otherwise);
  return met;
}

/// A switch of a setting and the bare loop on the same frames, measured in turn.
class Contest {
 public:
  explicit Contest(const Setting& setting)
      : setting_(setting),
        scene_(setting),
        bare_loop_(scene_.hosts, key_at(setting.way), setting.way == Setting::routed ? routed_net : 0) {
    pass_all();  // what is kept for the next frame is there from now on
  }

  void run() {
    bare_times_.push_back(measure(scene_, [&](std::size_t at) { bare_loop_.pass(scene_.frames[at]); }));
    const std::size_t before = allocations;
    const double time = pass_all();
    allocated_ += allocations - before;
    times_.push_back(time);
  }

  /// The median of how many times as long a frame takes here as in the bare loop, or as in another contest.
  double ratio() const { return ratio_of(times_, bare_times_); }
  double ratio_to(const Contest& other) const { return ratio_of(times_, other.times_); }

  /// Prints a line. Returns whether the goals are reached.
  bool report() const {
    std::printf("%-40s %7.2f M frames/s  %5.1f times the bare loop's %.1f ns", setting_.name,
                1e3 / bench::median(times_), ratio(), bench::median(bare_times_));
    std::printf(setting_.most > 0 ? ", of %.0f\n" : "\n", setting_.most);
    const std::size_t expected = frames_per_round * (rounds + 1) * setting_.copies();
    const bool all_came = is_met(memory_.count() == expected, "another number of copies came out");
    const bool fast = is_met(setting_.most <= 0 || ratio() <= setting_.most, "too slow");
    return is_met(allocated_ == 0, "frames allocate memory") && fast && all_came;
  }

 private:
  /// Where in a frame the bytes are that tell its host.
  static std::size_t key_at(Setting::Way way) {
    constexpr std::size_t destination_tail = 2;
    constexpr std::size_t source_tail = 8;
    constexpr std::size_t destination_ip = 34;
    if (way == Setting::routed) return destination_ip;
    return way == Setting::broadcast ? source_tail : destination_tail;
  }

  static double ratio_of(const std::vector<double>& times, const std::vector<double>& others) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < times.size(); ++i) ratios.push_back(times[i] / others[i]);
    return bench::median(ratios);
  }

  double pass_all() {
    return measure(scene_, [&](std::size_t at) { pipeline_.receive(scene_.in_ports[at], scene_.frames[at], memory_); });
  }

  const Setting setting_;
  Scene scene_;
  BareLoop bare_loop_;
  chip::Pipeline pipeline_{*scene_.chip};
  Memory memory_;
  std::vector<double> bare_times_;
  std::vector<double> times_;
  std::size_t allocated_ = 0;
};

// ------------------------------------------------------------------------------------------ the C interface ----

void take(int /*unit*/, const swsdk_out* out, void* memory) {
  static_cast<Memory*>(memory)->transmit(chip::Port::of(out->port), {out->data, out->length});
}

/// Frames by swsdk_frame_send() and by swsdk_frames_send(), in turn.
bool run_c_interface() {
  constexpr int unit = 0;
  constexpr std::size_t batch = 64;
  const Setting setting{"", 1024, Setting::no_rules, Setting::bridged, 0};
  const Scene scene(setting);  // for its hosts and frames
  Memory memory;
  bool good = sdk_main(0, nullptr) == 0 && system_init(unit) == 0;
  bcm_pbmp_t members{};
  bcm_pbmp_t untagged{};
  for (int port = 1; port <= ports; ++port) {
    BCM_PBMP_PORT_ADD(members, port);
    good &= swsdk_link_event(unit, port, 1) == 0;
  }
  good &= bcm_vlan_create(unit, vlan) == 0 && bcm_vlan_port_add(unit, vlan, members, untagged) == 0;
  swsdk_events_drain();
  for (const uint32_t host : scene.hosts)
    good &= swsdk_l2_learn(unit, vlan, mac(host).data(), port_of(host).number(), 0) >= 0;
  swsdk_events_drain();
  good &= swsdk_frame_handle(unit, take, &memory) == 0;

  std::vector<swsdk_in> in;
  for (std::size_t i = 0; i < scene.frames.size(); ++i)
    in.push_back({scene.in_ports[i].number(), scene.frames[i].data(), scene.frames[i].size(), nullptr});
  const auto one_by_one = [&](std::size_t at) { swsdk_frame_send(unit, in[at].port, in[at].data, in[at].length); };
  const auto together = [&](std::size_t at) {
    if (at % batch == 0) swsdk_frames_send(unit, &in[at], batch);
  };
  measure(scene, one_by_one);
  std::vector<double> times;
  std::vector<double> times_together;
  times.reserve(rounds);
  times_together.reserve(rounds);
  const std::size_t before = allocations;
  for (int i = 0; i < rounds; ++i) {
    times.push_back(measure(scene, one_by_one));
    times_together.push_back(measure(scene, together));
  }
  good &= is_met(allocations == before, "frames allocate memory");
  good &= is_met(memory.count() == frames_per_round * (2 * rounds + 1), "another number of copies came out");
  swsdk_power_off();
  const double time = bench::median(times);
  const double time_together = bench::median(times_together);
  std::printf("swsdk_frame_send: %.2f M frames/s; swsdk_frames_send, %zu at a time: %.2f M, %.2f times as many\n",
              1e3 / time, batch, 1e3 / time_together, time / time_together);
  return good;
}

}  // namespace

int main() {
  using enum Setting::Rules;
  using enum Setting::Way;
  constexpr double any = 0;
  const Setting settings[] = {
      {"bridged, 1 K addresses", 1024, no_rules, bridged, 12},
      {"bridged, 32 K addresses", 31000, no_rules, bridged, 12},
      {"bridged, 1 K, 256 field entries", 1024, one_mask, bridged, any},
      {"bridged, 32 K, 256 field entries", 31000, one_mask, bridged, any},
      {"bridged, 1 K, 16 slices with 64 masks", 1024, many_masks, bridged, any},
      {"routed, 1 K hosts", 1024, no_rules, routed, 20},
      {"routed, 1 K hosts, 256 field entries", 1024, one_mask, routed, any},
      {"broadcast, 1 K addresses", 1024, no_rules, broadcast, any},
  };
  std::vector<std::unique_ptr<Contest>> contests;
  for (const Setting& setting : settings) contests.push_back(std::make_unique<Contest>(setting));
  for (int round = 0; round < rounds; ++round)
    for (const std::unique_ptr<Contest>& contest : contests) contest->run();
  bool good = true;
  for (const std::unique_ptr<Contest>& contest : contests) good &= contest->report();

  const Contest& small = *contests.front();
  const double growth = contests[1]->ratio_to(small);
  const double masks = contests[4]->ratio_to(small);
  const double copy = contests.back()->ratio_to(small) / static_cast<double>(std::end(settings)[-1].copies());
  std::printf("from 1 K to 32 K addresses: %.2f times as much per frame\n", growth);
  good &= is_met(growth <= 1.5, "grows by more than 1.5");
  std::printf("16 slices with 64 masks: %.2f times as much as an empty field processor\n", masks);
  good &= is_met(masks <= 8, "more than 8 times");
  std::printf("a copy of a broadcast: %.2f times as much as a bridged frame\n", copy);
  good &= is_met(copy <= 1, "more than a bridged frame");
  good &= run_c_interface();
  return good ? 0 : 1;
}
