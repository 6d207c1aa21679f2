// What the settings cost. The time from the request that a second start of Ostrel makes (sent from here, so that no
// start of a process is in it) to three moments of the window's first opening: it is built and Ostrel answers, it is
// mapped, its contents are on the screen. And Ostrel's memory before that, when nobody has ever opened the settings,
// and after it. Every opening is in an Ostrel that has just been started.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <set>
#include <stdexcept>
#include <thread>

#include "bench/Figures.h"
#include "bench/Program.h"
#include "platform/linux/freedesktop/SessionSocket.h"
#include "tests/desktop/DesktopSession.h"
#include "tests/support/ProcessFiles.h"

namespace {

using bench::Clock;
using bench::Figures;
using desktoptest::Window;

constexpr int starts = 10;
constexpr double wantedMilliseconds = 150;
constexpr double wantedMegabytes = 40;
constexpr auto bound = std::chrono::seconds(5);

/// When the condition first held, to about a millisecond.
template <typename Condition>
Clock::time_point when(Condition condition, const char* what) {
  const auto end = Clock::now() + bound;
  while (!condition()) {
    if (Clock::now() > end) throw std::runtime_error(std::string("the settings window does not ") + what);
    std::this_thread::sleep_for(std::chrono::microseconds(500));
  }
  return Clock::now();
}

/// Whether the header is there: its row of pixels through icon and title has the colours of both.
bool isPainted(const x11::Connection& connection, Window window) {
  constexpr int y = 30, width = 400;
  constexpr std::size_t fewColours = 8;
  const auto image = connection.reply(
      xcb_get_image_reply, xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, y, width, 1, ~0U));
  if (!image) return false;
  const auto* pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
  return std::set<std::uint32_t>(pixels, pixels + width).size() > fewColours;
}

struct Opening {
  Figures built{"built"};
  Figures mapped{"mapped"};
  Figures painted{"contents on the screen"};
};

void open(desktoptest::DesktopSession& session, const x11::Connection& connection, Opening& opening) {
  const auto before = session.x().clients();
  const std::string path = freedesktop::sessionPath();
  const auto asked = Clock::now();
  auto answered = std::async(std::launch::async, [&] {
    const auto reply = freedesktop::askSession(path, "settings", bound);
    if (reply.text != "shown") throw std::runtime_error("the settings do not open");
    return Clock::now();
  });
  Window window = XCB_NONE;
  const auto mapped = when(
      [&] {
        for (const Window client : session.x().clients()) {
          if (std::find(before.begin(), before.end(), client) == before.end()) window = client;
        }
        const auto attributes = session.x().attributes(window);
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
      },
      "appear");
  const auto painted = when([&] { return isPainted(connection, window); }, "show anything");
  opening.built.add(answered.get() - asked);
  opening.mapped.add(mapped - asked);
  opening.painted.add(painted - asked);
}

/// The most that each of Ostrel's processes had in any run, in MB: the program itself, then those it starts.
class Memory {
 public:
  void add(pid_t program) {
    const auto processes = support::withChildren(program);
    most_.resize(std::max(most_.size(), processes.size()));
    for (std::size_t i = 0; i < processes.size(); ++i) {
      const auto kilobytes = support::number(support::folder(processes[i]) / "smaps_rollup", "Rss:");
      most_[i] = std::max(most_[i], static_cast<double>(kilobytes) / 1024);
    }
  }
  void print(const char* title) const {
    std::printf("  %-28s", title);
    for (std::size_t i = 0; i < most_.size(); ++i)
      std::printf("%s%.1f MB", i == 0 ? " program " : ", helper ", most_[i]);
    std::printf("\n");
  }
  double ofProgram() const { return most_.at(0); }

 private:
  std::vector<double> most_;
};

void printLimit(const char* what, double value, double wanted, const char* unit) {
  std::printf("  %-28s %.1f %s (wanted: at most %.0f)%s\n", what, value, unit, wanted,
              value <= wanted ? "" : "  MISSED");
}

void measure(desktoptest::DesktopSession& session) {
  const auto connection = x11::Connection::open(session.displayName());
  if (!connection) throw std::runtime_error("no second connection");
  Opening opening;
  Memory unopened, opened;
  for (int i = 0; i < starts; ++i) {
    session.startOstrel();
    session.settle();
    unopened.add(session.ostrel().pid());
    open(session, *connection, opening);
    session.settle();
    opened.add(session.ostrel().pid());
    session.stopOstrel();
  }
  std::printf("Request to the settings window's first opening:\n");
  for (const Figures* figures : {&opening.built, &opening.mapped, &opening.painted}) figures->print();
  printLimit("built, median", opening.built.median(), wantedMilliseconds, "ms");
  printLimit("on the screen, maximum", opening.painted.quantile(1), wantedMilliseconds, "ms");
  std::printf("Resident memory, the most of all starts:\n");
  unopened.print("settings never opened");
  opened.print("settings opened");
  printLimit("never opened, program", unopened.ofProgram(), wantedMegabytes, "MB");
}

}  // namespace

int main() {
  return bench::run([] {
    desktoptest::DesktopSession session(desktoptest::WindowManager::Openbox);
    // The claim of the Ostrel on that desktop is looked for where its environment says.
    for (const std::string& entry : session.environment()) {
      const auto separator = entry.find('=');
      setenv(entry.substr(0, separator).c_str(), entry.substr(separator + 1).c_str(), 1);
    }
    measure(session);
  });
}
