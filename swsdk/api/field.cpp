#include <bcm/field.h>

#include <algorithm>
#include <set>

#include "api/call.h"
#include "api/convert.h"
#include "api/gports.h"

using api::Call;
using api::hex;
using api::ip4;
using api::ip6;
using api::out;
using api::port_of;
using chip::Chip;
using chip::FieldQualifier;
using chip::FieldValue;

namespace {

std::set<int> numbers(const bcm_field_qset_t& qset) {
  std::set<int> result;
  for (int number = 0; number < static_cast<int>(sizeof qset.w) * 8; ++number)
    if (BCM_FIELD_QSET_TEST(qset, number)) result.insert(number);
  return result;
}

FieldValue value(int number) { return static_cast<uint32_t>(number); }
FieldValue value(api::Hex number) { return number.value; }
FieldValue value(api::Ip4 address) { return address.address; }
FieldValue value(api::Mac address) {
  chip::Mac bytes;
  std::copy_n(address.pointer, bytes.size(), bytes.begin());
  return bytes;
}
FieldValue value(api::Ip6 address) {
  chip::Ip6 bytes;
  std::copy_n(address.pointer, bytes.size(), bytes.begin());
  return bytes;
}

template <class Argument>
using Qualification = calls::Described<int, bcm_field_entry_t, Argument, Argument>;

template <class Argument>
int qualify(const Qualification<Argument>& call, FieldQualifier qualifier) {
  return Call(call).answer([&](Chip& chip) {
    const auto& [unit, entry, data, mask] = call.arguments;
    return chip.field_processor.qualify(entry, qualifier, {value(data), value(mask)});
  });
}

/// The interface has no number for the qualifier, so no group can hold it.
template <class Argument>
int qualify_unnumbered(const Qualification<Argument>& call) {
  return Call(call).answer([&](Chip& chip) {
    constexpr auto unnumbered = static_cast<FieldQualifier>(-1);
    return chip.field_processor.qualify(std::get<1>(call.arguments), unnumbered, {});
  });
}

int qualify_port(const Qualification<bcm_port_t>& call, FieldQualifier qualifier) {
  return Call(call).answer([&](Chip& chip) {
    const auto& [unit, entry, data, mask] = call.arguments;
    return chip.field_processor.qualify(entry, qualifier, {value(port_of(data).number()), value(mask)});
  });
}

}  // namespace

int bcm_field_action_add(int unit, bcm_field_entry_t entry, bcm_field_action_t action, uint32 param0, uint32 param1) {
  return Call(calls::bcm_field_action_add(unit, entry, action, param0, param1)).answer([&](Chip& chip) {
    return chip.field_processor.add_action(entry, action, param0, param1);
  });
}

int bcm_field_entry_create(int unit, bcm_field_group_t group, bcm_field_entry_t* entry) {
  return Call(calls::bcm_field_entry_create(unit, group, entry)).answer([&](Chip& chip) {
    return chip.field_processor.create_entry(group, *entry);
  });
}

int bcm_field_entry_create_id(int unit, bcm_field_group_t group, bcm_field_entry_t entry) {
  return Call(calls::bcm_field_entry_create_id(unit, group, entry)).answer([&](Chip& chip) {
    return chip.field_processor.create_entry_with_id(group, entry);
  });
}

int bcm_field_entry_destroy(int unit, bcm_field_entry_t entry) {
  return Call(calls::bcm_field_entry_destroy(unit, entry)).answer([&](Chip& chip) {
    return chip.field_processor.destroy_entry(entry);
  });
}

int bcm_field_entry_install(int unit, bcm_field_entry_t entry) {
  return Call(calls::bcm_field_entry_install(unit, entry)).answer([&](Chip& chip) {
    return chip.field_processor.install(entry);
  });
}

int bcm_field_entry_policer_attach(int unit, bcm_field_entry_t entry_id, int level, bcm_policer_t policer_id) {
  return Call(calls::bcm_field_entry_policer_attach(unit, entry_id, level, policer_id)).answer([&](Chip& chip) {
    return chip.field_processor.attach_policer(entry_id, level, policer_id);
  });
}

int bcm_field_entry_policer_detach(int unit, bcm_field_entry_t entry_id, int level) {
  return Call(calls::bcm_field_entry_policer_detach(unit, entry_id, level)).answer([&](Chip& chip) {
    return chip.field_processor.detach_policer(entry_id, level);
  });
}

int bcm_field_entry_policer_get(int unit, bcm_field_entry_t entry_id, int level, bcm_policer_t* policer_id) {
  return Call(calls::bcm_field_entry_policer_get(unit, entry_id, level, policer_id)).answer([&](Chip& chip) {
    const chip::FieldProcessor& rules = chip.field_processor;
    return api::tell(rules.policer(entry_id, level), rules.absent_policer(entry_id, level), *policer_id);
  });
}

int bcm_field_entry_prio_set(int unit, bcm_field_entry_t entry, int prio) {
  return Call(calls::bcm_field_entry_prio_set(unit, entry, prio)).answer([&](Chip& chip) {
    return chip.field_processor.set_priority(entry, prio);
  });
}

int bcm_field_entry_reinstall(int unit, bcm_field_entry_t entry) {
  return Call(calls::bcm_field_entry_reinstall(unit, entry)).answer([&](Chip& chip) {
    return chip.field_processor.reinstall(entry);
  });
}

int bcm_field_entry_remove(int unit, bcm_field_entry_t entry) {
  return Call(calls::bcm_field_entry_remove(unit, entry)).answer([&](Chip& chip) {
    return chip.field_processor.remove(entry);
  });
}

