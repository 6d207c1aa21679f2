#include "tests/desktop/DesktopSession.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace desktoptest {

namespace {

constexpr auto startBound = std::chrono::seconds(30);

void replace(std::string& text, const std::string& part, const std::string& by) {
  const auto place = text.find(part);
  if (place == std::string::npos) throw std::runtime_error("openbox's default configuration is another one");
  text.replace(place, part.size(), by);
}

/// Openbox ignores a modified click on a button unless it is told what to do; people tell it, so that "native" can be
/// seen here too. (Alt moves windows, as everywhere.) A window that flies to its icon has no place of its own
/// meanwhile.
std::string openboxConfiguration() {
  std::ifstream file("/etc/xdg/openbox/rc.xml");
  std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::string context = "<context name=\"Iconify\">";
  std::string bindings = context;
  for (const char* modifier : {"S", "C", "W"}) {
    bindings += std::string("<mousebind button=\"") + modifier +
                "-Left\" action=\"Click\"><action name=\"Iconify\"/></mousebind>\n";
  }
  replace(text, context, bindings);
  replace(text, "<animateIconify>yes", "<animateIconify>no");
  return text;
}

}  // namespace

std::string name(WindowManager windowManager) {
  switch (windowManager) {
    case WindowManager::Openbox:
      return "openbox";
    case WindowManager::Xfwm4:
      return "xfwm4";
    case WindowManager::Metacity:
      break;
  }
  return "metacity";
}

DesktopSession::DesktopSession(WindowManager windowManager, int width, int height)
    : DesktopSession(Arguments{name(windowManager), "--replace"}, width, height) {}

DesktopSession::DesktopSession(const Arguments& windowManager, int width, int height)
    : windowManager_(windowManager),
      server_(std::make_unique<support::XvfbSession>(std::to_string(width) + "x" + std::to_string(height) + "x24")),
      x_(std::make_unique<XClient>()) {
  unsetenv("WAYLAND_DISPLAY");
  environment_ = {"DISPLAY=" + server_->displayName(), "HOME=" + home_.path(), "XDG_SESSION_TYPE=x11", "LC_ALL=C.UTF-8",
                  "GSETTINGS_BACKEND=memory",          "GIO_USE_VFS=local"};
  for (const std::string kind : {"CONFIG_HOME", "DATA_HOME", "CACHE_HOME", "STATE_HOME", "RUNTIME_DIR"}) {
    const std::string folder = home_ / kind;
    std::filesystem::create_directory(folder);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    environment_.push_back("XDG_" + kind + "=" + folder);
  }
  home_.write("CONFIG_HOME/openbox/rc.xml", openboxConfiguration());
  if (windowManager.front() != name(WindowManager::Openbox) && windowManager.front() != name(WindowManager::Xfwm4)) {
    // Settings that every process of the session shares, and that a test can change. From the start the title bars of
    // metacity and its kin have no button but the one for closing.
    std::replace(environment_.begin(), environment_.end(), std::string("GSETTINGS_BACKEND=memory"),
                 std::string("GSETTINGS_BACKEND=keyfile"));
    arrangeTitleBars("menu:minimize,maximize,close");
  }
  bus_ = std::make_unique<support::ChildProcess>(
      Arguments{"sh", "-c", "exec dbus-daemon --session --nofork --nosyslog --print-address=1 2>/dev/null"},
      environment_);
  const auto address = bus_->readLine(startBound);
  if (!address) throw std::runtime_error("no session bus");
  environment_.push_back("DBUS_SESSION_BUS_ADDRESS=" + *address);
  restartWindowManager();
}

DesktopSession::~DesktopSession() {
  ostrel_.reset();
  applications_.clear();
  panel_.reset();
  windowManagerProcess_.reset();
  bus_.reset();
  x_.reset();
  server_.reset();
}

std::unique_ptr<support::ChildProcess> DesktopSession::start(const Arguments& arguments, const std::string& log) {
  Arguments command{"sh", "-c", "exec \"$@\" </dev/null >\"$0\" 2>&1", home_ / log};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return std::make_unique<support::ChildProcess>(command, environment_);
}

