#include "platform/linux/qt/DesktopScheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <utility>

#include "platform/linux/qt/SessionBus.h"

namespace qt {
namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto colorScheme = QStringLiteral("color-scheme");

/// What GTK programs are told: the theme of the environment, else the settings file.
bool toolkitIsDark() {
  const auto isDarkName = [](const QString& theme) {
    return theme.contains(QLatin1String("dark"), Qt::CaseInsensitive);
  };
  if (const QString theme = qEnvironmentVariable("GTK_THEME"); !theme.isEmpty()) return isDarkName(theme);
  for (const auto* file : {"gtk-4.0/settings.ini", "gtk-3.0/settings.ini"}) {
    const QString found = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, QLatin1String(file));
    if (found.isEmpty()) continue;
    const QSettings settings(found, QSettings::IniFormat);
    if (settings.value(QLatin1String("Settings/gtk-application-prefer-dark-theme")).toBool()) return true;
    if (isDarkName(settings.value(QLatin1String("Settings/gtk-theme-name")).toString())) return true;
  }
  return false;
}

}  // namespace

DesktopScheme::DesktopScheme(std::function<void()> changed)
    : changed_(std::move(changed)), toolkitIsDark_(toolkitIsDark()), isDark_(toolkitIsDark_) {
  if (hasSessionBus()) ask();
}

void DesktopScheme::ask() {
  auto bus = QDBusConnection::sessionBus();
  // Known by this name only from here on; a slot of an unknown type is not connected.
  qRegisterMetaType<QDBusVariant>();
  bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  auto message = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
  message << appearance << colorScheme;
  const auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *call;
    // Read wraps the value in a second variant.
    if (!reply.isError()) take(reply.value().variant());
  });
}

void DesktopScheme::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  if (group == appearance && key == colorScheme) take(value.variant());
}

void DesktopScheme::take(const QVariant& value) {
  const QVariant plain = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
  // 0: no preference, 1: dark, 2: light.
  const uint scheme = plain.toUInt();
  const bool isDarkNow = scheme == 0 ? toolkitIsDark_ : scheme == 1;
  if (std::exchange(isDark_, isDarkNow) != isDarkNow) changed_();
}

}  // namespace qt
