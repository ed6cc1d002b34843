#include <swsdk/events.h>
#include <swsdk/state.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "api/call.h"
#include "api/system.h"
#include "chip/state.h"

namespace {

/// The first words of a file; the length and the hash of what follows the line end it.
constexpr std::string_view heading = SWSDK_STATE_HEADING "2 ";

struct Saved {
  swsdk_board board{};
  std::vector<api::ReadyUnit> units;
};

uint64_t checksum(std::string_view text) {
  uint64_t result = 0xCBF29CE484222325;  // FNV-1a
  for (const char byte : text) result = (result ^ static_cast<uint8_t>(byte)) * 0x100000001B3;
  return result;
}

/// Once everything that is under way, such as aging, has happened.
std::string present_state() {
  swsdk_events_drain();
  const std::lock_guard guard(api::power_lock);
  std::ostringstream out;
  const swsdk_board board = api::present_board();
  out << board.units << ' ' << board.ports << ' ' << board.chip_type << ' ' << api::attached_units() << '\n';
  for (int number = 0; number < api::attached_units(); ++number) {
    api::Unit& unit = *api::find_unit(number);
    const std::lock_guard unit_guard(unit.lock);
    const std::string state = chip::state_of(*unit.chip);
    out << unit.initialized << ' ' << state.size() << '\n' << state;
  }
  return std::move(out).str();
}

/// Throws std::exception when the text is no state.
Saved parsed(const std::string& text) {
  std::istringstream in(text);
  in.exceptions(std::ios::failbit | std::ios::badbit);
  Saved result;
  std::size_t count = 0;
  in >> result.board.units >> result.board.ports >> result.board.chip_type >> count;
  if (!api::is_board(result.board) || count > static_cast<std::size_t>(result.board.units))
    throw std::runtime_error("no such board");
  for (std::size_t i = 0; i < count; ++i) {
    api::ReadyUnit unit;
    std::size_t size = 0;
    in >> unit.initialized >> size;
    if (in.get() != '\n' || size > text.size()) throw std::runtime_error("no such unit");
    std::string state(size, '\0');
    in.read(state.data(), static_cast<std::streamsize>(size));
    unit.chip = std::make_unique<chip::Chip>(result.board.ports);
    chip::load_state(state, *unit.chip);
    result.units.push_back(std::move(unit));
  }
  return result;
}

int save(const std::string& path) {
  const std::string state = present_state();
  char line[64];
  std::snprintf(line, sizeof line, "%zu %016llx\n", state.size(), static_cast<unsigned long long>(checksum(state)));
  const std::string unfinished = path + ".unfinished";
  std::ofstream file(unfinished, std::ios::binary);
  file << heading << line << state;
  file.close();
  if (file && std::rename(unfinished.c_str(), path.c_str()) == 0) return SWSDK_STATE_DONE;
  std::remove(unfinished.c_str());
  return SWSDK_STATE_NO_FILE;
}

int restore(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string first(heading.size(), '\0');
  if (!file) return SWSDK_STATE_NO_FILE;
  std::size_t size = 0;
  uint64_t hash = 0;
  file.read(first.data(), static_cast<std::streamsize>(first.size()));
  if (!file || first != heading || !(file >> size >> std::hex >> hash) || file.get() != '\n')
    return SWSDK_STATE_NO_STATE;
  std::ostringstream rest;
  rest << file.rdbuf();
  const std::string state = std::move(rest).str();
  if (state.size() != size || checksum(state) != hash) return SWSDK_STATE_NO_STATE;
  try {
    Saved saved = parsed(state);
    swsdk_events_drain();
    api::replace_units(saved.board, std::move(saved.units));
  } catch (const std::exception&) {
    return SWSDK_STATE_NO_STATE;
  }
  return SWSDK_STATE_DONE;
}

/// The path as any process sees it; empty for null, and for the empty path, which is none.
std::string absolute(const char* path) {
  std::error_code error;
  return path == nullptr ? "" : std::filesystem::absolute(path, error).string();
}

}  // namespace

int swsdk_state_save(const char* path) {
  const std::string where = absolute(path);
  if (where.empty()) return SWSDK_STATE_NO_FILE;
  return api::ask(
      __func__, [&] { return save(where); }, SWSDK_STATE_NO_FILE, where.c_str());
}

int swsdk_state_restore(const char* path) {
  const std::string where = absolute(path);
  if (where.empty()) return SWSDK_STATE_NO_FILE;
  if (api::remote_chip() != nullptr)
    return static_cast<int>(api::call_remote(api::Kind::action, __func__, {where.c_str()}, SWSDK_STATE_NO_FILE));
  const int result = restore(where);
  if (result == SWSDK_STATE_DONE) api::record(api::Kind::action, __func__, result, {where.c_str()});
  return result;
}
