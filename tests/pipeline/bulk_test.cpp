// Aggregates pass through the chip as their frames would, one by one: the same frames leave by each port, and the chip
// is the same afterwards.
#include <functional>
#include <map>

#include "pipeline_fixture.h"

namespace {

using chip::Chip;
using chip::Port;
using chip::Segments;
using chip::Status;
using support::Bytes;
using support::Frame;

constexpr std::size_t payload = 1000;

/// What leaves a chip, by port, and how much of it in one piece.
struct Seen : chip::Wire {
  void transmit(Port port, std::span<const uint8_t> frame) override {
    by_port[port.number()].emplace_back(frame.begin(), frame.end());
  }
  void deliver(const chip::CpuFrame& frame) override {
    by_port[chip::Ports::cpu.number()].emplace_back(frame.bytes.begin(), frame.bytes.end());
  }
  void transmit_whole(Port port, std::span<const uint8_t> aggregate, const Segments& segments) override {
    ++whole;
    Wire::transmit_whole(port, aggregate, segments);
  }

  std::map<int, std::vector<Bytes>> by_port;
  int whole = 0;
};

/// A TCP aggregate of so many bytes of payload.
struct Aggregate {
  Aggregate(const Frame& front, std::size_t length) {
    Frame frame = front;
    Bytes data(length);
    for (std::size_t i = 0; i < length; ++i) data[i] = static_cast<uint8_t>(i * 7 + i / 256);
    bytes = frame.tcp(5000, 80).bytes(data);
    segments.kind = Segments::Kind::tcp_ip4;
    segments.payload = payload;
    segments.headers = static_cast<uint16_t>(bytes.size() - length);
    segments.checksum_start = static_cast<uint16_t>(segments.headers - 20);
    segments.checksum_at = static_cast<uint16_t>(segments.checksum_start + 16);
  }

