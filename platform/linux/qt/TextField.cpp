#include <algorithm>
#include <cmath>

#include "platform/linux/qt/TextNative.h"

namespace qt {

std::optional<double> TextNative::number(const QString& wanted) const {
  const QString digits = wanted.trimmed();
  bool isNumber = false;
  if (!formatter) {
    const double value = digits.toDouble(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
  }
  const bool isWhole = !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), [](QChar digit) {
    return digit >= QLatin1Char('0') && digit <= QLatin1Char('9');
  });
  if (!isWhole) return {};
  const double value = digits.toDouble(&isNumber);
  if (!isNumber || value < formatter->minimum || value > formatter->maximum) return {};
  return value;
}

}  // namespace qt

namespace ns {
namespace {

struct Label final : TextField {
  Label(const std::string& text, bool wraps) : TextField(qt::makeLabel(text, wraps)) {}
};

qt::TextNative& nativeOf(const TextField& field) { return qt::nativeOf<qt::TextNative>(field); }

}  // namespace

std::shared_ptr<TextField> TextField::labelWithString(const std::string& text) {
  auto label = std::make_shared<Label>(text, false);
  label->setContentHuggingPriority(LayoutPriorityDefaultLow + 1, LayoutOrientation::Horizontal);
  label->setContentHuggingPriority(LayoutPriorityDefaultHigh, LayoutOrientation::Vertical);
  return label;
}

std::shared_ptr<TextField> TextField::wrappingLabelWithString(const std::string& text) {
  auto label = std::make_shared<Label>(text, true);
  label->setContentHuggingPriority(LayoutPriorityDefaultLow + 1, LayoutOrientation::Horizontal);
  label->setContentHuggingPriority(LayoutPriorityDefaultHigh, LayoutOrientation::Vertical);
  // It can always break its lines instead of pushing others away.
  label->setContentCompressionResistancePriority(LayoutPriorityDefaultLow, LayoutOrientation::Horizontal);
  return label;
}

TextField::TextField() : Control(qt::makeEditableField()) {
  setContentHuggingPriority(LayoutPriorityDefaultHigh, LayoutOrientation::Vertical);
}

void TextField::setStringValue(const std::string& text) { nativeOf(*this).setText(QString::fromStdString(text)); }

std::string TextField::stringValue() const { return nativeOf(*this).text().toStdString(); }

void TextField::setDoubleValue(double value) {
  auto& native = nativeOf(*this);
  native.setText(native.formatter ? QString::number(std::llround(value)) : QString::number(value));
}

double TextField::doubleValue() const {
  const auto& native = nativeOf(*this);
  return native.number(native.text()).value_or(0);
}

void TextField::setFont(const Font& font) {
  nativeOf(*this).font = font;
  nativeOf(*this).styleChanged();
}

void TextField::setTextColor(Color color) {
  nativeOf(*this).textColor = color;
  nativeOf(*this).styleChanged();
}

Color TextField::textColor() const { return nativeOf(*this).textColor; }

void TextField::setAlignment(TextAlignment alignment) {
  nativeOf(*this).alignment = alignment;
  nativeOf(*this).styleChanged();
}

void TextField::setLineBreakMode(LineBreakMode mode) {
  nativeOf(*this).lineBreakMode = mode;
  nativeOf(*this).styleChanged();
}

void TextField::setFormatter(NumberFormatter formatter) { nativeOf(*this).formatter = formatter; }

void TextField::setDelegate(std::weak_ptr<TextFieldDelegate> delegate) {
  nativeOf(*this).delegate = std::move(delegate);
}

}  // namespace ns
