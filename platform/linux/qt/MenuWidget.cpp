#include "platform/linux/qt/MenuWidget.h"

#include <QKeyEvent>
#include <QKeySequence>

#include "platform/RunLoop.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/Words.h"

namespace qt {
namespace {

QIcon iconOf(const ns::Image& image, const QColor& tint, const QColor& disabledTint) {
  const QSizeF size = image.native().size();
  QIcon icon = image.native().tintedIcon(size, tint);
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    // The style shows the chosen row's icon in the one mode or the other.
    icon.addPixmap(image.native().pixmap(size, scale, Qt::white), QIcon::Active);
    icon.addPixmap(image.native().pixmap(size, scale, Qt::white), QIcon::Selected);
    icon.addPixmap(image.native().pixmap(size, scale, disabledTint), QIcon::Disabled);
  }
  return icon;
}

}  // namespace

MenuWidget::MenuWidget(const ns::Menu& menu, QWidget* parent) : QMenu(parent) {
  setFont(qt::font(ns::Font::systemFontOfSize(13)));
  const QColor text = color(ns::Color::labelColor());
  const QColor faint = color(ns::Color::labelColor().colorWithAlphaComponent(0.4));
  for (const auto& item : menu.items()) {
    if (item->isSeparator()) {
      addSeparator();
      continue;
    }
    QString title = inWordsOfThisDesktop(QString::fromStdString(item->title()));
    QAction* const action = addAction(title.replace(QLatin1Char('&'), QLatin1String("&&")));
    action->setEnabled(item->isEnabled());
    if (item->image()) action->setIcon(iconOf(*item->image(), text, faint));
    if (!item->keyEquivalent().empty()) {
      action->setShortcut(QKeySequence(QLatin1String("Ctrl+") + QString::fromStdString(item->keyEquivalent())));
    }
    // Later, because an action may open a dialog and wait for its answer, or end the application.
    connect(action, &QAction::triggered, this,
            [item] { ns::dispatchAsyncOnMainQueue([item] { item->performAction(); }); });
  }
}

void MenuWidget::keyPressEvent(QKeyEvent* event) {
  // Shortcuts belong to windows; a pop-up has to look for its own.
  const QKeySequence pressed(event->keyCombination());
  for (QAction* action : actions()) {
    if (action->shortcut().isEmpty() || action->shortcut() != pressed || !action->isEnabled()) continue;
    close();
    action->trigger();
    return;
  }
  QMenu::keyPressEvent(event);
}

}  // namespace qt

#include "moc_MenuWidget.cpp"
