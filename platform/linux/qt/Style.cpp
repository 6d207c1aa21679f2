#include "platform/linux/qt/Style.h"

#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>
#include <algorithm>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Bezel.h"
#include "platform/linux/qt/ToolkitConnection.h"

namespace qt {
namespace {

constexpr int itemHeight = 24;
constexpr int separatorHeight = 11;
constexpr int itemInset = 5;
constexpr int textInset = 10;
constexpr int checkColumn = 18;
constexpr int iconGap = 8;
constexpr int shortcutGap = 28;
constexpr int buttonHeight = 28;
constexpr int buttonLeast = 76;
constexpr double cornerRadius = 6;
constexpr double menuRadius = 8;

/// Where the titles of a menu begin, from its edge.
int titleStart(const QStyleOptionMenuItem& item) {
  const int check = item.menuHasCheckableItems ? checkColumn : 0;
  return itemInset + textInset + check + (item.maxIconWidth > 0 ? item.maxIconWidth + iconGap : 0);
}

void paintCheckMark(QPainter& painter, QPointF center, const QColor& tint) {
  QPainterPath path(center + QPointF(-4, 0.5));
  path.lineTo(center + QPointF(-1.2, 3.5));
  path.lineTo(center + QPointF(4, -4));
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(tint, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
}

void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item) {
  const bool isMirrored = item.direction == Qt::RightToLeft;
  const auto placed = [&](int start, int width) {
    const QRect place(item.rect.left() + start, item.rect.top(), width, item.rect.height());
    return QStyle::visualRect(item.direction, item.rect, place);
  };
  if (item.menuItemType == QStyleOptionMenuItem::Separator) {
    painter.fillRect(QRectF(item.rect.left() + itemInset + textInset, item.rect.center().y(),
                            item.rect.width() - 2 * (itemInset + textInset), 1),
                     color(ControlColor::Divider));
    return;
  }
  const bool isEnabled = item.state & QStyle::State_Enabled;
  const bool isChosen = isEnabled && (item.state & QStyle::State_Selected);
  QColor text = isChosen ? QColor(Qt::white) : color(ns::Color::labelColor());
  if (!isEnabled) text.setAlphaF(text.alphaF() * 0.4F);
  if (isChosen) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(ControlColor::AccentFill));
    painter.drawRoundedRect(QRectF(item.rect).adjusted(itemInset, 0, -itemInset, 0), 5, 5);
  }
  if (item.checked) paintCheckMark(painter, QRectF(placed(itemInset + 4, checkColumn)).center(), text);
  if (!item.icon.isNull()) {
    const int start = titleStart(item) - item.maxIconWidth - iconGap;
    const auto mode = isEnabled ? (isChosen ? QIcon::Selected : QIcon::Normal) : QIcon::Disabled;
    item.icon.paint(&painter, placed(start, item.maxIconWidth), Qt::AlignCenter, mode);
  }
  const auto parts = item.text.split(QLatin1Char('\t'));
  painter.setFont(item.font);
  painter.setPen(text);
  const int start = titleStart(item);
  const int flags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic;
  const QRect room = placed(start, item.rect.width() - start - itemInset - textInset);
  painter.drawText(room, flags | textAtSide(parts.front(), isMirrored), parts.front());
  if (parts.size() < 2) return;
  if (!isChosen) painter.setPen(color(ns::Color::secondaryLabelColor()));
  painter.drawText(room, flags | textAtSide(parts.back(), !isMirrored), parts.back());
}

/// The edge as what is left around the face: a line would lie beside the pixels at some scales.
void paintMenuPanel(QPainter& painter, const QRect& rect, bool isTranslucent) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  if (isTranslucent) {
    painter.setBrush(color(ControlColor::MenuEdge));
    painter.drawRoundedRect(rect, menuRadius, menuRadius);
  } else {
    painter.fillRect(rect, color(ControlColor::MenuEdge));
  }
  painter.setBrush(color(ControlColor::Menu));
  painter.drawRoundedRect(QRectF(rect).adjusted(1, 1, -1, -1), menuRadius - 1, menuRadius - 1);
  painter.restore();
}

