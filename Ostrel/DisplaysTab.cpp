// The Displays tab: the margins of one display in the current set of displays.
#include <algorithm>

#include "Ostrel/SettingsLayout.h"
#include "Ostrel/SettingsWindowController.h"
#include "platform/Containers.h"

namespace ostrel {
namespace {

constexpr double minimumMargin = 0;
constexpr double maximumMargin = 1000;
constexpr WindowMargins startingMargins{56, 32, 32, 32};

/// The key whose control is this very one; none for a stranger.
template <typename ControlType>
std::optional<MarginKey> keyOf(const std::map<MarginKey, std::shared_ptr<ControlType>>& controls,
                               const ControlType& control) {
  for (const auto& [key, candidate] : controls) {
    if (candidate.get() == &control) return key;
  }
  return std::nullopt;
}

}  // namespace

std::shared_ptr<ns::View> SettingsWindowController::makeDisplaysTab() {
  const auto profile = makeSectionContainer("Profile", [this](Rows& rows) {
    configurationField_ = makeLabel("", ns::Font::systemFontOfSize(13));
    configurationField_->setAlignment(ns::TextAlignment::Right);
    configurationField_->setLineBreakMode(ns::LineBreakMode::TruncatingTail);
    configurationField_->setContentHuggingPriority(ns::LayoutPriorityDefaultLow, ns::LayoutOrientation::Horizontal);
    configurationField_->setContentCompressionResistancePriority(ns::LayoutPriorityDefaultLow,
                                                                 ns::LayoutOrientation::Horizontal);
    rows.push_back(makeVexoRow("rectangle.connected.to.line.below", "Current profile", configurationField_));
    rows.push_back(makeInfoBox("Margins are remembered per display and per profile."));
  });
  const auto display = makeSectionContainer("Display", [this](Rows& rows) {
    displayPopup_ = std::make_shared<ns::PopUpButton>();
    displayPopup_->setTarget(weak_from_this(), &SettingsWindowController::displayChanged);
    displayPopup_->setAccessibilityLabel("Choose display");
    rows.push_back(makeVexoRow("display", "Choose display", displayPopup_));
  });
  const auto margins = makeSectionContainer("Margins (in points)", [this](Rows& rows) {
    for (const MarginKey key : allMarginKeys) rows.push_back(makeMarginRow(key));
    const auto reset = std::make_shared<ns::Button>("Reset margins for this display");
    reset->setTarget(weak_from_this(), &SettingsWindowController::resetMargins);
    const auto row = std::make_shared<ns::View>();
    row->addSubview(reset);
    ns::activate({reset->trailing() == row->trailing(), reset->leading() >= row->leading(), reset->top() == row->top(),
                  reset->bottom() == row->bottom()});
    rows.push_back(row);
  });
  return makeScrollableTab({profile, display, margins});
}

std::shared_ptr<ns::View> SettingsWindowController::makeMarginRow(MarginKey key) {
  const auto field = std::make_shared<ns::TextField>();
  field->setFormatter({minimumMargin, maximumMargin});
  field->setAlignment(ns::TextAlignment::Right);
  field->setTarget(weak_from_this(), &SettingsWindowController::fieldChanged);
  field->setDelegate(weak_from_this());
  field->setAccessibilityLabel(title(key));
  ns::activate({field->width() == 70});

  const auto stepper = std::make_shared<ns::Stepper>(minimumMargin, maximumMargin, 1);
  stepper->setTarget(weak_from_this(), &SettingsWindowController::stepperChanged);
  stepper->setAccessibilityLabel(title(key));

  fields_[key] = field;
  steppers_[key] = stepper;
  const auto pair = std::make_shared<ns::StackView>(ns::LayoutOrientation::Horizontal, ns::StackAlignment::CenterY, 4);
  pair->addArrangedSubview(field);
  pair->addArrangedSubview(stepper);
  return makeVexoRow(symbolName(key), title(key), pair);
}

void SettingsWindowController::reloadDisplays() {
  if (!controller_.lock()) return;
  DisplayConfigurationInfo configuration = currentDisplayConfiguration();
  displays_ = std::move(configuration.displays);
  if (configurationField_) configurationField_->setStringValue(configuration.label);

  const auto chosen = [this] {
    return std::ranges::find_if(displays_,
                                [this](const DisplayInfo& display) { return selectedDisplayID_ == display.id; });
  };
  if (chosen() == displays_.end()) {
    selectedDisplayID_ = displays_.empty() ? std::nullopt : std::optional(displays_.front().id);
  }
  if (!displayPopup_) return;
  displayPopup_->removeAllItems();
  for (const DisplayInfo& display : displays_) {
    const auto item = std::make_shared<ns::MenuItem>(display.name);
    item->setRepresentedObject({std::int64_t{display.id}});
    displayPopup_->menu().addItem(item);
  }
  if (selectedDisplayID_) displayPopup_->selectItemAtIndex(static_cast<std::size_t>(chosen() - displays_.begin()));
}

void SettingsWindowController::syncControls() {
  const auto controller = controller_.lock();
  if (!selectedDisplayID_ || !controller) return;
  WindowMargins margins = controller->margins(*selectedDisplayID_);
  for (const MarginKey key : allMarginKeys) setControlValue(edge(margins, key), key);
}

void SettingsWindowController::setControlValue(double value, MarginKey key) {
  if (const auto field = fields_.find(key); field != fields_.end()) field->second->setDoubleValue(value);
  if (const auto stepper = steppers_.find(key); stepper != steppers_.end()) stepper->second->setDoubleValue(value);
}

void SettingsWindowController::updateMargin(MarginKey key, double value) {
  const auto controller = controller_.lock();
  if (!selectedDisplayID_ || !controller) return;
  WindowMargins margins = controller->margins(*selectedDisplayID_);
  edge(margins, key) = value;
  controller->updateMargins(margins, *selectedDisplayID_);
  syncControls();
  onChange_();
}

void SettingsWindowController::displayChanged(ns::PopUpButton& sender) {
  const auto item = sender.selectedItem();
  if (!item) return;
  const std::optional<ns::PropertyList>& object = item->representedObject();
  const auto* const id = object ? object->as<std::int64_t>() : nullptr;
  if (id == nullptr) return;
  selectedDisplayID_ = static_cast<CGDirectDisplayID>(*id);
  syncControls();
}

void SettingsWindowController::fieldChanged(ns::TextField& sender) {
  if (const auto key = keyOf(fields_, sender)) updateMargin(*key, sender.doubleValue());
}

void SettingsWindowController::stepperChanged(ns::Stepper& sender) {
  if (const auto key = keyOf(steppers_, sender)) updateMargin(*key, sender.doubleValue());
}

void SettingsWindowController::controlTextDidEndEditing(ns::TextField& field) { fieldChanged(field); }

void SettingsWindowController::resetMargins(ns::Button&) {
  if (!selectedDisplayID_) return;
  if (const auto controller = controller_.lock()) controller->updateMargins(startingMargins, *selectedDisplayID_);
  syncControls();
  onChange_();
}

}  // namespace ostrel
