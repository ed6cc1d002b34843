// Frames of 64 bytes from port to port on one core, against a bare loop that looks up a hash table and copies the
// frame. Goals: bridging at least a twentieth of the bare loop with an empty field processor and a fiftieth with 256
// entries, from 1 K to 32 K MAC entries at most 1.5 times as much per frame, and for each copy of a broadcast no more
// than for a bridged frame.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "chip/chip.h"
#include "chip/hash.h"
#include "chip/pipeline/pipeline.h"
#include "median.h"
#include "thread_clock.h"

namespace {

constexpr std::size_t frame_size = 60;  // and the checksum
constexpr int vlan = 10;
constexpr int ports = 12;
constexpr uint32_t routed_net = 0x0B000000;  // hosts behind the router
constexpr std::size_t frames_per_run = 1 << 18;
constexpr int runs = 7;

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
  int field_entries;
  enum Way { bridged, routed, broadcast } way;
  double least;  // of the bare loop's frames per second

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
    add_field_entries(setting.field_entries);
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

  /// Entries that no frame meets: each has to be passed over.
  void add_field_entries(int count) {
    if (count == 0) return;
    int group = 0;
    chip->field_processor.create_group(
        {chip::FieldProcessor::ingress_stage, static_cast<int>(chip::FieldQualifier::source_ip),
         static_cast<int>(chip::FieldQualifier::l4_destination_port)},
        0, group);
    chip->field_processor.enable_group(group, true);
    for (uint32_t i = 0; i < static_cast<uint32_t>(count); ++i) {
      int entry = 0;
      chip->field_processor.create_entry(group, entry);
      chip->field_processor.qualify(entry, chip::FieldQualifier::source_ip, {0xC0A80000U + i, 0xFFFFFFFFU});
      chip->field_processor.qualify(entry, chip::FieldQualifier::l4_destination_port, {80U, 0xFFFFU});
      chip->field_processor.add_action(entry, static_cast<int>(chip::FieldAction::drop), 0, 0);
      chip->field_processor.install(entry);
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
  for (std::size_t i = 0; i < frames_per_run; ++i) pass(i % scene.frames.size());
  return (bench::thread_nanoseconds() - start) / frames_per_run;
}

/// Measures a setting and the bare loop in turn, prints a line and tells the cost of a frame.
double run(const Setting& setting, bool& good) {
  Scene scene(setting);
  chip::Pipeline pipeline(*scene.chip);
  Memory memory;
  constexpr std::size_t address_tail = 2;
  constexpr std::size_t source_tail = 8;
  constexpr std::size_t destination_ip = 34;
  const bool routed = setting.way == Setting::routed;
  const std::size_t key_at = routed ? destination_ip : setting.way == Setting::broadcast ? source_tail : address_tail;
  BareLoop bare_loop(scene.hosts, key_at, routed ? routed_net : 0);
  std::vector<double> bare_times;
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    bare_times.push_back(measure(scene, [&](std::size_t at) { bare_loop.pass(scene.frames[at]); }));
    times.push_back(
        measure(scene, [&](std::size_t at) { pipeline.receive(scene.in_ports[at], scene.frames[at], memory); }));
  }
  const double time = bench::median(times);
  const double share = bench::median(bare_times) / time;
  std::printf("%-36s %7.2f M frames/s   1/%-4.0f of the bare loop's %.0f M\n", setting.name, 1e3 / time, 1 / share,
              1e3 / bench::median(bare_times));
  const std::size_t expected = frames_per_run * runs * setting.copies();
  if (memory.count() != expected) {
    std::printf("  of %zu copies %zu came out\n", expected, memory.count());
    good = false;
  }
  if (share < setting.least) {
    std::printf("  less than 1/%.0f\n", 1 / setting.least);
    good = false;
  }
  return time;
}

}  // namespace

int main() {
  constexpr double growth_bound = 1.5;
  constexpr double any = 0;
  bool good = true;
  const double small = run({"bridged, 1 K addresses", 1024, 0, Setting::bridged, 1.0 / 20}, good);
  const double large = run({"bridged, 32 K addresses", 31000, 0, Setting::bridged, 1.0 / 20}, good);
  run({"bridged, 1 K, 256 field entries", 1024, 256, Setting::bridged, 1.0 / 50}, good);
  run({"bridged, 32 K, 256 field entries", 31000, 256, Setting::bridged, 1.0 / 50}, good);
  run({"routed, 1 K hosts", 1024, 0, Setting::routed, any}, good);
  run({"routed, 1 K hosts, 256 field entries", 1024, 256, Setting::routed, any}, good);
  const Setting broadcast{"broadcast, 1 K addresses", 1024, 0, Setting::broadcast, any};
  const double copy = run(broadcast, good) / static_cast<double>(broadcast.copies());
  std::printf("from 1 K to 32 K addresses: %.2f times as much per frame\n", large / small);
  std::printf("a copy of a broadcast: %.2f times as much as a bridged frame\n", copy / small);
  if (large / small > growth_bound || copy > small) good = false;
  return good ? 0 : 1;
}
