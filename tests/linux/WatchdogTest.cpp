// A tap whose process is stopped, hangs or dies with somebody's click in its hands.
#include "platform/linux/x11/Watchdog.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/support/XvfbSession.h"

namespace {

using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;
constexpr auto bound = std::chrono::milliseconds(250);

class WatchdogTest : public testing::Test {
 protected:
  WatchdogTest() {
    hands.move(300, 300);
    window.journalOf(1);
    window.clear();
  }

  void startHost(const std::string& mode) {
    host = std::make_unique<support::ChildProcess>(std::vector<std::string>{TAP_HOST, mode});
    ASSERT_EQ(host->readLine(support::patience), "ready");
  }
  /// Whether it is a watchdog that has the tap's connection and one of its own beside the host's. One that is about to
  /// be started has the host's descriptors for a moment, but not the name.
  static bool isWatching(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process);
    std::string name;
    std::getline(std::ifstream(folder + "/comm"), name);
    if (name != "ostrel-watchdog") return false;
    std::error_code gone;
    int sockets = 0;
    for (std::filesystem::directory_iterator file(folder + "/fd", gone), end; !gone && file != end;
         file.increment(gone)) {
      const bool isOutput = file->path().filename() == "1" || file->path().filename() == "2";
      const auto target = std::filesystem::read_symlink(file->path(), gone).string();
      if (!isOutput && target.starts_with("socket:")) ++sockets;
    }
    return sockets == 3;
  }
  /// The host's child that watches, another one than `former`; 0 when there is none in time.
  pid_t waitForWatchdog(pid_t former) const {
    for (const auto deadline = Clock::now() + support::patience; Clock::now() < deadline; std::this_thread::yield()) {
      // Children belong to the thread that made them, and to the first one after its end.
      for (const auto& thread : std::filesystem::directory_iterator("/proc/" + std::to_string(host->pid()) + "/task")) {
        std::ifstream children(thread.path() / "children");
        pid_t child = 0;
        while (children >> child) {
          if (child != former && isWatching(child)) return child;
        }
      }
    }
    return 0;
  }
  /// Returns when it stands still.
  void stopHost() {
    host->signal(SIGSTOP);
    waitpid(host->pid(), nullptr, WUNTRACED);
  }
  /// Presses into the frozen mouse and moves. The server holds the movement back until somebody frees the pointer.
  void expectMouseToComeFree() {
    const auto start = Clock::now();
    hands.press();
    hands.move(310, 310);
    window.journalWhen([](const auto& journal) { return std::ranges::count(journal, "motion") > 0; });
    const auto elapsed = Clock::now() - start;
    EXPECT_EQ(window.journal(), (Words{"press1", "motion"})) << "the press is late, but not lost";
    EXPECT_LT(elapsed, bound);
    RecordProperty("milliseconds",
                   static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()));
    hands.release();
    // From then on clicks go past the process.
    window.journalWhen([](const auto& journal) { return std::ranges::count(journal, "release1") > 0; });
    window.clear();
    hands.click();
    EXPECT_EQ(window.journalOf(2), (Words{"press1", "release1"}));
    window.clear();
  }
  void expectTapToComeBack() {
    EXPECT_EQ(host->readLine(support::patience), "notice");
    const auto deadline = Clock::now() + std::chrono::seconds(2);
    std::optional<std::string> line;
    for (std::size_t clicks = 1; !line && Clock::now() < deadline; ++clicks) {
      hands.click();
      window.journalOf(2 * clicks);
      line = host->readLine(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(line, "press");
    window.clear();
  }

  support::XvfbSession session;
  support::Hands hands;
  support::JournalWindow window{100, 100, 600, 400};
  std::unique_ptr<support::ChildProcess> host;
};

TEST_F(WatchdogTest, FreesTheMouseFromAStoppedTap) {
  startHost("pass");
  hands.click();
  EXPECT_EQ(host->readLine(support::patience), "press");
  EXPECT_EQ(window.journalOf(2), (Words{"press1", "release1"}));
  window.clear();
  stopHost();
  expectMouseToComeFree();
  host->signal(SIGCONT);
  expectTapToComeBack();
  stopHost();
  expectMouseToComeFree();
}

TEST_F(WatchdogTest, FreesTheMouseFromATapStoppedInTheMiddleOfAPress) {
  startHost("stop");
  expectMouseToComeFree();
  EXPECT_EQ(host->readLine(support::patience), "press");
  host->signal(SIGCONT);
  expectTapToComeBack();  // and nothing else: the press has gone its way and is not acted upon
}

TEST_F(WatchdogTest, ADeadWatchdogIsStartedAgain) {
  startHost("pass");
  const pid_t first = waitForWatchdog(0);
  ASSERT_GT(first, 0);
  kill(first, SIGKILL);
  const pid_t second = waitForWatchdog(first);
  ASSERT_GT(second, 0);
  kill(second, SIGKILL);  // so soon that there is a pause
  ASSERT_GT(waitForWatchdog(second), 0);
  stopHost();
  expectMouseToComeFree();
  host->signal(SIGCONT);
  expectTapToComeBack();
}

TEST_F(WatchdogTest, FreesTheMouseFromATapWhoseThreadHangs) {
  startHost("hang");
  expectMouseToComeFree();
}

TEST_F(WatchdogTest, KilledProcessLeavesTheMouseFreeAndNoProcess) {
  startHost("kill");
  expectMouseToComeFree();
  EXPECT_EQ(host->readLine(support::patience), "press");
  // The watchdog holds the other end of the same pipe.
  const auto start = Clock::now();
  EXPECT_FALSE(host->readLine(support::patience));
  EXPECT_LT(Clock::now() - start, support::patience);
}

}  // namespace
