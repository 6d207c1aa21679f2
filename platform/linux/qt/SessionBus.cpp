#include "platform/linux/qt/SessionBus.h"

#include <QFile>

namespace qt {

bool hasSessionBus() {
  // Once: what comes below is no bus either.
  static const bool has = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
                          QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1String("/bus"));
  return has;
}

void startNoSessionBus() {
  if (!hasSessionBus()) qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null");
}

}  // namespace qt
