#include "platform/linux/qt/AccessibleView.h"

#include <QAccessibleActionInterface>
#include <QAccessibleValueInterface>
#include <QAccessibleWidget>

#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

class AccessibleView final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit AccessibleView(ViewWidget& widget) : QAccessibleWidget(&widget), widget_(widget) {}

  QAccessible::Role role() const override { return facts().role; }

  QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return facts().name;
      case QAccessible::Value:
        return facts().value;
      case QAccessible::Description:
        // The bus has no place for the value of a control that shows no number.
        return facts().range ? QString() : facts().value;
      default:
        return QAccessibleWidget::text(kind);
    }
  }

  QAccessible::State state() const override {
    auto state = QAccessibleWidget::state();
    const auto known = facts();
    state.checkable = known.isCheckable;
    state.checked = known.isChecked;
    state.selected = known.isSelected;
    state.selectable = known.role == QAccessible::PageTab;
    state.readOnly = known.role == QAccessible::StaticText;
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) {
      return facts().range ? static_cast<QAccessibleValueInterface*>(this) : nullptr;
    }
    return QAccessibleWidget::interface_cast(type);
  }

  QStringList actionNames() const override {
    QStringList names;
    const auto known = facts();
    if (known.canPress) names << (known.isCheckable ? toggleAction() : pressAction());
    if (known.range) names << increaseAction() << decreaseAction();
    return names;
  }

  void doAction(const QString& name) override {
    auto* const native = widget_.native();
    if (!native) return;
    const auto keep = native->keepAlive();
    const auto known = native->accessibleFacts();
    if (name == pressAction() || name == toggleAction()) {
      // Later, because it may open a dialog and wait for its answer, and the program that asked is waiting too.
      QMetaObject::invokeMethod(
          &widget_, [&widget = widget_] { press(widget); }, Qt::QueuedConnection);
    } else if (known.range && name == increaseAction()) {
      native->setAccessibleValue(known.range->value + known.range->step);
    } else if (known.range && name == decreaseAction()) {
      native->setAccessibleValue(known.range->value - known.range->step);
    }
  }

  QStringList keyBindingsForAction(const QString&) const override { return {}; }

  QVariant currentValue() const override { return range().value; }
  QVariant maximumValue() const override { return range().maximum; }
  QVariant minimumValue() const override { return range().minimum; }
  QVariant minimumStepSize() const override { return range().step; }
  void setCurrentValue(const QVariant& value) override {
    if (widget_.native()) widget_.native()->setAccessibleValue(value.toDouble());
  }

 private:
  static void press(ViewWidget& widget) {
    if (!widget.native()) return;
    const auto keep = widget.native()->keepAlive();
    widget.native()->press();
  }

  AccessibleFacts facts() const { return widget_.native() ? widget_.native()->accessibleFacts() : AccessibleFacts(); }
  AccessibleRange range() const { return facts().range.value_or(AccessibleRange{}); }

  ViewWidget& widget_;
};

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
  // Views and windows have no class name of their own to go by.
  if (auto* const view = dynamic_cast<ViewWidget*>(object)) return new AccessibleView(*view);
  auto* const widget = qobject_cast<QWidget*>(object);
  if (widget && widget->isWindow() && className == QLatin1String("QWidget")) {
    return new QAccessibleWidget(widget, QAccessible::Window);
  }
  return nullptr;
}

}  // namespace

void installAccessibleViews() { QAccessible::installFactory(makeAccessible); }

}  // namespace qt
