// What can be told about an X11 session.
#include "platform/Diagnostics.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "platform/linux/atspi/GLib.h"
#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/TitleBars/ButtonBook.h"
#include "platform/linux/x11/WindowManagers/Decoration.h"
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {
namespace {

std::string textProperty(Connection& connection, xcb_window_t window, const char* name) {
  constexpr std::uint32_t longestInWords = 64;
  const auto reply = connection.reply(
      xcb_get_property_reply,
      xcb_get_property(connection.get(), 0, window, connection.atom(name), XCB_ATOM_ANY, 0, longestInWords));
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

/// The name the window manager gives itself; empty when none runs.
std::string windowManagerName(Connection& connection) {
  const auto reply = connection.reply(
      xcb_get_property_reply, xcb_get_property(connection.get(), 0, connection.root(),
                                               connection.atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) != sizeof(xcb_window_t)) return {};
  const auto window = *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
  return textProperty(connection, window, "_NET_WM_NAME");
}

std::string howButtonsAreFound(const std::string& manager) {
  const std::string first = windowManagerNamed(manager) != nullptr ? "the window manager's button windows; "
                            : drawnDecorationOf(manager) != nullptr
                                ? "the window manager's theme, if it is a usual one; "
                                : "";
  return first + "GTK's own by AT-SPI; all others learned from clicks";
}

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

/// X.Org packs its version into the number: 12013000 is 1.20.13, and since the first digit was dropped from the names
/// 12101007 is 21.1.7. Others number as they like.
std::string serverVersion(const std::string& vendor, std::uint32_t release) {
  if (vendor.find("X.Org") == std::string::npos) return std::to_string(release);
  const auto part = [&](std::uint32_t unit) { return std::to_string(release / unit % 100); };
  const bool isNamedByYear = release >= 12'100'000;
  const std::string last = std::to_string(release % 1000);
  return (isNamedByYear ? "" : part(10'000'000) + '.') + part(100'000) + '.' + part(1000) +
         (isNamedByYear || last != "0" ? '.' + last : "");
}

bool isWaylandSession() { return !environment("WAYLAND_DISPLAY").empty(); }

std::string serverDescription(const Connection& connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection.get());
  const std::string vendor(xcb_setup_vendor(setup), static_cast<std::size_t>(xcb_setup_vendor_length(setup)));
  return vendor + " " + serverVersion(vendor, setup->release_number) + ", display " +
         std::string(environment("DISPLAY")) +
         (!isWaylandSession() ? "" : " (inside a Wayland session: only X11 windows can be handled)");
}

/// Whether presses have taught anything about that painter's title bars.
bool isPainterLearned(const std::string& painter) {
  constexpr std::size_t largestFile = 4 * 1024 * 1024;
  const auto book = ButtonBook::parse(freedesktop::readFile(ButtonBook::userFile(), largestFile).text);
  return book && book->painters().contains(painter);
}

/// A tray that windows are embedded in.
bool hasTray(Connection& connection) {
  const auto owner = connection.reply(
      xcb_get_selection_owner_reply, xcb_get_selection_owner(connection.get(), connection.atom("_NET_SYSTEM_TRAY_S0")));
  return owner && owner->owner != XCB_WINDOW_NONE;
}

/// A panel that reads its items over the session bus. Where there is no bus, none is started.
bool hasItemPanel() {
  constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
  constexpr int patience = 1000;  // milliseconds
  const std::string usual = freedesktop::runtimeFolder() + "/bus";
  if (environment("DBUS_SESSION_BUS_ADDRESS").empty() && access(usual.c_str(), F_OK) != 0) return false;
  const atspi::Object<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  if (!bus) return false;
  const atspi::Variant reply(
      g_dbus_connection_call_sync(bus.get(), watcher, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties",
                                  "Get", g_variant_new("(ss)", watcher, "IsStatusNotifierHostRegistered"),
                                  G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, patience, nullptr, nullptr));
  if (!reply) return false;
  GVariant* inner = nullptr;
  g_variant_get(reply.get(), "(v)", &inner);
  const atspi::Variant value(inner);
  return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value.get());
}

}  // namespace
}  // namespace x11

std::vector<ns::DiagnosticLine> ns::desktopLacks() {
  const auto connection = x11::Connection::open();
  if (!connection) return {};
  std::vector<DiagnosticLine> lacks;
  const std::string manager = x11::windowManagerName(*connection);
  if (x11::isWaylandSession()) {
    lacks.push_back({"this is a Wayland session, whose own windows no program can handle",
                     "log in to an X11 session, which the login screen offers as Xorg or X11"});
  }
  if (manager.empty()) {
    lacks.push_back({"no window manager runs, so windows have no title bars", "start one"});
  } else if (x11::windowManagerNamed(manager) == nullptr && x11::drawnDecorationOf(manager) == nullptr &&
             !x11::isPainterLearned(manager)) {
    lacks.push_back({"the buttons that " + manager + " draws are not known yet",
                     "click minimise and maximise of a window twice and close three times, and Ostrel learns them"});
  }
  if (!x11::hasTray(*connection) && !x11::hasItemPanel()) {
    lacks.push_back({"no panel shows Ostrel's item",
                     "add a tray or status plug-in to the panel, or open the settings with \"ostrel settings\""});
  }
  return lacks;
}

std::vector<ns::DiagnosticLine> ns::desktopDiagnostics() {
  const auto connection = x11::Connection::open();
  if (!connection) return {{"Display server", "none that Ostrel can use"}};
  const std::string manager = x11::windowManagerName(*connection);
  return {{"Display server", x11::serverDescription(*connection)},
          {"Window manager", manager.empty() ? "none" : manager},
          {"Buttons found by", x11::howButtonsAreFound(manager)}};
}

std::optional<std::string> ns::desktopUnavailableReason() {
  const std::string_view display = x11::environment("DISPLAY");
  if (!display.empty() && x11::Connection::open()) return std::nullopt;
  if (!display.empty()) return "the X server at display " + std::string(display) + " cannot be reached";
  if (x11::isWaylandSession()) {
    return "this is a Wayland session without X11, which lets no program handle other programs' windows; "
           "log in to an X11 session to use Ostrel";
  }
  return "there is no display: DISPLAY is not set";
}
