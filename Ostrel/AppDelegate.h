// The application's life: creates the controller, keeps it started, answers later starts of the program.
#pragma once

#include <memory>
#include <string>

#include "Ostrel/OstrelController.h"
#include "platform/Application.h"
#include "platform/RunLoop.h"

namespace ostrel {

/// Main thread only.
class AppDelegate final : public ns::ApplicationDelegate, public std::enable_shared_from_this<AppDelegate> {
 public:
  void applicationDidFinishLaunching() override;
  void applicationWillTerminate() override;

  /// The answer to what a later start of the program asks.
  std::string answer(const std::string& request) const;

 private:
  void tick();

  std::shared_ptr<OstrelController> controller_;
  std::shared_ptr<ns::Timer> permissionTimer_;
};

}  // namespace ostrel
