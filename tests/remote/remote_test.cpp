// Several processes on the chip of one: each finds it as it is, is told what happens, and harms no other.
#include <appl/diag/shell.h>
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <sai.h>
#include <signal.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>
#include <swsdk/recording.h>
#include <swsdk/remote.h>
#include <swsdk/watch.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string_view>
#include <thread>

#include "remote/server.h"
#include "support/scene.h"
#include "support/start.h"

extern "C" {
int sdk_main(int argc, char** argv);
extern uint32* l3_module_data[];
}

namespace {

/// What swsdk_connect says is wrong; empty when it connects.
std::string connected(const std::string& path) {
  char reason[SWSDK_REASON_SIZE] = "";
  return swsdk_connect(path.c_str(), reason) == 0 ? "" : reason;
}

std::string listening(const std::string& path) {
  char reason[SWSDK_REASON_SIZE] = "";
  return swsdk_listen(path.c_str(), reason) == 0 ? "" : reason;
}

/// What this process prints on standard error meanwhile.
template <class Work>
std::string errors_of(Work work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

/// Waits, bounded, until something that another thread or process does is there.
template <class Holds>
bool comes(Holds holds) {
  for (int i = 0; i < 5000 && !holds(); ++i) usleep(1000);
  return holds();
}

void start() {
  ASSERT_EQ(sdk_main(0, nullptr), 0);
  ASSERT_EQ(system_init(0), 0);
}

/// A client that says what it likes.
class RawClient {
 public:
  explicit RawClient(const std::string& path, bool greets = true)
      : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    if (!greets) return;
    say("swsdk-chip 1 raw\n");
    EXPECT_EQ(hear(), "swsdk-chip 1");
    EXPECT_TRUE(hear().starts_with("units("));
  }
  ~RawClient() { close(socket_); }
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;

  bool say(const std::string& text) const {
    return send(socket_, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
  }
  /// The next line; "(end)" when the chip ends the conversation.
  std::string hear() const {
    std::string line;
    char byte = 0;
    while (recv(socket_, &byte, 1, 0) == 1) {
      if (byte == '\n') return line;
      line += byte;
    }
    return "(end)";
  }

 private:
  const int socket_;
};

class Remote : public testing::Test {
 protected:
  Remote() { EXPECT_EQ(connected(server_->path()), ""); }
  ~Remote() override { swsdk_connect(nullptr, nullptr); }

  /// What the shell prints, as another process on the chip.
  std::string other(const std::string& command) const {
    return remote::run({SAISH, "--chip", server_->path(), "-c", command}).text;
  }

  remote::Folder folder_;
  std::optional<remote::Server> server_{std::in_place, folder_ / "chip"};
};

TEST_F(Remote, ChipIsUpForWhoeverComes) {
  EXPECT_EQ(soc_ndev, 0);
  start();
  EXPECT_EQ(sai_vlan_create(0, 10), 0);
  EXPECT_EQ(swsdk_connect(nullptr, nullptr), 0);
  EXPECT_EQ(soc_ndev, 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_UNIT) << "the chip inside this process is off";
  EXPECT_EQ(connected(server_->path()), "");
  EXPECT_EQ(soc_ndev, 1);
  EXPECT_EQ(CMIC_PORT(0), 0);
  EXPECT_EQ(SOC_PORT_MAX(0, port), 12);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
}

TEST_F(Remote, ChipThatAnotherProcessStartsIsExportedHere) {
  EXPECT_EQ(swsdk_journal_recording(), 0);  // from the first call on
  const std::string journal = other("sai_switch_chip_init 02:00:00:00:00:01");
  EXPECT_TRUE(comes([] { return __atomic_load_n(&soc_ndev, __ATOMIC_ACQUIRE) == 1; })) << journal;
  swsdk_events_drain();
  EXPECT_EQ(CMIC_PORT(0), 0);
  EXPECT_EQ(*l3_module_data[0] & 1, 1U) << "the start sets the egress mode";
  EXPECT_EQ(bcm_switch_control_set(0, bcmSwitchL3EgressMode, 0), 0);
  EXPECT_EQ(*l3_module_data[0] & 1, 0U);
}

TEST_F(Remote, ChipThatAnotherProcessSwitchesOffLeavesWhatIsInUseHere) {
  start();
  const soc_control_t* const unit = soc_control[0];
  pid_t child = fork();
  if (child == 0) {
    swsdk_power_off();
    _exit(soc_control[0] == nullptr ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_UNIT);
  EXPECT_TRUE(comes([] { return __atomic_load_n(&soc_ndev, __ATOMIC_ACQUIRE) == 0; }));
  EXPECT_EQ(soc_control[0], unit);
  EXPECT_EQ(CMIC_PORT(0), 0);
}

TEST_F(Remote, BoardOfTheServerOutlivesAPowerOff) {
  swsdk_connect(nullptr, nullptr);
  const remote::Server large(folder_ / "large", {"64", "2", "5"});
  ASSERT_EQ(connected(large.path()), "");
  swsdk_power_off();
  swsdk_board board{};
  swsdk_board_get(&board);
  EXPECT_EQ(board.ports, 64);
  EXPECT_EQ(sdk_main(0, nullptr), 0);
  EXPECT_EQ(soc_ndev, 2);
  EXPECT_EQ(SOC_PORT_MAX(1, port), 64);
  EXPECT_EQ(SOC_CHIP_TYPE(1), 5);
  EXPECT_EQ(bcm_vlan_create(2, 10), BCM_E_UNIT);
}

// ------------------------------------------------------------------------------------------------ callbacks ----

std::atomic<int> links_told = 0;
void count_link(int /*unit*/, bcm_port_t port, bcm_port_info_t* info) { links_told += port * 10 + info->linkstatus; }

TEST_F(Remote, CallbacksAreToldWhatOthersCause) {
  start();
  links_told = 0;
  ASSERT_EQ(bcm_linkscan_register(0, &count_link), 0);
  EXPECT_EQ(bcm_linkscan_register(0, &count_link), BCM_E_EXISTS);
  EXPECT_EQ(other("link 3 down"), "");
  swsdk_events_drain();
  EXPECT_EQ(links_told, 30);
  ASSERT_EQ(bcm_linkscan_unregister(0, &count_link), 0);
  EXPECT_EQ(bcm_linkscan_unregister(0, &count_link), BCM_E_NOT_FOUND);
  EXPECT_EQ(other("link 3 up"), "");
  swsdk_events_drain();
  EXPECT_EQ(links_told, 30);
}

TEST_F(Remote, CallbacksOfAProcessThatEndsAreForgotten) {
  start();
  for (int i = 0; i < 40; ++i) {  // more than a unit has room for
    const pid_t child = fork();
    if (child == 0) _exit(bcm_linkscan_register(0, &count_link) == 0 ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0) << i;
  }
}

TEST_F(Remote, WalksMayCallBackAndMayEndEarly) {
  start();
  for (unsigned char last = 1; last <= 3; ++last) {
    unsigned char mac[6] = {2, 0, 0, 0, 0, last};
    ASSERT_EQ(swsdk_l2_learn(0, 1, mac, last, 0), 1);
  }
  swsdk_journal_record(1);
  int walked = 0;
  const auto visit = [](int unit, bcm_l2_addr_t* address, void* count) {
    bcm_l2_addr_t again{};
    EXPECT_EQ(bcm_l2_addr_get(unit, address->mac, address->vid, &again), 0);
    EXPECT_EQ(again.port, address->port);
    return ++*static_cast<int*>(count) == 2 ? int{BCM_E_FAIL} : int{BCM_E_NONE};
  };
  EXPECT_EQ(bcm_l2_traverse(0, visit, &walked), BCM_E_FAIL);
  EXPECT_EQ(walked, 2);
  const std::string journal = support::journal();
  EXPECT_TRUE(journal.ends_with("bcm_l2_traverse(0, <callback>, <pointer>) = -11\n")) << journal;
  EXPECT_EQ(bcm_l2_traverse(0, nullptr, nullptr), BCM_E_PARAM);
}

struct Seen {
  std::atomic<int> frames = 0;
  std::atomic<std::thread::id> thread;
};
void see_frame(int /*unit*/, const swsdk_out* out, void* seen) {
  auto& all = *static_cast<Seen*>(seen);
  all.thread = std::this_thread::get_id();
  if (out->port == 2 && out->in_port == 1 && out->length == 60) ++all.frames;
}

TEST_F(Remote, FramesThatLeaveReachWhoSentThemAtOnceAndOthersAsEvents) {
  start();
  Seen seen;
  ASSERT_EQ(swsdk_frame_handle(0, &see_frame, &seen), 0);
  for (const int port : {1, 2}) swsdk_link_event(0, port, 1);
  std::vector<unsigned char> frame(60, 0);
  std::fill_n(frame.begin(), 6, 0xFF);
  frame[6] = frame[11] = 2;
  frame[12] = 8;
  swsdk_frame_send(0, 1, frame.data(), frame.size());
  EXPECT_EQ(seen.frames, 1);
  EXPECT_EQ(seen.thread.load(), std::this_thread::get_id());

  const pid_t child = fork();
  if (child == 0) _exit(swsdk_frame_send(0, 1, frame.data(), frame.size()));
  waitpid(child, nullptr, 0);
  swsdk_events_drain();
  EXPECT_EQ(seen.frames, 2);
  EXPECT_NE(seen.thread.load(), std::this_thread::get_id());
  ASSERT_EQ(swsdk_frame_handle(0, nullptr, nullptr), 0);
  swsdk_frame_send(0, 1, frame.data(), frame.size());
  EXPECT_EQ(seen.frames, 2);
}

TEST_F(Remote, FramesAreSentTogether) {
  std::vector<unsigned char> frame(60, 0);
  std::fill_n(frame.begin(), 6, 0xFF);
  frame[6] = frame[11] = 2;
  const std::vector<swsdk_in> frames(3, {1, frame.data(), frame.size(), nullptr});
  EXPECT_EQ(swsdk_frames_send(0, frames.data(), 3), -1);
  start();
  Seen seen;
  ASSERT_EQ(swsdk_frame_handle(0, &see_frame, &seen), 0);
  for (const int port : {1, 2}) swsdk_link_event(0, port, 1);
  EXPECT_EQ(swsdk_frames_send(0, frames.data(), 3), 3);
  EXPECT_EQ(seen.frames, 3);
  EXPECT_EQ(swsdk_frames_send(1, frames.data(), 3), -1);
}

// ------------------------------------------------------------------------------------ whose calls these are ----

TEST_F(Remote, JournalHasTheCallsOfItsProcessOrOfAll) {
  start();
  swsdk_journal_record(1);
  other("sai_vlan_create 0 10");
  bcm_vlan_destroy(0, 10);
  EXPECT_EQ(support::journal(), "bcm_vlan_destroy(0, 10) = 0\n");

  swsdk_journal_clear();
  swsdk_journal_record(SWSDK_JOURNAL_OF_ALL);
  other("sai_vlan_create 0 20");
  bcm_vlan_destroy(0, 20);
  std::istringstream lines(support::journal());
  std::string line;
  std::getline(lines, line);
  EXPECT_TRUE(line.starts_with("saish[")) << line;
  EXPECT_TRUE(line.ends_with("]: bcm_vlan_create(0, 20) = 0")) << line;
  std::getline(lines, line);
  std::getline(lines, line);
  EXPECT_EQ(line, "bcm_vlan_destroy(0, 20) = 0");
}

TEST_F(Remote, JournalIsTakenInWholeLines) {
  start();
  swsdk_journal_record(1);
  for (int i = 0; i < 3; ++i) bcm_vlan_destroy(0, 10);
  const std::string line = "bcm_vlan_destroy(0, 10) = -7\n";
  char taken[64];
  EXPECT_EQ(swsdk_journal_take(taken, sizeof taken), 2 * line.size());
  EXPECT_EQ(taken, line + line);
  EXPECT_EQ(swsdk_journal_take(taken, 5), 4U);
  EXPECT_EQ(swsdk_journal_take(taken, sizeof taken), line.size() - 4);
  EXPECT_EQ(swsdk_journal_take(taken, sizeof taken), 0U);
}

TEST_F(Remote, FaultsHitWhoeverCalls) {
  start();
  EXPECT_EQ(other("fail bcm_vlan_create BCM_E_FULL"), "");
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_FULL);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
}

TEST_F(Remote, ShellLeavesTheChipAsItIs) {
  EXPECT_EQ(other("show vlan"), "unit 0 is not attached\n");
  start();
  EXPECT_NE(other("show vlan").find("{1-12}"), std::string::npos);
  EXPECT_EQ(soc_ndev, 1);
  EXPECT_EQ(bcm_vlan_create(0, 1), BCM_E_EXISTS);
}

TEST_F(Remote, RecordingOfAClientHasItsOwnCallsWhichIsTold) {
  start();
  const std::string recording = folder_ / "calls";
  const auto [text, status] =
      remote::run({SAISH, "--chip", server_->path(), "--record", recording, "-c", "sai_vlan_create 0 10"});
  EXPECT_EQ(status, 0) << text;
  std::ifstream file(recording);
  const std::string lines{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(lines,
            "swsdk recording 3\ncall bcm_vlan_create(0, 10) = 0\ncall bcm_vlan_port_add(0, 10, {0}, {}) = 0\nend\n");

  const auto told = remote::run({EXAMPLE}, {"SWSDK_CHIP=" + server_->path(), "SWSDK_RECORD=" + folder_ / "more"});
  EXPECT_NE(told.text.find("/more will hold the calls of this process alone; what others do to the chip at \"" +
                           server_->path() + "\" is not in it\n"),
            std::string::npos)
      << told.text;
}

// ---------------------------------------------------------------------------------------------- a chip that goes ----

TEST_F(Remote, ChipThatIsGoneAnswersAtOnceWithOneCodeAndOneLine) {
  start();
  server_->stop(SIGKILL);
  const std::string errors = errors_of([] {
    EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_FAIL);
    EXPECT_EQ(bcm_vlan_create(7, 10), BCM_E_FAIL);
    EXPECT_EQ(system_init(0), BCM_E_FAIL);
    EXPECT_EQ(bcm_linkscan_register(0, &count_link), BCM_E_FAIL);
    EXPECT_EQ(bcm_l2_traverse(0, nullptr, nullptr), BCM_E_FAIL);
    EXPECT_EQ(swsdk_link_event(0, 1, 1), -1);
    EXPECT_EQ(swsdk_show(0, "vlan", nullptr, 0), -1);
    EXPECT_EQ(swsdk_journal_read(nullptr, 0), 0U);
    EXPECT_EQ(sai_vlan_create(0, 10), SAI_E_FAIL);
    swsdk_events_drain();
  });
  EXPECT_EQ(errors.substr(0, errors.find('\n')),
            "swsdk: the chip at \"" + server_->path() +
                "\" is gone: it has closed the connection; calls fail until sdk_main finds a chip there");
  EXPECT_EQ(errors.find("swsdk: ", 1), std::string::npos) << errors;
  EXPECT_EQ(CMIC_PORT(0), 0) << "what is exported stays readable";
}

TEST_F(Remote, ChipThatIsStartedAgainIsFoundBySdkMain) {
  start();
  server_->stop(SIGKILL);
  EXPECT_NE(errors_of([] { EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_FAIL); }), "");
  EXPECT_NE(errors_of([] { EXPECT_EQ(sdk_main(0, nullptr), BCM_E_FAIL); }).find("no chip listens at"),
            std::string::npos);
  server_.emplace(folder_ / "chip");  // the dead one's socket is taken over
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_FAIL);
  start();
  EXPECT_EQ(soc_ndev, 1);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
  links_told = 0;
  ASSERT_EQ(bcm_linkscan_register(0, &count_link), 0);
  EXPECT_EQ(swsdk_link_event(0, 5, 0), 0);
  swsdk_events_drain();
  EXPECT_EQ(links_told, 50);
}

