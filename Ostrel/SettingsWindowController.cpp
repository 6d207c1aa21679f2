#include "Ostrel/SettingsWindowController.h"

#include "Ostrel/GradientIconView.h"
#include "Ostrel/SettingsLayout.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Containers.h"

namespace ostrel {
namespace {

constexpr CGSize contentSize{700, 750};
constexpr CGSize minimumContentSize{650, 700};
constexpr CGSize minimumWindowSize{650, 728};

std::string infoText(std::string_view key, const std::string& fallback) {
  const auto value = ns::Bundle::mainBundle()->objectForInfoDictionaryKey(key);
  const auto* const text = value ? value->as<std::string>() : nullptr;
  return text ? *text : fallback;
}

}  // namespace

SettingsWindowController::SettingsWindowController(std::weak_ptr<OstrelController> controller,
                                                   std::function<void()> onChange)
    : controller_(std::move(controller)), onChange_(std::move(onChange)) {}

void SettingsWindowController::present(Tab tab) {
  if (!window_) buildWindow();
  reloadDisplays();
  syncControls();
  syncLaunchAtLogin();
  refreshAccessibilityStatus();
  syncYellowButton();
  syncGreenButton();
  syncRedButton();
  showTab(tab);
  const auto app = ns::Application::sharedApplication();
  app->setActivationPolicy(ns::ActivationPolicy::Accessory);
  window_->center();
  window_->makeKeyAndOrderFront();
  app->activateIgnoringOtherApps();
}

void SettingsWindowController::readPreferencesAgain() {
  if (!window_) return;
  syncControls();
  syncYellowButton();
  syncGreenButton();
  syncRedButton();
  rebuildExcludeTab();
}

void SettingsWindowController::buildWindow() {
  const auto window = std::make_shared<ns::Window>(CGRect{{0, 0}, contentSize}, ns::WindowStyleMaskTitled |
                                                                                    ns::WindowStyleMaskClosable |
                                                                                    ns::WindowStyleMaskResizable);
  window->setTitle("Ostrel");
  window->setDelegate(weak_from_this());
  window->setContentView(makeRootView());
  window->setContentSize(contentSize);
  window->setContentMinSize(minimumContentSize);
  window->setMinSize(minimumWindowSize);
  window_ = window;
}

void SettingsWindowController::windowWillClose() {
  ns::Application::sharedApplication()->setActivationPolicy(ns::ActivationPolicy::Accessory);
}

void SettingsWindowController::windowDidBecomeKey() {
  refreshAccessibilityStatus();
  syncLaunchAtLogin();
}

void SettingsWindowController::showTab(Tab tab) {
  selectedTab_ = tab;
  updateSidebarSelection();
  if (!contentContainer_) return;
  while (!contentContainer_->subviews().empty()) contentContainer_->subviews().back()->removeFromSuperview();
  const auto found = tabViews_.find(tab);
  if (found == tabViews_.end()) return;
  fill(*contentContainer_, found->second);
  if (tab != Tab::General) return;
  syncLaunchAtLogin();
  refreshAccessibilityStatus();
  syncYellowButton();
  syncGreenButton();
  syncRedButton();
}

void SettingsWindowController::updateSidebarSelection() {
  for (const auto& [tab, button] : sidebarButtons_) {
    button->setSelected(tab == selectedTab_);
    button->updateAppearance();
  }
}

std::string SettingsWindowController::versionString() {
  const std::string build = infoText("CFBundleVersion", "");
  std::string text = "v";
  text += infoText("CFBundleShortVersionString", "?");
  if (!build.empty()) text.append(" (").append(build).append(")");
  return text;
}

std::shared_ptr<ns::View> SettingsWindowController::makeRootView() {
  const auto root = std::make_shared<ns::View>(CGRect{{0, 0}, contentSize});
  ns::Layer look;
  look.backgroundColor = ns::Color::windowBackgroundColor();
  root->setLayer(look);

  const auto header = makeHeaderView();
  const auto upperLine = makeHorizontalLine();
  const auto sidebar = makeSidebarView();
  const auto middleLine = makeVerticalLine();
  const auto content = makeContentArea();
  const auto lowerLine = makeHorizontalLine();
  const auto footer = makeFooterView();
  for (const auto& band : {header, upperLine, lowerLine, footer}) {
    root->addSubview(band);
    ns::activate({band->leading() == root->leading(), band->trailing() == root->trailing()});
  }
  for (const auto& column : {sidebar, middleLine, content}) {
    root->addSubview(column);
    ns::activate({column->top() == upperLine->bottom(), column->bottom() == lowerLine->top()});
  }
  ns::activate({header->top() == root->top(), upperLine->top() == header->bottom(),
                footer->top() == lowerLine->bottom(), footer->bottom() == root->bottom(), sidebar->width() == 250,
                sidebar->height() >= 584, sidebar->leading() == root->leading(),
                middleLine->leading() == sidebar->trailing(), content->leading() == middleLine->trailing(),
                content->trailing() == root->trailing()});
  showTab(Tab::General);
  return root;
}

std::shared_ptr<ns::View> SettingsWindowController::makeHeaderView() {
  const auto header = std::make_shared<ns::View>();
  const auto icon = std::make_shared<GradientIconView>("gear");
  const auto texts = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 2);
  texts->addArrangedSubview(makeLabel("Ostrel Settings", ns::Font::systemFontOfSize(20, ns::FontWeight::Semibold)));
  texts->addArrangedSubview(makeLabel("Manage margins and window-button behavior", ns::Font::systemFontOfSize(12),
                                      ns::Color::secondaryLabelColor()));
  const auto version = makeLabel(versionString(), ns::Font::systemFontOfSize(11), ns::Color::secondaryLabelColor());
  header->addSubview(icon);
  header->addSubview(texts);
  header->addSubview(version);
  ns::activate({header->height() == 76, icon->width() == 44, icon->height() == 44,
                icon->leading() == header->leading() + 24, icon->centerY() == header->centerY(),
                texts->leading() == icon->trailing() + 16, texts->centerY() == header->centerY(),
                texts->trailing() <= version->leading() - 12, version->top() == header->top() + 16,
                version->trailing() == header->trailing() - 24});
  return header;
}

