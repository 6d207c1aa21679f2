#include "platform/linux/qt/TaskBar.h"

#include <QApplication>
#include <QWidget>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/Application.h"
#include "platform/linux/qt/Symbols.h"
#include "platform/linux/qt/ToolkitConnection.h"

namespace qt {
namespace {

/// The class names the desktop entry. The toolkit would take it from the name that it tells assistive technology, and
/// people hear that one.
void setWindowClass(xcb_connection_t* connection, xcb_window_t window) {
  constexpr std::string_view instanceAndClass("ostrel\0" OSTREL_APPLICATION_ID,
                                              sizeof("ostrel\0" OSTREL_APPLICATION_ID));
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(instanceAndClass.size()), instanceAndClass.data());
}

}  // namespace

void applyTaskBarPolicy(QWidget& window) {
  xcb_connection_t* const connection = toolkitConnection();
  if (!connection) return;
  // Not before there is a window: most of the time there is none.
  if (QApplication::windowIcon().isNull()) QApplication::setWindowIcon(drawApplicationIcon());
  const bool isAccessory = ns::Application::sharedApplication()->activationPolicy() == ns::ActivationPolicy::Accessory;
  const auto id = static_cast<xcb_window_t>(window.winId());
  setWindowClass(connection, id);
  const xcb_atom_t state = atom(connection, "_NET_WM_STATE");
  const std::array hints{atom(connection, "_NET_WM_STATE_SKIP_TASKBAR"), atom(connection, "_NET_WM_STATE_SKIP_PAGER")};
  if (window.isVisible()) {
    const std::uint32_t addOrRemove = isAccessory ? 1 : 0;
    constexpr std::uint32_t fromApplication = 1;
    sendToWindowManager(connection, id, "_NET_WM_STATE", {addOrRemove, hints[0], hints[1], fromApplication});
  } else {
    // The toolkit adds its own states to these when it shows the window.
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, state, XCB_ATOM_ATOM, 32,
                        isAccessory ? static_cast<std::uint32_t>(hints.size()) : 0, hints.data());
  }
  xcb_flush(connection);
}

std::vector<QWidget*> shownWindows() {
  std::vector<QWidget*> result;
  for (auto* const window : QApplication::topLevelWidgets()) {
    // The toolkit's icon in the panel is a window, too.
    const bool hasFrame = !(window->windowFlags() & Qt::FramelessWindowHint);
    if (window->isVisible() && window->windowType() == Qt::Window && hasFrame) result.push_back(window);
  }
  return result;
}

}  // namespace qt