TEST_F(Remote, ChipThatIsGoneAndSwitchedOffIsExportedAnew) {
  start();
  server_->stop(SIGKILL);
  EXPECT_NE(errors_of([] { swsdk_power_off(); }), "");
  EXPECT_EQ(soc_ndev, 0);
  EXPECT_EQ(soc_control[0], nullptr);
  server_.emplace(folder_ / "chip");
  other("sai_switch_chip_init 02:00:00:00:00:01");
  EXPECT_EQ(sdk_main(0, nullptr), 0);
  EXPECT_EQ(soc_ndev, 1);
  ASSERT_NE(soc_control[0], nullptr);
  EXPECT_EQ(SOC_PORT_MAX(0, port), 12);
}

TEST_F(Remote, SignalsThatTheApplicationBlocksAreNotTakenByTheThreadsOfTheSdk) {
  start();
  ASSERT_EQ(bcm_linkscan_register(0, &count_link), 0);
  swsdk_link_event(0, 1, 1);
  swsdk_events_drain();
  sigset_t one;
  sigset_t before;
  sigemptyset(&one);
  sigaddset(&one, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &one, &before);
  kill(getpid(), SIGUSR1);  // would end the program
  int signal = 0;
  EXPECT_EQ(sigwait(&one, &signal), 0);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(Remote, ClientThatNamesAPipeKeepsNobodyWaiting) {
  start();
  const std::string pipe = folder_ / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::string command = "led 0 load " + pipe;
  EXPECT_LT(sh_process_command(0, command.data()), 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), 0);
}

