// Whether the application's windows have a place in the task bar.
#pragma once

class QWidget;

namespace qt {

/// Keeps `window` out of the task bar and the pager while the application is an accessory. To be called before the
/// window is shown; a window on screen is told to the window manager.
void applyTaskBarPolicy(QWidget& window);

}  // namespace qt
