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

std::string port_name(const Passage& passage, std::string_view port) {
  return (passage.unit == 0 ? "" : "unit " + std::to_string(passage.unit) + " ") + "port " + std::string(port);
}

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
  constexpr std::size_t longest = 65535;  // of an option
  if (!comment.empty()) body.put_option(comment_option, comment.substr(0, longest));
  if (direction != 0) {
    body.put(flags_option);
    body.put(static_cast<uint16_t>(sizeof direction));
    body.put(direction);
  }
  body.end_options();
  write_block(enhanced_packet, body.bytes());
}

void PcapngFile::add(const Passage& passage) {
  // What came in has the whole way as its comment, with the frames left out; what left has what it met on its way out.
  std::string way;
  std::string_view came_in;
  std::string_view port;
  for (const std::string& line : passage.lines) {
    const bool is_frame = line.starts_with("in ") || line.starts_with("out ") || line.starts_with("cpu ");
    const std::size_t colon =
        is_frame ? line.find(": ", line.find(')') == std::string::npos ? 0 : line.find(')')) : std::string::npos;
    if (line.starts_with("in ")) {
      if (came_in.data() != nullptr) add_frame(passage, port_name(passage, port), came_in, inbound, way);
      way.clear();
      port = std::string_view(line).substr(3, colon - 3);
      came_in = std::string_view(line).substr(colon + 2);
      continue;
    }
    way += (way.empty() ? "" : "\n") + (is_frame ? line.substr(0, colon) : line);
  }
  if (came_in.data() != nullptr) add_frame(passage, port_name(passage, port), came_in, inbound, way);

  std::string_view last_in;
  for (const std::string& line : passage.lines) {
    const std::string_view text = line;
    const std::size_t colon = text.find(": ", text.find(')') == std::string::npos ? 0 : text.find(')'));
    if (text.starts_with("in "))
      last_in = text.substr(colon + 2);
    else if (text.starts_with("out ") && colon != std::string_view::npos)
      add_frame(passage, port_name(passage, text.substr(4, colon - 4)), text.substr(colon + 2), outbound, {});
    else if (text.starts_with("cpu "))
      add_frame(passage, passage.unit == 0 ? "cpu" : "unit " + std::to_string(passage.unit) + " cpu",
                text.substr(colon + 2), outbound, text.substr(0, colon));
    else if (text.starts_with("dropped: "))
      add_frame(passage, passage.unit == 0 ? "drops" : "unit " + std::to_string(passage.unit) + " drops", last_in, 0,
                text);
  }
}

}  // namespace saish