TEST_F(Remote, ServerEndsWhileClientsComeAndGo) {
  std::vector<std::unique_ptr<RawClient>> silent;
  for (int i = 0; i < 30; ++i) {  // fewer in all than the chip takes at once
    silent.push_back(std::make_unique<RawClient>(server_->path(), false));
    for (int probe = 0; probe < 5; ++probe) const RawClient gone(server_->path(), false);
  }
  server_->stop();  // the test would hang
  EXPECT_EQ(silent.back()->hear(), "(end)");
}

TEST_F(Remote, ChildOfAForkIsAClientOfItsOwn) {
  start();
  ASSERT_EQ(bcm_linkscan_register(0, &count_link), 0);
  const pid_t child = fork();
  if (child == 0) {
    const bool told = bcm_linkscan_register(0, &count_link) == 0 && swsdk_link_event(0, 4, 0) == 0;
    swsdk_events_drain();
    _exit(told && links_told >= 40 && bcm_vlan_create(0, 30) == 0 ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(bcm_vlan_create(0, 30), BCM_E_EXISTS);
}

// --------------------------------------------------------------------------------------------- what is wrong ----

TEST(RemoteAddress, ThatCannotBeListenedAtIsRefusedWithTheReason) {
  const remote::Folder folder;
  const std::string file = folder / "file";
  std::ofstream(file) << "kept";
  EXPECT_EQ(listening(file), '"' + file + "\" exists and is no socket; choose another path");
  EXPECT_EQ(listening(""), "the path of the chip's socket is empty");
  EXPECT_EQ(listening(std::string(108, 'x')), "the path of the chip's socket has 108 bytes; it can have 107");
  const std::string nowhere = folder / "no/chip";
  EXPECT_EQ(listening(nowhere),
            "cannot listen at \"" + nowhere + "\": No such file or directory; create its folder first");
  const std::string path = folder / "chip";
  ASSERT_EQ(listening(path), "");
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  EXPECT_EQ(listening(path), "this process listens already");
  EXPECT_EQ(connected(path), "this process has the chip, on which others work");
  const auto second = remote::run({SWSDK_SWITCH, "--listen", path});
  EXPECT_EQ(second.text,
            "swsdk-switch: another process listens at \"" + path + "\"; choose another path, or work on its chip\n");
  EXPECT_EQ(WEXITSTATUS(second.status), 2);
  swsdk_listen_end();
  EXPECT_NE(stat(path.c_str(), &status), 0) << "the socket is removed";
  EXPECT_EQ(std::ifstream(file).get(), 'k');
}

TEST(RemoteAddress, WhereNoChipIsIsRefusedWithTheReason) {
  const remote::Folder folder;
  const std::string nowhere = folder / "chip";
  EXPECT_EQ(connected(nowhere), "no chip listens at \"" + nowhere +
                                    "\": No such file or directory; swsdk-switch --listen " + nowhere + " starts one");
  std::ofstream(folder / "file") << "";
  EXPECT_NE(connected(folder / "file").find("Connection refused"), std::string::npos);
  EXPECT_EQ(connected(std::string(108, 'x')), "the path of the chip's socket has 108 bytes; it can have 107");
  support::start_chip();
  EXPECT_EQ(connected(nowhere), "the chip inside this process is up; swsdk_power_off switches it off");
  swsdk_power_off();
}

TEST(RemoteAddress, OfTheEnvironmentIsTriedAtLoadAndToldOnce) {
  const remote::Folder folder;
  const auto [text, status] = remote::run({EXAMPLE}, {"SWSDK_CHIP=" + folder / "chip"});
  EXPECT_TRUE(text.starts_with("swsdk: no chip listens at \"" + folder / "chip" + "\": ")) << text;
}

/// Listens as a chip does, and answers one client with a text.
class Impostor {
 public:
  Impostor(const std::string& path, std::string answer) : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(socket_, 1), 0);
    thread_ = std::thread([this, text = std::move(answer)] {
      const int client = accept(socket_, nullptr, nullptr);
      char byte = 0;
      while (recv(client, &byte, 1, 0) == 1 && byte != '\n') heard_ += byte;
      send(client, text.data(), text.size(), MSG_NOSIGNAL);
      close(client);
    });
  }
  ~Impostor() {
    thread_.join();
    close(socket_);
  }
  Impostor(const Impostor&) = delete;
  Impostor& operator=(const Impostor&) = delete;

 private:
  const int socket_;
  std::string heard_;
  std::thread thread_;
};

