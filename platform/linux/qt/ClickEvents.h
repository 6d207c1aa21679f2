// Keeps the toolkit asleep while people click.
#pragma once

namespace qt {

/// Has the X server no longer tell the toolkit about clicks on other programs' windows and what they lead to, which
/// would wake two of its threads at the very moment when the click is waited for. It then hears of a changed work area
/// only while a window of ours has the keyboard; workArea() asks. To be called once the application object exists.
/// Without effect on other platforms.
void ignoreClicksElsewhere();

}  // namespace qt
