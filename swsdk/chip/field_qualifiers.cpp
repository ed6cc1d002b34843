#include "chip/field_qualifiers.h"

namespace chip {

namespace {

constexpr FieldQualifierInfo qualifiers[] = {
    {FieldQualifier::source_ip6, "SrcIp6", 128, FieldForm::ip6},
    {FieldQualifier::destination_ip6, "DstIp6", 128, FieldForm::ip6},
    {FieldQualifier::source_mac, "SrcMac", 48, FieldForm::mac},
    {FieldQualifier::destination_mac, "DstMac", 48, FieldForm::mac},
    {FieldQualifier::source_ip, "SrcIp", 32, FieldForm::ip4},
    {FieldQualifier::destination_ip, "DstIp", 32, FieldForm::ip4},
    {FieldQualifier::in_port, "InPort", 32, FieldForm::decimal},
    {FieldQualifier::outer_vlan, "OuterVlan", 16, FieldForm::decimal},
    {FieldQualifier::outer_vlan_priority, "OuterVlanPri", 3, FieldForm::decimal},
    {FieldQualifier::inner_vlan, "InnerVlan", 16, FieldForm::decimal},
    {FieldQualifier::inner_vlan_priority, "InnerVlanPri", 3, FieldForm::decimal},
    {FieldQualifier::l4_source_port, "L4SrcPort", 16, FieldForm::decimal},
    {FieldQualifier::l4_destination_port, "L4DstPort", 16, FieldForm::decimal},
    {FieldQualifier::ether_type, "EtherType", 16, FieldForm::hexadecimal},
    {FieldQualifier::ip_protocol, "IpProtocol", 8, FieldForm::decimal},
    {FieldQualifier::dscp, "DSCP", 8, FieldForm::hexadecimal},
    {FieldQualifier::ttl, "Ttl", 8, FieldForm::decimal},
    {FieldQualifier::ip_type, "IpType", 2, FieldForm::ip_type},
    {FieldQualifier::out_port, "OutPort", 32, FieldForm::decimal},
    {FieldQualifier::vlan_format, "VlanFormat", 2, FieldForm::decimal},
    {FieldQualifier::icmp_type_code, "IcmpTypeCode", 16, FieldForm::hexadecimal},
    {FieldQualifier::arp_target_ip, "ArpTargetIp4", 32, FieldForm::ip4},
};

uint64_t number(const uint8_t* bytes, int count) {
  uint64_t result = 0;
  for (int i = 0; i < count; ++i) result = result << 8 | bytes[i];
  return result;
}

}  // namespace

FieldValue::FieldValue(const Mac& mac) : low(number(mac.data(), 6)) {}
FieldValue::FieldValue(const Ip6& address) : high(number(address.data(), 8)), low(number(address.data() + 8, 8)) {}

const FieldQualifierInfo* field_qualifier(int number) {
  for (const FieldQualifierInfo& info : qualifiers)
    if (static_cast<int>(info.qualifier) == number) return &info;
  return nullptr;
}

FieldValue exact_mask(const FieldQualifierInfo& qualifier) {
  FieldValue mask;
  if (qualifier.bits > 64) mask.high = ~0ULL;
  mask.low = qualifier.bits >= 64 ? ~0ULL : (1ULL << qualifier.bits) - 1;
  return mask;
}

bool has_qualifier(FieldStage stage, FieldQualifier qualifier) {
  return qualifier != (stage == FieldStage::ingress ? FieldQualifier::out_port : FieldQualifier::in_port);
}

Layer layer_of(FieldQualifier qualifier) {
  switch (qualifier) {
    case FieldQualifier::source_ip6:
    case FieldQualifier::destination_ip6:
    case FieldQualifier::source_ip:
    case FieldQualifier::destination_ip:
    case FieldQualifier::ip_protocol:
    case FieldQualifier::dscp:
    case FieldQualifier::ttl:
    case FieldQualifier::arp_target_ip:
      return Layer::network;
    case FieldQualifier::l4_source_port:
    case FieldQualifier::l4_destination_port:
    case FieldQualifier::icmp_type_code:
      return Layer::transport;
    case FieldQualifier::in_port:
    case FieldQualifier::out_port:
    case FieldQualifier::source_mac:
    case FieldQualifier::destination_mac:
    case FieldQualifier::vlan_format:
    case FieldQualifier::outer_vlan:
    case FieldQualifier::outer_vlan_priority:
    case FieldQualifier::inner_vlan:
    case FieldQualifier::inner_vlan_priority:
    case FieldQualifier::ether_type:
    case FieldQualifier::ip_type:  // the ether type tells
      return Layer::ethernet;
  }
  return Layer::ethernet;
}

FieldValue field_of(const FrameFields& frame, FieldQualifier qualifier) {
  using namespace ip_protocol;
  const bool is_ip4 = frame.ether_type == ether_type::ip4;
  const bool is_ip6 = frame.ether_type == ether_type::ip6;
  const bool is_ip = is_ip4 || is_ip6;
  const bool is_arp = frame.ether_type == ether_type::arp;
  const bool has_ports = is_ip && (frame.ip_protocol == tcp || frame.ip_protocol == udp);
  const bool is_icmp = (is_ip4 && frame.ip_protocol == icmp) || (is_ip6 && frame.ip_protocol == icmp6);
  const auto when = [](bool has, uint64_t value) { return has ? FieldValue(value) : FieldValue(); };

  switch (qualifier) {
    case FieldQualifier::source_ip6:
      return is_ip6 ? FieldValue(frame.source_ip6) : FieldValue();
    case FieldQualifier::destination_ip6:
      return is_ip6 ? FieldValue(frame.destination_ip6) : FieldValue();
    case FieldQualifier::source_mac:
      return frame.source_mac;
    case FieldQualifier::destination_mac:
      return frame.destination_mac;
    case FieldQualifier::source_ip:
      return when(is_ip4, frame.source_ip);
    case FieldQualifier::destination_ip:
      return when(is_ip4, frame.destination_ip);
    case FieldQualifier::in_port:
      return static_cast<uint32_t>(frame.in_port.number());
    case FieldQualifier::outer_vlan:
      return frame.outer_tag;
    case FieldQualifier::outer_vlan_priority:
      return frame.outer_tag >> 13U;
    case FieldQualifier::inner_vlan:
      return frame.inner_tag;
    case FieldQualifier::inner_vlan_priority:
      return frame.inner_tag >> 13U;
    case FieldQualifier::l4_source_port:
      return when(has_ports, frame.l4_source_port);
    case FieldQualifier::l4_destination_port:
      return when(has_ports, frame.l4_destination_port);
    case FieldQualifier::ether_type:
      return frame.ether_type;
    case FieldQualifier::ip_protocol:
      return when(is_ip, frame.ip_protocol);
    case FieldQualifier::dscp:
      return when(is_ip, frame.tos);
    case FieldQualifier::ttl:
      return when(is_ip, frame.ttl);
    case FieldQualifier::ip_type:
      return when(is_ip, is_ip4 ? is_ip_bit | is_ip4_bit : is_ip_bit);
    case FieldQualifier::out_port:
      return static_cast<uint32_t>(frame.out_port.number());
    case FieldQualifier::vlan_format:
      return static_cast<uint32_t>(frame.vlan_format);
    case FieldQualifier::icmp_type_code:
      return when(is_icmp, static_cast<uint64_t>(frame.icmp_type) << 8 | frame.icmp_code);
    case FieldQualifier::arp_target_ip:
      return when(is_arp, frame.arp_target_ip);
  }
  return {};
}

}  // namespace chip