TEST(RemoteVersion, ThatDiffersIsOneClearLine) {
  const remote::Folder folder;
  const std::string path = folder / "chip";
  const auto said_to = [&](const std::string& answer) {
    unlink(path.c_str());
    const Impostor impostor(path, answer);
    return connected(path);
  };
  EXPECT_EQ(said_to("swsdk-chip 99\n"), "the chip at \"" + path +
                                            "\" speaks version 99 and this library version 1; use the swsdk-switch and "
                                            "the libswsdk.so of one build");
  EXPECT_EQ(said_to("refused: no room\n"), '"' + path + "\": no room");
  EXPECT_EQ(said_to("220 mail ready\r\n"), "what listens at \"" + path + "\" is no chip");
  EXPECT_EQ(said_to(""), "what listens at \"" + path + "\" is no chip");
}

// -------------------------------------------------------------------------------------- clients that misbehave ----

TEST_F(Remote, ClientIsAnsweredInTheTextOfRecordings) {
  start();
  const RawClient client(server_->path());
  client.say("bcm_vlan_create(0, 10)\n");
  EXPECT_EQ(client.hear(), "= 0 call ");
  client.say("bcm_vlan_create(0, ten)\n");
  EXPECT_TRUE(client.hear().starts_with("error: "));
  client.say("bcm_vlan_control_vlan_get(0, 10, &?)\nswsdk_link_event(5, 1, 1)\n");
  EXPECT_EQ(client.hear(), "= 0 call &{}");
  EXPECT_EQ(client.hear(), "= -1");
}

