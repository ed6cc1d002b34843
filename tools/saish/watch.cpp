#include "watch.h"

#include <time.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string_view>

#include "frame_text.h"
#include "words.h"

#ifdef SAISH_HAS_LIBPCAP
#include <pcap/pcap.h>
#endif

namespace saish {

namespace {

#ifdef SAISH_HAS_LIBPCAP

/// Hands a compiled filter to `use`.
template <class Use>
int with_program(const std::string& filter, Use use) {
  if (filter.empty()) return use(nullptr, 0);
  constexpr int longest_frame = 65535;
  pcap_t* const ethernet = pcap_open_dead(DLT_EN10MB, longest_frame);
  bpf_program program{};
  if (pcap_compile(ethernet, &program, filter.c_str(), 1, PCAP_NETMASK_UNKNOWN) != 0) {
    const std::string reason = pcap_geterr(ethernet);
    pcap_close(ethernet);
    throw BadInput("filter: libpcap does not take \"" + filter + "\": " + reason);
  }
  const int result = use(program.bf_insns, program.bf_len * sizeof *program.bf_insns);
  pcap_freecode(&program);
  pcap_close(ethernet);
  return result;
}

#else

template <class Use>
int with_program(const std::string& filter, Use use) {
  if (!filter.empty()) throw BadInput("this program was built without libpcap, which compiles filters");
  return use(nullptr, 0);
}

#endif

int begun(int detail, const std::string& filter) {
  const int number = with_program(
      filter, [&](const void* program, std::size_t length) { return swsdk_watch_begin(detail, program, length); });
  if (number < 0)
    throw BadInput("the chip does not watch: it is gone, or this program has " + std::to_string(SWSDK_WATCHES) +
                   " watches already");
  return number;
}

/// Reads a number at the beginning of a text, and removes it.
template <class Number>
Number taken_number(std::string_view& text) {
  Number result{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return result;
}

/// Reads "at SECONDS.NANOSECONDS unit U".
void read_head(std::string_view line, Passage& passage) {
  line.remove_prefix(std::string_view("at ").size());
  passage.seconds = taken_number<long long>(line);
  line.remove_prefix(1);
  passage.nanoseconds = taken_number<long>(line);
  line.remove_prefix(std::string_view(" unit ").size());
  passage.unit = taken_number<int>(line);
}

bool is_indented(std::string_view line) { return line.starts_with(' '); }

/// What precedes the frame of a line, such as "out 2".
std::string_view without_frame(std::string_view line) { return line.substr(0, line.rfind(": ")); }

bool has_frame(std::string_view line) {
  return (line.starts_with("in ") || line.starts_with("out ") || line.starts_with("cpu ")) &&
         line.find(": ") != std::string_view::npos;
}

std::string time_text(const Passage& passage) {
  const time_t seconds = passage.seconds;
  tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  const std::size_t length = strftime(text, sizeof text, "%H:%M:%S", &local);
  std::snprintf(text + length, sizeof text - length, ".%03ld", passage.nanoseconds / 1'000'000);
  return text;
}

}  // namespace

Watch::Watch(int detail, const std::string& filter) : number_(begun(detail, filter)) {}

Watch::~Watch() { swsdk_watch_end(number_); }

long long Watch::take(const std::function<void(const Passage&)>& take_one) {
  std::vector<char> piece(std::size_t{1} << 20);
  long long lost = 0;
  while (const std::size_t length = swsdk_watch_take(number_, piece.data(), piece.size())) {
    rest_.append(piece.data(), length);
    std::string_view blocks = rest_;
    for (std::size_t end = 0; (end = blocks.find("\n\n")) != std::string_view::npos; blocks.remove_prefix(end + 2)) {
      std::string_view block = blocks.substr(0, end + 1);
      Passage passage;
      while (!block.empty()) {
        const std::string_view line = block.substr(0, block.find('\n'));
        block.remove_prefix(line.size() + 1);
        if (line.starts_with("at "))
          read_head(line, passage);
        else
          passage.lines.emplace_back(line);
      }
      if (std::string_view only = passage.lines.front(); only.starts_with("lost ") && passage.lines.size() == 1) {
        only.remove_prefix(std::string_view("lost ").size());
        lost += taken_number<long long>(only);
      } else {
        take_one(passage);
      }
    }
    rest_.erase(0, rest_.size() - blocks.size());
  }
  return lost;
}

std::string line_of(const Passage& passage) {
  std::string result = time_text(passage);
  if (passage.unit != 0) result += " unit " + std::to_string(passage.unit);
  std::string to;
  const auto add = [&](const std::string& what) { to += (to.empty() ? "" : ", ") + what; };
  for (const std::string& line : passage.lines) {
    if (is_indented(line)) continue;
    if (line.starts_with("in ") && has_frame(line)) {
      if (!to.empty()) result += " -> " + std::exchange(to, {});
      result += ' ' + with_frame_text(line).substr(std::string_view("in ").size());
    } else if (line.starts_with("out ")) {
      add(std::string(has_frame(line) ? without_frame(line) : line).substr(std::string_view("out ").size()));
    } else if (line.starts_with("cpu ")) {
      add(std::string(without_frame(line)));
    } else if (line.starts_with("lost ")) {
      const std::size_t colon = line.find(": ");
      if (line.substr(colon + 2) != "egress port down")
        add(line.substr(0, colon) + " (" + line.substr(colon + 2) + ')');
    } else if (line.starts_with("dropped: ")) {
      add(line.substr(0, line.find(';')));
    }
  }
  return result + " -> " + (to.empty() ? "nowhere" : to);
}

void Paths::add(const Passage& passage) {
  std::string way;
  for (const std::string& line : passage.lines) {
    constexpr std::string_view call = "    ";  // what belongs to an entry
    if (line.starts_with(call)) continue;
    way += "  ";
    way += has_frame(line) ? std::string(without_frame(line)) : line.substr(0, line.find("; to pass"));
    way += '\n';
  }
  ++counts_[way];
}

std::string Paths::summary() const {
  std::vector<std::pair<long long, std::string_view>> ways;
  for (const auto& [way, count] : counts_) ways.emplace_back(count, way);
  std::stable_sort(ways.begin(), ways.end(),
                   [](const auto& one, const auto& other) { return one.first > other.first; });
  std::string result;
  for (const auto& [count, way] : ways)
    result.append(std::to_string(count)).append(count == 1 ? " frame:\n" : " frames:\n").append(way);
  return result.empty() ? "no frame has passed\n" : result;
}

}  // namespace saish
