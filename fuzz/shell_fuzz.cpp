// Lines of a script on a running virtual chip; records and frames are read, shown and read again, and `diff` compares
// the chip's tables with those of a fresh chip and with themselves.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "frame_pattern.h"
#include "frame_text.h"
#include "input.h"
#include "library.h"
#include "session.h"
#include "tables.h"

using fuzz::require;

namespace {

/// The records that functions take: each one's fields.
std::map<const saish::Field*, std::span<const saish::Field>> records() {
  std::map<const saish::Field*, std::span<const saish::Field>> result;
  for (const saish::Function& function : saish::functions())
    for (const saish::Parameter& parameter : function.parameters)
      if (!parameter.fields.empty()) result[parameter.fields.data()] = parameter.fields;
  return result;
}

bool reads(std::span<const saish::Field> fields, const std::string& word, void* record) {
  try {
    saish::read_fields(fields, "record", word, record);
    return true;
  } catch (const saish::BadInput&) {
    return false;
  }
}

/// What is read is shown in a form that reads the same.
void check_record(std::span<const saish::Field> fields, const std::string& word) {
  constexpr std::size_t more_than_any_record = 4096;
  alignas(std::max_align_t) std::byte record[more_than_any_record]{};
  alignas(std::max_align_t) std::byte again[more_than_any_record]{};
  if (!reads(fields, word, record)) return;
  const std::string shown = saish::fields_text(fields, record);
  require(reads(fields, shown, again), "a record that was shown does not read");
  require(saish::fields_text(fields, again) == shown, "a record that was shown reads differently");
}

/// Whether the text of a frame says all that its fields are; it does not when something is wrong with the frame.
bool is_complete(const std::string& text) {
  constexpr std::string_view wrong[] = {" bytes", " cut short", " (bad checksum)"};
  return std::none_of(std::begin(wrong), std::end(wrong), [&](std::string_view end) { return text.ends_with(end); });
}

std::optional<std::vector<uint8_t>> read_frame(std::span<const std::string> words) {
  try {
    return saish::frame_bytes(words);
  } catch (const saish::BadInput&) {
    return std::nullopt;
  }
}

/// What is read is shown in a form that reads as a frame of the same fields.
void check_frame(std::span<const std::string> given) {
  const auto frame = read_frame(given);
  if (!frame) return;
  const std::string shown = saish::frame_text(*frame);
  if (!is_complete(shown)) return;
  const auto again = read_frame(saish::words(shown));
  require(again.has_value(), "a frame that was shown does not read");
  require(saish::frame_text(*again) == shown, "a frame that was shown reads as another one");
  require(saish::FramePattern(saish::words(shown)).matches(*again), "a frame does not match what is shown of it");
}

std::vector<saish::Table> fresh_tables;

/// Tables do not differ from themselves, and from others as much as those from them.
void check_tables() {
  const std::vector<saish::Table> now = saish::tables();
  require(saish::print_differences(now, now) == 0, "tables differ from themselves");
  if (now.empty()) return;
  require(saish::print_differences(fresh_tables, now) == saish::print_differences(now, fresh_tables),
          "the difference of two tables depends on which of them comes first");
}

/// What a file holds is none of the input's, and some are without end.
bool reads_a_file(const saish::Words& words) {
  const auto is_one = [](const std::string& word) {
    return word == "source" || word.find("load") != std::string::npos;
  };
  return std::any_of(words.begin(), words.end(), is_one);
}

void run_line(saish::Session& session, const std::string& line) {
  try {
    const saish::Words words = saish::words(line);
    static const auto all_records = records();
    if (words.empty() || reads_a_file(words)) return;
    if (words[0] == "diff") return check_tables();
    if (words[0] == "send" && words.size() > 2) check_frame(std::span(words).subspan(2));
    if (words[0].starts_with('{'))
      for (const auto& [ignored, fields] : all_records) check_record(fields, words[0]);
    else
      session.run(line);
  } catch (const saish::BadInput& error) {
    require(*error.what() != '\0', "bad input without a word about it");
  } catch (const saish::Unexpected& error) {
    require(std::strstr(error.what(), "expected") != nullptr, "something was not expected, but it does not say what");
  }
}

}  // namespace

extern "C" {

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  const saish::Session session(saish::Power::on);
  fresh_tables = saish::tables();
  return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr int most_lines = 40;
  std::string script(reinterpret_cast<const char*>(data), size);
  saish::Session session(script.starts_with("cold\n") ? saish::Power::cold : saish::Power::on);
  std::size_t at = 0;
  for (int lines = 0; lines < most_lines && at < script.size(); ++lines) {
    const std::size_t end = std::min(script.find('\n', at), script.size());
    run_line(session, script.substr(at, end - at));
    at = end + 1;
  }
  return 0;
}
}
