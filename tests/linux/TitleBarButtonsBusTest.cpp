// Title-bar buttons as programs on the accessibility bus tell of them, the odd and the endless ones among them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/linux/atspi/TitleBarButtons.h"
#include "tests/linux/PrintedButton.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using atspi::ButtonRole;
using atspi::TitleBarButton;
using atspi::TitleBarButtons;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto bound = 20s;
const std::string programs = OSTREL_TEST_SUPPORT;

/// An accessibility bus with one program on it.
class Bus {
 public:
  explicit Bus(const std::string& mode)
      : daemon_(
            {"dbus-daemon", "--session", "--nofork", "--print-address=1", "--address=unix:path=" + folder_ / "bus"}) {
    const auto address = daemon_.readLine(bound);
    if (!address) throw std::runtime_error("no message bus");
    setenv("AT_SPI_BUS_ADDRESS", address->c_str(), 1);
    program_.emplace(std::vector<std::string>{programs + "/described_window.py", mode});
    if (program_->readLine(bound) != "ready") throw std::runtime_error("no program on the bus");
  }
  ~Bus() { unsetenv("AT_SPI_BUS_ADDRESS"); }
  support::ChildProcess& program() { return *program_; }

 private:
  const support::TemporaryFolder folder_;
  support::ChildProcess daemon_;
  std::optional<support::ChildProcess> program_;
};

atspi::Window windowOf(std::uint32_t id, pid_t pid) {
  atspi::Window window;
  window.id = id;
  window.pid = pid;
  window.frame = window.client = CGRectMake(100, 100, 600, 300);
  return window;
}

/// The object under test, and what it finds.
class Finder {
 public:
  explicit Finder(TitleBarButtons::Options options = {}) : buttons_([this](std::uint32_t) { wake(); }, options) {}

  TitleBarButtons* operator->() { return &buttons_; }

  /// The buttons once there are any; none after the bound.
  std::vector<TitleBarButton> buttons(std::uint32_t window) {
    std::unique_lock guard(mutex_);
    changed_.wait_for(guard, bound, [&] { return !buttons_.buttons(window).empty(); });
    return buttons_.buttons(window);
  }

 private:
  void wake() {
    const std::lock_guard guard(mutex_);
    changed_.notify_one();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  TitleBarButtons buttons_;
};

struct Tree {
  const char* name;
  /// Minimise, zoom and close, as the toolkit itself places them.
  std::array<CGRect, 3> rects;
};

class NestedExtents : public testing::TestWithParam<Tree> {};

TEST_P(NestedExtents, BecomePlacesInTheFrame) {
  Bus bus(GetParam().name);
  Finder finder;
  finder->update(windowOf(1, bus.program().pid()));
  const auto buttons = finder.buttons(1);
  ASSERT_EQ(buttons.size(), 3U);
  for (const auto& button : buttons) {
    const CGRect wanted = GetParam().rects[static_cast<std::size_t>(button.role)];
    EXPECT_EQ(button, (TitleBarButton{button.role, wanted, true})) << static_cast<int>(button.role);
  }
}

CGRect inHeader(double x, double y, double width, double height) { return CGRectMake(x, y, width, height); }

INSTANTIATE_TEST_SUITE_P(
    , NestedExtents,
    testing::Values(Tree{"gtk-border", {inHeader(476, 4, 34, 46), inHeader(516, 4, 34, 46), inHeader(556, 4, 40, 46)}},
                    Tree{"gtk-border-left", {inHeader(50, 4, 34, 46), inHeader(90, 4, 34, 46), inHeader(4, 4, 40, 46)}},
                    Tree{"adwaita-shadow",
                         {inHeader(486, 6, 34, 34), inHeader(523, 6, 34, 34), inHeader(560, 6, 34, 34)}}),
    [](const auto& tested) {
      std::string name = tested.param.name;
      std::ranges::replace(name, '-', '_');
      return name;
    });

TEST(TitleBarButtonsBus, AnApplicationWithoutEndIsLeftAfterAWhile) {
  Bus bus("slow");
  std::optional<Finder> finder(std::in_place, TitleBarButtons::Options{.conversationTimeout = 300});
  (*finder)->update(windowOf(1, bus.program().pid()));
  EXPECT_EQ(bus.program().readLine(bound), "asked");
  EXPECT_EQ(bus.program().readLine(bound), "asked") << "the first conversation never ended";
  const auto end = Clock::now();
  finder.reset();
  EXPECT_LT(Clock::now() - end, 500ms);
}

TEST(TitleBarButtonsBus, FewApplicationsAreAskedAtATime) {
  Bus bus("deaf");
  Finder finder({.callTimeout = 5000});
  // The last one is the program's own, so that something is found when all have had their turn.
  for (int other = 1; other < 12; ++other) finder->update(windowOf(static_cast<std::uint32_t>(other), other));
  finder->update(windowOf(12, bus.program().pid()));
  EXPECT_EQ(finder.buttons(12).size(), 3U);
  bus.program().writeLine("most");
  EXPECT_EQ(bus.program().readLine(bound), "4");
}

TEST(TitleBarButtonsBus, ABusThatNeverGreetsDelaysNoEnd) {
  const support::TemporaryFolder folder;
  support::ChildProcess silent({programs + "/silent_bus.py", folder / "bus"});
  ASSERT_EQ(silent.readLine(bound), "ready");
  setenv("AT_SPI_BUS_ADDRESS", ("unix:path=" + folder / "bus").c_str(), 1);
  std::optional<Finder> finder(std::in_place);
  (*finder)->update(windowOf(1, silent.pid()));
  ASSERT_EQ(silent.readLine(bound), "entered");
  const auto end = Clock::now();
  finder.reset();
  EXPECT_LT(Clock::now() - end, 5s);
  unsetenv("AT_SPI_BUS_ADDRESS");
}

}  // namespace
