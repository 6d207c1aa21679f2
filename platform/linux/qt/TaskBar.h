// What the desktop's lists of windows show of the application's own.
#pragma once

#include <vector>

class QWidget;

namespace qt {

/// Gives `window` the icon and the name of the application and keeps it out of the task bar and the pager while the
/// application is an accessory. To be called before the window is shown; a window on screen is told to the window
/// manager.
void applyTaskBarPolicy(QWidget& window);

/// The application's windows on screen, without dialogs, menus and the icon in the panel.
std::vector<QWidget*> shownWindows();

}  // namespace qt
