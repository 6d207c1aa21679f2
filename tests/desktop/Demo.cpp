// ostrel_demo FOLDER: Ostrel on a desktop of its own, with real applications and real clicks. Prints where every window
// was and is, writes a picture of each step into the folder, and fails when a click did not do what it should.
#include <filesystem>
#include <functional>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tests/desktop/DesktopSession.h"

namespace desktoptest {
namespace {

class Demo {
 public:
  explicit Demo(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
    desktop_.writePreferences(R"({"behavior.redButtonHidesWindow": true})");
    const auto add = [&](const std::string& title, const Arguments& command, const Frame& frame) {
      windows_.push_back({title, desktop_.open(command, frame), {}});
      return windows_.back().window;
    };
    terminal_ = add("xterm", {"xterm", "-xrm", "*wmTimeout: 200"}, {60, 80, 500, 320});
    calculator_ = add("galculator", {"galculator"}, {90, 440, 400, 400});
    editor_ = add("mousepad", {"mousepad", "--disable-server"}, {700, 300, 600, 420});
    desktop_.startOstrel();
    picture("start");
  }

  void run() {
    step("zoom", "Zoom (green) of mousepad: it fills its display less the margins", Button::Zoom, editor_, [&] {
      return x_.frame(editor_) == Frame{32, 56, 1376, 812};
    });
    desktop_.place(editor_, {700, 300, 600, 420});
    step("minimise", "Minimise (yellow) of xterm: it is centred", Button::Minimise, terminal_, [&] {
      const Frame frame = x_.frame(terminal_).value_or(Frame{});
      return frame.x == (1440 - frame.width) / 2 && frame.y == 80 && !x_.isIconic(terminal_);
    });
    step("close", "Close (red) of galculator, which is set to hide the application", Button::Close, calculator_,
         [&] { return x_.isIconic(calculator_); });
    x_.hold(Key::Shift);
    step("native", "Minimise of mousepad with Shift held: native, it is iconified", Button::Minimise, editor_,
         [&] { return x_.isIconic(editor_); });
    x_.letGo(Key::Shift);
    std::cout << "\nPictures of each step are in " << folder_.string() << "\n";
  }

 private:
  struct Row {
    std::string title;
    Window window;
    std::string before;
  };

  std::string describe(Window window) {
    const auto frame = x_.frame(window);
    if (!frame) return "closed";
    std::ostringstream text;
    text << *frame << (x_.isIconic(window) ? " hidden" : "");
    return text.str();
  }

  void remember() {
    for (Row& row : windows_) row.before = describe(row.window);
  }

  void step(const std::string& name, const std::string& what, Button button, Window window,
            const std::function<bool()>& done) {
    remember();
    std::cout << "\n" << what << "\n";
    desktop_.click(window, button);
    const bool worked = x_.waitUntil(done);
    for (const Row& row : windows_) {
      const std::string now = describe(row.window);
      std::cout << "  " << std::left << std::setw(12) << row.title << std::setw(26) << row.before << " -> " << now
                << (now == row.before ? "  (unchanged)" : "") << "\n";
    }
    picture(name);
    if (!worked) throw std::runtime_error("the click did not do that; Ostrel said: " + desktop_.ostrelLog());
  }

  void picture(const std::string& name) {
    const auto file = folder_ / (std::to_string(++pictures_) + "-" + name + ".png");
    const auto result = desktop_.command({"import", "-window", "root", file.string()});
    if (result.status != 0) throw std::runtime_error("no picture: " + result.output);
  }

  std::filesystem::path folder_;
  DesktopSession desktop_{WindowManager::Openbox};
  XClient& x_ = desktop_.x();
  std::vector<Row> windows_;
  Window terminal_ = XCB_NONE;
  Window calculator_ = XCB_NONE;
  Window editor_ = XCB_NONE;
  int pictures_ = 0;
};

}  // namespace
}  // namespace desktoptest

int main(int count, char* arguments[]) {
  if (count != 2) {
    std::cerr << "usage: ostrel_demo FOLDER\n";
    return 2;
  }
  try {
    desktoptest::Demo(arguments[1]).run();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "ostrel_demo: " << error.what() << "\n";
    return 1;
  }
}
