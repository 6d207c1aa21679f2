// What can be told about an X11 session.
#include "platform/Diagnostics.h"

#include <cstdlib>
#include <string_view>

#include "platform/linux/x11/Connection.h"
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

std::string serverDescription(const Connection& connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection.get());
  const std::string vendor(xcb_setup_vendor(setup), static_cast<std::size_t>(xcb_setup_vendor_length(setup)));
  return vendor + " " + serverVersion(vendor, setup->release_number) + ", display " +
         std::string(environment("DISPLAY")) +
         (environment("WAYLAND_DISPLAY").empty() ? "" : " (inside a Wayland session: only X11 windows can be handled)");
}

}  // namespace
}  // namespace x11

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
  if (!x11::environment("WAYLAND_DISPLAY").empty()) {
    return "this is a Wayland session without X11, which lets no program handle other programs' windows; "
           "log in to an X11 session to use Ostrel";
  }
  return "there is no display: DISPLAY is not set";
}
