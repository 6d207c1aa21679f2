#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/StatusBar.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/MenuWidget.h"
#include "platform/linux/qt/NotifierItem.h"
#include "platform/linux/qt/Session.h"
#include "platform/linux/qt/TrayHosts.h"

namespace ns {
namespace {

/// The sizes in pixels that panels ask for, so that no picture is scaled on the usual ones.
constexpr int iconSides[] = {16, 18, 20, 22, 24, 28, 32, 36, 44, 48, 64};

/// A panel that is only on the bus does not say how it looks. Those of GNOME are dark on a light desktop too; the
/// others go with the desktop.
bool isUnseenPanelDark() {
  return qt::isDark() || qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QLatin1String("GNOME"));
}
QColor panelTint(bool isPanelDark) { return isPanelDark ? QColor(0xF2, 0xF2, 0xF4) : QColor(0x30, 0x30, 0x34); }

QPixmap drawnTitle(const QString& title, int side, const QColor& tint) {
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QFont font = qt::font(Font::systemFontOfSize(side * 0.7, FontWeight::Semibold));
  while (font.pixelSize() > 6 && QFontMetrics(font).horizontalAdvance(title) > side) {
    font.setPixelSize(font.pixelSize() - 1);
  }
  painter.setFont(font);
  painter.setPen(tint);
  painter.drawText(pixmap.rect(), Qt::AlignCenter, title);
  return pixmap;
}

/// What is at this pixel of the X11 screen. Screens have their corners in pixels and their sizes in points.
QPoint pointAtPixel(QPoint pixel) {
  for (const QScreen* const screen : QGuiApplication::screens()) {
    const QPoint corner = screen->geometry().topLeft();
    const qreal scale = screen->devicePixelRatio();
    if (QRect(corner, screen->size() * scale).contains(pixel)) return corner + (pixel - corner) / scale;
  }
  return pixel;
}

/// Where a panel was clicked, by what it tells: some count in pixels, some in points of their own. When the pointer is
/// there in either reading it was a click of the mouse, else a key, and pixels are what everybody else counts in.
QPoint placeOfClick(QPoint told) {
  constexpr int reach = 64;
  const QPoint pointer = QCursor::pos();
  const QPoint pixel = pointAtPixel(told);
  const bool isClick = (pixel - pointer).manhattanLength() < reach || (told - pointer).manhattanLength() < reach;
  return isClick ? pointer : pixel;
}

/// Shows itself in whichever tray there is, and moves when the desktop's panel changes.
class TrayItem final : public QObject, public StatusItem, public StatusBarButton {
 public:
  TrayItem() : hosts_([this] { place(); }) { qGuiApp->installEventFilter(this); }

  void setVisible(bool visible) override {
    if (std::exchange(isVisible_, visible) != visible) place();
  }
  void setMenu(std::shared_ptr<Menu> menu) override { menu_ = std::move(menu); }
  StatusBarButton* button() override { return this; }

  void setImage(std::shared_ptr<Image> image) override {
    // Told every few seconds, mostly the same.
    const auto name = [](const auto& which) { return which ? which->native().symbolName : std::string(); };
    const bool isSame = !image == !image_ && !name(image).empty() && name(image) == name(image_);
    image_ = std::move(image);
    if (!isSame) showIcon();
  }
  void setTitle(const std::string& title) override {
    const QString wanted = QString::fromStdString(title);
    if (std::exchange(title_, wanted) != wanted && !image_) showIcon();
  }
  void setToolTip(const std::string& toolTip) override {
    const QString wanted = QString::fromStdString(toolTip);
    if (std::exchange(toolTip_, wanted) != wanted) showToolTip();
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange) {
      isPanelSeen_ = false;
      showIcon();
    }
    if (event->type() == QEvent::Paint && !isPanelSeen_ && embedded_ && watched->inherits("QSystemTrayIconSys")) {
      isPanelSeen_ = true;
      // Once it is painted, there is nothing of ours in its corner.
      const auto window = static_cast<std::uint32_t>(static_cast<QWidget*>(watched)->winId());
      QMetaObject::invokeMethod(
          this, [this, window] { lookAtPanel(window); }, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  void place() {
    const qt::TrayHost host = isVisible_ ? hosts_.current() : qt::TrayHost::None;
    if (host != qt::TrayHost::StatusNotifier) notifier_.reset();
    if (host != qt::TrayHost::XEmbed) embedded_.reset();
    if (host == qt::TrayHost::StatusNotifier) {
      if (notifier_) {
        notifier_->registerWithWatcher();
        return;
      }
      notifier_ = std::make_unique<qt::NotifierItem>([this](QPoint told) { openMenu(placeOfClick(told)); });
    } else if (host == qt::TrayHost::XEmbed && !embedded_) {
      // The toolkit decides at the first one which kind it makes from then on; here there is no host of the other.
      embedded_ = std::make_unique<QSystemTrayIcon>();
      QObject::connect(embedded_.get(), &QSystemTrayIcon::activated, this, [this] { openMenu(QCursor::pos()); });
    }
    isPanelSeen_ = false;  // it may be another one than before; the toolkit moves to it by itself
    showIcon();
    showToolTip();
    if (embedded_) embedded_->show();
  }

  void lookAtPanel(std::uint32_t window) {
    const auto isDark = qt::isDarkBehind(window);
    if (!isDark || *isDark == isTrayDark_) return;
    isTrayDark_ = *isDark;
    showIcon();
  }

  QIcon icon(bool isPanelDark) const {
    const QColor tint = panelTint(isPanelDark);
    QIcon result;
    for (const int side : iconSides) {
      result.addPixmap(image_ ? image_->native().pixmap(QSizeF(side, side), 1.0, tint)
                              : drawnTitle(title_, side, tint));
    }
    return result;
  }

  void showIcon() {
    if (notifier_) notifier_->setIcon(icon(isUnseenPanelDark()));
    if (embedded_) embedded_->setIcon(icon(isTrayDark_));
  }

  void showToolTip() {
    if (notifier_) notifier_->setToolTip(toolTip_);
    if (embedded_) embedded_->setToolTip(toolTip_);
  }

  void openMenu(QPoint point) {
    if (!menu_ || (shown_ && shown_->isVisible())) return;
    menu_->update();
    shown_ = new qt::MenuWidget(*menu_);
    shown_->setAttribute(Qt::WA_DeleteOnClose);
    shown_->popup(point);
  }

  bool isVisible_ = false;
  std::shared_ptr<Menu> menu_;
  std::shared_ptr<Image> image_;
  QString title_;
  QString toolTip_;
  QPointer<qt::MenuWidget> shown_;
  bool isTrayDark_ = isUnseenPanelDark();
  /// Whether the colour of the tray is known, or being asked for.
  bool isPanelSeen_ = false;
  std::unique_ptr<qt::NotifierItem> notifier_;
  std::unique_ptr<QSystemTrayIcon> embedded_;
  qt::TrayHosts hosts_;
};

}  // namespace

std::shared_ptr<StatusItem> StatusBar::statusItemWithVariableLength() {
  qt::joinSession();
  return std::make_shared<TrayItem>();
}

}  // namespace ns
