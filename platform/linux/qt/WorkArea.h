// What panels leave of a screen.
#pragma once

class QRect;
class QScreen;

namespace qt {

/// In the toolkit's coordinates, as the window manager tells it now. The toolkit's own figure may be old: see
/// ignoreClicksElsewhere(). With several screens it is all of the screen, since window managers tell one area for all.
QRect workArea(const QScreen& screen);

}  // namespace qt
