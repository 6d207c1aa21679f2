// What every backing is tried with: a desktop, and an application of another process with one window on it.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

#include "platform/ApplicationServices.h"

namespace contract {

/// One small fixture for each backing; the one that is linked in counts. Main thread only.
class Backing {
 public:
  /// From the first call to the end of the process.
  static Backing& current();
  virtual ~Backing() = default;

  /// Starts the application and waits until its window, which has all three buttons, is on the screen and in front.
  virtual pid_t launch() = 0;
  virtual void quit() = 0;
  virtual std::string bundleIdentifier() const = 0;
  /// Where the window is, told by somebody else than the interface.
  virtual CGRect frame() = 0;
  /// From the upper edge of the window to the middle of its buttons.
  virtual double buttonHeight() = 0;
  /// Whether the windows of a hidden application are minimized, as X11 has nothing else for it.
  virtual bool minimizesToHide() const { return false; }
  /// With the left button.
  virtual void click(CGPoint place) = 0;
  /// Lets the main queue go on until `holds`; false when it does not within a bound.
  virtual bool waitFor(const std::function<bool()>& holds) = 0;
};

}  // namespace contract
