#include <QFontMetricsF>
#include <QIcon>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/Controls.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Bezel.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace ns {
namespace {

constexpr double textInset = 10;
constexpr double capSize = 16;
constexpr double capInset = 4;
constexpr int menuLead = 23;
constexpr int menuRise = 6;

struct PopUpNative final : qt::ControlNative {
  PopUpNative() {
    menu.setChangeHandler([this] { itemsChanged(); });
  }

  static QFont font() { return qt::font(Font::systemFontOfSize(13)); }
  std::optional<double> naturalWidth() const override {
    const QFontMetricsF metrics(font());
    double widest = 24;
    for (const auto& item : menu.items()) {
      widest = std::max(widest, metrics.horizontalAdvance(QString::fromStdString(item->title())));
    }
    return std::ceil(widest) + 2 * textInset + capSize + capInset;
  }
  std::optional<double> naturalHeight(double) const override { return 24; }
  bool canFocus() const override { return true; }
  double focusRadius() const override { return 6; }

  void paint(QPainter& painter, const QRectF& bounds) override {
    const bool isMirrored = widget->layoutDirection() == Qt::RightToLeft;
    qt::paintBezel(painter, bounds, focusRadius(), false);
    const double capLeft = isMirrored ? bounds.left() + capInset : bounds.right() - capInset - capSize;
    const QRectF cap(capLeft, bounds.center().y() - capSize / 2, capSize, capSize);
    painter.setPen(Qt::NoPen);
    painter.setBrush(qt::color(qt::ControlColor::AccentFill));
    painter.drawRoundedRect(cap, 4, 4);
    qt::paintChevron(painter, cap.center() - QPointF(0, 3), 6, true, Qt::white);
    qt::paintChevron(painter, cap.center() + QPointF(0, 3), 6, false, Qt::white);
    const double room = bounds.width() - 2 * textInset - capSize - capInset;
    const QRectF text(isMirrored ? bounds.right() - textInset - room : bounds.left() + textInset, bounds.top(), room,
                      bounds.height());
    painter.setFont(font());
    painter.setPen(qt::color(Color::labelColor()));
    const QString title = QFontMetricsF(font()).elidedText(selectedTitle(), Qt::ElideRight, room);
    painter.drawText(text, qt::textAtSide(title, isMirrored) | Qt::AlignVCenter | Qt::TextSingleLine, title);
  }

  QString selectedTitle() const {
    return selected < menu.items().size() ? QString::fromStdString(menu.items()[selected]->title()) : QString();
  }

  /// The first item becomes the chosen one, and an item that is gone is no longer chosen.
  void itemsChanged() {
    if (selected >= menu.items().size()) selected = 0;
    contentChanged();
  }

  void select(std::size_t index) {
    selected = index;
    repaint();
    notifyAccessible(QAccessible::ValueChanged);
  }

  bool mousePressed(QPointF) override {
    press();
    return true;
  }
  bool keyPressed(QKeyEvent& event) override {
    switch (event.key()) {
      case Qt::Key_Space:
      case Qt::Key_Up:
      case Qt::Key_Down:
        press();
        return true;
      default:
        return false;
    }
  }

  /// Opens the menu, with the chosen item over the button.
  void press() override {
    if (menu.items().empty()) return;
    auto* const popUp = new QMenu(widget);
    popUp->setAttribute(Qt::WA_DeleteOnClose);
    popUp->setFont(font());
    popUp->setMinimumWidth(qRound(frame.width()) + menuLead);
    QAction* current = nullptr;
    for (std::size_t i = 0; i < menu.items().size(); ++i) {
      QString title = QString::fromStdString(menu.items()[i]->title());
      QAction* const choice = popUp->addAction(title.replace(QLatin1Char('&'), QLatin1String("&&")));
      choice->setCheckable(true);
      choice->setChecked(i == selected);
      if (i == selected) current = choice;
      QObject::connect(choice, &QAction::triggered, popUp, [this, i] {
        if (i >= menu.items().size()) return;
        select(i);
        send();
      });
    }
    // Its check marks come to lie before the button, its edge above, so that the title is over the title.
    const QPoint corner = widget->mapToGlobal(widget->contentBounds().topLeft().toPoint());
    popUp->popup(corner - QPoint(menuLead, menuRise), current);
    // The arrow keys go on from here.
    popUp->setActiveAction(current);
  }

  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = ControlNative::accessibleFacts();
    facts.role = QAccessible::ComboBox;
    facts.value = selectedTitle();
    facts.canPress = true;
    return facts;
  }

  Menu menu;
  std::size_t selected = 0;
};

}  // namespace

PopUpButton::PopUpButton() : Control(std::make_unique<PopUpNative>()) {
  setContentHuggingPriority(LayoutPriorityDefaultHigh, LayoutOrientation::Vertical);
}

void PopUpButton::removeAllItems() { menu().removeAllItems(); }

Menu& PopUpButton::menu() { return qt::nativeOf<PopUpNative>(*this).menu; }

void PopUpButton::selectItemAtIndex(std::size_t index) {
  if (index < numberOfItems()) qt::nativeOf<PopUpNative>(*this).select(index);
}

std::shared_ptr<MenuItem> PopUpButton::selectedItem() const {
  const auto& native = qt::nativeOf<PopUpNative>(*this);
  return native.selected < native.menu.items().size() ? native.menu.items()[native.selected] : nullptr;
}

std::size_t PopUpButton::numberOfItems() const { return qt::nativeOf<PopUpNative>(*this).menu.items().size(); }

}  // namespace ns
