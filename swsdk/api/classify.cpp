#include <swsdk/field.h>

#include <algorithm>

#include "api/call.h"

namespace {

static_assert(SWSDK_FIELD_HITS_MAX >=
              std::max(chip::FieldProcessor::ingress_slices, chip::FieldProcessor::egress_slices));
static_assert(SWSDK_FIELD_POLICER_LEVELS == chip::FieldRule::policer_levels);

chip::FrameFields to_chip(const swsdk_frame& frame) {
  return {
      .in_port = chip::Port::of(frame.in_port),
      .out_port = chip::Port::of(frame.out_port),
      .source_mac = api::address(frame.src_mac),
      .destination_mac = api::address(frame.dst_mac),
      .vlan_format = frame.vlan_format,
      .outer_tag = frame.outer_tag,
      .inner_tag = frame.inner_tag,
      .ether_type = frame.ether_type,
      .source_ip = frame.src_ip,
      .destination_ip = frame.dst_ip,
      .source_ip6 = api::address(frame.src_ip6),
      .destination_ip6 = api::address(frame.dst_ip6),
      .ip_protocol = frame.ip_protocol,
      .tos = frame.tos,
      .ttl = frame.ttl,
      .l4_source_port = frame.l4_src_port,
      .l4_destination_port = frame.l4_dst_port,
      .icmp_type = frame.icmp_type,
      .icmp_code = frame.icmp_code,
      .arp_target_ip = frame.arp_target_ip,
  };
}

swsdk_verdict to_c(const chip::FieldVerdict& own) {
  swsdk_verdict verdict{};
  for (const chip::FieldHits::Hit& hit : own.hits) {
    verdict.groups[verdict.hits] = hit.group;
    verdict.entries[verdict.hits++] = hit.entry;
  }
  verdict.dropped = own.dropped;
  verdict.drop_cancelled = own.drop_cancelled;
  verdict.red_dropped = own.red_dropped;
  verdict.copied_to_cpu = own.copied_to_cpu;
  verdict.redirect_port = own.redirect_port ? own.redirect_port->number() : -1;
  verdict.priority = own.priority.value_or(-1);
  std::copy(own.policers.begin(), own.policers.end(), verdict.policers);
  return verdict;
}

}  // namespace

int swsdk_field_classify(int unit, int stage, const swsdk_frame* frame, swsdk_verdict* verdict) {
  const bool is_stage = stage == SWSDK_FIELD_INGRESS || stage == SWSDK_FIELD_EGRESS;
  if (!is_stage || frame == nullptr || verdict == nullptr) return -1;
  const auto classify = [&](chip::Chip& chip) {
    const auto at = stage == SWSDK_FIELD_INGRESS ? chip::FieldStage::ingress : chip::FieldStage::egress;
    *verdict = to_c(chip.field_processor.classify(at, to_chip(*frame)));
    return 0;
  };
  return api::act(__func__, unit, classify, stage, api::in(frame), api::out(verdict));
}

long long swsdk_field_hits(int unit, int entry) {
  const auto hits = [&](const chip::Chip& chip) {
    const chip::FieldEntry* const found = chip.field_processor.find_entry(entry);
    return found == nullptr ? -1LL : static_cast<long long>(found->hits);
  };
  return api::ask_chip(__func__, unit, hits, -1LL, entry);
}
