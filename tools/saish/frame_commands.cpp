#include "frame_commands.h"

#include <swsdk/events.h>
#include <swsdk/frames.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <sstream>
#include <thread>

#include "built_ins.h"
#include "capture.h"
#include "frame_text.h"
#include "pcapng.h"
#include "session.h"
#include "watch.h"

namespace saish {

namespace {

/// Prints the lines of a way with their frames as people read them.
void print_way(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) std::printf("  %s\n", with_frame_text(line).c_str());
}

/// Which frames are wanted, how much of them, and for how long.
struct Wish {
  int detail = SWSDK_WATCH_ENDS;
  std::optional<int> seconds;  // nothing: until the session is interrupted
  std::string filter;
};

/// Reads [--trace] [--seconds N] [FILTER...].
Wish wish_of(Words words) {
  Wish wish;
  while (!words.empty() && words.front().starts_with("--")) {
    const std::string option = words.front();
    words.erase(words.begin());
    if (option == "--trace") {
      wish.detail = SWSDK_WATCH_WAYS;
    } else if (option == "--seconds") {
      wish.seconds = words.empty() ? std::nullopt : number<int>(words.front());
      if (!wish.seconds || *wish.seconds < 0) throw BadInput("--seconds: a number from 0 on is missing");
      words.erase(words.begin());
    } else {
      throw BadInput("there is no option \"" + option + "\"; the options are --trace and --seconds N");
    }
  }
  for (const std::string& word : words) wish.filter += (wish.filter.empty() ? "" : " ") + word;
  return wish;
}

/// Passes on the frames of a watch as they pass, up to its end.
void follow(Watch& watch, std::optional<int> seconds, const std::function<void(const Passage&)>& take,
            const std::function<void()>& after_each_look) {
  constexpr auto pause = std::chrono::milliseconds(50);
  const auto begin = std::chrono::steady_clock::now();
  for (bool last = false; !last;) {
    // What has happened up to the end is taken, too.
    last = Session::is_interrupted() || std::ferror(stdout) != 0 ||
           (seconds && std::chrono::steady_clock::now() - begin >= std::chrono::seconds(*seconds));
    if (const long long lost = watch.take(take); lost > 0) std::printf("(%lld frames are left out here)\n", lost);
    after_each_look();
    if (!last) std::this_thread::sleep_for(pause);
  }
}

/// What a watch has recorded of the one frame that came in, if it did.
void print_ways_of(Watch& watch, int unit, int port, const std::vector<uint8_t>& frame) {
  const std::string arrival = "in " + std::to_string(port) + ": ";
  watch.take([&](const Passage& passage) {
    const std::string& first = passage.lines.front();
    if (passage.unit != unit || !first.starts_with(arrival) || first.size() == arrival.size()) return;
    if (frame_bytes(Words{first.substr(arrival.size())}) == frame) print_way(passage.lines);
  });
}

}  // namespace

void send(Session& session, const Words& arguments) {
  const bool traces = arguments[0] == "--trace";
  const std::span<const std::string> words = std::span(arguments).subspan(traces ? 1 : 0);
  if (words.size() < 2) throw BadInput("a frame is missing; the form is send [--trace] PORT FRAME");
  int port = 0;
  read("port", words[0], port);
  const std::vector<uint8_t> frame = frame_bytes(words.subspan(1));
  const int unit = initialized_unit_at({}, 0);
  session.expectations().settle();
  session.capture().watch(unit);
  std::optional<Watch> watch;
  if (traces) watch.emplace(SWSDK_WATCH_WAYS, "");
  std::vector<Copy> copies;
  const int outcome = session.capture().send(unit, port, frame, copies);
  if (outcome < 0) throw no_port(unit, port);
  session.expectations().begin(session.here(), outcome, std::move(copies));
  swsdk_events_drain();
  if (watch)
    print_ways_of(*watch, unit, port, frame);
  else if (outcome == 0)
    std::printf("  passed on\n");
  else
    std::printf("  not passed on: %s\n", swsdk_drop_name(outcome));
}

void trace(Session& /*session*/, const Words& arguments) {
  int port = 0;
  read("port", arguments[0], port);
  const std::vector<uint8_t> frame = frame_bytes(std::span(arguments).subspan(1));
  const int unit = initialized_unit_at({}, 0);
  const auto trace_to = [&](char* buffer, std::size_t size) {
    return swsdk_frame_trace(unit, port, frame.data(), frame.size(), buffer, size);
  };
  const long length = trace_to(nullptr, 0);
  if (length < 0) throw no_port(unit, port);
  std::string way(static_cast<std::size_t>(length), '\0');
  trace_to(way.data(), way.size() + 1);
  std::istringstream text(way.c_str());  // up to where it was cut, if it was
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  print_way(lines);
}

void watch(Session& /*session*/, const Words& arguments) {
  const Wish wish = wish_of(arguments);
  Watch watch(wish.detail, wish.filter);
  const auto print = [&](const Passage& passage) {
    std::printf("%s\n", line_of(passage).c_str());
    if (wish.detail == SWSDK_WATCH_WAYS) print_way(passage.lines);
  };
  follow(watch, wish.seconds, print, [] { std::fflush(stdout); });
}

void path(Session& session, const Words& arguments) {
  const std::string& word = arguments[0];
  if (word == "start") {
    const Wish wish = wish_of(Words(arguments.begin() + 1, arguments.end()));
    if (wish.seconds || wish.detail != SWSDK_WATCH_ENDS) throw BadInput("path start takes a filter and no options");
    session.path_watch.reset();
    session.path_watch.emplace(SWSDK_WATCH_WAYS, wish.filter);
    session.paths = {};
    return;
  }
  if (arguments.size() > 1 || (word != "summary" && word != "stop"))
    throw BadInput("\"" + word + "\" is not start [FILTER], summary or stop");
  if (!session.path_watch) throw BadInput("no frames are counted; path start begins with that");
  if (word == "stop") return session.path_watch.reset();
  const long long lost = session.path_watch->take([&](const Passage& passage) { session.paths.add(passage); });
  std::fputs(session.paths.summary().c_str(), stdout);
  if (lost > 0) std::printf("(%lld frames are left out)\n", lost);
}

void capture(Session& session, const Words& arguments) {
  if (arguments.empty()) {
    for (const std::string& line : session.capture().take()) std::printf("  %s\n", line.c_str());
    return session.expectations().settle();
  }
  const std::string& word = arguments[0];
  const Wish wish = wish_of(Words(arguments.begin() + 1, arguments.end()));
  if (word == "start") {
    if (wish.seconds) throw BadInput("what capture start records is written by capture FILE.pcapng, at any time");
    session.capture_watch.reset();
    session.capture_watch.emplace(wish.detail, wish.filter);
    return;
  }
  long long frames = 0;
  const bool is_past = session.capture_watch && arguments.size() == 1;
  // Begun first: a filter that is refused leaves a file as it is.
  std::optional<Watch> watch;
  if (!is_past) watch.emplace(wish.detail, wish.filter);
  PcapngFile file(word);
  const auto add = [&](const Passage& passage) {
    file.add(passage);
    ++frames;
  };
  if (is_past) {
    if (const long long lost = session.capture_watch->take(add); lost > 0)
      std::printf("(%lld older frames are left out)\n", lost);
    file.flush();
  } else {
    follow(*watch, wish.seconds, add, [&] { file.flush(); });
  }
  std::printf("  %lld %s came in\n", frames, frames == 1 ? "frame" : "frames");
}

}  // namespace saish
