// The qualifiers of the field processor: the fields of a frame, each as one masked number.
#pragma once

#include <cstdint>

#include "chip/addresses.h"
#include "chip/place.h"

namespace chip {

namespace ether_type {
constexpr uint16_t ip4 = 0x0800;
constexpr uint16_t arp = 0x0806;
constexpr uint16_t ip6 = 0x86DD;
}  // namespace ether_type

/// Numbers of IP protocols and of IPv6 extension headers.
namespace ip_protocol {
constexpr int hop_by_hop = 0;
constexpr int icmp = 1;
constexpr int igmp = 2;
constexpr int tcp = 6;
constexpr int udp = 17;
constexpr int routing_header = 43;
constexpr int fragment_header = 44;
constexpr int icmp6 = 58;
constexpr int destination_options = 60;
}  // namespace ip_protocol

enum class FieldStage { ingress, egress };

/// The qualifiers that the chip has, by number. ToS and next header are other names of two of them.
enum class FieldQualifier : int {
  source_ip6 = 0,
  destination_ip6 = 1,
  source_mac = 6,
  destination_mac = 7,
  source_ip = 9,
  destination_ip = 10,
  in_port = 12,
  outer_vlan = 17,
  outer_vlan_priority = 19,
  inner_vlan = 21,
  inner_vlan_priority = 23,
  l4_source_port = 27,
  l4_destination_port = 28,
  ether_type = 29,
  ip_protocol = 30,
  dscp = 31,
  ttl = 32,
  ip_type = 61,
  out_port = 86,
  vlan_format = 90,
  icmp_type_code = 125,
  arp_target_ip = 288,
};

/// The headers of a frame, from its front to its back.
enum class Layer { ethernet, network, transport };

/// The fields of a frame as it reaches a stage.
struct FrameFields {
  Layer readable = Layer::transport;  // the innermost readable header; those behind it are truncated or malformed
  Port in_port{};
  Port out_port{};  // known at the egress stage
  Mac source_mac{};
  Mac destination_mac{};
  int vlan_format = 0;     // tags, on arrival or when it is to leave: 0 none, 1 outer, 2 inner, 3 both
  uint16_t outer_tag = 0;  // priority, CFI and the frame's VLAN, assigned by the chip if the frame came without
  uint16_t inner_tag = 0;
  uint16_t ether_type = 0;  // 0 in frames with a length instead, except SNAP
  uint32_t source_ip = 0;
  uint32_t destination_ip = 0;
  Ip6 source_ip6{};
  Ip6 destination_ip6{};
  uint8_t ip_protocol = 0;  // IPv6: the next header
  uint8_t tos = 0;          // IPv6: the traffic class
  uint8_t ttl = 0;          // IPv6: the hop limit
  uint16_t l4_source_port = 0;
  uint16_t l4_destination_port = 0;
  uint8_t icmp_type = 0;
  uint8_t icmp_code = 0;
  uint32_t arp_target_ip = 0;

  bool can_read(Layer layer) const { return readable >= layer; }
};

/// A number of up to 128 bits.
struct FieldValue {
  uint64_t high = 0;
  uint64_t low = 0;

  FieldValue() = default;
  // NOLINTBEGIN(google-explicit-constructor): these are values as they stand
  constexpr FieldValue(uint64_t number) : low(number) {}
  FieldValue(const Mac& mac);
  FieldValue(const Ip6& address);
  // NOLINTEND(google-explicit-constructor)

  friend FieldValue operator&(FieldValue left, const FieldValue& right) {
    left.high &= right.high;
    left.low &= right.low;
    return left;
  }
  bool operator==(const FieldValue&) const = default;

  template <class Archive>
  void serialize(Archive& archive) {
    archive(high, low);
  }
};

struct FieldMatch {
  FieldValue data;
  FieldValue mask;

  bool meets(const FieldValue& value) const { return (value & mask) == (data & mask); }
  bool operator==(const FieldMatch&) const = default;
};

/// The kinds of IP packets that an entry can match, by number, as data and mask of the qualifier ip_type.
struct FieldIpType {
  int number;
  const char* name;
  uint64_t data;
  uint64_t mask;
};
constexpr uint64_t is_ip_bit = 1;
constexpr uint64_t is_ip4_bit = 2;
constexpr FieldIpType field_ip_types[] = {
    {5, "IPv4", is_ip_bit | is_ip4_bit, is_ip_bit | is_ip4_bit},
    {10, "IPv6", is_ip_bit, is_ip_bit | is_ip4_bit},
    {11, "IP", is_ip_bit, is_ip_bit},
};

enum class FieldForm { decimal, hexadecimal, mac, ip4, ip6, ip_type };

struct FieldQualifierInfo {
  FieldQualifier qualifier;
  const char* name;
  int bits;
  FieldForm form;
};

/// The qualifier of that number, or null when the chip has none.
const FieldQualifierInfo* field_qualifier(int number);

/// All ones of a qualifier's width.
FieldValue exact_mask(const FieldQualifierInfo& qualifier);

/// Whether a stage has the qualifier: ingress does not know the egress port, nor egress the ingress port.
bool has_qualifier(FieldStage stage, FieldQualifier qualifier);

/// The header that contains a field.
Layer layer_of(FieldQualifier qualifier);

/// The value of a readable field; 0 if frames of that kind do not have it.
FieldValue field_of(const FrameFields& frame, FieldQualifier qualifier);

}  // namespace chip
