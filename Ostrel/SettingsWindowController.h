// The settings window: its frame, its four tabs and everything their controls do. Every change is stored at once.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Ostrel/MarginKey.h"
#include "Ostrel/OstrelController.h"
#include "Ostrel/SidebarButton.h"
#include "Ostrel/Tab.h"
#include "platform/Controls.h"
#include "platform/Window.h"

namespace ostrel {

/// Made with std::make_shared; builds its window at the first present(). Main thread only.
class SettingsWindowController : public std::enable_shared_from_this<SettingsWindowController>,
                                 public ns::WindowDelegate,
                                 public ns::TextFieldDelegate {
 public:
  using Rows = std::vector<std::shared_ptr<ns::View>>;

  /// Holds the controller weakly; with it gone nothing is written. `onChange` is called after changes that the owner
  /// may want to show.
  SettingsWindowController(std::weak_ptr<OstrelController> controller, std::function<void()> onChange);

  // --- Window (SettingsWindowController.cpp) ---

  /// Brings everything up to date, then the window to the front, with this tab.
  void present(Tab tab);
  void showTab(Tab tab);
  void updateSidebarSelection();
  /// Shows what is stored, after it changed by itself.
  void readPreferencesAgain();
  void windowWillClose() override;
  void windowDidBecomeKey() override;
  /// "v", the short version and, in parentheses, the build.
  static std::string versionString();
  Tab selectedTab() const { return selectedTab_; }
  /// Null until the first present().
  const std::shared_ptr<ns::Window>& window() const { return window_; }

  // --- Opening at login (LaunchAtLogin.cpp) ---

  void syncLaunchAtLogin();
  void launchAtLoginToggled(ns::Switch& sender);

  // --- General tab (GeneralTab.cpp) ---

  void yellowButtonToggled(ns::Switch& sender);
  void greenButtonToggled(ns::Switch& sender);
  void redButtonToggled(ns::Switch& sender);
  void requestAccessibility(ns::Button& sender);
  void syncYellowButton();
  void syncGreenButton();
  void syncRedButton();
  void refreshAccessibilityStatus();

  // --- Displays tab (DisplaysTab.cpp) ---

  /// Keeps the chosen display while it is attached. To be followed by syncControls().
  void reloadDisplays();
  /// Shows the margins of the chosen display.
  void syncControls();
  void setControlValue(double value, MarginKey key);
  void updateMargin(MarginKey key, double value);
  void displayChanged(ns::PopUpButton& sender);
  void fieldChanged(ns::TextField& sender);
  void stepperChanged(ns::Stepper& sender);
  void controlTextDidEndEditing(ns::TextField& field) override;
  void resetMargins(ns::Button& sender);
  /// None while no display is attached.
  std::optional<CGDirectDisplayID> selectedDisplayID() const { return selectedDisplayID_; }

  // --- Exclude tab (ExcludeTab.cpp) ---

  void rebuildExcludeTab();
  void addExcludedApp(ns::Button& sender);
  void removeExcludedApp(ns::Button& sender);

  // --- About tab (AboutTab.cpp) ---

  void openWebsite(ns::Button& sender);

 private:
  // --- Frame (SettingsWindowController.cpp) ---

  void buildWindow();
  std::shared_ptr<ns::View> makeRootView();
  std::shared_ptr<ns::View> makeHeaderView();
  std::shared_ptr<ns::View> makeSidebarView();
  std::shared_ptr<ns::View> makeContentArea();
  std::shared_ptr<ns::View> makeFooterView();

  // --- Shared builders (SettingsBuilders.cpp) ---

  static std::shared_ptr<ns::View> makeScrollableTab(const Rows& sections);
  /// `populate` appends the rows of the card under the title.
  static std::shared_ptr<ns::View> makeSectionContainer(const std::string& title,
                                                        const std::function<void(Rows&)>& populate);
  static std::shared_ptr<ns::View> makeCardView();
  static std::shared_ptr<ns::View> paddedRowContainer(const std::shared_ptr<ns::View>& view, double horizontal,
                                                      double vertical);
  static std::shared_ptr<ns::View> makeToggleRow(const std::string& icon, const std::string& title,
                                                 const std::string& subtitle, const std::shared_ptr<ns::View>& control);
  static std::shared_ptr<ns::View> makeVexoRow(const std::string& icon, const std::string& title,
                                               const std::shared_ptr<ns::View>& control);
  static std::shared_ptr<ns::View> makeInfoBox(const std::string& text);

  // --- The tabs, each in its own file ---

  std::shared_ptr<ns::View> makeGeneralTab();
  std::shared_ptr<ns::View> makeSwitchRow(const std::string& icon, const std::string& title,
                                          const std::string& subtitle, std::shared_ptr<ns::Switch>& control,
                                          void (SettingsWindowController::*action)(ns::Switch&));

  std::shared_ptr<ns::View> makeDisplaysTab();
  std::shared_ptr<ns::View> makeMarginRow(MarginKey key);

  std::shared_ptr<ns::View> makeExcludeTab();
  /// rebuildExcludeTab() after the use of one of its buttons: if that had the keyboard, the button with the identifier
  /// `successor` has it afterwards.
  void rebuildExcludeTabAround(const ns::Button& sender, const std::string& successor);
  std::shared_ptr<ns::View> makeExcludedAppRow(const ExcludedApp& app);
  /// Null when the system has nothing to show for the application.
  static std::shared_ptr<ns::Image> excludedAppIcon(const ExcludedApp& app);
  static std::shared_ptr<ns::View> makeMutedRow(const std::string& text);

  std::shared_ptr<ns::View> makeAboutTab();
  std::shared_ptr<ns::View> makeAppInfoCard();
  static std::shared_ptr<ns::View> makeFeatureRow(const std::string& icon, const std::string& title,
                                                  const std::string& description);
  std::shared_ptr<ns::Button> makeLinkButton(const std::string& title,
                                             void (SettingsWindowController::*action)(ns::Button&));

  const std::weak_ptr<OstrelController> controller_;
  const std::function<void()> onChange_;
  std::map<MarginKey, std::shared_ptr<ns::TextField>> fields_;
  std::map<MarginKey, std::shared_ptr<ns::Stepper>> steppers_;
  std::shared_ptr<ns::PopUpButton> displayPopup_;
  std::shared_ptr<ns::TextField> configurationField_;
  /// In the order of the pop-up's items.
  std::vector<DisplayInfo> displays_;
  std::optional<CGDirectDisplayID> selectedDisplayID_;
  Tab selectedTab_ = Tab::General;
  std::shared_ptr<ns::View> contentContainer_;
  std::map<Tab, std::shared_ptr<SidebarButton>> sidebarButtons_;
  std::map<Tab, std::shared_ptr<ns::View>> tabViews_;
  std::shared_ptr<ns::Switch> launchAtLoginSwitch_;
  std::shared_ptr<ns::TextField> launchAtLoginStatusField_;
  std::shared_ptr<ns::Button> accessibilityButton_;
  std::shared_ptr<ns::TextField> accessibilityStatusField_;
  std::shared_ptr<ns::Switch> yellowButtonSwitch_;
  std::shared_ptr<ns::Switch> greenButtonSwitch_;
  std::shared_ptr<ns::Switch> redButtonSwitch_;
  std::shared_ptr<ns::Window> window_;
};

}  // namespace ostrel
