// Windows, their buttons and applications as Accessibility elements.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/Lock.h"
#include "platform/linux/atspi/TitleBarButtons.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Hiding.h"
#include "platform/linux/x11/Placement.h"
#include "platform/linux/x11/TitleBars/DrawnButtons.h"
#include "platform/linux/x11/WindowManagers/WindowManager.h"
#include "platform/linux/x11/WindowTracker.h"
#include "platform/portable/Desktop.h"

namespace x11 {

/// Answers what the C half asks about elements. Main thread, except where it says otherwise. No question waits for
/// another process than the X server; most are answered from memory.
class Elements {
 public:
  /// What is known of the buttons that a window's program draws itself; answers at once. Any thread.
  using ClientButtons = std::function<std::vector<atspi::TitleBarButton>(xcb_window_t client)>;

  /// All references are lent. `connection` is asked questions; its events are left alone.
  Elements(const Connection& connection, WindowTracker& tracker, Placement& placement, Hiding& hiding,
           ClientButtons clientButtons, DrawnButtons& drawnButtons);
  ~Elements();
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;

  static desktop::Element systemWide();
  static desktop::Element application(pid_t pid);
  static desktop::Element window(xcb_window_t client);
  static desktop::Element button(xcb_window_t client, ButtonRole role);

  /// Whether a press in `rootChild`, a child of the root window, could be on a title-bar button. From memory, on any
  /// thread. The press is kept in mind, and the server asked what is under it, so that the answer is there when
  /// atPosition wants it.
  bool mayHitButton(xcb_window_t rootChild, CGPoint position);

  /// Has `work` find that button wherever it looks: a press that was passed on is decided about once more. Main thread.
  void pretendHit(const desktop::Element& button, const std::function<void()>& work);

  /// What is known of a window's title-bar buttons and where from, in words for the person: a line for the window and
  /// one for each button. From memory.
  std::vector<ns::DiagnosticLine> describeButtons(const Window& window) const;

  // As in desktop::Desktop.
  AXError atPosition(CGPoint position, desktop::Element& element);
  AXError attribute(const desktop::Element& element, std::string_view name, desktop::Value& value) const;
  AXError setAttribute(const desktop::Element& element, std::string_view name, const desktop::Value& value) const;
  AXError processIdentifier(const desktop::Element& element, pid_t& pid) const;

 private:
  class LevelRequest;
  struct Press {
    xcb_window_t rootChild = XCB_WINDOW_NONE;
    CGPoint position{};
    /// What is under it in its frame; null where the window manager has no buttons.
    std::unique_ptr<LevelRequest> inFrame;
  };

  /// The last press when it was here and has not been taken yet; otherwise what the server says. None when it does not
  /// answer.
  std::optional<Press> takePress(CGPoint position);
  bool isOnManagedTitleBar(const Window& window, CGPoint position) const;
  std::optional<ButtonRole> managedButtonAt(const Window& window, Press press) const;
  std::optional<ButtonRole> clientButtonAt(const Window& window, CGPoint position) const;
  /// From memory, whoever it is that knows; any thread.
  std::optional<ButtonRole> knownButtonAt(const Window& window, CGPoint position) const;
  bool isDescribed(const Window& window) const;
  MinimizeButton minimizeButtonOf(const Window& window) const;
  AXError applicationAttribute(pid_t pid, std::string_view name, desktop::Value& value) const;
  AXError windowAttribute(const Window& window, std::string_view name, desktop::Value& value) const;
  AXError buttonAttribute(const Window& window, ButtonRole role, std::string_view name, desktop::Value& value) const;

  const Connection& connection_;
  const Atoms atoms_;
  WindowTracker& tracker_;
  Placement& placement_;
  Hiding& hiding_;
  const ClientButtons clientButtons_;
  DrawnButtons& drawnButtons_;
  std::optional<desktop::Element> pretendedHit_;  // main thread only
  ns::Lock lock_;
  Press lastPress_ GUARDED_BY(lock_);
};

}  // namespace x11
