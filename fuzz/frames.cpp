#include "frames.h"

#include <string>

#include "calls.h"

namespace fuzz {

namespace {

using support::Bytes;
using support::Frame;

/// Mostly an address that the calls use as well.
Bytes mac_from(Input& input) {
  static const std::vector<Bytes> known = {
      support::mac(0xFF),                    // all
      {0x01, 0x80, 0xC2, 0, 0, 0x00},        // spanning tree
      {0x01, 0x80, 0xC2, 0, 0, 0x0E},        // LLDP
      {0x01, 0x00, 0x5E, 0, 0, 0x01},        // 224.0.0.1 and 225.0.0.1
      {0x33, 0x33, 0, 0, 0, 0x01},           // ff02::1 and ff05::1
      {0, 0, 0, 0, 0, 1},                    // a host
      {0x02, 0, 0, 0, 0, 0xE0},              // the router
      {0x00, 0x11, 0x22, 0x33, 0x44, 0x55},  // the switch
  };
  const auto kind = input.any<uint8_t>();
  if (kind < 160) return known[kind % known.size()];
  uint8_t bytes[6];
  fill("mac", input, bytes);
  return {std::begin(bytes), std::end(bytes)};
}

std::string ip4_from(Input& input) {
  static constexpr const char* networks[] = {"10.0.0.", "10.0.1.", "225.0.0.", "224.0.0.", "127.0.0.", "255.255.255."};
  return networks[input.from(0, 5)] + std::to_string(input.from(0, 15));
}

std::string ip6_from(Input& input) {
  static constexpr const char* networks[] = {"2000::", "ff02::", "ff05::", "fe80::"};
  return networks[input.from(0, 3)] + std::to_string(input.from(0, 9));
}

Bytes bytes_from(Input& input, std::size_t most) {
  const std::string text = input.text(most);
  return {text.begin(), text.end()};
}

void add_transport(Frame& frame, Input& input) {
  switch (input.from(0, 5)) {
    case 0:
      frame.udp(input.from(0, 99), input.near(0, 99));
      break;
    case 1: {  // DHCP, of both families
      constexpr int dhcp_ports[] = {67, 68, 546, 547};
      frame.udp(dhcp_ports[input.from(0, 3)], dhcp_ports[input.from(0, 3)]);
      break;
    }
    case 2:
      frame.tcp(input.from(0, 99), input.from(0, 99));
      break;
    case 3:
      frame.icmp(input.from(128, 143));  // neighbor discovery and MLD
      break;
    case 4:
      frame.igmp(input.from(0x11, 0x22), "225.0.0.1");
      break;
    default:
      frame.protocol(input.any<uint8_t>(), bytes_from(input, 40));
  }
}

/// Extension headers, of which each says how long it is.
void add_extensions(Frame& frame, Input& input) {
  constexpr int kinds[] = {0, 43, 44, 60};
  for (int count = input.from(0, 3); count > 0; --count) {
    Bytes header(8);
    header[1] = input.any<uint8_t>() < 240 ? 0 : input.any<uint8_t>();
    header[3] = input.any<uint8_t>();  // of a fragment, where it belongs
    frame.protocol(kinds[input.from(0, 3)], header);
  }
}

void add_payload(Frame& frame, Input& input) {
  switch (input.from(0, 6)) {
    case 0:
      frame.arp(input.flag(), "10.0.0.1", "10.0.0." + std::to_string(input.from(0, 15)));
      break;
    case 1:
    case 2:
      frame.ip(ip4_from(input), ip4_from(input), input.near(0, 64), input.any<uint8_t>());
      add_transport(frame, input);
      break;
    case 3:
    case 4:
      frame.ip(ip6_from(input), ip6_from(input), input.near(0, 64), input.any<uint8_t>());
      add_extensions(frame, input);
      add_transport(frame, input);
      break;
    case 5:  // with a length, and what that tells of
      frame.type(static_cast<uint16_t>(input.from(0, 60)));
      frame.bytes(input.flag() ? Bytes{0xAA, 0xAA, 3, 0, 0, 0, 8, 0} : Bytes{0x42, 0x42, 3});
      frame.bytes(bytes_from(input, 40));
      break;
    default:
      frame.type(input.any<uint16_t>()).bytes(bytes_from(input, 100));
  }
}

}  // namespace

Bytes frame_from(Input& input) {
  constexpr uint16_t tpids[] = {0x8100, 0x8100, 0x88A8, 0x9100};
  constexpr std::size_t lengths[] = {60, 0, 61, 1514, 1518, 9212, 9216, 9217};
  const Bytes source = mac_from(input);
  Frame frame(source, mac_from(input));
  for (int tags = input.from(0, 3); tags > 0; --tags)
    frame.tag(number_for("vlan", input) & 0xFFF, input.from(0, 7), tpids[input.from(0, 3)]);
  add_payload(frame, input);
  const auto length = input.any<uint8_t>();
  frame.length(length < 200 ? 60 : lengths[length % std::size(lengths)]);

  Bytes bytes = frame.done();
  for (int changes = input.from(0, 7) - 4; changes > 0; --changes)
    bytes[static_cast<std::size_t>(input.any<uint8_t>()) % bytes.size()] = input.any<uint8_t>();
  if (input.any<uint8_t>() < 16) bytes.resize(input.any<uint8_t>());
  return bytes;
}

}  // namespace fuzz
