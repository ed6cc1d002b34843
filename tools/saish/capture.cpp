#include "capture.h"

#include <iterator>
#include <utility>

#include "frame_text.h"

namespace saish {

namespace {

constexpr std::size_t most_kept = 256;

/// "2: ..." or "cpu (protocol): ...".
std::string place_text(int port, uint32_t cpu) {
  constexpr const char* reasons[] = {"l2 cache", "protocol", "l3 miss",   "l3 error",
                                     "field",    "learning", "mac entry", "destination"};
  if (port != 0) return std::to_string(port);
  std::string result;
  for (std::size_t bit = 0; bit < std::size(reasons); ++bit)
    if ((cpu >> bit & 1) != 0) result += (result.empty() ? "" : ", ") + std::string(reasons[bit]);
  return "cpu (" + result + ')';
}

}  // namespace

void Capture::watch(int unit) { swsdk_frame_handle(unit, add, this); }

void Capture::add(int /*unit*/, const swsdk_out* out, void* capture) {
  auto& self = *static_cast<Capture*>(capture);
  if (self.other_) self.other_(*out);
  const std::lock_guard guard(self.lock_);
  self.kept_.push_back({out->port, out->cpu, {out->data, out->data + out->length}});
  if (self.kept_.size() > most_kept) self.kept_.pop_front();
}

std::vector<std::string> Capture::take() {
  std::deque<Kept> frames;
  {
    const std::lock_guard guard(lock_);
    frames.swap(kept_);
  }
  std::vector<std::string> lines;
  for (const Kept& frame : frames) lines.push_back(place_text(frame.port, frame.cpu) + ": " + frame_text(frame.bytes));
  return lines;
}

}  // namespace saish