std::shared_ptr<ns::View> SettingsWindowController::makeFooterView() {
  const auto footer = std::make_shared<ns::View>();
  const auto label =
      makeLabel("Changes are saved automatically", ns::Font::systemFontOfSize(11), ns::Color::secondaryLabelColor());
  footer->addSubview(label);
  ns::activate(
      {footer->height() == 38, label->trailing() == footer->trailing() - 24, label->centerY() == footer->centerY()});
  return footer;
}

std::shared_ptr<ns::View> SettingsWindowController::makeSidebarView() {
  const auto sidebar = std::make_shared<ns::View>();
  ns::Layer look;
  look.backgroundColor = ns::Color::controlBackgroundColor().colorWithAlphaComponent(0.5);
  sidebar->setLayer(look);
  for (const Tab tab : allTabs) {
    sidebarButtons_[tab] = std::make_shared<SidebarButton>(tab, [weak = weak_from_this()](SidebarButton& button) {
      if (const auto self = weak.lock()) self->showTab(button.tab());
    });
  }

  const auto group = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 2);
  sidebar->addSubview(group);
  ns::activate({group->top() == sidebar->top() + 16, group->leading() == sidebar->leading() + 16,
                group->trailing() == sidebar->trailing() - 16});
  for (const Tab tab : {Tab::General, Tab::Displays, Tab::Exclude}) {
    const auto& button = sidebarButtons_[tab];
    group->addArrangedSubview(button);
    ns::activate({button->width() == group->width()});
  }

  const auto line = makeHorizontalLine();
  const auto& about = sidebarButtons_[Tab::About];
  sidebar->addSubview(line);
  sidebar->addSubview(about);
  ns::activate({about->leading() == sidebar->leading() + 16, about->trailing() == sidebar->trailing() - 16,
                about->bottom() == sidebar->bottom() - 16, line->leading() == sidebar->leading() + 16,
                line->trailing() == sidebar->trailing() - 16, line->bottom() == about->top() - 8});
  updateSidebarSelection();
  return sidebar;
}

std::shared_ptr<ns::View> SettingsWindowController::makeContentArea() {
  contentContainer_ = std::make_shared<ns::View>();
  tabViews_[Tab::General] = makeGeneralTab();
  tabViews_[Tab::Displays] = makeDisplaysTab();
  tabViews_[Tab::Exclude] = makeExcludeTab();
  tabViews_[Tab::About] = makeAboutTab();
  return contentContainer_;
}

}  // namespace ostrel
