// The delegate's status item, its menu, and what the menu does.
#include "Ostrel/AccessibilityPermission.h"
#include "Ostrel/AppDelegate.h"
#include "Ostrel/SymbolImage.h"
#include "platform/Bundle.h"

namespace ostrel {

struct AppDelegate::StatusLook {
  const char* symbolName;
  /// Shown when the system has no such symbol.
  const char* title;
  const char* toolTip;
};

const AppDelegate::StatusLook AppDelegate::granted{"rectangle.center.inset.filled", "Os", "Ostrel"};
const AppDelegate::StatusLook AppDelegate::missing{"exclamationmark.triangle.fill", "⚠",
                                                   "Ostrel — Accessibility access needed"};

void AppDelegate::setupStatusItem() {
  statusItem_ = ns::StatusBar::statusItemWithVariableLength();
  statusItem_->setVisible(true);
  const auto menu = std::make_shared<ns::Menu>();
  menu->setDelegate(weak_from_this());
  statusItem_->setMenu(menu);
  updateStatusItemAppearance();
}

void AppDelegate::updateStatusItemAppearance() {
  ns::StatusBarButton* const button = statusItem_ ? statusItem_->button() : nullptr;
  if (button == nullptr) return;
  const StatusLook& look = AXIsProcessTrusted() ? granted : missing;
  if (shownLook_ == &look) return;  // asked every two seconds, for as long as the program runs
  shownLook_ = &look;
  const auto image = ns::Image::imageWithSystemSymbolName(look.symbolName, "Ostrel");
  if (image) image->setTemplate(true);
  button->setImage(image);
  button->setTitle(image ? "" : look.title);
  button->setToolTip(look.toolTip);
}

void AppDelegate::menuNeedsUpdate(ns::Menu& menu) {
  const auto add = [&menu](const std::string& title, const char* symbolName, const std::string& keyEquivalent = {}) {
    const auto item = std::make_shared<ns::MenuItem>(title, keyEquivalent);
    item->setImage(menuIcon(symbolName));
    menu.addItem(item);
    return item;
  };
  menu.removeAllItems();
  if (!AXIsProcessTrusted()) {
    add("Accessibility access needed", "exclamationmark.triangle.fill")
        ->setTarget(weak_from_this(), &AppDelegate::openAccessibilitySettings);
    const auto explanation =
        std::make_shared<ns::MenuItem>("Grant access in System Settings, then Ostrel starts on its own.");
    explanation->setEnabled(false);
    menu.addItem(explanation);
    menu.addItem(ns::MenuItem::separatorItem());
  }
  add("About (" + versionString() + ")", "info.circle")->setTarget(weak_from_this(), &AppDelegate::openAbout);
  add("Settings", "gearshape", ",")->setTarget(weak_from_this(), &AppDelegate::openSettings);
  const auto updates = add("Check for Updates…", "arrow.triangle.2.circlepath");
  updates->setTarget(std::weak_ptr(updaterController_), &spu::StandardUpdaterController::checkForUpdates);
  updates->setEnabled(updaterController_ && updaterController_->canCheckForUpdates());
  menu.addItem(ns::MenuItem::separatorItem());
  add("Quit Ostrel", "power", "q")
      ->setTarget(std::weak_ptr(ns::Application::sharedApplication()), &ns::Application::terminate);
  updateStatusItemAppearance();
}

std::shared_ptr<ns::Image> AppDelegate::menuIcon(const std::string& symbolName) {
  const auto image = symbolImage(symbolName, 14);
  if (image) image->setTemplate(true);
  return image;
}

std::string AppDelegate::versionString() {
  const auto version = ns::Bundle::mainBundle()->objectForInfoDictionaryKey("CFBundleShortVersionString");
  const auto* const text = version ? version->as<std::string>() : nullptr;
  return "v" + (text ? *text : "?");
}

SettingsWindowController& AppDelegate::settingsWindow() {
  if (!settingsController_) {
    settingsController_ = std::make_shared<SettingsWindowController>(controller_, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->updateStatusItemAppearance();
    });
  }
  return *settingsController_;
}

void AppDelegate::openSettings() { settingsWindow().present(Tab::General); }
void AppDelegate::openAbout() { settingsWindow().present(Tab::About); }

void AppDelegate::openAccessibilitySettings() {
  promptForAccessibility();
  openAccessibilityPrivacyPane();
}

}  // namespace ostrel
