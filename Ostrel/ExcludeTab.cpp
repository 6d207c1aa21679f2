// The Exclude tab: the applications whose window buttons are left alone.
#include <algorithm>

#include "Ostrel/SettingsLayout.h"
#include "Ostrel/SettingsWindowController.h"
#include "Ostrel/SymbolImage.h"
#include "platform/Bundle.h"
#include "platform/Panels.h"
#include "platform/Workspace.h"

namespace ostrel {
namespace {

std::string withoutAppSuffixes(const std::string& name) {
  constexpr std::string_view suffix = ".app";
  std::string result;
  for (std::size_t start = 0;;) {
    const auto end = name.find(suffix, start);
    result += name.substr(start, end - start);
    if (end == std::string::npos) return result;
    start = end + suffix.size();
  }
}

/// What the button that adds is found by when the list has been made anew; no application is called so.
constexpr const char* addIdentifier = "add";

std::shared_ptr<ns::View> viewIdentified(const ns::View& within, const std::string& identifier) {
  for (const auto& subview : within.subviews()) {
    if (subview->identifier() == identifier) return subview;
    if (auto found = viewIdentified(*subview, identifier)) return found;
  }
  return nullptr;
}

/// Of the buttons that remove, the one that the next press of the space bar is meant for: of the following
/// application, else of the one before; without any the button that adds.
std::string neighbourOf(const std::string& bundleID, const std::vector<ExcludedApp>& apps) {
  const auto found = std::ranges::find(apps, bundleID, &ExcludedApp::bundleID);
  if (found == apps.end()) return addIdentifier;
  if (found + 1 != apps.end()) return (found + 1)->bundleID;
  return found != apps.begin() ? (found - 1)->bundleID : addIdentifier;
}

void showUnreadableAppAlert() {
  ns::Alert alert;
  alert.setAlertStyle(ns::AlertStyle::Warning);
  alert.setMessageText("Couldn't read that app");
  alert.setInformativeText("Ostrel couldn't determine the app's identifier, so it can't be excluded.");
  alert.addButtonWithTitle("OK");
  alert.runModal();
}

}  // namespace

std::shared_ptr<ns::View> SettingsWindowController::makeExcludeTab() {
  const auto list = makeSectionContainer("Excluded apps", [this](Rows& rows) {
    const auto controller = controller_.lock();
    const auto apps = controller ? controller->excludedApps() : std::vector<ExcludedApp>();
    for (const ExcludedApp& app : apps) rows.push_back(makeExcludedAppRow(app));
    if (apps.empty()) {
      rows.push_back(makeMutedRow("No apps are excluded. Ostrel affects the window buttons in every app."));
    }
  });
  const auto addition = makeSectionContainer("Add an app", [this](Rows& rows) {
    const auto add = std::make_shared<ns::Button>("Add app…");
    add->setIdentifier(addIdentifier);
    add->setTarget(weak_from_this(), &SettingsWindowController::addExcludedApp);
    const auto row = std::make_shared<ns::View>();
    row->addSubview(add);
    ns::activate({add->leading() == row->leading(), add->trailing() <= row->trailing(), add->top() == row->top(),
                  add->bottom() == row->bottom()});
    rows.push_back(row);
    rows.push_back(makeInfoBox(
        "Excluded apps keep their normal ostrel behavior — Ostrel won't center, fill or hide their windows."));
  });
  return makeScrollableTab({list, addition});
}

void SettingsWindowController::rebuildExcludeTab() {
  if (const auto old = tabViews_.find(Tab::Exclude); old != tabViews_.end()) old->second->removeFromSuperview();
  tabViews_[Tab::Exclude] = makeExcludeTab();
  if (selectedTab_ == Tab::Exclude) showTab(Tab::Exclude);
}

std::shared_ptr<ns::View> SettingsWindowController::makeExcludedAppRow(const ExcludedApp& app) {
  const auto row = std::make_shared<ns::View>();
  const auto icon = std::make_shared<ns::ImageView>();
  icon->setImage(excludedAppIcon(app));
  icon->setImageScaling(ns::ImageScaling::ProportionallyUpOrDown);
  const auto name = makeLabel(app.name, ns::Font::systemFontOfSize(13));
  name->setLineBreakMode(ns::LineBreakMode::TruncatingTail);
  name->setContentHuggingPriority(ns::LayoutPriorityDefaultLow, ns::LayoutOrientation::Horizontal);
  const auto remove = std::make_shared<ns::Button>("Remove");
  remove->setControlSize(ns::ControlSize::Small);
  remove->setTarget(weak_from_this(), &SettingsWindowController::removeExcludedApp);
  remove->setIdentifier(app.bundleID);
  remove->setAccessibilityLabel("Remove " + app.name);
  remove->setContentHuggingPriority(ns::LayoutPriorityRequired, ns::LayoutOrientation::Horizontal);
  remove->setContentCompressionResistancePriority(ns::LayoutPriorityRequired, ns::LayoutOrientation::Horizontal);
  row->addSubview(icon);
  row->addSubview(name);
  row->addSubview(remove);
  // The last relation makes the row no higher than it needs to be.
  ns::activate({icon->width() == 22, icon->height() == 22, icon->leading() == row->leading(),
                icon->centerY() == row->centerY(), name->leading() == icon->trailing() + 10,
                name->centerY() == row->centerY(), remove->leading() >= name->trailing() + 12,
                remove->trailing() == row->trailing(), remove->centerY() == row->centerY(), row->height() >= 28,
                (row->height() == 28).priority(ns::LayoutPriorityDefaultLow)});
  return row;
}

std::shared_ptr<ns::Image> SettingsWindowController::excludedAppIcon(const ExcludedApp& app) {
  const auto workspace = ns::Workspace::sharedWorkspace();
  const auto path = workspace->URLForApplicationWithBundleIdentifier(app.bundleID);
  if (!path) return symbolImage("app.dashed", 16);
  auto icon = workspace->iconForFile(*path);
  if (icon) icon->setSize({22, 22});
  return icon;
}

std::shared_ptr<ns::View> SettingsWindowController::makeMutedRow(const std::string& text) {
  return makeWrappingLabel(text, ns::Font::systemFontOfSize(12), ns::Color::secondaryLabelColor());
}

void SettingsWindowController::rebuildExcludeTabAround(const ns::Button& sender, const std::string& successor) {
  // By mouse nobody has the keyboard, and nothing is to light up.
  const bool hasKeyboard = window_ && window_->isFirstResponder(sender);
  rebuildExcludeTab();
  if (!hasKeyboard) return;
  if (const auto view = viewIdentified(*tabViews_[Tab::Exclude], successor)) window_->makeFirstResponder(*view);
}

void SettingsWindowController::addExcludedApp(ns::Button& sender) {
  ns::OpenPanel panel;
  panel.setDirectory("/Applications");
  panel.setPrompt("Exclude");
  panel.setMessage("Choose an app to exclude from Ostrel.");
  const auto path = panel.runModal();
  if (!path) return;
  const auto bundle = ns::Bundle::bundleWithPath(*path);
  const auto bundleID = bundle ? bundle->bundleIdentifier() : std::nullopt;
  if (!bundleID) {
    showUnreadableAppAlert();
    return;
  }
  const std::string name = withoutAppSuffixes(ns::displayNameAtPath(bundle->bundlePath()));
  if (const auto controller = controller_.lock()) controller->addExcludedApp({*bundleID, name});
  rebuildExcludeTabAround(sender, addIdentifier);
  onChange_();
}

void SettingsWindowController::removeExcludedApp(ns::Button& sender) {
  if (sender.identifier().empty()) return;
  std::string successor = addIdentifier;
  if (const auto controller = controller_.lock()) {
    successor = neighbourOf(sender.identifier(), controller->excludedApps());
    controller->removeExcludedApp(sender.identifier());
  }
  rebuildExcludeTabAround(sender, successor);
  onChange_();
}

}  // namespace ostrel
