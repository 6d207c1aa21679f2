#include "platform/linux/x11/X11Desktop.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <utility>

#include "platform/Diagnostics.h"
#include "platform/RunLoop.h"
#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/freedesktop/JSONUserDefaults.h"
#include "platform/linux/x11/DecorationLayout.h"
#include "platform/linux/x11/EventTap.h"
#include "platform/linux/x11/Scale.h"

namespace x11 {

namespace {

[[noreturn]] void endWithoutServer() {
  std::cerr << "ostrel: " << ns::desktopUnavailableReason().value_or("the X server takes no more connections") << '\n';
  std::exit(1);
}

/// On one of the worker threads, any of which may notice first: the others, and the main thread, are left where they
/// are. Only what has been changed a moment ago may not be on the disk yet.
[[noreturn]] void endAfterLoss() {
  constexpr std::string_view message = "ostrel: the X server has gone\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, message.data(), message.size());
  freedesktop::flushPreferences();
  _exit(1);
}

CGRect boxed(const Rect& rect) { return CGRectMake(rect.x, rect.y, rect.width, rect.height); }

}  // namespace

X11Desktop& X11Desktop::shared() {
  static X11Desktop desktop(
      [] {
        Connections connections{Connection::open(), Connection::open(), Connection::open()};
        if (!connections.questions || !connections.tracking || !connections.placement) endWithoutServer();
        return connections;
      }(),
      scaleOfThisProcess(), endAfterLoss);
  return desktop;
}

X11Desktop::X11Desktop(Connections connections, double scale, std::function<void()> onLoss)
    : connection_(std::move(connections.questions)),
      points_(scale),
      identity_(freedesktop::DesktopEntries::shared()),
      displays_(*connection_, *connections.tracking),
      titleBarButtons_([](std::uint32_t) {}),
      tracker_(std::move(connections.tracking)),
      hiding_(*connection_, tracker_),
      applications_(tracker_, identity_),
      placement_(std::move(connections.placement)),
      drawnButtons_(
          *connection_, tracker_, scale, ButtonBook::userFile(),
          [this] { return hasUsualDecorationLayout(*connection_); },
          [this](const PassedPress& press, ButtonRole role) { makeGood(press, role); }),
      elements_(
          *connection_, tracker_, placement_, hiding_,
          [this](xcb_window_t client) { return titleBarButtons_.buttons(client); }, drawnButtons_) {
  tracker_.observe([this](WindowChange change, const Window& window) { tellOfTitleBar(change, window); });
  tracker_.observe([this](WindowChange change, const Window& window) { drawnButtons_.changed(change, window); });
  tracker_.observeEvents([this](const xcb_generic_event_t& event) {
    displays_.handleEvent(event);
    drawnButtons_.handleEvent(event);
  });
  tracker_.observeWindowManager([this](const RunningWindowManager& running) { drawnButtons_.follow(running); });
  tracker_.onLoss(std::move(onLoss));
  tracker_.start();
}

X11Desktop::~X11Desktop() { tracker_.stop(); }

void X11Desktop::tellOfTitleBar(WindowChange change, const Window& window) {
  if (change == WindowChange::Removed || !window.drawsItsTitleBar() || !window.properties.isNormalType) {
    titleBarButtons_.remove(window.client);
    return;
  }
  // A program may make a button insensitive without anything else to see; then its window is often the active one next.
  if (change == WindowChange::Activated) return titleBarButtons_.refresh(window.client);
  const WindowGeometry& geometry = window.geometry;
  titleBarButtons_.update({window.client, window.pid, boxed(geometry.frame()), boxed(geometry.client),
                           geometry.maximizedHorizontally || geometry.maximizedVertically || geometry.fullscreen,
                           window.properties.title});
}

void X11Desktop::makeGood(const PassedPress& press, ButtonRole role) {
  ns::dispatchAsyncOnMainQueue([weak = std::weak_ptr(self_), press, role] {
    const auto self = weak.lock();
    if (!self) return;
    X11Desktop& desktop = **self;
    const xcb_window_t client = press.window.client;
    bool isTaken = false;
    desktop.elements_.pretendHit(Elements::button(client, role), [&] {
      isTaken = desktop.reconsider_ && desktop.reconsider_({kCGEventLeftMouseDown, 0, press.position});
    });
    if (!isTaken || role != ButtonRole::Minimize) return;
    // Behind the action, so that the window comes back where it is wanted.
    ns::dispatchAsyncOnMainQueue([weak, client] {
      const auto same = weak.lock();
      if (same) (*same)->elements_.setAttribute(Elements::window(client), "AXMinimized", false);
    });
  });
}

bool X11Desktop::isProcessTrusted() { return freedesktop::Consent::shared().isTrusted(); }
void X11Desktop::promptForTrust() { freedesktop::Consent::shared().prompt(); }

desktop::Element X11Desktop::systemWideElement() { return Elements::systemWide(); }
desktop::Element X11Desktop::applicationElement(pid_t pid) { return Elements::application(pid); }
AXError X11Desktop::elementAtPosition(CGPoint position, desktop::Element& element) {
  // Every client is told of a new keyboard mapping, whatever it has asked for.
  while (connection_->pollEvent()) {
  }
  return elements_.atPosition(points_.pixelAt(position), element);
}
AXError X11Desktop::attribute(const desktop::Element& element, std::string_view name, desktop::Value& value) {
  const AXError error = elements_.attribute(element, name, value);
  if (error != kAXErrorSuccess) return error;
  if (auto* const point = std::get_if<CGPoint>(&value)) *point = points_.fromPixels(*point);
  if (auto* const size = std::get_if<CGSize>(&value)) *size = points_.fromPixels(*size);
  return kAXErrorSuccess;
}
AXError X11Desktop::setAttribute(const desktop::Element& element, std::string_view name, const desktop::Value& value) {
  if (const auto* const point = std::get_if<CGPoint>(&value)) {
    return elements_.setAttribute(element, name, points_.toPixels(*point));
  }
  if (const auto* const size = std::get_if<CGSize>(&value)) {
    return elements_.setAttribute(element, name, points_.toPixels(*size));
  }
  return elements_.setAttribute(element, name, value);
}
AXError X11Desktop::processIdentifier(const desktop::Element& element, pid_t& pid) {
  return elements_.processIdentifier(element, pid);
}

std::unique_ptr<desktop::EventTap> X11Desktop::createEventTap(CGEventMask mask, desktop::EventTapHandler handler) {
  const auto deliver = [points = points_, handler = std::move(handler)](desktop::MouseDown mouseDown) {
    mouseDown.location = points.fromPixels(mouseDown.location);
    return handler(mouseDown);
  };
  auto tap = EventTap::create(mask, deliver, [this](xcb_window_t rootChild, CGPoint position) {
    return elements_.mayHitButton(rootChild, position);
  });
  if (tap) reconsider_ = tap->reconsider();
  return tap;
}

CGError X11Desktop::activeDisplays(std::vector<CGDirectDisplayID>& displays) {
  displays = displays_.activeDisplays();
  return kCGErrorSuccess;
}

std::optional<desktop::Display> X11Desktop::display(CGDirectDisplayID identifier) {
  const Monitor* monitor = displays_.monitor(identifier);
  if (monitor == nullptr) return std::nullopt;
  desktop::Display display = monitor->display;
  display.bounds = points_.fromPixels(display.bounds);
  return display;
}

std::vector<desktop::Screen> X11Desktop::screens() {
  std::vector<desktop::Screen> screens = displays_.screens();
  for (desktop::Screen& screen : screens) screen.scale = points_.scale();
  return screens;
}

std::vector<ns::DiagnosticLine> X11Desktop::titleBarButtons() {
  std::vector<ns::DiagnosticLine> lines{{"Title bars", drawnButtons_.summary()}};
  for (const Window& window : tracker_.windows()) {
    if (window.properties.isFurniture || window.properties.isIconic()) continue;
    const auto more = elements_.describeButtons(window);
    lines.insert(lines.end(), more.begin(), more.end());
  }
  return lines;
}
std::size_t X11Desktop::forgetTitleBarButtons(std::string_view painter) { return drawnButtons_.forget(painter); }

std::vector<desktop::Application> X11Desktop::runningApplications() { return applications_.running(); }
bool X11Desktop::isApplicationRunning(pid_t pid) { return !tracker_.windowsOfProcess(pid).empty(); }
bool X11Desktop::hideApplication(pid_t pid) { return hiding_.hide(pid); }
void X11Desktop::observeApplications(std::function<void(desktop::ApplicationChange, pid_t)> observer) {
  applications_.observe(std::move(observer));
}

}  // namespace x11

desktop::Desktop& desktop::Desktop::current() { return x11::X11Desktop::shared(); }
