#include "pcapng.h"

#include <cerrno>
#include <cstring>

#include "frame_text.h"
#include "words.h"

namespace saish {

namespace {

// The kinds of blocks and options, and the directions of a frame.
constexpr uint32_t section_header = 0x0A0D0D0A;
constexpr uint32_t interface_description = 1;
constexpr uint32_t enhanced_packet = 6;
constexpr uint16_t end_of_options = 0;
constexpr uint16_t comment_option = 1;
constexpr uint16_t name_option = 2;        // of an interface
constexpr uint16_t flags_option = 2;       // of a frame
constexpr uint16_t resolution_option = 9;  // of an interface's times
constexpr uint32_t inbound = 1;
constexpr uint32_t outbound = 2;

/// Bytes in the order of this machine, which a reader recognizes.
class Body {
 public:
  template <class Number>
  void put(Number number) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(&number);
    bytes_.insert(bytes_.end(), bytes, bytes + sizeof number);
  }
  void put(std::span<const uint8_t> bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    while (bytes_.size() % 4 != 0) bytes_.push_back(0);
  }
  void put_option(uint16_t code, std::string_view value) {
    put(code);
    put(static_cast<uint16_t>(value.size()));
    put({reinterpret_cast<const uint8_t*>(value.data()), value.size()});
  }
  void end_options() {
    put(end_of_options);
    put(uint16_t{0});
  }

  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

/// A line of a passage: "out 2: 0200...", or one without a frame, which is all place.
struct FrameLine {
  explicit FrameLine(std::string_view line) : place(line) {
    const std::size_t colon = line.rfind(": ");
    if (colon == std::string_view::npos || !(is("in ") || is("out ") || is("cpu "))) return;
    place = line.substr(0, colon);
    hex = line.substr(colon + 2);
  }
  bool is(std::string_view start) const { return place.starts_with(start); }
  std::string after(std::string_view start) const { return std::string(place.substr(start.size())); }

  std::string_view place;
  std::string_view hex;
};

}  // namespace

PcapngFile::PcapngFile(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wbe")) {
  if (file_ == nullptr) fail();
  Body body;
  body.put(uint32_t{0x1A2B3C4D});  // by which readers see the order of bytes
  body.put(uint16_t{1});           // version 1.0
  body.put(uint16_t{0});
  body.put(int64_t{-1});  // of unknown length
  write_block(section_header, body.bytes());
}

void PcapngFile::fail() const { throw BadInput("cannot write \"" + path_ + "\": " + std::strerror(errno)); }

void PcapngFile::write_block(uint32_t type, const Bytes& body) {
  constexpr uint32_t around = 12;
  const uint32_t length = static_cast<uint32_t>(body.size()) + around;
  const auto write = [&](const void* data, std::size_t size) {
    if (std::fwrite(data, 1, size, file_.get()) != size) fail();
  };
  write(&type, sizeof type);
  write(&length, sizeof length);
  write(body.data(), body.size());
  write(&length, sizeof length);
}

void PcapngFile::flush() {
  if (std::fflush(file_.get()) != 0) fail();
}

uint32_t PcapngFile::interface(const std::string& name) {
  const auto [found, is_new] = interfaces_.try_emplace(name, static_cast<uint32_t>(interfaces_.size()));
  if (is_new) {
    constexpr uint16_t ethernet = 1;
    Body body;
    body.put(ethernet);
    body.put(uint16_t{0});
    body.put(uint32_t{0});  // no frame is cut
    body.put_option(name_option, name);
    body.put_option(resolution_option, "\x09");  // nanoseconds
    body.end_options();
    write_block(interface_description, body.bytes());
  }
  return found->second;
}

void PcapngFile::add_frame(const Passage& passage, const std::string& interface_name, std::string_view hex,
                           uint32_t direction, std::string_view comment) {
  constexpr uint64_t nanoseconds = 1'000'000'000;
  const std::vector<uint8_t> frame = hex.empty() ? Bytes{} : frame_bytes(Words{std::string(hex)});
  const uint64_t time =
      static_cast<uint64_t>(passage.seconds) * nanoseconds + static_cast<uint64_t>(passage.nanoseconds);
  const uint32_t number = interface(interface_name);
  Body body;
  body.put(number);
  body.put(static_cast<uint32_t>(time >> 32));
  body.put(static_cast<uint32_t>(time));
  body.put(static_cast<uint32_t>(frame.size()));
  body.put(static_cast<uint32_t>(frame.size()));
  body.put(std::span<const uint8_t>(frame));
  constexpr std::size_t longest_option = 65535;
  if (!comment.empty()) body.put_option(comment_option, comment.substr(0, longest_option));
  if (direction != 0) {
    body.put(flags_option);
    body.put(static_cast<uint16_t>(sizeof direction));
    body.put(direction);
  }
  body.end_options();
  write_block(enhanced_packet, body.bytes());
}

void PcapngFile::add(const Passage& passage) {
  const std::string unit = passage.unit == 0 ? "" : "unit " + std::to_string(passage.unit) + ' ';
  // What came in has the way up to the next arrival as its comment, without the other frames.
  for (std::size_t i = 0; i < passage.lines.size(); ++i) {
    const FrameLine line(passage.lines[i]);
    if (line.is("in ")) {
      std::string way;
      for (std::size_t next = i + 1; next < passage.lines.size(); ++next) {
        const FrameLine other(passage.lines[next]);
        if (other.is("in ")) break;
        way.append(way.empty() ? "" : "\n").append(other.place);
      }
      last_in_ = line.hex;
      add_frame(passage, unit + "port " + line.after("in "), line.hex, inbound, way);
    } else if (line.is("out ") && !line.hex.empty()) {
      add_frame(passage, unit + "port " + line.after("out "), line.hex, outbound, {});
    } else if (line.is("cpu ")) {
      add_frame(passage, unit + "cpu", line.hex, outbound, line.place);
    } else if (line.is("dropped: ")) {
      add_frame(passage, unit + "drops", last_in_, 0, line.place);
    }
  }
}

}  // namespace saish