TEST_F(Remote, ClientThatSaysNonsenseIsRefusedOrLeftAndOthersAreServed) {
  start();
  EXPECT_EQ(bcm_vlan_create(0, 10), 0);
  for (const char* const nonsense : {"hello\n", "()\n", "no_such_function()\n", "bcm_vlan_create(0, 10) = \n",
                                     "bcm_vlan_create(0, 10) and more\n", "\n", ")(\n", "bcm_vlan_create\n"}) {
    const RawClient client(server_->path());
    client.say(nonsense);
    EXPECT_EQ(client.hear(), "(end)") << nonsense;
  }
  for (const char* const wrong :
       {"bcm_vlan_create(0)\n", "bcm_vlan_create(0, 10, 11)\n", "bcm_vlan_create(0, 99999999)\n",
        "bcm_vlan_create(x, y)\n", "bcm_vlan_port_add(0, 10, {1-}, {})\n", "bcm_linkscan_register(0, <callback 0>)\n",
        "bcm_stat_multi_get(0, 1, 1000000, [1], &? of 1000000)\n", "swsdk_show(0, \"vlan\", &? of 5, 500)\n"}) {
    const RawClient client(server_->path());
    client.say(wrong);
    EXPECT_TRUE(client.hear().starts_with("error: ")) << wrong;
    client.say("bcm_vlan_destroy(0, 11)\n");
    EXPECT_EQ(client.hear(), "= -7 call ") << wrong;
  }
  {
    const RawClient stranger(server_->path(), false);
    stranger.say("swsdk-chip 2 x\n");
    EXPECT_EQ(stranger.hear(), "swsdk-chip 1");
    EXPECT_EQ(stranger.hear(), "(end)");
  }
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
}

