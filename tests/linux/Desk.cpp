#include "tests/linux/Desk.h"

#include <cmath>
#include <fstream>
#include <stdexcept>

namespace support {

ManagedWindow::ManagedWindow(int x, int y, int width, int height)
    : connection_(x11::Connection::open()), window_(xcb_generate_id(connection_->get())) {
  xcb_create_window(connection_->get(), XCB_COPY_FROM_PARENT, window_, connection_->root(),
                    static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                    static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                    nullptr);
  // WM_NORMAL_HINTS with the position as the person's own, which no window manager second-guesses.
  std::vector<std::uint32_t> hints(18);
  hints[0] = 1;
  setProperty("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);
  setProperty("WM_PROTOCOLS", XCB_ATOM_ATOM, {connection_->atom("WM_DELETE_WINDOW")});
}

void ManagedWindow::setProperty(const char* name, xcb_atom_t type, const std::vector<std::uint32_t>& items) {
  xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_, connection_->atom(name), type, 32,
                      static_cast<std::uint32_t>(items.size()), items.data());
  connection_->synchronise();
}

void ManagedWindow::setClass(const std::string& name) {
  const std::string both = name + '\0' + name + '\0';
  xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(both.size()), both.data());
  connection_->synchronise();
}

void ManagedWindow::map() {
  xcb_map_window(connection_->get(), window_);
  connection_->synchronise();
}

bool ManagedWindow::isAskedToClose() {
  const xcb_atom_t close = connection_->atom("WM_DELETE_WINDOW");
  bool asked = false;
  while (const x11::Event event = connection_->pollEvent()) {
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
    asked = asked || ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE && message.data.data32[0] == close);
  }
  return asked;
}

Desk::Desk(const std::string& windowManager) : connection_(x11::Connection::open()), atoms_(*connection_) {
  // Nobody's settings but the programs' own defaults, and tabs for those who ask for them by their class.
  std::string folder = (std::filesystem::temp_directory_path() / "ostrel-desk-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
  home_ = folder;
  std::filesystem::create_directories(home_ / ".fluxbox");
  std::ofstream(home_ / ".fluxbox" / "apps") << "[group] (workspace)\n [app] (class=tabbed)\n[end]\n";
  std::filesystem::create_directories(home_ / ".icewm");
  std::ofstream(home_ / ".icewm" / "winoptions") << "tabbed.frame: together\n";
  setenv("HOME", folder.c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");

  tracker_ = std::make_unique<x11::WindowTracker>(x11::Connection::open());
  tracker_->observe([this](x11::WindowChange, const x11::Window&) { changed_.notify_all(); });
  hiding_ = std::make_unique<x11::Hiding>(*connection_, *tracker_);
  placement_ = std::make_unique<x11::Placement>(x11::Connection::open());
  drawnButtons_ = std::make_unique<x11::DrawnButtons>(
      *connection_, *tracker_, 1, "", [] { return false; }, [](const x11::PassedPress&, x11::ButtonRole) {});
  elements_ = std::make_unique<x11::Elements>(
      *connection_, *tracker_, *placement_, *hiding_, [this](xcb_window_t) { return clientButtons; }, *drawnButtons_);
  hands_ = std::make_unique<Hands>();
  tracker_->start();
  startWindowManager(windowManager);
}

Desk::~Desk() {
  tracker_->stop();
  std::error_code ignored;
  std::filesystem::remove_all(home_, ignored);
}

void Desk::startWindowManager(const std::string& name) {
  if (name == "xfwm4" && !bus_) {
    bus_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address"});
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_->readLine(patience).value().c_str(), 1);
  }
  windowManagerProcess_ = std::make_unique<ChildProcess>(
      name == "xfwm4" ? std::vector<std::string>{name, "--compositor=off"} : std::vector<std::string>{name});
  // A window manager names itself before it attends to windows, and some never see one that is mapped in between. Its
  // connection outlives this, or its number would soon be another's, which confuses some window managers, too.
  probe_ = std::make_unique<ManagedWindow>(0, 0, 50, 50);
  const auto isListed = [this] { return tracker_->window(probe_->window()).has_value(); };
  for (int attempt = 0; attempt < 50 && !isListed(); ++attempt) {
    xcb_unmap_window(probe_->connection().get(), probe_->window());
    probe_->map();
    waitFor([&] { return isListed() && !tracker_->windowManager().name.empty(); }, std::chrono::milliseconds(200));
  }
  if (!isListed()) throw std::runtime_error("no " + name);
  xcb_destroy_window(probe_->connection().get(), probe_->window());
  probe_->connection().synchronise();
  if (!waitFor([&] { return !isListed(); })) throw std::runtime_error(name + " does not let go");
}

bool Desk::waitFor(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  const auto deadline = std::chrono::steady_clock::now() + bound;
  for (;;) {
    QCoreApplication::processEvents();
    if (done()) return true;
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::unique_lock lock(mutex_);
    // The bound is for what is not told of by a change of a window: the main queue and the window manager itself.
    changed_.wait_for(lock, std::chrono::milliseconds(10));
  }
}

x11::Window Desk::manage(ManagedWindow& window) {
  window.map();
  const xcb_window_t client = window.window();
  EXPECT_TRUE(waitFor([&] {
    const auto known = tracker_->window(client);
    return known && known->frame != client && known->properties.wmState == 1 && known->geometry.decoration.top > 0 &&
           isOnScreen(client) && known->geometry == geometryOf(client);
  }));
  return windowOf(client);
}

bool Desk::isOnScreen(xcb_window_t client) {
  const auto attributes =
      connection_->reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(connection_->get(), client));
  return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

x11::WindowGeometry Desk::geometryOf(xcb_window_t client) {
  return x11::GeometryRequest(*connection_, atoms_, client).receive().value_or(x11::WindowGeometry{});
}

void Desk::set(xcb_window_t client, const char* attribute, const desktop::Value& value) {
  EXPECT_EQ(elements_->setAttribute(x11::Elements::window(client), attribute, value), kAXErrorSuccess);
}

void Desk::ask(xcb_window_t window, const std::string& message, const std::array<std::uint32_t, 5>& data) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = connection_->atom(message);
  std::copy(data.begin(), data.end(), std::begin(event.data.data32));
  xcb_send_event(connection_->get(), 0, connection_->root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
  connection_->flush();
}

void Desk::changeState(xcb_window_t client, std::uint32_t action, const std::string& one, const std::string& other) {
  const auto state = [&](const std::string& name) {
    return name.empty() ? xcb_atom_t{XCB_ATOM_NONE} : connection_->atom("_NET_WM_STATE_" + name);
  };
  ask(client, "_NET_WM_STATE", {action, state(one), state(other), 2, 0});
}

std::optional<CGPoint> Desk::findButton(const x11::Window& window, x11::ButtonRole role) {
  const x11::Rect frame = window.geometry.frame();
  const double y = frame.y + window.geometry.decoration.top / 2.0;
  std::optional<int> first;
  for (int x = frame.x; x <= frame.x + frame.width; ++x) {
    desktop::Element element;
    const bool isButton = elements_->atPosition({static_cast<double>(x), y}, element) == kAXErrorSuccess &&
                          element == x11::Elements::button(window.client, role);
    if (isButton && !first) first = x;
    if (!isButton && first) return CGPoint{std::floor((*first + x - 1) / 2.0), std::floor(y)};
  }
  return std::nullopt;
}

}  // namespace support
