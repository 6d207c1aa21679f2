// Icons of applications, from the desktop's icon theme.
#pragma once

#include <QIcon>
#include <string>

namespace qt {

/// What an entry names as its icon: a theme name, an absolute path, or nothing. Never null. Main thread only.
QIcon applicationIcon(const std::string& name);

}  // namespace qt
