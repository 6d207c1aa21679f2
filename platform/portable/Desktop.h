// What the C half of the interface asks of a desktop.
//
// The C functions in ApplicationServices.h box values, count references and check arguments once; everything that
// depends on the desktop goes through this class. Abstract because there are two: a real X11 desktop, and one in memory
// for tests that can make any call fail.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/ApplicationServices.h"
#include "platform/Diagnostics.h"
#include "platform/PropertyList.h"

namespace desktop {

/// Names one element of the desktop. Cheap to copy; only the desktop that gave it knows what its numbers mean. It may
/// name something that is gone: then every question about it answers kAXErrorInvalidUIElement.
struct Element {
  std::uint32_t kind = 0;
  std::uint64_t id = 0;
  friend bool operator==(const Element&, const Element&) = default;
};

/// A value of a type that no caller expects: it reads as an array.
struct ForeignValue {
  friend bool operator==(const ForeignValue&, const ForeignValue&) = default;
};

using Value = std::variant<ForeignValue, bool, std::int64_t, double, std::string, CGPoint, CGSize, Element>;

struct Display {
  CGRect bounds{};
  bool isMain = false;
  std::uint32_t vendor = 0;
  std::uint32_t model = 0;
  std::uint32_t serial = 0;
};

struct Screen {
  /// The display's identifier as a number; none or another type when the desktop cannot tell.
  std::optional<ns::PropertyList> number;
  std::string localizedName;
  /// Pixels a point.
  double scale = 1;
};

struct Application {
  pid_t pid = 0;
  std::optional<std::string> bundleIdentifier;
  std::string name;
};

/// A mouse-down on its way to a window, or the notice that the tap was disabled (then only `type` counts).
struct MouseDown {
  CGEventType type{};
  CGEventFlags flags = 0;
  CGPoint location{};
};

/// An installed tap: delivers while enabled. Destroying it uninstalls it; no call of its handler follows. It is never
/// destroyed inside its own handler.
class EventTap {
 public:
  virtual ~EventTap() = default;
  virtual void setEnabled(bool enabled) = 0;
  virtual bool isEnabled() const = 0;
  /// False once the desktop has dropped the tap for good: it delivers nothing more, whether enabled or not.
  virtual bool isValid() const { return true; }
};
/// Called on the main thread; true passes the event on, false swallows it.
using EventTapHandler = std::function<bool(const MouseDown&)>;

enum class ApplicationChange { Launched, Terminated };

/// Every member is called on the main thread, and none waits for another application.
class Desktop {
 public:
  /// The desktop of this process, defined by the backing that is linked in.
  static Desktop& current();
  virtual ~Desktop() = default;

  virtual bool isProcessTrusted() = 0;
  /// Starts asking the person for consent; returns at once.
  virtual void promptForTrust() = 0;

  virtual Element systemWideElement() = 0;
  virtual Element applicationElement(pid_t pid) = 0;
  /// On success `element` is the deepest element known at `position`; kAXErrorNoValue when there is none.
  virtual AXError elementAtPosition(CGPoint position, Element& element) = 0;
  /// kAXErrorAttributeUnsupported for an attribute the element cannot have, kAXErrorNoValue for one it has not.
  virtual AXError attribute(const Element& element, std::string_view name, Value& value) = 0;
  virtual AXError setAttribute(const Element& element, std::string_view name, const Value& value) = 0;
  virtual AXError processIdentifier(const Element& element, pid_t& pid) = 0;

  /// A disabled tap for the events in `mask`; null when the desktop refuses it.
  virtual std::unique_ptr<EventTap> createEventTap(CGEventMask mask, EventTapHandler handler) = 0;
  /// Whether a run-loop source can be made for a tap.
  virtual bool allowsRunLoopSource() { return true; }

  /// The identifiers of the active displays in the desktop's order.
  virtual CGError activeDisplays(std::vector<CGDirectDisplayID>& displays) = 0;
  /// None for an identifier that is not active.
  virtual std::optional<Display> display(CGDirectDisplayID identifier) = 0;
  virtual std::vector<Screen> screens() = 0;

  /// As ns::titleBarButtonDiagnostics and ns::forgetTitleBarButtons.
  virtual std::vector<ns::DiagnosticLine> titleBarButtons() = 0;
  virtual std::size_t forgetTitleBarButtons(std::string_view painter) = 0;

  /// A process may be several applications.
  virtual std::vector<Application> runningApplications() = 0;
  /// Whether an application has windows under this process identifier. Which one it is may take long to tell: this does
  /// not look.
  virtual bool isApplicationRunning(pid_t pid) = 0;
  /// Hides every window of the process; false when it has none or the request could not be made.
  virtual bool hideApplication(pid_t pid) = 0;
  /// `observer` is called on the main thread after each launch and quit of any application, until the desktop is gone.
  virtual void observeApplications(std::function<void(ApplicationChange, pid_t)> observer) = 0;
};

}  // namespace desktop
