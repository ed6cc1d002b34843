// Files that Wireshark reads: frames with the interface, direction and decision of each.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "watch.h"

namespace saish {

/// Each port of each unit is an interface, and so are the CPU and the frames that are dropped.
class PcapngFile {
 public:
  /// Throws BadInput, with the reason, when the file cannot be written; so do the functions below.
  explicit PcapngFile(const std::string& path);

  /// Adds what came in, what left, and what was dropped, each with what was decided as its comment.
  void add(const Passage& passage);
  /// Hands everything to the system.
  void flush();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using Bytes = std::vector<uint8_t>;

  uint32_t interface(const std::string& name);
  void add_frame(const Passage& passage, const std::string& interface_name, std::string_view hex, uint32_t direction,
                 std::string_view comment);
  void write_block(uint32_t type, const Bytes& body);
  [[noreturn]] void fail() const;

  const std::string path_;
  std::unique_ptr<std::FILE, Close> file_;
  std::map<std::string, uint32_t> interfaces_;
  std::string last_in_;
};

}  // namespace saish
