#include "script.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace saish {

namespace {

/// The byte order mark with which some editors begin a UTF-8 file.
constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

}  // namespace

Script::Script(const std::string& path) : path_(path), file_(path == "-" ? stdin : std::fopen(path.c_str(), "re")) {
  if (file_ == nullptr) throw unreadable();
}

Script::~Script() {
  if (file_ != stdin) std::fclose(file_);
  std::free(buffer_);
}

BadInput Script::unreadable() const {
  return BadInput("cannot read the script \"" + path_ + "\": " + std::strerror(errno));
}

bool Script::next(std::string& line) {
  const ssize_t length = getline(&buffer_, &size_, file_);
  if (length < 0) {
    // A directory can be opened like a file; only reading fails.
    if (std::ferror(file_) != 0) throw unreadable();
    return false;
  }
  line.assign(buffer_, static_cast<std::size_t>(length));
  if (line.ends_with('\n')) line.pop_back();
  if (at_start_ && line.starts_with(byte_order_mark)) line.erase(0, byte_order_mark.size());
  at_start_ = false;
  return true;
}

}  // namespace saish
