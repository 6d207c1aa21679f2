#include <QKeyEvent>
#include <QPainter>
#include <QVariantAnimation>

#include "platform/Controls.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace ns {
namespace {

constexpr double switchWidth = 38;
constexpr double switchHeight = 22;
constexpr double knobInset = 2;
constexpr int slideMilliseconds = 140;

QColor mix(const QColor& from, const QColor& to, double share) {
  const auto part = [share](float one, float other) { return one + (other - one) * static_cast<float>(share); };
  return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                          part(from.blueF(), to.blueF()), part(from.alphaF(), to.alphaF()));
}

struct SwitchNative final : qt::PressableNative {
  std::optional<double> naturalWidth() const override { return switchWidth; }
  std::optional<double> naturalHeight(double) const override { return switchHeight; }
  double focusRadius() const override { return switchHeight / 2; }

  void paint(QPainter& painter, const QRectF& bounds) override {
    const double height = std::min(bounds.height(), switchHeight);
    const QRectF track(bounds.left(), bounds.center().y() - height / 2, bounds.width(), height);
    const QColor off = qt::color(qt::ControlColor::Track);
    const QColor on = qt::color(qt::ControlColor::AccentFill);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mix(off, on, position));
    painter.drawRoundedRect(track, height / 2, height / 2);
    // Off, the track alone is hardly told from what is around it.
    const QColor edge = qt::color(qt::ControlColor::TrackEdge);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(mix(edge, on, position), 1));
    painter.drawRoundedRect(track.adjusted(0.5, 0.5, -0.5, -0.5), height / 2 - 0.5, height / 2 - 0.5);
    painter.setPen(Qt::NoPen);
    if (isPressed) {
      painter.setBrush(QColor(0, 0, 0, 22));
      painter.drawRoundedRect(track, height / 2, height / 2);
    }

    const double diameter = height - 2 * knobInset;
    const bool isMirrored = widget->layoutDirection() == Qt::RightToLeft;
    const double share = isMirrored ? 1 - position : position;
    const double left = track.left() + knobInset + share * (track.width() - diameter - 2 * knobInset);
    const QRectF knob(left, track.top() + knobInset, diameter, diameter);
    painter.setBrush(QColor(0, 0, 0, 34));
    painter.drawEllipse(knob.adjusted(-0.5, 0.25, 0.5, 1.25));
    painter.setBrush(qt::color(qt::ControlColor::Knob));
    painter.drawEllipse(knob);
  }

  void press() override {
    set(!isOn);
    send();
  }

  bool keyPressed(QKeyEvent& event) override {
    const bool isMirrored = widget->layoutDirection() == Qt::RightToLeft;
    if (event.key() == Qt::Key_Left || event.key() == Qt::Key_Right) {
      if ((event.key() == Qt::Key_Right) != isMirrored ? !isOn : isOn) press();
      return true;
    }
    return PressableNative::keyPressed(event);
  }

  void set(bool on) {
    if (std::exchange(isOn, on) == on) return;
    const double target = on ? 1 : 0;
    if (widget->isVisible()) {
      slide.setStartValue(position);
      slide.setEndValue(target);
      slide.start();
    } else {
      position = target;
    }
    notifyAccessible(QAccessible::StateChanged);
  }

  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = PressableNative::accessibleFacts();
    facts.role = QAccessible::CheckBox;
    facts.isCheckable = facts.canPress = true;
    facts.isChecked = isOn;
    return facts;
  }

  SwitchNative() {
    slide.setDuration(slideMilliseconds);
    slide.setEasingCurve(QEasingCurve::InOutQuad);
    QObject::connect(&slide, &QVariantAnimation::valueChanged, [this](const QVariant& value) {
      position = value.toDouble();
      repaint();
    });
  }

  bool isOn = false;
  /// Of the knob: 0 off, 1 on.
  double position = 0;
  QVariantAnimation slide;
};

}  // namespace

Switch::Switch() : Control(std::make_unique<SwitchNative>()) {
  for (const auto orientation : {LayoutOrientation::Horizontal, LayoutOrientation::Vertical}) {
    setContentHuggingPriority(LayoutPriorityDefaultHigh, orientation);
  }
}

void Switch::setOn(bool on) { qt::nativeOf<SwitchNative>(*this).set(on); }

bool Switch::isOn() const { return qt::nativeOf<SwitchNative>(*this).isOn; }

}  // namespace ns