TEST_F(Remote, WatchHasTheFramesOfAllProcessesAndTheNamesOfTheirCallers) {
  start();
  swsdk_link_event(0, 1, 1);
  const int watch = swsdk_watch_begin(SWSDK_WATCH_WAYS, nullptr, 0);
  EXPECT_EQ(watch, 0);
  EXPECT_EQ(other("sai_vlan_create 0 10"), "  = 0\n");
  EXPECT_EQ(other("send 1 02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10"), "  passed on\n");
  std::string text(65536, '\0');
  text.resize(swsdk_watch_take(watch, text.data(), text.size()));
  EXPECT_NE(text.find("\nin 1: 020000000002020000000001"), std::string::npos) << text;
  EXPECT_NE(text.find(": saish["), std::string::npos) << text;
  EXPECT_NE(text.find("]: bcm_vlan_port_add(0, 10, {0}, {}) = 0\n"), std::string::npos) << text;
}

TEST_F(Remote, WatchesEndWithTheirProcess) {
  start();
  swsdk_link_event(0, 1, 1);
  std::vector<unsigned char> frame(60, 2);
  for (int i = 0; i < SWSDK_WATCHES; ++i) EXPECT_EQ(swsdk_watch_begin(SWSDK_WATCH_ENDS, nullptr, 0), i);
  EXPECT_EQ(swsdk_connect(nullptr, nullptr), 0);
  EXPECT_EQ(connected(server_->path()), "");
  EXPECT_EQ(swsdk_watch_end(0), -1);
  EXPECT_EQ(swsdk_watch_begin(SWSDK_WATCH_ENDS, nullptr, 0), 0);
  std::thread sending([&] {
    for (int i = 0; i < 500; ++i) swsdk_frame_send(0, 1, frame.data(), frame.size());
  });
  std::vector<char> text(65536);
  std::size_t frames = 0;
  const auto take = [&] {
    const std::size_t length = swsdk_watch_take(0, text.data(), text.size());
    const std::string_view blocks(text.data(), length);
    for (std::size_t at = 0; (at = blocks.find("\nin 1: ", at)) != std::string_view::npos; ++at) ++frames;
    return frames == 500;
  };
  EXPECT_TRUE(comes(take)) << frames;
  sending.join();
}

