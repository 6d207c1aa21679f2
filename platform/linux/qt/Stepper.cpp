#include <QKeyEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <chrono>

#include "platform/Controls.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Bezel.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace ns {
namespace {

using namespace std::chrono_literals;
constexpr auto repeatDelay = 400ms;
constexpr auto repeatInterval = 60ms;
constexpr double cornerRadius = 6;

struct StepperNative final : qt::ControlNative {
  StepperNative(double least, double most, double step) : minimum(least), maximum(most), increment(step), value(least) {
    QObject::connect(&repeat, &QTimer::timeout, [this] {
      repeat.setInterval(repeatInterval);
      const auto keep = keepAlive();
      stepBy(direction);
    });
  }

  std::optional<double> naturalWidth() const override { return 16; }
  std::optional<double> naturalHeight(double) const override { return 24; }
  bool canFocus() const override { return true; }
  double focusRadius() const override { return cornerRadius; }

  void paint(QPainter& painter, const QRectF& bounds) override {
    qt::paintBezel(painter, bounds, cornerRadius, false);
    const double middle = bounds.center().y();
    if (direction != 0) {
      painter.save();
      painter.setClipRect(direction > 0 ? QRectF(bounds.left(), bounds.top(), bounds.width(), bounds.height() / 2)
                                        : QRectF(bounds.left(), middle, bounds.width(), bounds.height() / 2),
                          Qt::IntersectClip);
      qt::paintBezel(painter, bounds, cornerRadius, true);
      painter.restore();
    }
    const auto tint = qt::color(qt::ControlColor::Glyph);
    qt::paintChevron(painter, {bounds.center().x(), middle - 5}, 6.5, true, tint);
    qt::paintChevron(painter, {bounds.center().x(), middle + 5}, 6.5, false, tint);
  }

  bool mousePressed(QPointF point) override {
    direction = point.y() < frame.height() / 2 ? 1 : -1;
    repeat.start(repeatDelay);
    stepBy(direction);
    return true;
  }
  void mouseReleased(QPointF) override {
    repeat.stop();
    direction = 0;
    repaint();
  }

  bool keyPressed(QKeyEvent& event) override {
    if (event.key() != Qt::Key_Up && event.key() != Qt::Key_Down) return false;
    stepBy(event.key() == Qt::Key_Up ? 1 : -1);
    return true;
  }

  void stepBy(int steps) {
    const double next = value + steps * increment;
    set(next > maximum ? minimum : next < minimum ? maximum : next);
    send();
  }
  void press() override { stepBy(1); }

  void set(double wanted) {
    const double kept = std::clamp(wanted, minimum, maximum);
    if (std::exchange(value, kept) != kept) notifyAccessible(QAccessible::ValueChanged);
    repaint();
  }

  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = ControlNative::accessibleFacts();
    facts.role = QAccessible::SpinBox;
    facts.value = QString::number(value);
    facts.range = qt::AccessibleRange{minimum, maximum, increment, value};
    return facts;
  }
  void setAccessibleValue(double wanted) override {
    set(wanted);
    send();
  }

  const double minimum;
  const double maximum;
  const double increment;
  double value;
  /// Of the half that is held down: 1 up, -1 down, 0 none.
  int direction = 0;
  QTimer repeat;
};

}  // namespace

Stepper::Stepper(double minimum, double maximum, double increment)
    : Control(std::make_unique<StepperNative>(minimum, maximum, increment)) {
  for (const auto orientation : {LayoutOrientation::Horizontal, LayoutOrientation::Vertical}) {
    setContentHuggingPriority(LayoutPriorityDefaultHigh, orientation);
  }
}

void Stepper::setDoubleValue(double value) { qt::nativeOf<StepperNative>(*this).set(value); }

double Stepper::doubleValue() const { return qt::nativeOf<StepperNative>(*this).value; }

void Stepper::increment() { qt::nativeOf<StepperNative>(*this).stepBy(1); }

void Stepper::decrement() { qt::nativeOf<StepperNative>(*this).stepBy(-1); }

}  // namespace ns
