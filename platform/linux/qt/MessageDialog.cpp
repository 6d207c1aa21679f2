#include "platform/linux/qt/MessageDialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <utility>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Bezel.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/Symbols.h"
#include "platform/linux/qt/TaskBar.h"

namespace qt {
namespace {

constexpr double buttonRadius = 6;
constexpr int textWidth = 330;
constexpr double symbolPointSize = 36;
/// Of the icon with the room that it leaves around itself.
constexpr int iconSide = 60;

/// A symbol that keeps its colour when light and dark change, or the application's icon, which has its own.
class PictureView final : public QWidget {
 public:
  PictureView(const std::string& symbol, ns::Color tint) : tint_(tint) {
    if (const auto image = ns::Image::imageWithSystemSymbolName(symbol)) {
      image_ = image->imageWithSymbolConfiguration({symbolPointSize});
    }
    setFixedSize(image_ ? image_->native().size().toSize() : QSize(iconSide, iconSide));
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    const double ratio = devicePixelRatio();
    QPainter(this).drawPixmap(
        QPointF(), image_ ? image_->native().pixmap(ratio, color(tint_)) : drawApplicationPicture(iconSide, ratio));
  }

 private:
  ns::Color tint_;
  std::shared_ptr<ns::Image> image_;
};

QLabel* makeText(const QString& text, const ns::Font& style) {
  auto* const label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setFont(font(style));
  label->setFixedWidth(textWidth);
  const bool isMirrored = QApplication::layoutDirection() == Qt::RightToLeft;
  label->setAlignment(Qt::AlignAbsolute | Qt::AlignVCenter | (isMirrored ? Qt::AlignRight : Qt::AlignLeft));
  return label;
}

}  // namespace

DialogButton::DialogButton(const QString& title, QWidget* parent) : QPushButton(title, parent) {
  setFont(qt::font(ns::Font::systemFontOfSize(13)));
  setAutoDefault(false);
}

QSize DialogButton::sizeHint() const { return {std::max(fontMetrics().horizontalAdvance(text()) + 28, 76), 28}; }

void DialogButton::keyPressEvent(QKeyEvent* event) {
  // Return is for the button that has the keyboard; only without one is it for the default button.
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QPushButton::keyPressEvent(event);
  }
}

void DialogButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  // Room for the focus ring and the shadow below.
  const QRectF face = QRectF(rect()).adjusted(2, 2, -2, -2);
  if (isDefault() && isEnabled()) {
    QColor fill = color(ControlColor::AccentFill);
    if (isDown()) fill = fill.darker(115);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(face, buttonRadius, buttonRadius);
  } else {
    paintBezel(painter, face, buttonRadius, isDown());
  }
  const bool isFilled = isDefault() && isEnabled();
  painter.setPen(isFilled ? QColor(Qt::white)
                          : color(ns::Color::labelColor().colorWithAlphaComponent(isEnabled() ? 1 : 0.4)));
  painter.drawText(face, Qt::AlignCenter | Qt::TextShowMnemonic | textDirection(text()), text());
  if (!hasFocus()) return;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color(ControlColor::FocusRing), 2));
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), buttonRadius + 1, buttonRadius + 1);
}

void prepareDialog(QDialog& dialog) {
  dialog.setWindowTitle(QStringLiteral("Ostrel"));
  dialog.setFont(qt::font(ns::Font::systemFontOfSize(13)));
  applyTaskBarPolicy(dialog);
  // Window managers pass over windows outside the task bar when they look for the next one to have the keyboard.
  QObject::connect(&dialog, &QDialog::finished, &dialog, [&dialog] {
    if (QWidget* const before = dialog.parentWidget(); before && before->isVisible()) before->activateWindow();
  });
}

QWidget* dialogParent() {
  if (auto* const modal = QApplication::activeModalWidget()) return modal;
  auto* const active = QApplication::activeWindow();
  if (active && active->windowType() != Qt::Popup) return active;
  // Between two dialogs no window has the keyboard for a moment.
  const auto windows = shownWindows();
  return windows.empty() ? nullptr : windows.front();
}

MessageDialog::MessageDialog(const MessageContent& content, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      lastButton_(static_cast<int>(content.buttons.size()) - 1) {
  auto* const texts = new QVBoxLayout;
  texts->setSpacing(6);
  texts->addWidget(makeText(content.message, ns::Font::systemFontOfSize(14, ns::FontWeight::Semibold)));
  if (!content.informative.isEmpty()) {
    texts->addWidget(makeText(content.informative, ns::Font::systemFontOfSize(12)));
  }
  texts->addStretch();
  auto* const upper = new QHBoxLayout;
  upper->setSpacing(16);
  upper->addWidget(new PictureView(content.symbol, content.symbolColor), 0, Qt::AlignTop);
  upper->addLayout(texts);
  auto* const row = new QHBoxLayout;
  row->setSpacing(8);
  row->addStretch();
  DialogButton* first = nullptr;
  for (int index = lastButton_; index >= 0; --index) {
    auto* const button = new DialogButton(content.buttons[index]);
    connect(button, &QPushButton::clicked, this, [this, index] { done(index + 1); });
    row->addWidget(button);
    if (index == 0) first = button;
  }
  auto* const whole = new QVBoxLayout(this);
  whole->setContentsMargins(20, 20, 18, 16);
  whole->setSpacing(18);
  whole->addLayout(upper);
  whole->addLayout(row);
  whole->setSizeConstraint(QLayout::SetFixedSize);
  setAccessibleName(content.message);
  setAccessibleDescription(content.informative);
  setFocusPolicy(Qt::StrongFocus);
  if (content.hasDefaultButton && first) {
    first->setDefault(true);
    first->setFocus();
  } else {
    // No key is to choose by accident.
    setFocus();
  }
  prepareDialog(*this);
}

std::size_t MessageDialog::answer() const {
  return static_cast<std::size_t>(result() == Rejected ? lastButton_ : result() - 1);
}

void MessageDialog::showAndTell(std::function<void(std::size_t)> chosen) {
  setAttribute(Qt::WA_DeleteOnClose);
  connect(this, &QDialog::finished, this, [this, chosen = std::move(chosen)] { chosen(answer()); });
  show();
  raise();
  activateWindow();
}

std::size_t MessageDialog::ask() {
  exec();
  return answer();
}

}  // namespace qt

#include "moc_MessageDialog.cpp"
