#include "capture.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "frame_text.h"

namespace saish {

namespace {

constexpr std::size_t most_kept = 256;

}  // namespace

std::string place_text(int port, uint32_t cpu) {
  if (port != 0) return std::to_string(port);
  std::string result;
  for (int bit = 0; swsdk_cpu_reason_name(bit) != nullptr; ++bit)
    if ((cpu >> bit & 1) != 0) result += (result.empty() ? "" : ", ") + std::string(swsdk_cpu_reason_name(bit));
  return "cpu (" + result + ')';
}

void Capture::watch(int unit) { (other_ ? swsdk_aggregate_handle : swsdk_frame_handle)(unit, add, this); }

void Capture::add(int /*unit*/, const swsdk_out* out, void* capture) {
  auto& self = *static_cast<Capture*>(capture);
  if (self.other_) self.other_(*out);
  const std::lock_guard guard(self.lock_);
  if (self.kept_.size() < most_kept) {
    self.kept_.emplace_back();
  } else {  // the oldest gives up its memory: a busy switch allocates none
    self.kept_.push_back(std::move(self.kept_.front()));
    self.kept_.pop_front();
  }
  Copy& copy = self.kept_.back();
  copy.port = out->port;
  copy.cpu = out->cpu;
  const swsdk_segments* const segments = out->segments;
  const std::size_t length =
      segments == nullptr ? out->length : std::min<std::size_t>(out->length, segments->headers + segments->payload);
  copy.bytes.assign(out->data, out->data + length);
  copy.frames = segments == nullptr ? 1 : 1 + (out->length - length + segments->payload - 1) / segments->payload;
  if (self.sent_ != nullptr) self.sent_->push_back(copy);
}

int Capture::send(int unit, int port, std::span<const uint8_t> frame, std::vector<Copy>& copies) {
  const auto keep_in = [this](std::vector<Copy>* sent) {
    const std::lock_guard guard(lock_);
    sent_ = sent;
  };
  keep_in(&copies);
  const int outcome = swsdk_frame_send(unit, port, frame.data(), frame.size());
  keep_in(nullptr);
  return outcome;
}

std::vector<std::string> Capture::take() {
  std::deque<Copy> frames;
  {
    const std::lock_guard guard(lock_);
    frames.swap(kept_);
  }
  std::vector<std::string> lines;
  for (const Copy& frame : frames) {
    const std::string others =
        frame.frames == 1 ? "" : ", and " + std::to_string(frame.frames - 1) + " more of its flow";
    lines.push_back(place_text(frame.port, frame.cpu) + ": " + frame_text(frame.bytes) + others);
  }
  return lines;
}

}  // namespace saish
