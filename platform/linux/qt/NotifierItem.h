// A status item as panels read it over the session bus (org.kde.StatusNotifierItem).
#pragma once

#include <QDBusArgument>
#include <QIcon>
#include <QObject>
#include <QPoint>
#include <functional>

namespace qt {

/// One size of an icon: bytes in the order alpha, red, green, blue.
struct NotifierPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;
};
using NotifierPixmaps = QList<NotifierPixmap>;

struct NotifierToolTip {
  QString iconName;
  NotifierPixmaps icon;
  QString title;
  QString text;
};

/// On the bus as long as it lives. A click of any button asks for the menu, which is ours: it then looks the same on
/// every panel. Main thread only.
class NotifierItem final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category)
  Q_PROPERTY(QString Id READ id)
  Q_PROPERTY(QString Title READ title)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(int WindowId READ windowId)
  Q_PROPERTY(QString IconName READ iconName)
  Q_PROPERTY(qt::NotifierPixmaps IconPixmap READ iconPixmap)
  Q_PROPERTY(qt::NotifierToolTip ToolTip READ toolTip)
  Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)

 public:
  /// Registers with the panel's watcher.
  explicit NotifierItem(std::function<void(QPoint)> clicked);
  ~NotifierItem() override;

  /// Tells the panel what has changed.
  void setIcon(const QIcon& icon);
  void setToolTip(const QString& toolTip);
  /// Again, with a watcher that has not heard of it.
  void registerWithWatcher();

  QString category() const { return QStringLiteral("ApplicationStatus"); }
  QString id() const { return QStringLiteral("ostrel"); }
  QString title() const { return QStringLiteral("Ostrel"); }
  QString status() const { return QStringLiteral("Active"); }
  int windowId() const { return 0; }
  QString iconName() const { return {}; }
  NotifierPixmaps iconPixmap() const { return icon_; }
  NotifierToolTip toolTip() const { return {{}, {}, toolTip_, {}}; }
  bool itemIsMenu() const { return false; }

 public slots:
  void Activate(int x, int y) { clicked_({x, y}); }
  void ContextMenu(int x, int y) { clicked_({x, y}); }
  void SecondaryActivate(int x, int y) { clicked_({x, y}); }
  void Scroll(int, const QString&) {}

 signals:
  void NewIcon();
  void NewToolTip();

 private:
  std::function<void(QPoint)> clicked_;
  QString service_;
  NotifierPixmaps icon_;
  QString toolTip_;
};

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip);

}  // namespace qt

Q_DECLARE_METATYPE(qt::NotifierPixmap)
Q_DECLARE_METATYPE(qt::NotifierToolTip)
