#include "api/control_records.h"

#include "api/calls/field_of.h"

using api::Field;
using api::field;
using api::Show;

std::span<const Field> fields(const swsdk_board*) {
  using R = swsdk_board;
  static const Field list[] = {
      field("units", &R::units),
      field("ports", &R::ports),
      field("chip_type", &R::chip_type),
  };
  return list;
}

std::span<const Field> fields(const swsdk_temperature*) {
  using R = swsdk_temperature;
  static const Field list[] = {
      field("current", &R::current),
      field("peak", &R::peak),
  };
  return list;
}

std::span<const Field> fields(const swsdk_fault*) {
  using R = swsdk_fault;
  static const Field list[] = {
      field("code", &R::code),
      field("nth", &R::nth),
      field("hits", &R::hits),
  };
  return list;
}

std::span<const Field> fields(const swsdk_frame*) {
  using R = swsdk_frame;
  static const Field list[] = {
      field("in_port", &R::in_port),
      field("out_port", &R::out_port),
      field("src_mac", &R::src_mac),
      field("dst_mac", &R::dst_mac),
      field("vlan_format", &R::vlan_format),
      field("outer_tag", &R::outer_tag, Show::hex),
      field("inner_tag", &R::inner_tag, Show::hex),
      field("ether_type", &R::ether_type, Show::hex),
      field("src_ip", &R::src_ip, Show::ip4),
      field("dst_ip", &R::dst_ip, Show::ip4),
      field("src_ip6", &R::src_ip6),
      field("dst_ip6", &R::dst_ip6),
      field("ip_protocol", &R::ip_protocol),
      field("tos", &R::tos),
      field("ttl", &R::ttl),
      field("l4_src_port", &R::l4_src_port),
      field("l4_dst_port", &R::l4_dst_port),
      field("icmp_type", &R::icmp_type),
      field("icmp_code", &R::icmp_code),
      field("arp_target_ip", &R::arp_target_ip, Show::ip4),
  };
  return list;
}

std::span<const Field> fields(const swsdk_verdict*) {
  using R = swsdk_verdict;
  static const Field list[] = {
      field("hits", &R::hits),
      field("groups", &R::groups),
      field("entries", &R::entries),
      field("dropped", &R::dropped),
      field("drop_cancelled", &R::drop_cancelled),
      field("red_dropped", &R::red_dropped),
      field("copied_to_cpu", &R::copied_to_cpu),
      field("redirect_port", &R::redirect_port),
      field("priority", &R::priority),
      field("policers", &R::policers),
  };
  return list;
}

std::span<const Field> fields(const swsdk_netif*) {
  using R = swsdk_netif;
  static const Field list[] = {
      field("name", &R::name),
      field("mac", &R::mac),
      field("keeps_tag", &R::keeps_tag),
  };
  return list;
}
