// The desktop of an X11 session.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/atspi/TitleBarButtons.h"
#include "platform/linux/freedesktop/ApplicationIdentity.h"
#include "platform/linux/x11/Applications.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/DisplayList.h"
#include "platform/linux/x11/Elements.h"
#include "platform/linux/x11/EventTap.h"
#include "platform/linux/x11/Hiding.h"
#include "platform/linux/x11/Placement.h"
#include "platform/linux/x11/Points.h"
#include "platform/linux/x11/WindowTracker.h"
#include "platform/portable/Desktop.h"

namespace x11 {

/// Composes the parts of this folder; each of them has its own subject. They reckon in pixels, and here is where pixels
/// become points and points pixels.
class X11Desktop final : public desktop::Desktop {
 public:
  /// The one that desktop::Desktop::current() answers. Without an X server, and when the server goes away later, it
  /// says so on the standard error and ends the program with status 1.
  static X11Desktop& shared();

  /// Each of the three connections becomes this desktop's own; none may be null. `scale`: pixels a point. `onLoss` is
  /// called on another thread when the X server has gone.
  struct Connections {
    std::unique_ptr<Connection> questions;
    std::unique_ptr<Connection> tracking;
    std::unique_ptr<Connection> placement;
  };
  X11Desktop(Connections connections, double scale, std::function<void()> onLoss);
  ~X11Desktop() override;

  bool isProcessTrusted() override;
  void promptForTrust() override;
  desktop::Element systemWideElement() override;
  desktop::Element applicationElement(pid_t pid) override;
  AXError elementAtPosition(CGPoint position, desktop::Element& element) override;
  AXError attribute(const desktop::Element& element, std::string_view name, desktop::Value& value) override;
  AXError setAttribute(const desktop::Element& element, std::string_view name, const desktop::Value& value) override;
  AXError processIdentifier(const desktop::Element& element, pid_t& pid) override;
  std::unique_ptr<desktop::EventTap> createEventTap(CGEventMask mask, desktop::EventTapHandler handler) override;
  CGError activeDisplays(std::vector<CGDirectDisplayID>& displays) override;
  std::optional<desktop::Display> display(CGDirectDisplayID identifier) override;
  std::vector<desktop::Screen> screens() override;
  std::vector<ns::DiagnosticLine> titleBarButtons() override;
  std::size_t forgetTitleBarButtons(std::string_view painter) override;
  std::vector<desktop::Application> runningApplications() override;
  bool isApplicationRunning(pid_t pid) override;
  bool hideApplication(pid_t pid) override;
  void observeApplications(std::function<void(desktop::ApplicationChange, pid_t)> observer) override;

 private:
  /// The tracker's thread: a button that was not known has had its native effect.
  void makeGood(const PassedPress& press, ButtonRole role);
  void tellOfTitleBar(WindowChange change, const Window& window);

  const std::unique_ptr<Connection> connection_;
  const Points points_;
  freedesktop::ApplicationIdentity identity_;
  DisplayList displays_;
  atspi::TitleBarButtons titleBarButtons_;
  WindowTracker tracker_;
  Hiding hiding_;
  Applications applications_;
  Placement placement_;
  DrawnButtons drawnButtons_;
  Elements elements_;
  EventTap::Reconsider reconsider_;  // main thread only
  /// Held weakly by what waits in the main queue.
  const std::shared_ptr<X11Desktop*> self_ = std::make_shared<X11Desktop*>(this);
};

}  // namespace x11
