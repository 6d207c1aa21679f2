// What the rest of the desktop layer gets from the user interface.
#pragma once

namespace qt {

/// From now on files have icons, and dialogs ask for consent and tell when nothing opens an address. Called when the
/// application takes its place in the session; a program that never does is linked without all this. Main thread only.
void joinSession();

}  // namespace qt