void DesktopSession::restartWindowManager() {
  const auto before = x_->property(x_->root(), "_NET_SUPPORTING_WM_CHECK");
  auto next = start(windowManager_, "window-manager.log");
  const bool ready = x_->waitUntil(
      [&] {
        const auto check = x_->property(x_->root(), "_NET_SUPPORTING_WM_CHECK");
        return !check.empty() && check != before && x_->property(check[0], "_NET_SUPPORTING_WM_CHECK") == check;
      },
      startBound);
  if (!ready) throw std::runtime_error("the window manager did not start: " + home_.read("window-manager.log"));
  windowManagerProcess_ = std::move(next);
  settle();  // one that has just said who it is may not see a window that comes at once
}

Window DesktopSession::open(const Arguments& arguments) {
  const auto before = x_->clients();
  applications_.push_back(start(arguments, "application" + std::to_string(applications_.size()) + ".log"));
  Window window = XCB_NONE;
  const bool opened = x_->waitUntil(
      [&] {
        for (const Window client : x_->clients()) {
          const auto attributes = x_->attributes(client);
          if (std::find(before.begin(), before.end(), client) == before.end() && attributes &&
              attributes->map_state == XCB_MAP_STATE_VIEWABLE && !x_->property(client, "WM_STATE").empty()) {
            window = client;
          }
        }
        return window != XCB_NONE;
      },
      startBound);
  if (!opened) throw std::runtime_error(arguments[0] + " opened no window");
  return window;
}

Window DesktopSession::open(const Arguments& arguments, const Frame& frame) {
  const Window window = open(arguments);
  place(window, frame);
  return window;
}

void DesktopSession::place(Window window, const Frame& wanted) {
  if (ostrel_) settle();  // it may still be looking after what the last click did
  // Toolkits settle their extents after the first map, so the request is repeated until it fits.
  for (int attempt = 0; attempt < 10; ++attempt) {
    x_->moveResize(window, wanted);
    if (x_->waitUntil([&] { return x_->fits(window, wanted); }, std::chrono::seconds(1))) return;
  }
  std::ostringstream message;
  message << "a window could not be placed at " << wanted << ", it is at " << x_->frame(window).value_or(Frame{});
  throw std::runtime_error(message.str());
}

void DesktopSession::setMonitors(const std::vector<Monitor>& monitors) {
  for (const Monitor& monitor : monitors) {
    const bool first = &monitor == &monitors.front();
    const Frame& bounds = monitor.bounds;
    std::ostringstream geometry;  // the sizes in millimetres are those of a common screen
    geometry << bounds.width << '/' << bounds.width / 4 << 'x' << bounds.height << '/' << bounds.height / 4 << '+'
             << bounds.x << '+' << bounds.y;
    // The virtual screen's one output goes to the first, or it would stay listed beside them; a star means primary.
    const auto result = command(
        {"xrandr", "--setmonitor", (first ? "*" : "") + monitor.name, geometry.str(), first ? "screen" : "none"});
    if (result.status != 0) throw std::runtime_error("no second monitor: " + result.output);
  }
}

void DesktopSession::arrangeTitleBars(const std::string& layout) {
  const std::string folder = "CONFIG_HOME/glib-2.0/settings/";
  home_.write(folder + "next", "[org/gnome/desktop/wm/preferences]\nbutton-layout='" + layout + "'\n");
  std::filesystem::rename(home_ / (folder + "next"), home_ / (folder + "keyfile"));
}

void DesktopSession::writePreferences(const std::string& object) {
  home_.write("CONFIG_HOME/ostrel/next.json", object);
  std::filesystem::rename(home_ / "CONFIG_HOME/ostrel/next.json", home_ / "CONFIG_HOME/ostrel/preferences.json");
}

CommandResult DesktopSession::command(const Arguments& arguments) {
  const auto process = start(arguments, "command.log");
  const auto status = process->waitForExit(startBound);
  if (!status) throw std::runtime_error(arguments[0] + " did not end");
  return {*status, home_.read("command.log")};
}

CommandResult DesktopSession::ostrelCommand(const Arguments& arguments) {
  Arguments whole{OSTREL_PROGRAM};
  whole.insert(whole.end(), arguments.begin(), arguments.end());
  return command(whole);
}

