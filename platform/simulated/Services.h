// The object half's services in memory: login item, bundles, update framework, status bar and panels.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/LoginItem.h"
#include "platform/Panels.h"
#include "platform/PropertyList.h"
#include "platform/StatusBar.h"
#include "platform/Updater.h"

namespace simulated {

/// A login item whose registration obeys, or refuses with a text.
class LoginItem final : public sm::AppService {
 public:
  int status() const override { return statusNow; }
  void registerItem() override;
  void unregisterItem() override;

  int statusNow = 0;
  /// What a registration that succeeds leads to: 2 where the person has to approve it.
  int statusAfterRegistering = 1;
  /// None: it obeys.
  std::optional<std::string> refusal;
  /// "register" and "unregister", in order.
  std::vector<std::string> calls;
};

/// What the status item of the process shows.
class StatusItem final : public ns::StatusItem, private ns::StatusBarButton {
 public:
  void setVisible(bool visible) override { isVisible = visible; }
  void setMenu(std::shared_ptr<ns::Menu> newMenu) override { menu = std::move(newMenu); }
  ns::StatusBarButton* button() override { return hasButton ? this : nullptr; }

  bool hasButton = true;
  bool isVisible = false;
  std::shared_ptr<ns::Menu> menu;
  std::shared_ptr<ns::Image> image;
  std::string title;
  std::string toolTip;

 private:
  void setImage(std::shared_ptr<ns::Image> newImage) override { image = std::move(newImage); }
  void setTitle(const std::string& text) override { title = text; }
  void setToolTip(const std::string& text) override { toolTip = text; }
};

/// An updater that only tells what was asked of it.
class Updater final : public spu::StandardUpdaterController {
 public:
  void checkForUpdates() override { ++checks; }
  bool canCheckForUpdates() const override { return canCheck; }

  bool canCheck = true;
  int checks = 0;
  bool isStarted = false;
  std::weak_ptr<spu::StandardUserDriverDelegate> delegate;
};

struct ShownAlert {
  std::string message;
  std::string informativeText;
  std::vector<std::string> buttonTitles;
};

struct ShownPanel {
  std::string directory;
  std::string prompt;
  std::string message;
};

/// The services of the process while it exists. Main thread only.
class Services {
 public:
  Services();
  ~Services();
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;
  static Services& installed();

  LoginItem loginItem;
  /// The information dictionary of the running application.
  ns::Dictionary mainBundleInfo;
  /// Bundle identifier by path; an application at a path that is not here cannot be read, one with an empty text has
  /// no identifier.
  std::map<std::string, std::string> bundles;
  /// By path.
  std::map<std::string, std::string> displayNames;
  /// The last ones made, and what happens when one is made.
  std::shared_ptr<Updater> updater;
  std::shared_ptr<StatusItem> statusItem;
  std::function<void()> onUpdaterMade;
  std::function<void()> onStatusItemMade;
  /// What the person chooses in the open panels to come; cancelled when there is nothing.
  std::deque<std::string> choices;
  std::vector<ShownPanel> panels;
  std::vector<ShownAlert> alerts;

 private:
  Services* const previous_;
};

}  // namespace simulated
