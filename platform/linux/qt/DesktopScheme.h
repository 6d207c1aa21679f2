// Whether the desktop is light or dark.
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <functional>

namespace qt {

/// Knows the desktop's preference: at once what the toolkit settings say, soon after what the settings portal says, and
/// from then on every change of it. Without a session bus, or a portal on it, the toolkit settings stand.
class DesktopScheme : public QObject {
  Q_OBJECT

 public:
  /// `changed` is called, later, whenever the answer of isDark() has changed.
  explicit DesktopScheme(std::function<void()> changed);
  bool isDark() const { return isDark_; }

 private slots:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask();
  void take(const QVariant& value);

  std::function<void()> changed_;
  bool toolkitIsDark_;
  bool isDark_;
};

}  // namespace qt
