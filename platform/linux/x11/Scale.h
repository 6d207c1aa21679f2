// How large the desktop wants things to be drawn.
#pragma once

#include "platform/linux/x11/Connection.h"

namespace x11 {

/// How many pixels make a point: the resolution in the desktop's settings (XSETTINGS), or else the resource Xft.dpi,
/// over 96, times QT_SCALE_FACTOR. As toolkits do, QT_FONT_DPI takes the resolution's place and
/// QT_ENABLE_HIGHDPI_SCALING=0 has it not count. What nobody can mean (less than a half, more than 8) counts as 1.
double scaleOf(Connection& connection);

/// The one of $DISPLAY when this process first asked, and ever after: the toolkit cannot change its scale once it runs,
/// and a point is to be the same length everywhere. 1 without a server. Any thread.
double scaleOfThisProcess();

}  // namespace x11