  Bytes bytes;
  Segments segments;
};

struct BulkCase {
  const char* name;
  std::function<void(Chip&)> prepare;
  bool leaves_whole;
  Frame front = Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2");
  std::size_t length = 4321;
};

chip::Mac bulk_mac(int last) {
  chip::Mac result;
  std::ranges::copy(support::mac(last), result.begin());
  return result;
}

void add_host(Chip& chip, int last, chip::Place place, uint32_t flags = 0) {
  EXPECT_EQ(chip.mac_table.add({.mac = bulk_mac(last), .vlan = 10, .flags = flags, .place = place}), Status::ok);
}

void add_rule(Chip& chip, int stage, chip::FieldAction action, bool metered = false) {
  int group = 0;
  int entry = 0;
  const int vlan = static_cast<int>(chip::FieldQualifier::outer_vlan);
  EXPECT_EQ(chip.field_processor.create_group({stage, vlan}, 0, group), Status::ok);
  chip.field_processor.enable_group(group, true);
  chip.field_processor.create_entry(group, entry);
  chip.field_processor.add_action(entry, static_cast<int>(action), 3, 0);
  if (metered) {
    int policer = 0;
    chip.policers.create({.mode = 3, .committed = {1000, 20, 0}, .peak = {1000, 20, 0}}, policer);
    chip.field_processor.attach_policer(entry, 0, policer);
  }
  EXPECT_EQ(chip.field_processor.install(entry), Status::ok);
}

void add_router(Chip& chip, int ttl = 0) {
  int in = 0;
  int out = 0;
  chip.unicast_routing = true;
  chip.vlans.create(20);
  chip.vlans.add_ports(20, {5, 6}, {5});
  chip.l3_interfaces.create({.flags = chip::L3Interface::in_mac_table, .mac = bulk_mac(0xE0), .vlan = 10}, in);
  chip.l3_interfaces.create({.flags = chip::L3Interface::in_mac_table, .mac = bulk_mac(0xE0), .vlan = 20, .ttl = ttl},
                            out);
  EXPECT_EQ(chip.hosts.add({0, support::ip4("20.0.0.5")}, {.interface = out, .next_hop = bulk_mac(5), .place = Port{5}},
                           false),
            Status::ok);
}

const Frame routed = Frame(1, 0xE0).tag(10).ip("10.0.0.1", "20.0.0.5");

const BulkCase bulk_cases[] = {
    {"bridged", [](Chip&) {}, true},
    {"of one frame and a bit", [](Chip&) {}, true, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2"), payload + 10},
    {"of whole frames", [](Chip&) {}, true, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2"), 3 * payload},
    {"untagged at egress", [](Chip& chip) { chip.vlans.add_ports(10, {2}, {2}); }, true},
    {"untagged at ingress", [](Chip& chip) { chip.port_forwarding.set_untagged_vlan(1, 10); }, true,
     Frame(1, 2).ip("10.0.0.1", "10.0.0.2")},
    {"routed", [](Chip& chip) { add_router(chip); }, true, routed},
    {"routed to nobody", [](Chip& chip) { add_router(chip); }, false,
     Frame(1, 0xE0).tag(10).ip("10.0.0.1", "20.0.0.9")},
    {"with a TTL that expires", [](Chip& chip) { add_router(chip); }, false,
     Frame(1, 0xE0).tag(10).ip("10.0.0.1", "20.0.0.5", 1)},
    {"with a TTL below that of the interface", [](Chip& chip) { add_router(chip, 200); }, false, routed},
    {"to a trunk",
     [](Chip& chip) {
       chip::TrunkId trunk = 7;
       EXPECT_EQ(chip.trunks.create(chip::Trunks::with_id, trunk), Status::ok);
       EXPECT_EQ(chip.trunks.set(trunk, 0, {3, 4}), Status::ok);
       add_host(chip, 2, trunk);
     },
     true},
    {"flooded", [](Chip&) {}, true, Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.2")},
    {"flooded, under storm control",
     [](Chip& chip) {
       chip.storm_rates.set({1, chip::StormRates::unknown_destination}, chip::StormRates::unknown_destination, 3);
     },
     false, Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.2")},
    {"known, under storm control",
     [](Chip& chip) {
       chip.storm_rates.set({1, chip::StormRates::unknown_destination}, chip::StormRates::unknown_destination, 3);
     },
     true},
    {"from an unknown source, which then is known", [](Chip&) {}, true, Frame(7, 2).tag(10).ip("10.0.0.1", "10.0.0.2")},
    {"from a source that moves", [](Chip&) {}, false, Frame(2, 1).tag(10).ip("10.0.0.1", "10.0.0.2")},
    {"without a VLAN", [](Chip&) {}, false, Frame(1, 2).tag(30).ip("10.0.0.1", "10.0.0.2")},
    {"at a port without a link", [](Chip& chip) { chip.port_macs.set_partner(1, false); }, false},
    {"to a port without a link", [](Chip& chip) { chip.port_macs.set_partner(2, false); }, false},
    {"policed at its port",
     [](Chip& chip) {
       chip.port_rates.police(1, {chip::RateUnit::kilobits, 1000, 20});
     },
     false},
    {"shaped where it leaves",
     [](Chip& chip) {
       chip.port_rates.shape(2, {chip::RateUnit::packets, 2, 3});
     },
     false},
    {"too long to come in", [](Chip& chip) { chip.port_macs.set_frame_max(1, 1000); }, false},
    {"too long to leave", [](Chip& chip) { chip.port_macs.set_frame_max(2, 1000); }, false},
    {"looped back", [](Chip& chip) { chip.port_macs.set_loopback(2, static_cast<int>(chip::Loopback::mac)); }, false},
    {"counted by an entry",
     [](Chip& chip) { add_rule(chip, chip::FieldProcessor::ingress_stage, chip::FieldAction::packet_priority); }, true},
    {"counted by an egress entry",
     [](Chip& chip) { add_rule(chip, chip::FieldProcessor::egress_stage, chip::FieldAction::drop); }, false},
    {"copied to the CPU by an entry",
     [](Chip& chip) { add_rule(chip, chip::FieldProcessor::ingress_stage, chip::FieldAction::copy_to_cpu); }, true},
    {"copied to a CPU that is shaped",
     [](Chip& chip) {
       add_rule(chip, chip::FieldProcessor::ingress_stage, chip::FieldAction::copy_to_cpu);
       chip.port_rates.shape(chip::Ports::cpu, {chip::RateUnit::packets, 1, 2});
     },
     true},
    {"dropped by an entry",
     [](Chip& chip) { add_rule(chip, chip::FieldProcessor::ingress_stage, chip::FieldAction::drop); }, false},
    {"metered by an entry",
     [](Chip& chip) { add_rule(chip, chip::FieldProcessor::ingress_stage, chip::FieldAction::drop_red, true); }, false},
    {"mirrored",
     [](Chip& chip) {
       chip::MirrorId id;
       chip.mirrors.set_mode(static_cast<int>(chip::Mirrors::Mode::l2));
       chip.mirrors.create(0, Port{9}, id);
       chip.mirrors.add_source(1, chip::Mirrors::enable | chip::Mirrors::ingress, id);
     },
     false},
    {"to the CPU", [](Chip& chip) { add_host(chip, 2, chip::Ports::cpu); }, false},
    {"to an address that is discarded",
     [](Chip& chip) { add_host(chip, 2, Port{2}, chip::MacEntry::discard_destination); }, false},
};

/// A chip as a case wants it, and what leaves it.
struct Bench {
  explicit Bench(const BulkCase& one) {
    for (const Port port : chip.ports.ethernet()) chip.port_macs.set_partner(port, true);
    chip.vlans.create(10);
    chip.vlans.add_ports(10, {0, 1, 2, 3, 4, 8}, {});
    add_host(chip, 1, Port{1});
    add_host(chip, 2, Port{2});
    one.prepare(chip);
  }

  std::vector<uint64_t> counts() {
    std::vector<uint64_t> result;
    for (const auto& [port, values] : chip.counters.all()) result.insert(result.end(), values.begin(), values.end());
    for (const auto& [port, values] : chip.drops) result.insert(result.end(), values.begin(), values.end());
    for (const uint64_t hits : chip.field_processor.hits()) result.push_back(hits);
    for (const uint32_t hits : chip.hosts.hits()) result.push_back(hits);
    return result;
  }

  Chip chip{12};
  chip::Pipeline pipeline{chip};
  Seen seen;
};

class Bulk : public testing::TestWithParam<BulkCase> {};

TEST_P(Bulk, IsForwardedAsItsFramesAre) {
  const BulkCase& one = GetParam();
  const Aggregate aggregate(one.front, one.length);
  Bench whole(one);
  Bench cut(one);
  for (int i = 0; i < 3; ++i) {  // of which some can be beyond a rate
    whole.pipeline.receive_whole(1, aggregate.bytes, aggregate.segments, whole.seen);
    chip::Cutter cutter;
    const auto frames = cutter.cut(aggregate.bytes, aggregate.segments);
    ASSERT_EQ(frames.size(), aggregate.segments.count(aggregate.bytes.size()));
    for (const auto frame : frames) cut.pipeline.receive(1, frame, cut.seen);
  }
  EXPECT_EQ(whole.seen.by_port, cut.seen.by_port);
  EXPECT_EQ(whole.counts(), cut.counts());
  EXPECT_EQ(whole.chip.mac_table.all(), cut.chip.mac_table.all());
  EXPECT_EQ(whole.seen.whole > 0, one.leaves_whole);
}

INSTANTIATE_TEST_SUITE_P(, Bulk, testing::ValuesIn(bulk_cases), [](const auto& tested) {
  std::string name = tested.param.name;
  std::erase_if(name, [](char c) { return c == ','; });
  for (char& c : name)
    if (c == ' ') c = '_';
  return name;
});

TEST(Bulks, ThatCannotBeCutAreMalformed) {
  Bench bench(bulk_cases[0]);
  Aggregate aggregate(bulk_cases[0].front, 4000);
  bench.pipeline.receive_whole(7, aggregate.bytes, aggregate.segments, bench.seen);  // unknown there, so it is cut
  aggregate.bytes[12] = 0x77;
  EXPECT_FALSE(bench.pipeline.receive_whole(7, aggregate.bytes, aggregate.segments, bench.seen));
  EXPECT_EQ(bench.chip.drops[Port{7}][static_cast<std::size_t>(chip::Drop::malformed)], 1U);
}

}  // namespace
