#include "platform/linux/qt/NotifierItem.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QtEndian>
#include <utility>

#include "platform/linux/qt/TrayHosts.h"

namespace qt {
namespace {

const auto itemPath = QStringLiteral("/StatusNotifierItem");

NotifierPixmap encoded(const QImage& picture) {
  QImage image = picture.convertToFormat(QImage::Format_ARGB32);
  NotifierPixmap result{image.width(), image.height(), {}};
  for (int y = 0; y < image.height(); ++y) {
    auto* const line = reinterpret_cast<quint32*>(image.scanLine(y));
    qToBigEndian<quint32>(line, image.width(), line);
    result.bytes.append(reinterpret_cast<const char*>(line), static_cast<qsizetype>(image.width()) * 4);
  }
  return result;
}

}  // namespace

NotifierItem::NotifierItem(std::function<void(QPoint)> clicked) : clicked_(std::move(clicked)) {
  qDBusRegisterMetaType<NotifierPixmap>();
  qDBusRegisterMetaType<NotifierPixmaps>();
  qDBusRegisterMetaType<NotifierToolTip>();
  static int count = 0;
  service_ = QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
  auto bus = QDBusConnection::sessionBus();
  bus.registerObject(
      itemPath, this,
      QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals | QDBusConnection::ExportAllProperties);
  bus.registerService(service_);
  registerWithWatcher();
}

NotifierItem::~NotifierItem() {
  auto bus = QDBusConnection::sessionBus();
  bus.unregisterObject(itemPath);
  bus.unregisterService(service_);  // the panel takes this for the item's end
}

void NotifierItem::setIcon(const QIcon& icon) {
  icon_.clear();
  for (const QSize& size : icon.availableSizes()) icon_ += encoded(icon.pixmap(size, 1.0).toImage());
  emit NewIcon();
}

void NotifierItem::setToolTip(const QString& toolTip) {
  toolTip_ = toolTip;
  emit NewToolTip();
}

void NotifierItem::registerWithWatcher() {
  auto message = QDBusMessage::createMethodCall(
      QString::fromLatin1(notifierWatcher), QStringLiteral("/StatusNotifierWatcher"),
      QString::fromLatin1(notifierWatcher), QStringLiteral("RegisterStatusNotifierItem"));
  message << service_;
  message.setAutoStartService(false);
  QDBusConnection::sessionBus().asyncCall(message);
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap) {
  argument.beginStructure();
  argument << pixmap.width << pixmap.height << pixmap.bytes;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap) {
  argument.beginStructure();
  argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
  argument.beginStructure();
  argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
  argument.beginStructure();
  argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
  argument.endStructure();
  return argument;
}

}  // namespace qt

#include "moc_NotifierItem.cpp"
