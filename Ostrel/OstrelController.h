// The one controller: watches mouse-downs, decides what a click on a window button does, and does it.
#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Ostrel/DisplayCatalogue.h"
#include "Ostrel/ExcludedApp.h"
#include "Ostrel/WindowAction.h"
#include "Ostrel/WindowMargins.h"
#include "platform/ApplicationServices.h"
#include "platform/CFRef.h"
#include "platform/Lock.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace ostrel {

/// Main thread only, but for refreshExcludedPIDs. Tasks and observers that may outlive the controller hold it weakly.
class OstrelController : public std::enable_shared_from_this<OstrelController> {
 public:
  /// A controller that follows the excluded applications already but has no tap yet.
  static std::shared_ptr<OstrelController> create();
  /// Takes the tap down first, so that no event reaches a controller that is gone.
  ~OstrelController();
  OstrelController(const OstrelController&) = delete;
  OstrelController& operator=(const OstrelController&) = delete;

  // --- Lifecycle (OstrelController.cpp) ---

  /// Installs the event tap unless it is installed, anew when it has died, and enables it when the system has disabled
  /// it. True when it is installed on return; otherwise lastError tells why.
  bool startIfPossible();
  /// Takes the tap down. Does nothing when there is none; never touches lastError.
  void stop();
  /// Decides about one event of the tap: returns it to pass it on, null to swallow it.
  CGEventRef handleEvent(CGEventType type, CGEventRef event);

  bool isEnabled() const { return isEnabled_; }
  /// The master switch. Turned off, every event passes and the next start takes the tap down.
  void setEnabled(bool isEnabled) { isEnabled_ = isEnabled; }
  /// Why the last start failed; none after one that succeeded.
  const std::optional<std::string>& lastError() const { return lastError_; }
  /// Whether the tap is installed; the system may have disabled it for the moment.
  bool isTapInstalled() const { return static_cast<bool>(eventTap_); }
  ns::UserDefaults& defaults() const { return *defaults_; }

  // --- Click classification (ClickClassification.cpp) ---

  /// What a mouse-down of this type at this point is to do, if anything. Asks other applications; changes nothing.
  std::optional<WindowAction> actionForClick(CGEventType type, CGPoint location) const;
  /// Whether the minimise and the zoom button are ours: true until the user says otherwise.
  bool interceptsYellowButton() const;
  bool interceptsGreenButton() const;
  bool isWindowExcluded(AXUIElementRef window) const;

  // --- Window actions (WindowActions.cpp) ---
  // None reports failure: a window that cannot be read, or has no display, stays as it is.

  void centerHorizontally(AXUIElementRef window) const;
  void fillWithMargins(AXUIElementRef window) const;
  /// Hides the window's application or, when it refuses, minimises the window alone.
  void hide(AXUIElementRef window) const;

  // --- Margins (MarginStore.cpp) ---

  /// The margins of a display in the current display configuration.
  WindowMargins margins(CGDirectDisplayID display) const;
  /// Clamps and stores them at once.
  void updateMargins(const WindowMargins& margins, CGDirectDisplayID display);

  // --- Excluded applications (Exclusions.cpp) ---

  /// As stored, read afresh.
  std::vector<ExcludedApp> excludedApps() const { return loadExcludedApps(*defaults_); }
  /// Sorts by name, stores and applies the list.
  void setExcludedApps(std::vector<ExcludedApp> apps);
  /// Keeps the listed entry when the identifier is listed already.
  void addExcludedApp(const ExcludedApp& app);
  void removeExcludedApp(std::string_view bundleID);
  /// Empty when the stored list is missing or malformed.
  static std::vector<ExcludedApp> loadExcludedApps(const ns::UserDefaults& defaults);
  /// To be told when the store has taken a list back that it could not keep.
  void reloadExcludedApps();
  /// Finds the running processes of the excluded applications again. Any thread: elsewhere than on the main thread it
  /// queues the work there.
  void refreshExcludedPIDs();
  std::unordered_set<pid_t> excludedPIDs() const;

 private:
  OstrelController();
  void setUpExclusions();
  void rebuildExcludedPIDs();
  void perform(const WindowAction& action) const;

  const std::shared_ptr<ns::UserDefaults> defaults_;
  std::unordered_set<std::string> excludedBundleIDs_;
  std::unordered_set<pid_t> excludedPIDs_ GUARDED_BY(excludedLock_);
  mutable ns::Lock excludedLock_;
  std::vector<ns::NotificationCenter::Observer> workspaceObservers_;
  bool isEnabled_ = true;
  std::optional<std::string> lastError_;
  const CFRef<AXUIElementRef> systemWideElement_;
  /// Both present (installed, on the main run loop) or both absent.
  CFRef<CFMachPortRef> eventTap_;
  CFRef<CFRunLoopSourceRef> runLoopSource_;
};

/// The tap's callback; `refcon` is the controller, not retained, or null.
CGEventRef ostrelEventTapCallback(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* refcon);

/// The element itself or the nearest of 5 ancestors that is a window button; null when there is none.
CFRef<AXUIElementRef> windowButtonElement(AXUIElementRef start);
/// The element itself or the nearest of 11 ancestors that is a window; null when there is none.
CFRef<AXUIElementRef> containingWindow(AXUIElementRef start);
/// Whether the window has a minimise button and it is enabled.
bool windowCanBeMinimized(AXUIElementRef window);
/// The display that holds the centre of a window or else the nearest one; none when no display is known.
std::optional<DisplayInfo> displayContainingWindow(CGPoint position, CGSize size);

}  // namespace ostrel
