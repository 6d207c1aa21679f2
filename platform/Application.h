// The process as an application with an event loop.
#pragma once

#include <memory>

namespace ns {

/// Regular applications have a place in the Dock or task bar, accessories have none.
enum class ActivationPolicy { Regular = 0, Accessory = 1 };

/// Told about the application's life. Held weakly.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching() = 0;
  virtual void applicationWillTerminate() = 0;
};

/// The one application object. Main thread only.
class Application : public std::enable_shared_from_this<Application> {
 public:
  /// main() holds it until everything on screen is gone: it may end with its last holder.
  static std::shared_ptr<Application> sharedApplication();
  virtual ~Application() = default;

  virtual void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) = 0;
  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
  virtual ActivationPolicy activationPolicy() const = 0;
  /// Brings the application's windows before those of all others.
  virtual void activateIgnoringOtherApps() = 0;
  /// Runs the event loop until terminate(); the delegate hears of both ends.
  virtual void run() = 0;
  virtual void terminate() = 0;
};

}  // namespace ns
