#include "attachment.h"

namespace vswitch {

void Attachment::send(const Frame& frame) {
  if (frame.segments.is_aggregate() && send_whole(frame)) return;
  for (const Bytes one : cutter_.cut(frame.bytes, frame.segments)) send_one(one);
}

std::unique_ptr<Attachment> attach(const std::string& text, const Tell& tell) {
  constexpr std::string_view tap = "tap:";
  constexpr std::string_view pcap = "pcap:";
  if (text.starts_with(tap)) return attach_tap(text.substr(tap.size()), nullptr);
  if (!text.starts_with(pcap)) return attach_interface(text);
  const std::string files = text.substr(pcap.size());
  const std::size_t colon = files.find(':');
  if (colon == std::string::npos) throw CannotStart('"' + text + "\" is not pcap:IN:OUT; either file can be left out");
  return attach_pcap(files.substr(0, colon), files.substr(colon + 1), tell);
}

}  // namespace vswitch
