#include "platform/linux/qt/SessionBus.h"

#include <QFile>

namespace qt {

bool hasSessionBus() {
  return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
         QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1String("/bus"));
}

}  // namespace qt
