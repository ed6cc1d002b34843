// Files: frames are read from one and written to another.
#include <fcntl.h>
#include <pcap/pcap.h>
#include <stdio_ext.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "attachment.h"

namespace vswitch {

namespace {

constexpr int whole_frames = 65535;
constexpr const char* what_is_read = "; pcap and pcapng files with Ethernet frames are read";

std::string cannot(const char* action, const std::string& path) {
  return std::string("cannot ") + action + " \"" + path + "\": " + std::strerror(errno);
}

std::string frames(long long count) { return std::to_string(count) + (count == 1 ? " frame" : " frames"); }

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
  void operator()(pcap_t* file) const { pcap_close(file); }
  void operator()(pcap_dumper_t* file) const { pcap_dump_close(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

/// Whether no lock of another port on the file excludes this one. Devices and pipes are not locked.
bool lock(std::FILE* file, int kind) {
  struct stat status {};
  return fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode) || flock(fileno(file), kind | LOCK_NB) == 0 ||
         errno != EWOULDBLOCK;
}

class Input {
 public:
  Input(const std::string& path, Tell tell) : path_(path), tell_(std::move(tell)) {
    File file(std::fopen(path.c_str(), "rbe"));
    if (!file) throw CannotStart(cannot("read", path));
    if (!lock(file.get(), LOCK_SH)) throw CannotStart('"' + path + "\" is written already; read another file");
    char error[PCAP_ERRBUF_SIZE];
    capture_.reset(pcap_fopen_offline(file.get(), error));
    if (!capture_) throw CannotStart("cannot read \"" + path + "\": " + error + what_is_read);
    [[maybe_unused]] const std::FILE* const owned = file.release();  // the capture closes it
    const int type = pcap_datalink(capture_.get());
    if (type == DLT_EN10MB) return;
    const char* const name = pcap_datalink_val_to_description(type);
    throw CannotStart('"' + path + "\" holds frames of link type " + (name != nullptr ? name : std::to_string(type)) +
                      what_is_read);
  }

  bool is_over() const { return !capture_; }

  void receive(const Receiver& receiver) {
    pcap_pkthdr* header = nullptr;
    const u_char* bytes = nullptr;
    if (!capture_) return;
    const int outcome = pcap_next_ex(capture_.get(), &header, &bytes);
    if (outcome == 1) {
      ++passed_;
      const Frame frame{.bytes = {bytes, header->caplen}, .segments = {}};
      return receiver({&frame, 1});
    }
    if (outcome != PCAP_ERROR_BREAK)
      tell_('"' + path_ + "\" is cut off or damaged after " + frames(passed_) + ": " + pcap_geterr(capture_.get()));
    capture_.reset();
  }

 private:
  const std::string path_;
  const Tell tell_;
  std::unique_ptr<pcap_t, Close> capture_;
  long long passed_ = 0;
};

class Output {
 public:
  Output(const std::string& path, Tell tell)
      : path_(path), tell_(std::move(tell)), format_(pcap_open_dead(DLT_EN10MB, whole_frames)) {
    // Emptied only after the lock, when no port reads it.
    const int number = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    File file(number < 0 ? nullptr : fdopen(number, "wb"));
    if (!file) throw CannotStart(cannot("write", path));
    if (!lock(file.get(), LOCK_EX))
      throw CannotStart('"' + path + "\" is read or written already, and would be emptied; write another file");
    [[maybe_unused]] const int emptied = ftruncate(number, 0);  // devices and pipes have nothing to empty
    dumper_.reset(pcap_dump_fopen(format_.get(), file.release()));
    if (!dumper_) throw CannotStart("cannot write \"" + path + "\": " + pcap_geterr(format_.get()));
    flush();
  }

  void send(Bytes frame) {
    if (!dumper_) return;
    pcap_pkthdr header{};
    gettimeofday(&header.ts, nullptr);
    header.caplen = header.len = static_cast<bpf_u_int32>(frame.size());
    pcap_dump(reinterpret_cast<u_char*>(dumper_.get()), &header, frame.data());
    if (flush()) ++passed_;
  }

 private:
  /// Flushes, so that a reader of the file sees what was written. On failure, the file ends with its last whole frame.
  bool flush() {
    std::FILE* const file = pcap_dump_file(dumper_.get());
    errno = 0;
    if (pcap_dump_flush(dumper_.get()) == 0 && std::ferror(file) == 0) {
      end_ = ftello(file);
      return true;
    }
    tell_(cannot("write", path_) + "; it ends after " + frames(passed_) + ", and all others are lost");
    __fpurge(file);
    [[maybe_unused]] const int cut = ftruncate(fileno(file), end_);
    dumper_.reset();
    return false;
  }

  const std::string path_;
  const Tell tell_;
  const std::unique_ptr<pcap_t, Close> format_;
  std::unique_ptr<pcap_dumper_t, Close> dumper_;
  off_t end_ = 0;
  long long passed_ = 0;
};

class PcapFiles : public Attachment {
 public:
  PcapFiles(const std::string& input, const std::string& output, const Tell& tell) {
    if (!input.empty()) input_.emplace(input, tell);
    if (!output.empty()) output_.emplace(output, tell);
  }

  int descriptor() const override { return -1; }
  bool has_frames() const override { return !is_over(); }
  bool has_link() const override { return true; }
  bool is_over() const override { return !input_ || input_->is_over(); }

  /// Passes on one frame: several files take turns.
  void receive(const Receiver& receiver) override {
    if (input_) input_->receive(receiver);
  }

 private:
  void send_one(Bytes frame) override {
    if (output_) output_->send(frame);
  }

  std::optional<Input> input_;
  std::optional<Output> output_;
};

}  // namespace

std::unique_ptr<Attachment> attach_pcap(const std::string& input, const std::string& output, const Tell& tell) {
  return std::make_unique<PcapFiles>(input, output, tell);
}

}  // namespace vswitch
