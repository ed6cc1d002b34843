#include "chip/pipeline/pipeline.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "chip/chip.h"
#include "chip/pipeline/bulk.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/parse.h"
#include "chip/pipeline/stages.h"
#include "chip/pipeline/trial.h"

namespace chip {

namespace {

struct Stage {
  const char* name;
  void (*run)(Passage& frame);
};

constexpr Stage admission{"admit", admit};

/// Those between the copies for mirrors of what came in and the copies that leave. The former only decide; what the
/// latter do stays.
constexpr Stage deciding[] = {
    {"check_source", check_source},
    {"assign_vlan", assign_vlan},
    {"check_membership", check_membership},
    {"trap", trap},
};
constexpr Stage acting[] = {
    {"learn_source", learn_source},
    {"ingress_rules", apply_ingress_rules},
    {"forward", forward},
    {"storm", control_storms},
};

void run_observed(const Stage& stage, Passage& frame) {
  frame.observer->begins(stage.name, frame);
  stage.run(frame);
  frame.observer->ends(frame);
}

/// Runs one stage, or the array of them. What nobody observes is as fast as if nobody could.
void run(const Stage& stage, Passage& frame) {
  if (frame.observer == nullptr) [[likely]]
    stage.run(frame);
  else
    run_observed(stage, frame);
}
template <const auto& stages>
void run_stages(Passage& frame) {
  if (frame.observer == nullptr) [[likely]]
    return [&]<std::size_t... index>(std::index_sequence<index...>) { (stages[index].run(frame), ...); }
  (std::make_index_sequence<std::size(stages)>());
  for (const Stage& stage : stages) run_observed(stage, frame);
}

}  // namespace

Drop Pipeline::receive(Port port, std::span<const uint8_t> bytes, Wire& wire, Observer* observer) {
  const Drop drop = *pass(port, bytes, {}, wire, observer);
  if (!looped_.empty()) [[unlikely]]
    follow_loops(wire, observer);
  return drop;
}

/// Lets what left ports in loopback come in again. A flooded frame in a loop would circulate forever.
void Pipeline::follow_loops(Wire& wire, Observer* observer) {
  constexpr int max_rounds = 16;
  for (int i = 0; i < max_rounds && !looped_.empty(); ++i) {
    const Looped next = std::move(looped_.front());
    looped_.erase(looped_.begin());
    pass(next.port, next.bytes, {}, wire, observer);
  }
  for (const Looped& lost : looped_) {
    ++chip_.drops[lost.port][static_cast<std::size_t>(Drop::egress_loop)];
    if (observer != nullptr) observer->lost(lost.port, Drop::egress_loop);
  }
  looped_.clear();
}

bool Pipeline::receive_whole(Port port, std::span<const uint8_t> aggregate, const Segments& segments, Wire& wire) {
  if (aggregate.size() <= EgressFrame::max_size && !must_be_cut_at(chip_, port, segments))
    if (const std::optional<Drop> drop = pass(port, aggregate, segments, wire, nullptr)) return *drop == Drop::none;
  const auto frames = cutter_.cut(aggregate, segments);
  if (frames.empty())
    return receive(port, {}, wire) == Drop::none;  // its headers do not agree with how it is to be cut
  return std::count_if(frames.begin(), frames.end(),
                       [&](const auto frame) { return receive(port, frame, wire) == Drop::none; }) > 0;
}

Drop Pipeline::try_out(Port port, std::span<const uint8_t> bytes, Wire& wire, Observer& observer) {
  const Trial trial(chip_);
  return receive(port, bytes, wire, &observer);
}

// All stages become one function: called one by one, they would spend a third of a frame's time on being called.
[[gnu::flatten]] std::optional<Drop> Pipeline::pass(Port port, std::span<const uint8_t> bytes, const Segments& segments,
                                                    Wire& wire, Observer* observer) {
  copies_.clear();
  Passage frame(chip_, copies_, looped_);
  frame.observer = observer;
  frame.packet.segments = segments;
  frame.packet.has_header = parse(port, bytes, frame.packet);
  if (observer != nullptr) observer->arrives(frame);
  run(admission, frame);
  Drop lost = Drop::none;  // why the first copy was lost, if all were
  if (!frame.dropped()) {
    mirror_ingress(frame, wire);
    run_stages<deciding>(frame);
    if (segments.is_aggregate() && !is_bulk(frame)) return std::nullopt;
    run_stages<acting>(frame);
    bool has_left = false;
    for (const Copy& copy : copies_) {
      const Drop reason = send_copy(frame, copy, wire);
      if (reason != Drop::none) lose_copy(frame, copy.port, reason);
      // The CPU gets its copy, whatever it is for, below.
      has_left = has_left || (reason == Drop::none && copy.port != Ports::cpu);
      if (lost == Drop::none) lost = reason;
    }
    if (frame.cpu_reasons != 0) {
      const Drop reason = send_to_cpu(frame, wire);
      has_left = has_left || reason == Drop::none;
      if (lost == Drop::none) lost = reason;
      if (reason != Drop::none && frame.drop() == Drop::trapped) frame.release();  // nobody has it
    }
    if (has_left) lost = Drop::none;
  }
  const Drop drop = frame.drop();
  if (drop != Drop::port_down) count_received(chip_.counters, frame.packet);
  count_discarded(chip_.counters, frame.packet, drop);
  if (frame.dropped()) chip_.drops[port][static_cast<std::size_t>(drop)] += frame.packet.frames();
  const Drop outcome = frame.dropped() ? drop : lost;
  if (observer != nullptr) observer->passed(frame, outcome);
  return outcome;
}

}  // namespace chip