void DesktopSession::startOstrel(const Arguments& arguments) {
  const auto granted = ostrelCommand({"accessibility", "grant"});
  if (granted.status != 0) throw std::runtime_error("consent was refused: " + granted.output);
  Arguments whole{OSTREL_PROGRAM};
  whole.insert(whole.end(), arguments.begin(), arguments.end());
  ostrel_ = start(whole, "ostrel.log");
  if (!x_->waitUntil([&] { return x_->isButtonGrabbed(); }, startBound)) {
    throw std::runtime_error("Ostrel does not watch the mouse: " + ostrelLog());
  }
  settle();
}

std::string DesktopSession::applicationLog() const {
  return home_.read("application" + std::to_string(applications_.size() - 1) + ".log");
}

std::string DesktopSession::ostrelLog() const { return home_.read("ostrel.log"); }

std::vector<Window> DesktopSession::decoration(Window window) {
  std::vector<Window> buttons;  // minimise, zoom, close
  const Window top = x_->topLevel(window);
  if (windowManager_.front() == name(WindowManager::Openbox)) {
    for (const Window child : x_->children(top)) {
      const auto inTitle = x_->children(child);
      if (child != window && inTitle.size() == 12) buttons = {inTitle[11], inTitle[6], inTitle[7]};
    }
  } else {
    for (const Window child : x_->children(top)) {
      const auto attributes = x_->attributes(child);
      constexpr std::uint32_t crossing = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
      if (child != window && attributes && attributes->all_event_masks == crossing) buttons.push_back(child);
    }
    if (buttons.size() == 6) buttons.erase(buttons.begin(), buttons.begin() + 3);  // menu, stick, shade
  }
  return buttons.size() == 3 ? buttons : std::vector<Window>{};
}

bool DesktopSession::isIdle() const {
  std::vector<pid_t> processes{server_->serverPid(), bus_->pid(), windowManagerProcess_->pid()};
  for (const auto& application : applications_) processes.push_back(application->pid());
  for (const auto* process : {panel_.get(), ostrel_.get()}) {
    if (process) processes.push_back(process->pid());
  }
  for (const pid_t process : processes) {
    std::error_code ended;
    for (const auto& thread :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", ended)) {
      std::ifstream file(thread.path() / "stat");
      const std::string text{std::istreambuf_iterator<char>(file), {}};
      const auto state = text.rfind(") ");  // the name before it may hold anything
      if (state != std::string::npos && (text[state + 2] == 'R' || text[state + 2] == 'D')) return false;
    }
  }
  return true;
}

void DesktopSession::settle() {
  // Whoever has input to read counts as running. Somebody who waits for another's answer does not, so that one look is
  // not enough.
  constexpr int looks = 3;
  int idle = 0;
  x_->waitUntil([&] {
    x_->synchronise();
    idle = isIdle() ? idle + 1 : 0;
    return idle == looks;
  });
}

void DesktopSession::click(Window window, Button which, int mouseButton) {
  settle();  // or the window manager may still be moving them
  const Point place = button(window, which);
  settle();
  x_->click(place, mouseButton);
}

Point DesktopSession::button(Window window, Button button) {
  if (x_->drawsOwnTitleBar(window)) return clientSideButton(window, button);
  std::optional<Frame> place;
  x_->waitUntil([&] {
    const auto buttons = decoration(window);
    if (buttons.empty()) return false;
    const Window one = buttons[static_cast<std::size_t>(button)];
    const auto attributes = x_->attributes(one);
    if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) place = x_->rectangle(one);
    return place.has_value();
  });
  if (!place) throw std::runtime_error("a window has no such button");
  return {place->x + place->width / 2, place->y + place->height / 2};
}

Point DesktopSession::clientSideButton(Window window, Button button) {
  const auto frame = x_->frame(window);
  if (!frame) throw std::runtime_error("the window is gone");
  std::vector<Point> found;
  x_->waitUntil([&] {
    const auto listed = command({"/usr/bin/python3", OSTREL_DESKTOP_TESTS "/title_bar_buttons.py",
                                 std::to_string(frame->x), std::to_string(frame->y)});
    std::istringstream rows(listed.output);
    found.clear();
    for (Point point; rows >> point.x >> point.y;) found.push_back(point);
    return found.size() == 3;
  });
  if (found.size() != 3) throw std::runtime_error("no title-bar buttons: " + home_.read("command.log"));
  return found[static_cast<std::size_t>(button)];
}

Point DesktopSession::titleBar(Window window) {
  const Point minimise = button(window, Button::Minimise);
  return {minimise.x - 60, minimise.y};
}

}  // namespace desktoptest