void paintButton(QPainter& painter, const QStyleOptionButton& button) {
  const bool isDefault = button.features & QStyleOptionButton::DefaultButton;
  const bool isPressed = button.state & (QStyle::State_Sunken | QStyle::State_On);
  const QRectF bounds(button.rect);
  if (!isDefault) {
    paintBezel(painter, bounds, cornerRadius, isPressed);
    return;
  }
  QColor fill = color(ControlColor::AccentFill);
  if (isPressed) fill = fill.darker(115);
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill);
  painter.drawRoundedRect(bounds, cornerRadius, cornerRadius);
}

}  // namespace

Style::Style() : QProxyStyle(QStringLiteral("fusion")) {}

void Style::polish(QWidget* widget) {
  QProxyStyle::polish(widget);
  // Smooth corners, where somebody blends windows; elsewhere a mask cuts them.
  if (qobject_cast<QMenu*>(widget) && isComposited()) widget->setAttribute(Qt::WA_TranslucentBackground);
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
  switch (element) {
    case PE_PanelMenu:
      paintMenuPanel(*painter, option->rect, widget && widget->testAttribute(Qt::WA_TranslucentBackground));
      return;
    case PE_FrameMenu:
      return;  // the panel has it
    case PE_FrameFocusRect:
      painter->save();
      painter->setRenderHint(QPainter::Antialiasing);
      painter->setBrush(Qt::NoBrush);
      painter->setPen(QPen(color(ControlColor::FocusRing), 2));
      painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), cornerRadius - 2, cornerRadius - 2);
      painter->restore();
      return;
    default:
      QProxyStyle::drawPrimitive(element, option, painter, widget);
  }
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const {
  const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  if (element == CE_MenuItem && item) {
    paintMenuItem(*painter, *item);
  } else if (element == CE_MenuEmptyArea) {
    // The panel has drawn it.
  } else if (element == CE_PushButtonBevel && button) {
    paintButton(*painter, *button);
  } else if (element == CE_PushButtonLabel && button && (button->features & QStyleOptionButton::DefaultButton)) {
    QStyleOptionButton onAccent = *button;
    onAccent.palette.setColor(QPalette::ButtonText, Qt::white);
    QProxyStyle::drawControl(element, &onAccent, painter, widget);
  } else {
    QProxyStyle::drawControl(element, option, painter, widget);
  }
  painter->restore();
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                              const QWidget* widget) const {
  if (const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option); item && type == CT_MenuItem) {
    if (item->menuItemType == QStyleOptionMenuItem::Separator) return {size.width(), separatorHeight};
    const int shortcut = item->text.contains(QLatin1Char('\t')) ? shortcutGap : 0;
    return {size.width() + titleStart(*item) + shortcut + textInset + itemInset, std::max(itemHeight, size.height())};
  }
  const QSize own = QProxyStyle::sizeFromContents(type, option, size, widget);
  return type == CT_PushButton ? QSize(std::max(own.width() + 8, buttonLeast), std::max(own.height(), buttonHeight))
                               : own;
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_MenuPanelWidth:
      return 1;
    case PM_MenuVMargin:
      return itemInset;
    case PM_MenuHMargin:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
      return 0;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returned) const {
  if (auto* const mask = qstyleoption_cast<QStyleHintReturnMask*>(returned); hint == SH_Menu_Mask && mask && option) {
    if (widget && widget->testAttribute(Qt::WA_TranslucentBackground)) return 0;
    QPainterPath shape;
    shape.addRoundedRect(option->rect, menuRadius, menuRadius);
    mask->region = QRegion(shape.toFillPolygon().toPolygon());
    return 1;
  }
  // Chosen by colour and position, not by underlined letters.
  if (hint == SH_UnderlineShortcut || hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
  return QProxyStyle::styleHint(hint, option, widget, returned);
}

}  // namespace qt
