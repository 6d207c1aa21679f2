#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <cmath>

#include "platform/Controls.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Bezel.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace ns {
namespace {

struct ButtonNative : qt::PressableNative {
  explicit ButtonNative(const std::string& text) : title(QString::fromStdString(text)) {}

  bool isSmall() const { return size == ControlSize::Small; }
  QFont font() const { return qt::font(Font::systemFontOfSize(isSmall() ? 11 : 13)); }
  std::optional<double> naturalWidth() const override {
    return std::ceil(QFontMetricsF(font()).horizontalAdvance(title)) + 2 * (isSmall() ? 10 : 14);
  }
  std::optional<double> naturalHeight(double) const override { return isSmall() ? 20 : 24; }
  double focusRadius() const override { return isSmall() ? 5 : 6; }

  void paint(QPainter& painter, const QRectF& bounds) override {
    qt::paintBezel(painter, bounds, focusRadius(), isPressed);
    painter.setFont(font());
    painter.setPen(qt::color(Color::labelColor()));
    painter.drawText(bounds, Qt::AlignCenter | Qt::TextSingleLine | qt::textDirection(title), title);
  }

  bool keyPressed(QKeyEvent& event) override {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return PressableNative::keyPressed(event);
    press();
    return true;
  }

  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = PressableNative::accessibleFacts();
    facts.role = QAccessible::Button;
    if (facts.name.isEmpty()) facts.name = title;
    facts.canPress = true;
    return facts;
  }

  QString title;
  ControlSize size = ControlSize::Regular;
};

struct LinkNative final : ButtonNative {
  LinkNative(const std::string& text, const Font& f) : ButtonNative(text), ownFont(qt::font(f)) {
    ownFont.setUnderline(true);
    widget->setCursor(Qt::PointingHandCursor);
  }

  std::optional<double> naturalWidth() const override {
    return std::ceil(QFontMetricsF(ownFont).horizontalAdvance(title));
  }
  std::optional<double> naturalHeight(double) const override { return std::ceil(QFontMetricsF(ownFont).height()); }
  double focusRadius() const override { return 3; }

  void paint(QPainter& painter, const QRectF& bounds) override {
    painter.setFont(ownFont);
    painter.setPen(qt::color(Color::controlAccentColor().colorWithAlphaComponent(isPressed ? 0.6 : 1)));
    painter.drawText(bounds, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, title);
  }

  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = ButtonNative::accessibleFacts();
    facts.role = QAccessible::Link;
    return facts;
  }

  QFont ownFont;
};

void hugContent(Button& button) {
  for (const auto orientation : {LayoutOrientation::Horizontal, LayoutOrientation::Vertical}) {
    button.setContentHuggingPriority(LayoutPriorityDefaultHigh, orientation);
  }
}

}  // namespace

Button::Button(const std::string& title) : Control(std::make_unique<ButtonNative>(title)) { hugContent(*this); }

std::shared_ptr<Button> Button::linkWithTitle(const std::string& title, const Font& font) {
  struct Link final : Button {
    Link(const std::string& text, const Font& f) : Button(std::make_unique<LinkNative>(text, f)) { hugContent(*this); }
  };
  return std::make_shared<Link>(title, font);
}

std::string Button::title() const { return qt::nativeOf<ButtonNative>(*this).title.toStdString(); }

void Button::setControlSize(ControlSize size) {
  auto& native = qt::nativeOf<ButtonNative>(*this);
  native.size = size;
  native.contentChanged();
}

}  // namespace ns
