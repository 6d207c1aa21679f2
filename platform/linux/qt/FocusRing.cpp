#include "platform/linux/qt/FocusRing.h"

#include <QPainter>
#include <QPointer>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Scrolling.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

using Native = ns::View::Native;

constexpr int thickness = 3;

/// The document that the view scrolls with, or the root of its tree.
const Native& carrierOf(const Native& native) {
  const Native* carrier = &native;
  while (const ns::View* above = carrier->superview) {
    const ns::View* const outer = above->superview();
    if (outer && dynamic_cast<const Scrolling*>(&outer->native())) break;
    carrier = &above->native();
  }
  return *carrier;
}

class FocusRing final : public QWidget {
 public:
  FocusRing() {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
  }

  void follow(const Native* native) {
    native_ = native;
    if (!native) {
      hide();
      return;
    }
    QWidget* const carrier = carrierOf(*native).widget;
    if (parentWidget() != carrier) setParent(carrier);
    const QRect bounds = native->widget->contentBounds().toRect();
    setGeometry(QRect(native->widget->mapTo(carrier, bounds.topLeft()), bounds.size())
                    .adjusted(-thickness, -thickness, thickness, thickness));
    show();
    raise();
  }
  const Native* followed() const { return native_; }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (!native_) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color(ControlColor::FocusRing), thickness));
    constexpr double half = thickness / 2.0;
    const double radius = native_->focusRadius() + half;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
  }

 private:
  const Native* native_ = nullptr;
};

/// Goes with the widget that carries it.
QPointer<FocusRing> ring;

}  // namespace

void showFocusRing(const Native& native) {
  if (!ring) ring = new FocusRing;
  ring->follow(&native);
}

void hideFocusRing(const Native& native) {
  if (ring && ring->followed() == &native) ring->follow(nullptr);
}

void followFocus() {
  if (ring && ring->followed()) ring->follow(ring->followed());
}

}  // namespace qt
