// Lines of a script on a running virtual chip, and records that are read, shown and read again.
#include <swsdk/field.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "input.h"
#include "library.h"
#include "session.h"

using fuzz::require;

namespace {

/// What is read is shown in a form that reads the same.
template <class Record>
void check_record(const std::string& word) {
  const auto record = std::make_unique<Record>();
  saish::read("record", word, *record);
  const std::string shown = saish::text(*record);
  const auto again = std::make_unique<Record>();
  saish::read("record", shown, *again);
  require(saish::text(*again) == shown, "a record that was shown reads differently");
}

template <class... Records>
void check_records(const std::string& word) {
  const auto check = [&]<class Record>(Record*) {
    try {
      check_record<Record>(word);
    } catch (const saish::BadInput&) {
      // not such a record
    }
  };
  (check(static_cast<Records*>(nullptr)), ...);
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
    if (words.empty() || reads_a_file(words)) return;
    if (words[0].starts_with('{'))
      check_records<sai_storm_ctrl, sai_l2_mac_entry_t, sai_l2_learn_limit_t, sai_acl_rule_t, sai_port_stg_state_t,
                    sai_port_stg_t, sai_vport_t>(words[0]);
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
