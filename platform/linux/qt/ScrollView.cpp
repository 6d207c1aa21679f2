#include <QPainter>
#include <QTimer>
#include <QVariantAnimation>
#include <algorithm>
#include <chrono>

#include "platform/Containers.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Scrolling.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace ns {
namespace {

using namespace std::chrono_literals;
constexpr auto lingering = 900ms;
constexpr int fadeMilliseconds = 220;
constexpr double barWidth = 7;
constexpr double barInset = 2;
constexpr double shortestBar = 28;

struct ScrollNative;

struct ClipNative final : View::Native {
  double scrollOffset() const override { return offset; }
  double offset = 0;
};

struct ScrollerNative final : View::Native {
  explicit ScrollerNative(ScrollNative& owner) : scroll(owner) {
    fade.setDuration(fadeMilliseconds);
    QObject::connect(&fade, &QVariantAnimation::valueChanged, [this](const QVariant& value) {
      opacity = value.toDouble();
      repaint();
    });
    rest.setSingleShot(true);
    QObject::connect(&rest, &QTimer::timeout, [this] {
      fade.setStartValue(opacity);
      fade.setEndValue(0.0);
      fade.start();
    });
  }

  void paint(QPainter& painter, const QRectF& bounds) override;
  bool mousePressed(QPointF point) override;
  void mouseMoved(QPointF point) override;
  void mouseReleased(QPointF point) override;
  qt::AccessibleFacts accessibleFacts() const override;
  QRectF bar(double height) const;

  void flash() {
    fade.stop();
    opacity = 1;
    repaint();
    rest.start(lingering);
  }

  ScrollNative& scroll;
  QVariantAnimation fade;
  QTimer rest;
  double opacity = 0;
  /// Where the bar was taken hold of, from its top.
  std::optional<double> grip;
};

struct ClipView final : View {
  ClipView() : View(std::make_unique<ClipNative>()) {}
  bool isFlipped() const override { return !subviews().empty() && subviews().front()->isFlipped(); }
};

struct Scroller final : View {
  explicit Scroller(ScrollNative& owner) : View(std::make_unique<ScrollerNative>(owner)) {}
};

struct ScrollNative final : qt::Scrolling {
  void arrange(std::vector<LayoutConstraint>& constraints) override {
    for (View* part : {static_cast<View*>(clip.get()), static_cast<View*>(scroller.get())}) {
      constraints.push_back(part->top() == view->top());
      constraints.push_back(part->bottom() == view->bottom());
      constraints.push_back(part->trailing() == view->trailing());
    }
    constraints.push_back(clip->leading() == view->leading());
    constraints.push_back(scroller->width() == barWidth + 2 * barInset);
  }

  void laidOut() override { scrollTo(clipNative().offset, false); }
  /// So that one sees at once that there is more than fits.
  void appeared() override { qt::nativeOf<ScrollerNative>(*scroller).flash(); }
  bool scrolled(double pixels) override { return scrollTo(clipNative().offset - pixels, true); }

  void reveal(double top, double bottom) override {
    constexpr double margin = 16;
    const double offset = clipNative().offset;
    if (top - margin < offset) scrollTo(top - margin, true);
    if (bottom + margin > offset + visibleHeight()) scrollTo(bottom + margin - visibleHeight(), true);
  }

  /// True when there is anything to scroll.
  bool scrollTo(double wanted, bool isShown) {
    const double most = std::max(0.0, contentHeight() - visibleHeight());
    const double kept = std::clamp(wanted, 0.0, most);
    const double before = std::exchange(clipNative().offset, kept);
    if (document) {
      const auto& native = document->native();
      native.widget->move(native.widget->x(), qRound(native.frame.y() - kept) - native.outset);
    }
    scroller->native().widget->setVisible(most > 0);
    if (isShown && before != kept) qt::nativeOf<ScrollerNative>(*scroller).flash();
    return most > 0;
  }

  double contentHeight() const { return document ? document->native().frame.height() : 0; }
  double visibleHeight() const { return frame.height(); }
  ClipNative& clipNative() const { return qt::nativeOf<ClipNative>(*clip); }

  std::shared_ptr<ClipView> clip = std::make_shared<ClipView>();
  std::shared_ptr<Scroller> scroller = std::make_shared<Scroller>(*this);
  std::shared_ptr<View> document;
};

QRectF ScrollerNative::bar(double height) const {
  const double content = std::max(1.0, scroll.contentHeight());
  const double track = height - 2 * barInset;
  const double length = std::max(shortestBar, track * scroll.visibleHeight() / content);
  const double most = std::max(1.0, content - scroll.visibleHeight());
  const double top = barInset + (track - length) * scroll.clipNative().offset / most;
  return {barInset, top, barWidth, length};
}

void ScrollerNative::paint(QPainter& painter, const QRectF& bounds) {
  if (opacity <= 0) return;
  painter.setOpacity(opacity);
  painter.setPen(Qt::NoPen);
  painter.setBrush(qt::color(qt::ControlColor::Scroller));
  painter.drawRoundedRect(bar(bounds.height()), barWidth / 2, barWidth / 2);
}

/// Only a bar that can be seen can be taken hold of.
bool ScrollerNative::mousePressed(QPointF point) {
  const QRectF shown = bar(frame.height());
  if (opacity <= 0 || point.y() < shown.top() || point.y() > shown.bottom()) return false;
  grip = point.y() - shown.top();
  rest.stop();
  return true;
}

void ScrollerNative::mouseMoved(QPointF point) {
  if (!grip) return;
  const double room = frame.height() - 2 * barInset - bar(frame.height()).height();
  if (room <= 0) return;
  const double most = scroll.contentHeight() - scroll.visibleHeight();
  scroll.scrollTo((point.y() - *grip - barInset) / room * most, true);
}

void ScrollerNative::mouseReleased(QPointF) {
  if (!std::exchange(grip, std::nullopt)) return;
  flash();
}

qt::AccessibleFacts ScrollerNative::accessibleFacts() const {
  auto facts = Native::accessibleFacts();
  facts.role = QAccessible::ScrollBar;
  return facts;
}

}  // namespace

ScrollView::ScrollView() : View(std::make_unique<ScrollNative>()) {
  auto& native = qt::nativeOf<ScrollNative>(*this);
  addSubview(native.clip);
  addSubview(native.scroller);
}

void ScrollView::setDocumentView(const std::shared_ptr<View>& document) {
  auto& native = qt::nativeOf<ScrollNative>(*this);
  if (native.document) native.document->removeFromSuperview();
  native.document = document;
  native.clip->addSubview(document);
}

std::shared_ptr<View> ScrollView::documentView() const { return qt::nativeOf<ScrollNative>(*this).document; }

View& ScrollView::contentView() const { return *qt::nativeOf<ScrollNative>(*this).clip; }

}  // namespace ns
