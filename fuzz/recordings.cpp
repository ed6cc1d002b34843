#include "recordings.h"

#include <swsdk/recording.h>
#include <sys/mman.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

#include "input.h"

namespace fuzz {

RecordingFile::RecordingFile(const char* name) {
  const int descriptor = memfd_create(name, MFD_CLOEXEC);
  require(descriptor >= 0, "there is no file in memory");
  path_ = "/proc/self/fd/" + std::to_string(descriptor);
}

void RecordingFile::write(const std::string& text) const { std::ofstream(path_, std::ios::binary) << text; }

std::string RecordingFile::text() const {
  std::ifstream file(path_, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Replayed replayed(const RecordingFile& file) {
  struct Listener {
    std::string place;
    Replayed result;
  } listener{.place = file.path() + std::string(1, ':'), .result = {}};
  const auto tell = [](const char* line, void* data) {
    auto& [place, result] = *static_cast<Listener*>(data);
    const std::string_view message = line;
    if (message.starts_with(place)) result.line = std::atoi(line + place.size());
    (result.told += message) += '\n';
  };
  listener.result.outcome = swsdk_replay(file.path(), tell, &listener);
  return listener.result;
}

bool becomes_c(const RecordingFile& file) {
  const swsdk_line_t ignore = [](const char*, void*) {};
  return swsdk_replay_as_c(file.path(), ignore, ignore, nullptr) == SWSDK_REPLAY_SAME;
}

}  // namespace fuzz