TEST_F(Remote, ClientThatStopsAnywhereLeavesNothing) {
  start();
  const auto is_alone = [&](long threads, int descriptors) {
    return comes([&] { return server_->status("Threads") <= threads && server_->descriptors() <= descriptors; });
  };
  EXPECT_EQ(bcm_vlan_create(0, 10), 0);
  const long threads = server_->status("Threads");
  const int descriptors = server_->descriptors();
  const std::string all = "swsdk-chip 1 raw\nbcm_linkscan_register(0, <callback 3>)\nbcm_vlan_create(0, 20)\n";
  for (std::size_t length = 0; length <= all.size(); length += 3) {
    const RawClient client(server_->path(), false);
    client.say(all.substr(0, length));
  }
  EXPECT_TRUE(is_alone(threads, descriptors)) << server_->status("Threads") << ' ' << server_->descriptors();
  {
    const RawClient endless(server_->path());  // a line without an end
    const std::string piece(65536, 'x');
    for (int i = 0; i < 64 && endless.say(piece); ++i) continue;
    EXPECT_TRUE(comes([&] { return !endless.say(piece); }));
  }
  EXPECT_TRUE(is_alone(threads, descriptors)) << server_->status("Threads") << ' ' << server_->descriptors();
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
}

TEST_F(Remote, ClientThatNeverReadsHarmsNoOther) {
  start();
  const RawClient deaf(server_->path());
  deaf.say("bcm_linkscan_register(0, <callback 3>)\nswsdk_frame_handle(0, <callback 4>, NULL)\n");
  const RawClient flood(server_->path());
  std::string calls;
  while (calls.size() < 100000) calls += "swsdk_show(0, \"vlan\", &? of 4096, 4096)\n";
  std::thread flooding([&] { flood.say(calls + calls + calls); });  // its answers fill the socket
  std::vector<unsigned char> frame(9000, 0xFF);
  frame[6] = 2;
  const long before = server_->status("VmRSS");
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(swsdk_link_event(0, 1, i % 2), 0);
    swsdk_frame_send(0, 2, frame.data(), frame.size());
  }
  // Twelve copies of each frame are 300 KB of text; at most 16 MiB wait, and what is on its way is no more.
  EXPECT_LT(server_->status("VmRSS") - before, 128 << 10);
  EXPECT_EQ(bcm_vlan_create(0, 10), 0);
  server_->stop();
  flooding.join();
}