int bcm_field_group_create(int unit, bcm_field_qset_t qset, int pri, bcm_field_group_t* group) {
  return Call(calls::bcm_field_group_create(unit, qset, pri, group)).answer([&](Chip& chip) {
    return chip.field_processor.create_group(numbers(qset), pri, *group);
  });
}

int bcm_field_group_enable_set(int unit, bcm_field_group_t group, int enable) {
  return Call(calls::bcm_field_group_enable_set(unit, group, enable)).answer([&](Chip& chip) {
    return chip.field_processor.enable_group(group, enable != 0);
  });
}

int bcm_field_group_priority_set(int unit, bcm_field_group_t group, int priority) {
  return Call(calls::bcm_field_group_priority_set(unit, group, priority)).answer([&](Chip& chip) {
    return chip.field_processor.set_group_priority(group, priority);
  });
}

int bcm_field_qualify_DSCP(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return qualify(calls::bcm_field_qualify_DSCP(unit, entry, data, mask), FieldQualifier::dscp);
}

int bcm_field_qualify_DstIp(int unit, bcm_field_entry_t entry, bcm_ip_t data, bcm_ip_t mask) {
  return qualify(calls::bcm_field_qualify_DstIp(unit, entry, data, mask), FieldQualifier::destination_ip);
}

int bcm_field_qualify_DstIp6(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return qualify(calls::bcm_field_qualify_DstIp6(unit, entry, data, mask), FieldQualifier::destination_ip6);
}

int bcm_field_qualify_DstMac(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return qualify(calls::bcm_field_qualify_DstMac(unit, entry, data, mask), FieldQualifier::destination_mac);
}

int bcm_field_qualify_EtherType(int unit, bcm_field_entry_t entry, uint16 data, uint16 mask) {
  return qualify(calls::bcm_field_qualify_EtherType(unit, entry, data, mask), FieldQualifier::ether_type);
}

int bcm_field_qualify_IcmpType(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return qualify_unnumbered(calls::bcm_field_qualify_IcmpType(unit, entry, data, mask));
}

int bcm_field_qualify_IcmpTypeCode(int unit, bcm_field_entry_t entry, uint16 data, uint16 mask) {
  return qualify(calls::bcm_field_qualify_IcmpTypeCode(unit, entry, data, mask), FieldQualifier::icmp_type_code);
}

int bcm_field_qualify_InPort(int unit, bcm_field_entry_t entry, bcm_port_t data, bcm_port_t mask) {
  return qualify_port(calls::bcm_field_qualify_InPort(unit, entry, data, mask), FieldQualifier::in_port);
}

int bcm_field_qualify_InPorts(int unit, bcm_field_entry_t entry, bcm_pbmp_t data, bcm_pbmp_t mask) {
  return qualify_unnumbered(calls::bcm_field_qualify_InPorts(unit, entry, data, mask));
}

int bcm_field_qualify_Ip6NextHeader(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return qualify(calls::bcm_field_qualify_Ip6NextHeader(unit, entry, data, mask), FieldQualifier::ip_protocol);
}

int bcm_field_qualify_IpProtocol(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return qualify(calls::bcm_field_qualify_IpProtocol(unit, entry, data, mask), FieldQualifier::ip_protocol);
}

int bcm_field_qualify_IpType(int unit, bcm_field_entry_t entry, bcm_field_IpType_t type) {
  return Call(calls::bcm_field_qualify_IpType(unit, entry, type)).answer([&](Chip& chip) {
    return chip.field_processor.qualify_ip_type(entry, type);
  });
}

int bcm_field_qualify_L4DstPort(int unit, bcm_field_entry_t entry, bcm_l4_port_t data, bcm_l4_port_t mask) {
  return qualify(calls::bcm_field_qualify_L4DstPort(unit, entry, data, mask), FieldQualifier::l4_destination_port);
}

int bcm_field_qualify_L4SrcPort(int unit, bcm_field_entry_t entry, bcm_l4_port_t data, bcm_l4_port_t mask) {
  return qualify(calls::bcm_field_qualify_L4SrcPort(unit, entry, data, mask), FieldQualifier::l4_source_port);
}

int bcm_field_qualify_OutPort(int unit, bcm_field_entry_t entry, bcm_port_t data, bcm_port_t mask) {
  return qualify_port(calls::bcm_field_qualify_OutPort(unit, entry, data, mask), FieldQualifier::out_port);
}

int bcm_field_qualify_OuterVlan(int unit, bcm_field_entry_t entry, bcm_vlan_t data, bcm_vlan_t mask) {
  return qualify(calls::bcm_field_qualify_OuterVlan(unit, entry, data, mask), FieldQualifier::outer_vlan);
}

int bcm_field_qualify_SrcIp(int unit, bcm_field_entry_t entry, bcm_ip_t data, bcm_ip_t mask) {
  return qualify(calls::bcm_field_qualify_SrcIp(unit, entry, data, mask), FieldQualifier::source_ip);
}

int bcm_field_qualify_SrcIp6(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return qualify(calls::bcm_field_qualify_SrcIp6(unit, entry, data, mask), FieldQualifier::source_ip6);
}

int bcm_field_qualify_SrcMac(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return qualify(calls::bcm_field_qualify_SrcMac(unit, entry, data, mask), FieldQualifier::source_mac);
}

int bcm_field_qualify_Tos(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return qualify(calls::bcm_field_qualify_Tos(unit, entry, data, mask), FieldQualifier::dscp);
}

int bcm_field_qualify_Ttl(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return qualify(calls::bcm_field_qualify_Ttl(unit, entry, data, mask), FieldQualifier::ttl);
}

int bcm_field_qualify_clear(int unit, bcm_field_entry_t entry) {
  return Call(calls::bcm_field_qualify_clear(unit, entry)).answer([&](Chip& chip) {
    return chip.field_processor.clear_qualifiers(entry);
  });
}
