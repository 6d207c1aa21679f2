// What a view is on this desktop: a widget that asks the view's native part for everything.
#pragma once

#include <QAccessible>
#include <QMargins>
#include <QRectF>
#include <QString>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Controls.h"
#include "platform/View.h"

class QKeyEvent;
class QPainter;

namespace qt {

class ViewWidget;

/// A constraint in force, kept by the nearest ancestor that its views share.
struct HeldConstraint {
  ns::LayoutConstraint constraint;
  /// Counts up over the whole program: of two that contradict each other the later one yields.
  std::uint64_t order;
  /// Whether the log has heard that it yields.
  bool isReported = false;
};

/// The numbers of a view that shows one.
struct AccessibleRange {
  double minimum;
  double maximum;
  double step;
  double value;
};

/// What assistive technology is told about a view.
struct AccessibleFacts {
  QAccessible::Role role = QAccessible::NoRole;
  QString name;
  QString value;
  bool isCheckable = false;
  bool isChecked = false;
  bool isSelected = false;
  bool canPress = false;
  std::optional<AccessibleRange> range;
};

struct Priorities {
  ns::LayoutPriority hugging;
  ns::LayoutPriority compression;
};

}  // namespace qt

namespace ns {

/// The plain view; each control derives its own.
struct View::Native {
  Native();
  virtual ~Native();
  Native(const Native&) = delete;
  Native& operator=(const Native&) = delete;

  /// The size that the content asks for; none when it asks for nothing.
  virtual std::optional<double> naturalWidth() const { return {}; }
  virtual std::optional<double> naturalHeight([[maybe_unused]] double width) const { return {}; }
  /// Relations that the view's own arrangement of its subviews brings.
  virtual void arrange([[maybe_unused]] std::vector<LayoutConstraint>& constraints) {}
  /// Told before `subview` leaves.
  virtual void removing([[maybe_unused]] const View& subview) {}
  /// How far a subview is moved from where the layout puts it.
  virtual double scrollOffset() const { return 0; }
  /// Told after every layout.
  virtual void laidOut() {}

  /// Draws the content into the bounds, whose origin is zero, above the layer.
  virtual void paint([[maybe_unused]] QPainter& painter, [[maybe_unused]] const QRectF& bounds) {}
  /// Told when the view comes in sight, with its window or in it.
  virtual void appeared() {}
  /// Told when light and dark change.
  virtual void appearanceChanged() {}

  /// Presses and releases of the left button, in widget coordinates less the outset. True when taken.
  virtual bool mousePressed(QPointF point);
  virtual void mouseMoved([[maybe_unused]] QPointF point) {}
  virtual void mouseReleased([[maybe_unused]] QPointF point) {}
  /// True when taken.
  virtual bool keyPressed(QKeyEvent& event);
  virtual void keyReleased([[maybe_unused]] QKeyEvent& event) {}
  /// Degrees of the wheel as pixels. True when taken.
  virtual bool scrolled([[maybe_unused]] double pixels) { return false; }
  virtual bool canFocus() const { return isAccessibilityButton; }
  /// The corner radius of the focus ring around the bounds.
  virtual double focusRadius() const { return layer.cornerRadius; }
  /// Gives the keyboard to the view.
  virtual void takeFocus(Qt::FocusReason reason);
  virtual qt::AccessibleFacts accessibleFacts() const;
  /// What pressing does, for the keyboard and assistive technology.
  virtual void press();
  /// For views that show a number.
  virtual void setAccessibleValue([[maybe_unused]] double value) {}

  View* view = nullptr;

  /// Has the tree laid out again, soon.
  void setNeedsLayout();
  /// setNeedsLayout() and a new picture.
  void contentChanged();
  void repaint();
  /// Of the tree that this view is in.
  Native& root();
  /// Room around the bounds in which the shadow is drawn.
  void updateOutset();
  /// Tells assistive technology that a fact has changed.
  void notifyAccessible(QAccessible::Event event) const;
  std::shared_ptr<View> keepAlive() const;

  View* superview = nullptr;
  std::vector<std::shared_ptr<View>> subviews;
  std::vector<qt::HeldConstraint> heldConstraints;
  std::array<qt::Priorities, 2> priorities{{{250, 750}, {250, 750}}};
  Layer layer;
  std::string identifier;
  QString accessibilityLabel;
  std::vector<std::pair<CGRect, Cursor>> cursorRects;
  /// From the top-left of the superview, in points.
  QRectF frame;
  /// The size that a view without superview was given.
  std::optional<QSizeF> rootSize;
  /// The view's place in the layout that is being made.
  std::size_t layoutIndex = 0;
  qt::ViewWidget* widget;
  int outset = 0;
  bool isHidden = false;
  bool isAccessibilityButton = false;
  bool isAccessibilitySelected = false;
  bool needsLayout = true;
};

}  // namespace ns

namespace qt {

/// The native part of every control.
struct ControlNative : ns::View::Native {
  /// Sends the action; the control stays alive until it has returned.
  void send() const;
  void press() override { send(); }

  std::function<void()> action;
};

/// A control that is pressed with the button or the space bar and acts on release.
struct PressableNative : ControlNative {
  bool canFocus() const override { return true; }
  bool mousePressed(QPointF point) override;
  void mouseMoved(QPointF point) override;
  void mouseReleased(QPointF point) override;
  bool keyPressed(QKeyEvent& event) override;
  void keyReleased(QKeyEvent& event) override;
  bool isInside(QPointF point) const;

  /// Whether a release now would act; for the look.
  bool isPressed = false;
  /// Whether the button went down in here.
  bool isTracking = false;
};

template <typename NativeType>
NativeType& nativeOf(const ns::View& view) {
  return static_cast<NativeType&>(view.native());
}

/// Lays out the whole tree if anything in it asks for that.
void layOut(ns::View::Native& root);

}  // namespace qt
