// Lines of a script on a running virtual chip, and records that are read, shown and read again.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <span>

#include "input.h"
#include "library.h"
#include "session.h"

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

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr int most_lines = 40;
  std::string script(reinterpret_cast<const char*>(data), size);
  saish::Session session(script.starts_with("cold\n"));
  std::size_t at = 0;
  for (int lines = 0; lines < most_lines && at < script.size(); ++lines) {
    const std::size_t end = std::min(script.find('\n', at), script.size());
    run_line(session, script.substr(at, end - at));
    at = end + 1;
  }
  return 0;
}
}
