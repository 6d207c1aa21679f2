#include "platform/linux/qt/Icons.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/qt/ImageNative.h"

namespace qt {
namespace {

/// The theme that the desktop writes down for GTK programs; most desktops do.
QString chosenTheme() {
  for (const auto* file : {"gtk-4.0/settings.ini", "gtk-3.0/settings.ini"}) {
    const QString found = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, QLatin1String(file));
    if (found.isEmpty()) continue;
    const QSettings settings(found, QSettings::IniFormat);
    const QString theme = settings.value(QLatin1String("Settings/gtk-icon-theme-name")).toString();
    if (!theme.isEmpty()) return theme;
  }
  // What GTK programs show then.
  return QStringLiteral("Adwaita");
}

/// Done when the first icon is wanted: a search path is read from the disk.
void startIconTheme() {
  QStringList folders{QString::fromStdString(freedesktop::dataHome()) + QLatin1String("/icons")};
  for (const std::string& folder : freedesktop::dataFolders()) {
    folders += QString::fromStdString(folder) + QLatin1String("/icons");
  }
  // A session that was started before Flatpak was installed lacks its folders in XDG_DATA_DIRS.
  folders += QString::fromStdString(freedesktop::dataHome()) + QLatin1String("/flatpak/exports/share/icons");
  folders += QStringLiteral("/var/lib/flatpak/exports/share/icons");
  folders.removeDuplicates();
  QIcon::setThemeSearchPaths(folders);
  QIcon::setFallbackSearchPaths({QString::fromStdString(freedesktop::dataHome()) + QLatin1String("/pixmaps"),
                                 QStringLiteral("/usr/share/pixmaps")});
  QIcon::setThemeName(chosenTheme());
  QIcon::setFallbackThemeName(QStringLiteral("hicolor"));
}

bool hasPicture(const QIcon& icon) { return !icon.isNull() && !icon.pixmap(QSize(32, 32), 1.0).isNull(); }

QIcon genericIcon() {
  QIcon icon = QIcon::fromTheme(QStringLiteral("application-x-executable"));
  if (hasPicture(icon)) return icon;
  const auto symbol = ns::Image::imageWithSystemSymbolName("app.dashed");
  return symbol->native().tintedIcon({32, 32}, QColor(0x8A, 0x8A, 0x90));
}

}  // namespace

QIcon applicationIcon(const std::string& name) {
  [[maybe_unused]] static const bool started = (startIconTheme(), true);
  QString wanted = QString::fromStdString(name);
  QIcon icon;
  if (wanted.startsWith(QLatin1Char('/'))) {
    if (QFileInfo(wanted).isFile()) icon = QIcon(wanted);
  } else if (!wanted.isEmpty()) {
    // Old entries carry a suffix that themes do not.
    for (const auto* suffix : {".png", ".svg", ".xpm"}) {
      if (wanted.endsWith(QLatin1String(suffix))) wanted.chop(4);
    }
    icon = QIcon::fromTheme(wanted);
  }
  return hasPicture(icon) ? icon : genericIcon();
}

}  // namespace qt
