#include "api/way.h"

#include <swsdk/frames.h>

#include <algorithm>
#include <iterator>

#include "api/columns.h"
#include "api/entries.h"
#include "chip/chip.h"

namespace {

using std::to_string;

std::string hex_text(std::span<const uint8_t> bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result;
  result.reserve(bytes.size() * 2);
  for (const uint8_t byte : bytes) {
    result += digits[byte >> 4];
    result += digits[byte & 0xF];
  }
  return result;
}

std::string tag_text(uint16_t tag) {
  const int priority = tag >> chip::priority_shift;
  return to_string(tag & chip::vlan_mask) + (priority == 0 ? "" : " with priority " + to_string(priority));
}

std::optional<chip::MacEntry> source_entry_of(const chip::Passage& frame) {
  const chip::MacEntry* const found = frame.chip.mac_table.find(frame.packet.vlan(), frame.packet.fields.source_mac);
  return found == nullptr ? std::nullopt : std::optional(*found);
}

std::string where(const chip::Place& place) {
  return (std::holds_alternative<chip::Port>(place) ? "port " : "") + api::place_text(place);
}

/// Why the CPU gets a frame: "l2 cache, field".
std::string cpu_reasons_text(uint32_t reasons) {
  std::string result;
  for (int bit = 0; swsdk_cpu_reason_name(bit) != nullptr; ++bit)
    if ((reasons >> bit & 1) != 0) result += (result.empty() ? "" : ", ") + std::string(swsdk_cpu_reason_name(bit));
  return result;
}

}  // namespace

api::Way::State::State(const chip::Passage& frame)
    : outer_tag(frame.packet.fields.outer_tag),
      source(frame.packet.source),
      cpu_reasons(frame.cpu_reasons),
      drop(frame.drop()),
      copies(frame.copies.size()),
      source_entry(source_entry_of(frame)) {
  if (frame.packet.inner_tagged) inner_tag = frame.packet.fields.inner_tag;
}

bool api::Way::is_of_ends(std::string_view line) {
  constexpr std::string_view starts[] = {"in ", "out ", "cpu ", "lost ", "passed on", "trapped to", "dropped: "};
  return std::any_of(std::begin(starts), std::end(starts), [&](std::string_view one) { return line.starts_with(one); });
}

/// Adds a line with what belongs below it.
void api::Way::head(std::string_view line) {
  text_.append(line) += '\n';
  flush_entries();
}

void api::Way::flush_entries() {
  text_ += entries_;
  entries_.clear();
}

void api::Way::arrives(const chip::Passage& frame) {
  chip_ = &frame.chip;
  told_.clear();
  head("in " + to_string(frame.packet.port.number()) + ": " + hex_text(frame.packet.bytes));
}

void api::Way::begins(const char* stage, const chip::Passage& frame) {
  if (detail_ != Detail::all) return;
  stage_ = stage;
  before_.emplace(frame);
}

/// What the stage has changed: "VLAN 10; goes to 2, 3".
std::string api::Way::changes(const chip::Passage& frame) const {
  std::string result;
  const auto add = [&](const std::string& change) { result += (result.empty() ? "" : "; ") + change; };
  const State now(frame);
  if (now.source != before_->source) add("from " + where(now.source));
  if (now.outer_tag != before_->outer_tag) add("VLAN " + tag_text(now.outer_tag));
  if (now.inner_tag != before_->inner_tag)
    add(now.inner_tag ? "inner VLAN " + tag_text(*now.inner_tag) : std::string("no inner VLAN"));
  if (now.source_entry && now.outer_tag == before_->outer_tag) {
    const auto& entry = *now.source_entry;
    if (!before_->source_entry)
      add("learned at " + where(entry.place));
    else if (before_->source_entry->place != entry.place)
      add("moved to " + where(entry.place));
  }
  std::string to;
  for (std::size_t i = before_->copies; i < now.copies; ++i) {
    const chip::Copy& copy = frame.copies[i];
    to += (to.empty() ? "" : ", ") + (copy.port == chip::Ports::cpu ? "the CPU" : to_string(copy.port.number())) +
          (is_virtual(copy.place) ? " as " + place_text(copy.place) : "") +
          (copy.l3_interface ? " by interface " + to_string(*copy.l3_interface) : "");
  }
  if (!to.empty()) add("goes to " + to);
  if (const uint32_t more = now.cpu_reasons & ~before_->cpu_reasons; more != 0)
    add("goes to the CPU (" + cpu_reasons_text(more) + ')');
  if (now.drop != before_->drop)
    add(now.drop == chip::Drop::none      ? std::string("permitted after all")
        : now.drop == chip::Drop::trapped ? std::string("for the CPU alone")
                                          : std::string("drops it: ") + name(now.drop));
  return result;
}

void api::Way::ends(const chip::Passage& frame) {
  if (detail_ != Detail::all) return;
  const std::string what = changes(frame);
  if (!what.empty() || !entries_.empty()) head(std::string(stage_) + (what.empty() ? "" : ": ") + what);
  stage_ = nullptr;
}

void api::Way::decides(const chip::Decider& decider) {
  if (detail_ != Detail::all) return;
  const Entry entry = entry_of(*chip_, decider);
  const chip::Cause* const cause = entry.origin.cause();
  const auto* const mac = std::get_if<chip::decider::OfMac>(&decider);
  // A port without a cable needs no more words, and an entry is told once.
  if (cause == nullptr && std::holds_alternative<chip::decider::Link>(decider)) return;
  // A row can have several settings, each due to a call of its own.
  if (!told_.emplace(decider.index(), cause == nullptr ? 0 : cause->number, entry.text).second) return;
  entries_ += "  " + entry.text + "\n    ";
  if (cause != nullptr)
    entries_ += call_text(*cause, reader_) + '\n';
  else
    entries_ += mac != nullptr ? "learned\n" : "no call made it so\n";
}

void api::Way::sends(chip::Port /*port*/, const chip::Passage& /*frame*/) { stage_ = nullptr; }

void api::Way::lost(const chip::Place& to, chip::Drop reason) {
  head("lost " + api::place_text(to) + ": " + name(reason));
}

void api::Way::comes_back(chip::Port port) { head("out " + to_string(port.number()) + ", looped back"); }

void api::Way::transmit(chip::Port port, std::span<const uint8_t> frame) {
  head("out " + to_string(port.number()) + ": " + hex_text(frame));
  if (wire_ != nullptr) wire_->transmit(port, frame);
}

void api::Way::deliver(const chip::CpuFrame& frame) {
  head("cpu (" + cpu_reasons_text(frame.reasons) + "): " + hex_text(frame.bytes));
  if (wire_ != nullptr) wire_->deliver(frame);
}

void api::Way::passed(const chip::Passage& /*frame*/, chip::Drop reason) {
  if (reason == chip::Drop::none)
    head("passed on");
  else if (reason == chip::Drop::trapped)
    head(name(reason));
  else
    head(std::string("dropped: ") + name(reason) + "; to pass it needs " + remedy(reason));
}
