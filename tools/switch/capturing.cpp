#include "capturing.h"

#include <chrono>

#include "console.h"
#include "words.h"

namespace vswitch {

Capturing::Capturing(const std::string& path, int detail)
    : file_(path), watch_(detail, ""), writer_([this] { run(); }) {}

Capturing::~Capturing() { finish(); }

void Capturing::finish() {
  ending_ = true;
  if (writer_.joinable()) writer_.join();
}

void Capturing::run() {
  constexpr auto pause = std::chrono::milliseconds(50);
  try {
    for (bool last = false; !last;) {
      last = ending_;
      const long long lost = watch_.take([this](const saish::Passage& passage) { file_.add(passage); });
      if (lost > 0) tell(std::to_string(lost) + " frames came too fast for the capture, which leaves them out");
      file_.flush();
      if (!last) std::this_thread::sleep_for(pause);
    }
  } catch (const saish::BadInput& error) {
    tell(std::string(error.what()) + "; the capture has ended");
    had_trouble_ = true;
  }
}

}  // namespace vswitch
