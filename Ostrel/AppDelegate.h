// The application's delegate: what happens at launch, every two seconds, from the menu, and at the end.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Ostrel/OstrelController.h"
#include "Ostrel/SettingsWindowController.h"
#include "platform/Application.h"
#include "platform/Menu.h"
#include "platform/RunLoop.h"
#include "platform/StatusBar.h"
#include "platform/Updater.h"

namespace ostrel {

/// Made with std::make_shared; the application holds it weakly, so its maker keeps it. Main thread only.
class AppDelegate : public std::enable_shared_from_this<AppDelegate>,
                    public ns::ApplicationDelegate,
                    public ns::MenuDelegate,
                    public spu::StandardUserDriverDelegate {
 public:
  // --- Life cycle (AppDelegate.cpp) ---

  void applicationDidFinishLaunching() override;
  void applicationWillTerminate() override;
  bool supportsGentleScheduledUpdateReminders() const override { return true; }
  void standardUserDriverWillHandleShowingUpdate(bool handleShowingUpdate, const spu::AppcastItem& update,
                                                 const spu::UserUpdateState& state) override;
  void standardUserDriverDidReceiveUserAttentionForUpdate(const spu::AppcastItem& update) override;

  /// To be called before the launch: it then ends with the settings open at this tab, the first one when `tab` is
  /// empty.
  void showSettingsAtLaunch(const std::string& tab) { tabAtLaunch_ = tab; }
  /// The answer to what a later start of the program asks.
  std::string answer(const std::string& request);

  // --- Status item and menu (StatusMenu.cpp) ---

  void setupStatusItem();
  /// Follows the Accessibility permission of this moment.
  void updateStatusItemAppearance();
  void menuNeedsUpdate(ns::Menu& menu) override;
  /// Null when the system knows no such symbol.
  static std::shared_ptr<ns::Image> menuIcon(const std::string& symbolName);
  /// "v" and the short version, "v?" when the bundle has none.
  static std::string versionString();
  /// The one settings window, made on first use.
  SettingsWindowController& settingsWindow();
  void openSettings();
  void openAbout();
  void openAccessibilitySettings();

 private:
  struct StatusLook;
  static const StatusLook granted;
  static const StatusLook missing;

  void tick();
  void showSettings(const std::string& tab);
  void preferencesWereRefused(const std::string& reason);

  std::optional<std::string> tabAtLaunch_;
  std::shared_ptr<ns::StatusItem> statusItem_;
  /// None before the first.
  const StatusLook* shownLook_ = nullptr;
  std::shared_ptr<OstrelController> controller_;
  std::shared_ptr<SettingsWindowController> settingsController_;
  std::shared_ptr<ns::Timer> permissionTimer_;
  std::shared_ptr<spu::StandardUpdaterController> updaterController_;
  bool isTellingOfRefusal_ = false;
};

}  // namespace ostrel
