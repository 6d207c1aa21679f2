// The About tab: what the application is and does.
#include "Ostrel/GradientIconView.h"
#include "Ostrel/SettingsLayout.h"
#include "Ostrel/SettingsWindowController.h"
#include "platform/Containers.h"
#include "platform/Workspace.h"

namespace ostrel {
namespace {

constexpr const char* websiteHost = OSTREL_WEBSITE_HOST;

}  // namespace

std::shared_ptr<ns::View> SettingsWindowController::makeAboutTab() {
  const auto features = makeSectionContainer("Features", [](Rows& rows) {
    rows.push_back(makeFeatureRow("arrow.left.and.right", "Center window",
                                  "Left-click the yellow button to center the active window horizontally on the "
                                  "screen (can be turned off in General)."));
    rows.push_back(makeFeatureRow("arrow.up.left.and.arrow.down.right", "Fill screen with margins",
                                  "Left-click the green button to make the window fill the screen using your "
                                  "configured margins."));
    rows.push_back(makeFeatureRow("xmark.circle", "Red button hides the app",
                                  "Optional: make the red button hide the whole app (⌘H) instead of closing — only "
                                  "for minimizable windows (configurable in General)."));
    rows.push_back(makeFeatureRow("command", "Native behavior with a modifier",
                                  "Hold ⌘, ⌥, ⌃ or ⇧ while clicking to get the button's native macOS behavior (e.g. "
                                  "⌥-click for all windows)."));
    rows.push_back(makeFeatureRow("nosign", "Exclude specific apps",
                                  "Add apps to the Exclude list to leave their ostrel buttons completely untouched "
                                  "(configurable in Exclude)."));
    rows.push_back(makeFeatureRow("display", "Margins per display & profile",
                                  "Margins are remembered separately per display and per display configuration."));
    rows.push_back(makeFeatureRow("power", "Open at login",
                                  "Have Ostrel start automatically with your Mac (configurable in General)."));
  });
  return makeScrollableTab({makeAppInfoCard(), features});
}

std::shared_ptr<ns::View> SettingsWindowController::makeAppInfoCard() {
  const auto card = makeCardView();
  const auto icon = std::make_shared<GradientIconView>("rectangle.center.inset.filled");
  const auto texts = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 3);
  texts->addArrangedSubview(makeLabel("Ostrel", ns::Font::systemFontOfSize(18, ns::FontWeight::Semibold)));
  texts->addArrangedSubview(
      makeLabel(versionString(), ns::Font::systemFontOfSize(12), ns::Color::secondaryLabelColor()));
  texts->addArrangedSubview(makeWrappingLabel("Center, fill and hide windows right from the ostrel buttons.",
                                              ns::Font::systemFontOfSize(12), ns::Color::secondaryLabelColor()));
  texts->addArrangedSubview(makeLinkButton(websiteHost, &SettingsWindowController::openWebsite));
  card->addSubview(icon);
  card->addSubview(texts);
  ns::activate({icon->width() == 44, icon->height() == 44, icon->leading() == card->leading() + 16,
                icon->top() == card->top() + 16, icon->bottom() <= card->bottom() - 16,
                texts->leading() == icon->trailing() + 14, texts->trailing() == card->trailing() - 16,
                texts->top() == card->top() + 16, texts->bottom() == card->bottom() - 16});
  return card;
}

std::shared_ptr<ns::View> SettingsWindowController::makeFeatureRow(const std::string& icon, const std::string& title,
                                                                   const std::string& description) {
  const auto row = std::make_shared<ns::View>();
  const auto iconView = makeRowIcon(icon, ns::Color::controlAccentColor());
  const auto titleLabel = makeLabel(title, ns::Font::systemFontOfSize(13, ns::FontWeight::Medium));
  const auto texts = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 2);
  texts->addArrangedSubview(titleLabel);
  texts->addArrangedSubview(
      makeWrappingLabel(description, ns::Font::systemFontOfSize(11), ns::Color::secondaryLabelColor()));
  row->addSubview(iconView);
  row->addSubview(texts);
  ns::activate({iconView->leading() == row->leading(), iconView->centerY() == titleLabel->centerY(),
                texts->leading() == iconView->trailing() + 10, texts->trailing() == row->trailing(),
                texts->top() == row->top(), texts->bottom() == row->bottom()});
  return row;
}

std::shared_ptr<ns::Button> SettingsWindowController::makeLinkButton(
    const std::string& title, void (SettingsWindowController::*action)(ns::Button&)) {
  auto link = ns::Button::linkWithTitle(title, ns::Font::systemFontOfSize(12));
  link->setTarget(weak_from_this(), action);
  return link;
}

void SettingsWindowController::openWebsite(ns::Button&) {
  ns::Workspace::sharedWorkspace()->openURL(std::string("https://") + websiteHost);
}

}  // namespace ostrel