TEST_F(Remote, ClientThatStopsIsToldHowManyEventsItHasMissed) {
  start();
  for (int port = 1; port <= 12; ++port) swsdk_link_event(0, port, 1);
  const pid_t child = fork();
  if (child == 0) {
    swsdk_frame_handle(
        0, [](int, const swsdk_out*, void*) {}, nullptr);
    raise(SIGSTOP);
    // What is lost is not waited for.
    const std::string errors = errors_of([] { swsdk_events_drain(); });
    _exit(errors.find(" events of the chip are lost") != std::string::npos ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, WUNTRACED);
  ASSERT_TRUE(WIFSTOPPED(status));
  std::vector<unsigned char> frame(9000, 0xFF);
  frame[6] = 2;
  for (int i = 0; i < 100; ++i) swsdk_frame_send(0, 2, frame.data(), frame.size());
  kill(child, SIGCONT);
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST_F(Remote, ChipIsSwitchedOffAndOnByOneClientWhileOthersUseIt) {
  start();
  const pid_t switcher = fork();
  if (switcher == 0) {
    for (int i = 0; i < 300; ++i) {
      swsdk_power_off();
      sdk_main(0, nullptr);
      system_init(0);
    }
    _exit(0);
  }
  const pid_t starter = fork();
  if (starter == 0) {
    for (int i = 0; i < 1000; ++i) system_init(0);
    _exit(0);
  }
  int done = 0;
  int status = -1;
  for (int mac = 0; done < 2; ++mac) {
    const unsigned char frame[60] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 2};
    EXPECT_NE(bcm_vlan_create(0, 10), BCM_E_FAIL);
    swsdk_frame_send(0, 1, frame, sizeof frame);
    swsdk_show(0, "mac", nullptr, 0);
    swsdk_board board{};
    swsdk_board_get(&board);
    ASSERT_EQ(board.ports, 12) << "the server is there";
    if (waitpid(-1, &status, WNOHANG) > 0) done += status == 0 ? 1 : 3;
  }
  EXPECT_EQ(done, 2);
}

TEST_F(Remote, CallThatIsTooLongIsRefusedAlone) {
  start();
  const std::vector<unsigned char> frame(400000, 0xFF);
  const std::string errors = errors_of([&] { EXPECT_EQ(swsdk_frame_send(0, 1, frame.data(), frame.size()), -1); });
  EXPECT_EQ(errors,
            "swsdk: a call of swsdk_frame_send with 1200034 bytes of text is too long for a chip in another process\n");
  EXPECT_EQ(bcm_vlan_create(0, 10), 0);
}

TEST_F(Remote, ClientsOfManyThreadsAreServedInTheOrderOfEach) {
  start();
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (int thread = 0; thread < 8; ++thread)
    threads.emplace_back([&, thread] {
      for (int i = 0; i < 200; ++i) {
        const auto vlan = static_cast<bcm_vlan_t>(100 + thread);
        if (bcm_vlan_create(0, vlan) != 0) ++wrong;
        if (bcm_vlan_destroy(0, vlan) != 0) ++wrong;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
