// What labels and fields to type in have in common.
#pragma once

#include <QString>

#include "platform/Controls.h"
#include "platform/linux/qt/ViewNative.h"

namespace qt {

struct TextNative : ControlNative {
  virtual void setText(const QString& wanted) = 0;
  virtual QString text() const = 0;
  /// Told when font, colour, alignment or line breaking have changed.
  virtual void styleChanged() { contentChanged(); }

  /// The number that `text` is, when the formatter accepts it; any number without a formatter.
  std::optional<double> number(const QString& wanted) const;

  ns::Font font = ns::Font::systemFontOfSize(13);
  ns::Color textColor = ns::Color::labelColor();
  ns::TextAlignment alignment = ns::TextAlignment::Natural;
  ns::LineBreakMode lineBreakMode = ns::LineBreakMode::WordWrapping;
  std::optional<ns::NumberFormatter> formatter;
  std::weak_ptr<ns::TextFieldDelegate> delegate;
};

std::unique_ptr<TextNative> makeLabel(const std::string& text, bool wraps);
std::unique_ptr<TextNative> makeEditableField();

}  // namespace qt
