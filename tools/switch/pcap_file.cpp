// Files: frames come out of one and go into another.
#include <pcap/pcap.h>
#include <sys/time.h>

#include "attachment.h"

namespace vswitch {

namespace {

constexpr int whole_frames = 65535;

class PcapFiles : public Attachment {
 public:
  PcapFiles(const std::string& input, const std::string& output) : file_(pcap_open_dead(DLT_EN10MB, whole_frames)) {
    if (!input.empty()) {
      char error[PCAP_ERRBUF_SIZE];
      input_.reset(pcap_open_offline(input.c_str(), error));
      if (!input_) throw CannotStart(std::string("cannot read frames: ") + error);
      if (pcap_datalink(input_.get()) != DLT_EN10MB) throw CannotStart(input + " does not hold Ethernet frames");
    }
    if (output.empty()) return;
    output_.reset(pcap_dump_open(file_.get(), output.c_str()));
    if (!output_) throw CannotStart(std::string("cannot write frames: ") + pcap_geterr(file_.get()));
  }

  int descriptor() const override { return -1; }
  bool has_link() const override { return true; }
  bool is_over() const override { return !input_; }

  /// One frame: those of several files come in turn.
  void receive(const Receiver& receiver) override {
    pcap_pkthdr* header = nullptr;
    const u_char* bytes = nullptr;
    if (!input_) return;
    if (pcap_next_ex(input_.get(), &header, &bytes) != 1) return input_.reset();
    receiver({bytes, header->caplen});
  }

  void send(Bytes frame) override {
    if (!output_) return;
    pcap_pkthdr header{};
    gettimeofday(&header.ts, nullptr);
    header.caplen = header.len = static_cast<bpf_u_int32>(frame.size());
    pcap_dump(reinterpret_cast<u_char*>(output_.get()), &header, frame.data());
    pcap_dump_flush(output_.get());  // who watches the file sees the frame
  }

 private:
  struct Close {
    void operator()(pcap_t* file) const { pcap_close(file); }
    void operator()(pcap_dumper_t* file) const { pcap_dump_close(file); }
  };

  const std::unique_ptr<pcap_t, Close> file_;
  std::unique_ptr<pcap_t, Close> input_;
  std::unique_ptr<pcap_dumper_t, Close> output_;
};

}  // namespace

std::unique_ptr<Attachment> attach_pcap(const std::string& input, const std::string& output) {
  return std::make_unique<PcapFiles>(input, output);
}

}  // namespace vswitch
